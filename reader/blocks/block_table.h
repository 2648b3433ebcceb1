#ifndef MDF_READER_BLOCKS_BLOCK_TABLE_H_
#define MDF_READER_BLOCKS_BLOCK_TABLE_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace mdf_reader {

class InputFile;

/// A block of a file and how it is reached: the tree that a walk over the file has made of its
/// links. A block that several links lead to belongs to the first of them.
struct BlockEntry {
  std::uint64_t offset = 0;
  std::uint32_t parent = 0;    ///< index of the block with the link to this one
  std::uint32_t link = 0;      ///< index of that link
  std::uint32_t head = 0;      ///< index of the first block of its chain; its own outside a chain
  std::uint32_t position = 0;  ///< in its chain, from 0 on
  std::uint32_t end = 0;       ///< one past the last block that is reached through it
  std::array<char, 2> type{};
  bool by_reference = false;   ///< reached by a link that only refers to it
  bool has_few_links = false;  ///< only the first links are checked: blocks overlap too much

  std::string_view letters() const { return {type.data(), type.size()}; }
};

/// The blocks of a file in the order in which they are reached: each before what it leads to. An
/// entry takes 32 bytes, and up to 16 more to be found by its offset.
class BlockTable {
 public:
  static constexpr std::uint32_t none = UINT32_MAX;

  /// The index of the block at an offset, or none.
  std::uint32_t find(std::uint64_t offset) const { return slots_[slotFor(offset)]; }

  /// Adds a block that is not there, and returns its index.
  std::uint32_t add(const BlockEntry& entry);

  const BlockEntry& operator[](std::uint32_t index) const { return entries_[index]; }
  BlockEntry& operator[](std::uint32_t index) { return entries_[index]; }
  /// The offsets of all blocks, ascending.
  std::vector<std::uint64_t> offsets() const;

  std::uint32_t size() const { return static_cast<std::uint32_t>(entries_.size()); }

 private:
  std::size_t firstSlotFor(std::uint64_t offset) const;
  std::size_t slotFor(std::uint64_t offset) const;
  void grow();

  std::vector<BlockEntry> entries_;
  std::vector<std::uint32_t> slots_ = std::vector<std::uint32_t>(8, none);
  unsigned shift_ = 61;  ///< from a hash of 64 bits to a slot's index
};

/// How a block is reached, by the roles of the links: "HD.hd_dg_first/DG[2].dg_cg_first/CG[0]". The
/// path of a very deep block is cut to its end.
std::string pathOf(InputFile& file, const BlockTable& blocks, std::uint32_t index);

}  // namespace mdf_reader

#endif  // MDF_READER_BLOCKS_BLOCK_TABLE_H_
