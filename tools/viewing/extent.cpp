#include "extent.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace mdf_tools {

namespace {

Extent ofAny(const double* numbers, std::size_t count) {
  Extent extent;
  double sum = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const double number = numbers[i];
    if (!std::isfinite(number)) {
      ++extent.gaps;
      continue;
    }
    if (extent.values++ == 0) {
      extent.minimum = extent.maximum = extent.first = number;
    }
    extent.minimum = std::min(extent.minimum, number);
    extent.maximum = std::max(extent.maximum, number);
    extent.last = number;
    sum += number;
  }
  if (extent.values == 0) {
    return extent;
  }
  extent.mean = sum / static_cast<double>(extent.values);
  for (std::size_t i = 0; i < count; ++i) {
    const double difference = numbers[i] - extent.mean;
    extent.squares += std::isfinite(numbers[i]) ? difference * difference : 0;
  }
  return extent;
}

/// Of four numbers at a time, none waits for another. Where one is not finite, neither is the mean.
Extent ofFinite(const double* numbers, std::size_t count) {
  constexpr std::size_t lanes = 4;
  const auto each = [=](const auto& take) {
    const std::size_t whole = count - count % lanes;
    for (std::size_t i = 0; i < whole; i += lanes) {
      for (std::size_t lane = 0; lane < lanes; ++lane) {
        take(lane, numbers[i + lane]);
      }
    }
    for (std::size_t i = whole; i < count; ++i) {
      take(0, numbers[i]);
    }
  };
  double lowest[lanes];
  double highest[lanes];
  double sums[lanes] = {};
  double squares[lanes] = {};
  std::fill_n(lowest, lanes, numbers[0]);
  std::fill_n(highest, lanes, numbers[0]);
  each([&](std::size_t lane, double number) {
    lowest[lane] = number < lowest[lane] ? number : lowest[lane];
    highest[lane] = number > highest[lane] ? number : highest[lane];
    sums[lane] += number;
  });
  const double mean = std::accumulate(sums, sums + lanes, 0.0) / static_cast<double>(count);
  each(
      [&](std::size_t lane, double number) { squares[lane] += (number - mean) * (number - mean); });
  Extent extent;
  extent.values = count;
  extent.minimum = *std::min_element(lowest, lowest + lanes);
  extent.maximum = *std::max_element(highest, highest + lanes);
  extent.first = numbers[0];
  extent.last = numbers[count - 1];
  extent.mean = mean;
  extent.squares = std::accumulate(squares, squares + lanes, 0.0);
  return extent;
}

}  // namespace

void Extent::append(const Extent& later) {
  gaps += later.gaps;
  if (later.values == 0) {
    return;
  }
  if (values == 0) {
    const std::uint64_t all_gaps = gaps;
    *this = later;
    gaps = all_gaps;
    return;
  }
  const auto before = static_cast<double>(values);
  const auto added = static_cast<double>(later.values);
  const double step = later.mean - mean;
  mean += step * (added / (before + added));
  squares += later.squares + step * step * (before * added / (before + added));
  values += later.values;
  minimum = std::min(minimum, later.minimum);
  maximum = std::max(maximum, later.maximum);
  last = later.last;
}

double Extent::deviation() const {
  return values < 2 ? none : std::sqrt(squares / static_cast<double>(values - 1));
}

Extent Extent::of(const double* numbers, std::size_t count) {
  if (count == 0) {
    return {};
  }
  const Extent finite = ofFinite(numbers, count);
  return std::isfinite(finite.mean) ? finite : ofAny(numbers, count);
}

bool Extent::operator==(const Extent& other) const {
  const auto are_same = [](double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
  };
  return values == other.values && gaps == other.gaps && are_same(minimum, other.minimum) &&
         are_same(maximum, other.maximum) && are_same(first, other.first) &&
         are_same(last, other.last) && are_same(mean, other.mean) &&
         are_same(squares, other.squares);
}

}  // namespace mdf_tools
