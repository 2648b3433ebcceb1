#ifndef MDF_TESTS_TOOLS_VIEWING_MEMORY_SAMPLES_H_
#define MDF_TESTS_TOOLS_VIEWING_MEMORY_SAMPLES_H_

#include <cstddef>
#include <limits>
#include <random>
#include <vector>

#include "viewing/series.h"

namespace mdf_tests {

inline constexpr double gap = mdf_tools::Extent::none;
inline constexpr double infinity = std::numeric_limits<double>::infinity();

/// Samples in memory, which are given in pieces as a file's are.
struct MemorySamples {
  std::vector<double> times;
  std::vector<double> numbers;
  mutable std::size_t read = 0;  ///< how many were given

  /// They must outlast it.
  mdf_tools::Series::Source source() const;
  /// The last digit of each number as a text, none for a gap.
  mdf_tools::Series::Source texts() const;

  /// The first of them.
  MemorySamples first(std::size_t count) const;
};

enum class Times { regular, in_bursts, equal, falling };

/// Samples that begin in order.
MemorySamples randomSamples(std::mt19937& random, std::size_t count, Times kind);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_VIEWING_MEMORY_SAMPLES_H_
