#ifndef MDF_READER_BLOCKS_READING_LIMIT_H_
#define MDF_READER_BLOCKS_READING_LIMIT_H_

#include <cstdint>

#include "finding.h"
#include "raw_block.h"

namespace mdf_reader {

/// Keeps the work on a file proportional to its size. Blocks that do not overlap have no more bytes
/// together than the file; overlapping blocks could make a reader go through the same bytes again
/// for each of them. Some overlap is allowed, so that a file with a few wrong lengths is shown
/// whole.
class ReadingLimit {
 public:
  ReadingLimit(std::uint64_t file_size, const FindingSink& report)
      : left_(times * (file_size < most ? file_size : most)), report_(report) {}

  /// Whether so many bytes of a block may still be read. The first refusal is reported.
  bool allows(const RawBlock& block, std::uint64_t bytes);

 private:
  static constexpr std::uint64_t times = 4;
  static constexpr std::uint64_t most = UINT64_MAX / times;

  std::uint64_t left_;
  const FindingSink& report_;
  bool is_reported_ = false;
};

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_READING_LIMIT_H_
