#ifndef MDF_TOOLS_CHECKING_SPACE_H_
#define MDF_TOOLS_CHECKING_SPACE_H_

#include <cstdint>
#include <functional>
#include <vector>

#include "reader/blocks/block_table.h"
#include "reader/blocks/raw_block.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

using OverlapVisitor = std::function<void(std::uint64_t offset, std::uint64_t reached)>;
using LostBlockVisitor = std::function<void(const RawBlock& block)>;

/// Which bytes of a file its blocks take.
class Space {
 public:
  /// @param last_data_open whether the last block may be data whose length was never written
  Space(InputFile& file, const BlockTable& blocks, bool last_data_open);

  /// Where the block ends by its length, or at the file's end.
  std::uint64_t endOf(const RawBlock& block) const;

  /// Whether this is the last block of an unfinished file, and its data goes on to the file's end.
  bool isOpen(const RawBlock& block) const { return block.offset == open_block_; }

  /// The block that covers an offset or begins there: the last one before it. 0 for none.
  std::uint64_t blockAround(std::uint64_t offset) const;

  /// Visits each block that reaches into others, with the first of those, and what looks like a
  /// block on a multiple of 8 between the file's blocks.
  void review(const OverlapVisitor& overlap, const LostBlockVisitor& lost) const;

 private:
  std::uint64_t coveredUpTo(std::size_t index) const;
  void searchGap(std::uint64_t from, std::uint64_t to, const LostBlockVisitor& lost) const;

  InputFile& file_;
  std::vector<std::uint64_t> offsets_;  ///< of the blocks, ascending
  std::uint64_t open_block_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_SPACE_H_
