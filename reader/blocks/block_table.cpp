#include "block_table.h"

#include <algorithm>
#include <new>
#include <utility>

#include "block_fields.h"

namespace mdf_reader {

std::uint32_t BlockTable::add(const BlockEntry& entry) {
  if (entries_.size() >= none) {
    throw std::bad_alloc();
  }
  const auto index = static_cast<std::uint32_t>(entries_.size());
  entries_.push_back(entry);
  slots_[slotFor(entry.offset)] = index;
  // Beyond three quarters the way to an empty slot becomes long.
  if (entries_.size() > slots_.size() / 4 * 3) {
    grow();
  }
  return index;
}

/// Where looking for a block begins.
std::size_t BlockTable::firstSlotFor(std::uint64_t offset) const {
  // Blocks that lie together share cache lines here too. The golden ratio as a factor spreads the
  // groups evenly.
  constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
  return static_cast<std::size_t>(offset / 256 * golden_ratio >> shift_);
}

/// The slot with the block's index, or the empty slot where it belongs.
std::size_t BlockTable::slotFor(std::uint64_t offset) const {
  std::size_t slot = firstSlotFor(offset);
  while (slots_[slot] != none && entries_[slots_[slot]].offset != offset) {
    slot = (slot + 1) & (slots_.size() - 1);
  }
  return slot;
}

std::vector<std::uint64_t> BlockTable::offsets() const {
  std::vector<std::uint64_t> offsets;
  offsets.reserve(entries_.size());
  for (const BlockEntry& entry : entries_) {
    offsets.push_back(entry.offset);
  }
  // Blocks lie in a few runs, one after another in each: merging makes much of that.
  std::stable_sort(offsets.begin(), offsets.end());
  return offsets;
}

void BlockTable::grow() {
  const std::size_t size = 2 * slots_.size();
  slots_.clear();
  slots_.resize(size, none);
  --shift_;
  for (std::uint32_t index = 0; index < this->size(); ++index) {
    // All blocks differ, so that the others need not be looked at.
    std::size_t slot = firstSlotFor(entries_[index].offset);
    while (slots_[slot] != none) {
      slot = (slot + 1) & (size - 1);
    }
    slots_[slot] = index;
  }
}

namespace {

std::string roleOf(InputFile& file, const BlockEntry& block, std::uint32_t link) {
  const auto fields = readFields(file, block.offset, block.letters());
  return fields ? linkRole(*fields, link).name : "link " + std::to_string(link);
}

/// A block in a path: "DG[2]", or "TX" for a type that has no chains.
std::string segment(const BlockEntry& block) {
  std::string text(block.letters());
  if (typeOf(block.letters()).has_next) {
    text += '[' + std::to_string(block.position) + ']';
  }
  return text;
}

}  // namespace

std::string pathOf(InputFile& file, const BlockTable& blocks, std::uint32_t index) {
  constexpr int most_segments = 16;
  std::string path = segment(blocks[index]);
  for (int count = 1;; ++count) {
    const BlockEntry& head = blocks[blocks[index].head];
    if (head.parent == BlockTable::none) {
      return path;
    }
    if (count == most_segments) {
      return ".../" + path;
    }
    const BlockEntry& owner = blocks[head.parent];
    path.insert(0, segment(owner) + '.' + roleOf(file, owner, head.link) + '/');
    index = head.parent;
  }
}

}  // namespace mdf_reader
