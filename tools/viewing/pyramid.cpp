#include "pyramid.h"

#include <numeric>

namespace mdf_tools {

/// A larger bucket comes into being when all that make it are there.
void Pyramid::closeBucket() {
  levels_[0].push_back(Extent::of(pending_, pending_count_));
  pending_count_ = 0;
  for (std::size_t level = 0; levels_[level].size() % fan == 0; ++level) {
    if (level + 1 == levels_.size()) {
      levels_.emplace_back();
    }
    Extent larger;
    const std::vector<Extent>& all = levels_[level];
    for (std::size_t i = all.size() - fan; i < all.size(); ++i) {
      larger.append(all[i]);
    }
    levels_[level + 1].push_back(larger);
  }
}

void Pyramid::finish() {
  if (pending_count_ > 0) {
    closeBucket();
  }
}

Extent Pyramid::of(std::size_t begin, std::size_t end) const {
  Extent extent;
  while (begin < end) {
    std::size_t level = 0;
    std::size_t width = 1;
    while (begin % (width * fan) == 0 && begin + width * fan <= end) {
      width *= fan;
      ++level;
    }
    extent.append(levels_[level][begin / width]);
    begin += width;
  }
  return extent;
}

std::size_t Pyramid::size() const {
  return std::accumulate(levels_.begin(), levels_.end(), sizeof(Pyramid),
                         [](std::size_t sum, const std::vector<Extent>& level) {
                           return sum + level.capacity() * sizeof(Extent);
                         });
}

}  // namespace mdf_tools
