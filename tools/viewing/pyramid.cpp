#include "pyramid.h"

#include <algorithm>
#include <numeric>

namespace mdf_tools {

/// A larger bucket comes into being when all that make it are there.
void Pyramid::closeBucket(const Extent& extent) {
  levels_[0].push_back(extent);
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

void Pyramid::add(const double* numbers, std::size_t count) {
  const double* const end = numbers + count;
  while (numbers != end) {
    const auto left = static_cast<std::size_t>(end - numbers);
    if (pending_count_ == 0 && left >= bucket_size) {
      closeBucket(Extent::of(numbers, bucket_size));
      numbers += bucket_size;
      continue;
    }
    const std::size_t taken = std::min(left, bucket_size - pending_count_);
    std::copy_n(numbers, taken, &pending_[pending_count_]);
    numbers += taken;
    pending_count_ += taken;
    if (pending_count_ == bucket_size) {
      finish();
    }
  }
}

void Pyramid::finish() {
  if (pending_count_ > 0) {
    closeBucket(Extent::of(pending_, pending_count_));
    pending_count_ = 0;
  }
}

/// A larger bucket that was made when the last one came goes with it.
void Pyramid::reopen() {
  pending_count_ = 0;
  if (levels_[0].empty() || levels_[0].back().samples() == bucket_size) {
    return;
  }
  bool was_last = true;
  for (std::size_t level = 0; was_last; ++level) {
    was_last = levels_[level].size() % fan == 0;
    levels_[level].pop_back();
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
