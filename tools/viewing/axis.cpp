#include "axis.h"

#include <algorithm>

namespace mdf_tools {

bool Axis::add(double time) {
  if (records_++ % Pyramid::bucket_size == 0) {
    begins_.push_back(order_.latest());
  }
  if (!order_.take(time)) {
    ++out_of_order_;
    return false;
  }
  if (first_ == before_all) {
    first_ = time;
  }
  return true;
}

std::size_t Axis::firstReaching(double time) const {
  // The end of a bucket is the beginning of the next one.
  const auto next =
      std::lower_bound(begins_.begin() + (begins_.empty() ? 0 : 1), begins_.end(), time);
  const auto bucket = static_cast<std::size_t>(next - begins_.begin());
  return begins_.empty() ? 0 : bucket - 1 + (next == begins_.end() && last() < time ? 1 : 0);
}

std::size_t Axis::firstAfter(double time) const {
  return static_cast<std::size_t>(std::upper_bound(begins_.begin(), begins_.end(), time) -
                                  begins_.begin());
}

}  // namespace mdf_tools
