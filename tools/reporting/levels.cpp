#include "levels.h"

#include <numeric>

namespace mdf_tools {

namespace {

/// The largest that can be coarsened; as many as there are for none.
std::size_t largestOf(const std::vector<Levels*>& levels, const std::vector<std::size_t>& sizes) {
  std::size_t largest = levels.size();
  for (std::size_t i = 0; i < levels.size(); ++i) {
    const bool is_larger = largest == levels.size() || sizes[i] > sizes[largest];
    if (is_larger && levels[i]->canCoarsen()) {
      largest = i;
    }
  }
  return largest;
}

}  // namespace

bool fitLevels(const std::vector<Levels*>& levels, std::vector<std::size_t>& sizes,
               const std::function<std::size_t(const Levels&)>& sizeOf, std::size_t most) {
  std::size_t all = std::accumulate(sizes.begin(), sizes.end(), std::size_t{0});
  while (all > most) {
    const std::size_t largest = largestOf(levels, sizes);
    if (largest == levels.size()) {
      return false;
    }
    levels[largest]->coarsen();
    all -= sizes[largest];
    sizes[largest] = sizeOf(*levels[largest]);
    all += sizes[largest];
  }
  return true;
}

}  // namespace mdf_tools
