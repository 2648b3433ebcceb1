#include "lookup.h"

#include <algorithm>
#include <cmath>

namespace mdf_reader {

KeyTable::KeyTable(const std::vector<double>& keys) : count_(keys.size()) {
  for (std::size_t i = 0; i < keys.size(); ++i) {
    if (!std::isnan(keys[i])) {
      keys_.emplace_back(keys[i], i);
    }
  }
  std::sort(keys_.begin(), keys_.end());
}

std::size_t KeyTable::find(double number) const {
  const auto found = std::lower_bound(
      keys_.begin(), keys_.end(), number,
      [](const std::pair<double, std::size_t>& key, double wanted) { return key.first < wanted; });
  return found != keys_.end() && found->first == number ? found->second : count_;
}

namespace {

using Range = std::pair<double, double>;

bool isIn(const Range& range, double number, bool is_integer) {
  const bool is_below =
      is_integer || range.first == range.second ? number <= range.second : number < range.second;
  return range.first <= number && is_below;
}

/// Whether each range ends before the next one begins.
bool areOrdered(const std::vector<Range>& ranges) {
  bool are_ordered = true;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const bool is_ordered =
        ranges[i].first <= ranges[i].second && (i == 0 || ranges[i - 1].second <= ranges[i].first);
    are_ordered = are_ordered && is_ordered;
  }
  return are_ordered;
}

}  // namespace

RangeTable::RangeTable(std::vector<Range> ranges)
    : ranges_(std::move(ranges)), is_ordered_(areOrdered(ranges_)) {}

std::size_t RangeTable::find(double number, bool is_integer) const {
  const auto has_it = [&](const Range& range) { return isIn(range, number, is_integer); };
  if (!is_ordered_) {
    return static_cast<std::size_t>(std::find_if(ranges_.begin(), ranges_.end(), has_it) -
                                    ranges_.begin());
  }
  // The first range that does not end before the number, or the first that ends after it.
  const auto first =
      std::lower_bound(ranges_.begin(), ranges_.end(), number,
                       [](const Range& range, double wanted) { return range.second < wanted; });
  if (first != ranges_.end() && has_it(*first)) {
    return static_cast<std::size_t>(first - ranges_.begin());
  }
  const auto second =
      std::upper_bound(first, ranges_.end(), number,
                       [](double wanted, const Range& range) { return wanted < range.second; });
  const bool is_there = second != ranges_.end() && has_it(*second);
  return is_there ? static_cast<std::size_t>(second - ranges_.begin()) : ranges_.size();
}

PointTable::PointTable(const std::vector<double>& pairs) {
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
    if (!std::isnan(pairs[i])) {
      points_.emplace_back(pairs[i], pairs[i + 1]);
    }
  }
  std::stable_sort(points_.begin(), points_.end(),
                   [](const Point& left, const Point& right) { return left.first < right.first; });
}

std::vector<PointTable::Point>::const_iterator PointTable::notBelow(double x) const {
  return std::lower_bound(points_.begin(), points_.end(), x,
                          [](const Point& point, double wanted) { return point.first < wanted; });
}

double PointTable::between(double x) const {
  const auto right = notBelow(x);
  if (right == points_.end()) {
    return points_.back().second;
  }
  if (right == points_.begin() || right->first == x) {
    return right->second;
  }
  const auto left = right - 1;
  const double part = (x - left->first) / (right->first - left->first);
  return left->second + part * (right->second - left->second);
}

double PointTable::nearest(double x) const {
  const auto right = notBelow(x);
  if (right == points_.end()) {
    return points_.back().second;
  }
  if (right == points_.begin()) {
    return right->second;
  }
  const auto left = right - 1;
  return right->first - x < x - left->first ? right->second : left->second;
}

}  // namespace mdf_reader
