#include "offset_set.h"

#include <utility>

namespace mdf_reader {

void OffsetSet::insert(std::uint64_t offset) {
  std::uint64_t& slot = slots_[slotFor(offset)];
  if (slot == offset) {
    return;
  }
  slot = offset;
  ++count_;
  // Beyond three quarters the way to an empty slot becomes long.
  if (count_ > slots_.size() / 4 * 3) {
    grow();
  }
}

/// The slot with the offset, or the empty slot where it belongs.
std::size_t OffsetSet::slotFor(std::uint64_t offset) const {
  // Blocks that lie together share cache lines here too. The golden ratio as a factor spreads the
  // groups evenly.
  constexpr std::uint64_t golden_ratio = 0x9E3779B97F4A7C15;
  auto slot = static_cast<std::size_t>(offset / 256 * golden_ratio >> shift_);
  while (slots_[slot] != 0 && slots_[slot] != offset) {
    slot = (slot + 1) & (slots_.size() - 1);
  }
  return slot;
}

void OffsetSet::grow() {
  const std::vector<std::uint64_t> before =
      std::exchange(slots_, std::vector<std::uint64_t>(2 * slots_.size()));
  --shift_;
  for (const std::uint64_t offset : before) {
    if (offset != 0) {
      slots_[slotFor(offset)] = offset;
    }
  }
}

}  // namespace mdf_reader
