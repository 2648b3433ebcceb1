#ifndef MDF_TOOLS_CHECKING_SPACE_H_
#define MDF_TOOLS_CHECKING_SPACE_H_

#include <cstdint>
#include <functional>
#include <vector>

#include "reader/blocks/block_table.h"
#include "reader/blocks/raw_block.h"
#include "reader/data/data_file.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What is done with what a review of the file's bytes finds.
struct SpaceVisitor {
  /// A block that reaches into others, and the first of those.
  std::function<void(std::uint64_t offset, std::uint64_t reached)> on_overlap;
  /// What looks like a block on a multiple of 8 between the file's blocks.
  std::function<void(const RawBlock& block)> on_lost_block;
  /// Bytes from the first to the last between two blocks that is neither zero nor padding.
  std::function<void(std::uint64_t offset, std::uint64_t count)> on_stray_bytes;
};

/// Which bytes of a file its blocks take.
class Space {
 public:
  Space(DataFile& file, const BlockTable& blocks);

  /// The block that covers an offset or begins there: the last one before it. 0 for none.
  std::uint64_t blockAround(std::uint64_t offset) const;

  /// Goes through the file's blocks and once through the bytes between them.
  void review(const SpaceVisitor& visitor) const;

 private:
  std::uint64_t coveredUpTo(std::size_t index) const;
  void searchGap(std::uint64_t from, std::uint64_t to, const SpaceVisitor& visitor) const;

  DataFile& file_;
  std::vector<std::uint64_t> offsets_;  ///< of the blocks, ascending
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_SPACE_H_
