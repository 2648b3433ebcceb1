#include "trace.h"

#include <algorithm>
#include <cmath>

namespace mdf_tools {

void Trace::add(double from, double to, const Extent& extent) {
  if (extent.values == 0) {
    add(from, Extent::none);
    return;
  }
  add(from, extent.first);
  if (extent.values == 1) {
    return;
  }
  // A line that rises goes through its lowest value first.
  const bool rises = extent.first < extent.last;
  const double third = (to - from) / 3;
  const double early = rises ? extent.minimum : extent.maximum;
  const double late = rises ? extent.maximum : extent.minimum;
  if (early != extent.first) {
    add(from + third, early);
  }
  if (late != extent.last) {
    add(to - third, late);
  }
  add(to, extent.last);
}

Trace traceOf(const std::vector<double>& times, const std::vector<double>& numbers,
              const Window& window) {
  constexpr std::size_t points_per_pixel = 4;
  Trace trace;
  if (times.size() <= points_per_pixel * window.pixels) {
    trace.x = times;
    trace.y = numbers;
    return trace;
  }
  trace.is_exact = false;
  const double width = (window.to - window.from) / static_cast<double>(window.pixels);
  for (std::size_t begin = 0; begin < times.size();) {
    const double pixel = std::floor((times[begin] - window.from) / width);
    const double pixel_end = window.from + (pixel + 1) * width;
    // Where a pixel is narrower than times can tell, samples at one time stand together.
    const auto next =
        std::find_if(times.begin() + static_cast<std::ptrdiff_t>(begin) + 1, times.end(),
                     [&](double time) { return time >= pixel_end && time > times[begin]; });
    const auto end = static_cast<std::size_t>(next - times.begin());
    trace.add(times[begin], times[end - 1], Extent::of(&numbers[begin], end - begin));
    begin = end;
  }
  return trace;
}

}  // namespace mdf_tools
