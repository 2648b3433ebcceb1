#ifndef MDF_TOOLS_CHECKING_RECORD_DATA_H_
#define MDF_TOOLS_CHECKING_RECORD_DATA_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reader/bytes/offset_set.h"
#include "subject.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Data, block by block.
struct DataBlocks {
  std::vector<std::uint64_t> offsets;
  std::uint64_t stored_bytes = 0;  ///< bytes of the file that the blocks take
  /// Whether they hold values alone, without invalidation bytes, as version 4.2 allows.
  bool are_values_alone = false;
  bool is_known = true;  ///< false: a link leads elsewhere, or to data of an unknown kind
  bool is_shared =
      false;  ///< a block is the data of another group already; what follows is left out
};

/// Collects the blocks that a data link leads to, through header lists, data lists and lists of
/// values. They are added to `seen`: each block is collected once, however many groups share it.
DataBlocks dataBlocksAt(const Subject& subject, std::uint64_t first, OffsetSet& seen);

/// The bytes of data blocks, one after another, unzipped. Blocks that overlap may hold more than
/// the file: see DataBlocks::stored_bytes.
class DataReader {
 public:
  DataReader(const Subject& subject, const std::vector<std::uint64_t>& offsets)
      : subject_(subject), offsets_(offsets) {}

  /// Whether all has been read.
  bool isAtEnd();

  /// Whether zipped data could not be read; the data ends before it.
  bool isBroken() const { return is_broken_; }

  /// Bytes that have been read or skipped.
  std::uint64_t position() const { return position_; }

  /// Reads or skips bytes; false when there are fewer, which are then skipped.
  bool read(char* bytes, std::size_t count);
  bool skip(std::uint64_t count);

  /// Reads into a string, which grows with what is really there, a piece at a time.
  bool read(std::string& bytes, std::uint64_t count);

 private:
  void enter(std::uint64_t offset);
  void unzip(const RawBlock& block);

  const Subject& subject_;
  const std::vector<std::uint64_t>& offsets_;
  std::size_t next_ = 0;      ///< index of the block after the current one
  std::string inflated_;      ///< data of a zipped block
  bool is_inflated_ = false;  ///< whether the current block is one
  std::uint64_t at_ = 0;      ///< in the inflated data, or in the file
  std::uint64_t end_ = 0;
  std::uint64_t position_ = 0;
  bool is_broken_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_RECORD_DATA_H_
