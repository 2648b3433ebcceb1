#ifndef MDF_TOOLS_CHANGING_LOST_BLOCKS_H_
#define MDF_TOOLS_CHANGING_LOST_BLOCKS_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "reader/blocks/block_table.h"
#include "reader/blocks/raw_block.h"
#include "reader/data/data_file.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A link of a block that should lead to another one.
struct BlockLink {
  RawBlock block;
  std::uint64_t index = 0;

  std::uint64_t place() const {
    return block.offset + RawBlock::header_size + RawBlock::link_size * index;
  }
};

/// The blocks of a damaged file, those that can be reached and those that cannot, and the links
/// that lead to none. A lost block is a root where no lost block links to it. Memory is in
/// proportion to the number of blocks.
class LostBlocks {
 public:
  explicit LostBlocks(InputFile& file);

  InputFile& file() { return file_; }
  DataFile& dataFile() { return data_file_; }

  bool areThere() const { return !lost_.empty(); }

  /// What is lost, in the order of the file: roots of a type, roots with data or lists of it, all.
  std::vector<RawBlock> roots(std::string_view letters) const;
  std::vector<RawBlock> rootsWithData() const;
  std::vector<RawBlock> all() const;

  bool isLost(std::uint64_t offset) const {
    const auto lost = lost_.find(offset);
    return lost != lost_.end() && !lost->second.is_back;
  }

  /// The root that begins at an offset, and the last one before it.
  std::optional<RawBlock> rootAt(std::uint64_t offset) const;
  std::optional<RawBlock> rootBefore(std::uint64_t offset) const;

  /// Links of blocks that can be reached which lead to no block that they may lead to, and those
  /// that are nil where there are blocks as a rule.
  std::vector<BlockLink> broken() const { return open(broken_); }
  std::vector<BlockLink> empty() const { return open(empty_); }
  /// How many links of lost blocks are broken that may lead to a type.
  std::size_t brokenInLost(std::string_view letters) const;

  /// The data lists that can be reached.
  const std::vector<RawBlock>& lists() const { return lists_; }

  /// Where a link leads, with what was put back. Nothing where it is nil or broken.
  std::optional<RawBlock> target(const BlockLink& link) const;

  /// Lets a link lead to a root, which can be reached from then on with all that it leads to.
  void putBack(const BlockLink& link, const RawBlock& root);

 private:
  struct Lost {
    RawBlock block;
    bool is_linked = false;  ///< by another one
    bool is_listed = false;  ///< it can be reached, but just by a link that refers to it
    bool is_back = false;

    bool isRoot() const { return !is_linked && !is_back; }
  };
  using LinkTaker = std::function<void(std::uint64_t index, std::uint64_t link)>;

  void find();
  void markLinked();
  void forEachLinkOf(const RawBlock& block, const LinkTaker& take) const;
  void takeList(const RawBlock& block);
  void take(const BlockLink& link, std::uint64_t offset);
  bool isBroken(const BlockLink& link, std::uint64_t offset) const;
  std::vector<BlockLink> open(const std::vector<BlockLink>& links) const;

  InputFile& file_;
  DataFile data_file_;
  BlockTable table_;
  std::map<std::uint64_t, Lost> lost_;  ///< by offset
  std::vector<BlockLink> broken_;
  std::vector<BlockLink> empty_;
  std::vector<RawBlock> lists_;
  std::map<std::uint64_t, std::uint64_t> put_back_;  ///< by the place of the link
};

/// The types that a link may lead to where it makes up lists and trees or leads to data; "" for
/// links to texts and the like, of which nobody can tell which one leads to which.
std::string_view structureTargets(const RawBlock& block, std::uint64_t index);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_LOST_BLOCKS_H_
