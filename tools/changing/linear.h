#ifndef MDF_TOOLS_CHANGING_LINEAR_H_
#define MDF_TOOLS_CHANGING_LINEAR_H_

#include <cstdint>
#include <optional>

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

/// A conversion that multiplies and adds.
struct Linear {
  double offset = 0;
  double factor = 1;

  double of(double number) const { return offset + factor * number; }
};

/// The conversion at an offset; nothing where it is another one. None is one that changes nothing.
std::optional<Linear> linearAt(mdf_reader::InputFile& file, std::uint64_t conversion);

/// By how much the raw numbers of a linear conversion grow with so many nanoseconds; nothing where
/// that is no integer of 64 bits.
std::optional<std::int64_t> ticksIn(std::int64_t nanoseconds, double seconds_of_a_tick);

/// A time as a number of nanoseconds, not 0; nothing where that is no integer.
std::optional<std::int64_t> nanosecondsIn(double seconds);

/// The sum; nothing where 64 bits do not hold it.
std::optional<std::int64_t> sumOf(std::int64_t a, std::int64_t b);
/// The product, in the same way.
std::optional<std::int64_t> productOf(std::int64_t a, std::int64_t b);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_LINEAR_H_
