#ifndef MDF_TOOLS_VIEWING_EXTENT_H_
#define MDF_TOOLS_VIEWING_EXTENT_H_

#include <cstddef>
#include <cstdint>
#include <limits>

namespace mdf_tools {

/// What samples that follow one another are like.
struct Extent {
  static constexpr double none = std::numeric_limits<double>::quiet_NaN();

  std::uint64_t values = 0;  ///< finite numbers; what follows is of these, and `none` without any
  std::uint64_t gaps = 0;    ///< samples that are invalid or not finite
  double minimum = none;
  double maximum = none;
  double first = none;
  double last = none;
  double mean = none;
  double squares = 0;  ///< the sum of squared differences from the mean

  /// How many samples there are.
  std::uint64_t samples() const { return values + gaps; }

  /// Adds what comes after.
  void append(const Extent& later);

  /// The sample standard deviation; `none` for fewer than two values.
  double deviation() const;

  /// What numbers are like. One that is not finite is a gap.
  static Extent of(const double* numbers, std::size_t count);

  /// Whether all of it is the same, `none` included.
  bool operator==(const Extent& other) const;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_EXTENT_H_
