#ifndef MDF_TOOLS_REPORTING_PACKED_NUMBERS_H_
#define MDF_TOOLS_REPORTING_PACKED_NUMBERS_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace mdf_tools {

/// Numbers as little-endian bytes, as narrow as they allow without changing one.
struct PackedNumbers {
  /// "i1", "i2" and "i4" are integers with a sign, "f4" and "f8" floating-point numbers, with so
  /// many bytes each; "same" has no bytes: all are `first`. "text" is no numbers but UTF-8.
  std::string_view type = "same";
  std::size_t count = 0;
  double first = 0;
  std::string bytes;
};

PackedNumbers pack(const std::vector<double>& numbers);

/// The same, with the precision of 32 bits.
PackedNumbers packRounded(std::vector<double> numbers);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_REPORTING_PACKED_NUMBERS_H_
