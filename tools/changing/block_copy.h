#ifndef MDF_TOOLS_CHANGING_BLOCK_COPY_H_
#define MDF_TOOLS_CHANGING_BLOCK_COPY_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "new_blocks.h"
#include "reader/blocks/block_table.h"
#include "reader/blocks/finding.h"
#include "reader/blocks/raw_block.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Copies the blocks of a file, whatever they are, byte for byte but for their links and for what
/// is said to change. First say what is left out, then choose(), place(), and what is to change,
/// then write().
class BlockCopy {
 public:
  /// A link of a block.
  struct Link {
    std::uint32_t block;  ///< index in the table
    std::uint32_t number;
  };

  BlockCopy(InputFile& file, const FindingSink& report);

  InputFile& file() { return file_; }
  const BlockTable& table() const { return table_; }

  /// Leaves out a block, and what can be reached through it alone. Lists go on after it, and links
  /// that refer to it become nil.
  void leaveOut(std::uint32_t block) {
    if (block != BlockTable::none) {
      left_out_.insert(block);
    }
  }
  /// The same of all blocks with these letters.
  void leaveOut(std::string_view letters);
  /// Whether a link leads to a block that is left out.
  bool isLeftOut(std::uint64_t offset) const {
    const std::uint32_t block = table_.find(offset);
    return left_out_.count(block) > 0 && elsewhere_.count(block) == 0;
  }

  /// Leaves out what can be reached through a link alone; the link is set later.
  void cut(Link link) { links_.emplace(keyOf(link), 0); }

  /// Finds out which blocks are copied.
  /// @param has_header whether the header block is one of them.
  void choose(bool has_header = true);
  bool isCopied(std::uint32_t block) const { return is_copied_[block]; }

  /// Gives the blocks their places, in the order of the file.
  /// @throws CopyFailure where they have many times the file's bytes.
  void place(NewBlocks& out);
  std::uint64_t placeOf(std::uint32_t block) const;

  /// Where a link of the copy leads.
  std::uint64_t newLink(Link link);

  void setLink(Link link, std::uint64_t target) { links_[keyOf(link)] = target; }
  void setField(std::uint32_t block, std::string_view name, std::uint64_t value);
  /// @param at in the block, after its links.
  void setBytes(std::uint32_t block, std::uint64_t at, const std::string& bytes) {
    changes_[block].push_back({at, bytes});
  }

  /// Links that name a channel group after its data group get this one.
  void moveGroup(std::uint32_t group, std::uint64_t data_group) {
    moved_groups_[group] = data_group;
  }

  /// Links that refer to a block that is left out lead to this place instead.
  void sendTo(std::uint32_t block, std::uint64_t place) { elsewhere_[block] = place; }

  void write(NewBlocks& out);

 private:
  struct Change {
    std::uint64_t at;  ///< in the block
    std::string bytes;
  };

  static std::uint64_t keyOf(Link link) { return std::uint64_t{link.block} << 32U | link.number; }
  std::uint32_t targetOf(Link link, std::uint64_t offset);
  std::uint32_t stayingFrom(std::uint32_t block);
  bool leadsElementOut(const RawBlock& block, std::uint64_t number);
  std::uint64_t lengthOf(const RawBlock& block) const;
  std::uint64_t translated(const RawBlock& block, Link link, std::uint64_t offset);
  void write(NewBlocks& out, std::uint32_t block);
  void writePiece(NewBlocks& out, const RawBlock& raw, std::uint32_t block, std::uint64_t at,
                  std::string& bytes);

  InputFile& file_;
  BlockTable table_;
  std::unordered_set<std::uint32_t> left_out_;
  std::unordered_map<std::uint32_t, std::uint32_t> staying_;  ///< after those left out
  std::unordered_map<std::uint64_t, std::uint64_t> links_;
  std::unordered_map<std::uint32_t, std::vector<Change>> changes_;
  std::unordered_map<std::uint32_t, std::uint64_t> moved_groups_;
  std::unordered_map<std::uint32_t, std::uint64_t> elsewhere_;
  std::vector<bool> is_copied_;
  std::vector<std::uint32_t> order_;
  std::vector<std::uint64_t> places_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_BLOCK_COPY_H_
