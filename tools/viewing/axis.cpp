#include "axis.h"

#include <algorithm>

namespace mdf_tools {

void Axis::beginBucket() {
  if (room() == Pyramid::bucket_size) {
    begins_.push_back(order_.latest());
    out_of_order_before_ = out_of_order_;
  }
}

bool Axis::add(double time) {
  beginBucket();
  ++records_;
  if (!order_.take(time)) {
    ++out_of_order_;
    return false;
  }
  if (first_ == before_all) {
    first_ = time;
  }
  return true;
}

bool Axis::addInOrder(const double* times, std::size_t count) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  bool are_in_order = count > 0 && times[0] >= order_.latest() && times[0] > -infinity &&
                      times[count - 1] < infinity;
  for (std::size_t i = 1; i < count; ++i) {
    are_in_order &= times[i] >= times[i - 1];
  }
  if (!are_in_order) {
    return false;
  }
  beginBucket();
  records_ += count;
  order_ = TimeOrder(times[count - 1]);
  if (first_ == before_all) {
    first_ = times[0];
  }
  return true;
}

void Axis::reopen() {
  if (room() == Pyramid::bucket_size) {
    return;
  }
  records_ -= Pyramid::bucket_size - room();
  order_ = TimeOrder(begins_.back());
  if (begins_.back() == before_all) {
    first_ = before_all;
  }
  out_of_order_ = out_of_order_before_;
  begins_.pop_back();
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
