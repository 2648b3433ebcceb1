#include "linear.h"

#include <cmath>
#include <limits>

#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"
#include "reader/values/conversion.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr double nanoseconds_of_a_second = 1e9;

/// The integer that a number is but for the rounding of a few operations; nothing where it is none.
std::optional<std::int64_t> asInteger(double number) {
  constexpr double largest = 9e15;  // integers above are not told apart
  constexpr double rounding = 1e-15;
  const double integer = std::round(number);
  return std::abs(number) < largest && integer != 0 &&
                 std::abs(number - integer) <= rounding * std::abs(number)
             ? std::optional(static_cast<std::int64_t>(integer))
             : std::nullopt;
}

double doubleAt(InputFile& file, std::uint64_t offset) {
  char bytes[sizeof(double)] = {};
  file.readAt(offset, bytes, sizeof bytes);
  return loadLe<double>(bytes);
}

}  // namespace

std::optional<Linear> linearAt(InputFile& file, std::uint64_t conversion) {
  const auto block = readFields(file, conversion, "CC");
  const std::uint64_t type = block ? block->number("cc_type") : 0;
  if (conversion == 0 || (block && type == Conversion::identity)) {
    return Linear();
  }
  if (!block || type != Conversion::linear || block->tailBytes() < 2 * sizeof(double)) {
    return std::nullopt;
  }
  const Linear linear{doubleAt(file, block->tailAt()),
                      doubleAt(file, block->tailAt() + sizeof(double))};
  return std::isfinite(linear.offset) && std::isfinite(linear.factor) ? std::optional(linear)
                                                                      : std::nullopt;
}

std::optional<std::int64_t> ticksIn(std::int64_t nanoseconds, double seconds_of_a_tick) {
  constexpr double longest = 1 << 20U;  // whose nanoseconds a double tells apart
  const double tick = seconds_of_a_tick * nanoseconds_of_a_second;
  if (const auto whole = nanosecondsIn(seconds_of_a_tick)) {
    return nanoseconds % *whole == 0 ? std::optional(nanoseconds / *whole) : std::nullopt;
  }
  if (const auto parts = tick == 0 ? std::nullopt : asInteger(1 / tick)) {
    return productOf(nanoseconds, *parts);
  }
  const double seconds = static_cast<double>(nanoseconds) / nanoseconds_of_a_second;
  const auto ticks = asInteger(seconds / seconds_of_a_tick);
  return nanoseconds == 0              ? std::optional<std::int64_t>(0)
         : std::abs(seconds) < longest ? ticks
                                       : std::nullopt;
}

std::optional<std::int64_t> nanosecondsIn(double seconds) {
  return asInteger(seconds * nanoseconds_of_a_second);
}

std::optional<std::int64_t> sumOf(std::int64_t a, std::int64_t b) {
  const bool fits = b >= 0 ? a <= most - b : a >= least - b;
  return fits ? std::optional(a + b) : std::nullopt;
}

std::optional<std::int64_t> productOf(std::int64_t a, std::int64_t b) {
  if (a == 0 || b == 0) {
    return 0;
  }
  if (a == least || b == least || std::abs(a) > most / std::abs(b)) {
    return std::nullopt;
  }
  return a * b;
}

}  // namespace mdf_tools
