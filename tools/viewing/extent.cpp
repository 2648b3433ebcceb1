#include "extent.h"

#include <algorithm>
#include <cmath>

namespace mdf_tools {

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

}  // namespace mdf_tools
