#ifndef MDF_TOOLS_REPORTING_LEVELS_H_
#define MDF_TOOLS_REPORTING_LEVELS_H_

#include <cstddef>
#include <functional>
#include <vector>

#include "packed_numbers.h"

namespace mdf_tools {

/// Samples that a report has, as closely as there is room for them.
class Levels {
 public:
  Levels() = default;
  virtual ~Levels() = default;
  Levels(const Levels&) = delete;
  Levels& operator=(const Levels&) = delete;

  /// Bytes of memory, about.
  virtual std::size_t size() const = 0;
  /// Whether less of them would still be a picture.
  virtual bool canCoarsen() const = 0;
  /// Keeps half of the detail, or less.
  virtual void coarsen() = 0;
  /// What the page reads, in an order of its own.
  virtual std::vector<PackedNumbers> pack() const = 0;
};

/// Coarsens what takes most until all of it fits.
/// @param sizes of the levels, one for each; brought up to date with `sizeOf`.
/// @param most what their sum may be.
/// @return whether it is.
bool fitLevels(const std::vector<Levels*>& levels, std::vector<std::size_t>& sizes,
               const std::function<std::size_t(const Levels&)>& sizeOf, std::size_t most);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_LEVELS_H_
