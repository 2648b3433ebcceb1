#ifndef MDF_TOOLS_VIEWING_TRACE_H_
#define MDF_TOOLS_VIEWING_TRACE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "extent.h"

namespace mdf_tools {

/// Part of a curve that is wanted, so many pixels wide.
struct Window {
  double from = 0;
  double to = 0;
  std::size_t pixels = 1;
};

/// As much of a curve as a picture shows. Of several samples in a pixel the first, the lowest, the
/// highest and the last value remain.
struct Trace {
  bool is_exact = true;  ///< the points are the samples
  /// The curve from left to right; y is NaN where the line has a gap.
  std::vector<double> x;
  std::vector<double> y;

  void add(double time, double number) {
    x.push_back(time);
    y.push_back(number);
  }
  /// Adds what samples between two times are like.
  void add(double from, double to, const Extent& extent);
};

/// Makes a curve of samples: of all of them, or of what they are like in each pixel if there are
/// more than four for each.
/// @param times do not fall.
Trace traceOf(const std::vector<double>& times, const std::vector<double>& numbers,
              const Window& window);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_TRACE_H_
