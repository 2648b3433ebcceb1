#include "packed_numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace mdf_tools {

namespace {

/// Equal bits, but for those of NaN: 0 and -0 differ.
bool isSame(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

/// Whether a number is one of an integer type.
template <class Integer>
bool fits(double number) {
  return number >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
         number <= static_cast<double>(std::numeric_limits<Integer>::max()) &&
         isSame(static_cast<double>(static_cast<Integer>(number)), number);
}

/// A conversion of a number that is too large would not be defined.
bool fitsFloat(double number) {
  const bool is_inside = std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max());
  return !std::isfinite(number) ||
         (is_inside && isSame(static_cast<double>(static_cast<float>(number)), number));
}

template <class Bits, class Number>
std::string bytesAs(const std::vector<double>& numbers) {
  static_assert(sizeof(Bits) == sizeof(Number));
  std::string bytes;
  bytes.reserve(numbers.size() * sizeof(Bits));
  for (const double each : numbers) {
    const auto number = static_cast<Number>(each);
    Bits bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    for (std::size_t i = 0; i < sizeof bits; ++i) {
      bytes += static_cast<char>((std::uint64_t{bits} >> (8 * i)) & 0xFFU);
    }
  }
  return bytes;
}

bool all(const std::vector<double>& numbers, bool (*is_so)(double)) {
  return std::all_of(numbers.begin(), numbers.end(), is_so);
}

}  // namespace

PackedNumbers pack(const std::vector<double>& numbers) {
  PackedNumbers packed;
  packed.count = numbers.size();
  packed.first = numbers.empty() ? 0 : numbers.front();
  if (std::all_of(numbers.begin(), numbers.end(),
                  [&](double number) { return isSame(number, packed.first); })) {
    return packed;
  }
  if (all(numbers, fits<std::int8_t>)) {
    packed.type = "i1";
    packed.bytes = bytesAs<std::uint8_t, std::int8_t>(numbers);
  } else if (all(numbers, fits<std::int16_t>)) {
    packed.type = "i2";
    packed.bytes = bytesAs<std::uint16_t, std::int16_t>(numbers);
  } else if (all(numbers, fits<std::int32_t>)) {
    packed.type = "i4";
    packed.bytes = bytesAs<std::uint32_t, std::int32_t>(numbers);
  } else if (all(numbers, fitsFloat)) {
    packed.type = "f4";
    packed.bytes = bytesAs<std::uint32_t, float>(numbers);
  } else {
    packed.type = "f8";
    packed.bytes = bytesAs<std::uint64_t, double>(numbers);
  }
  return packed;
}

PackedNumbers packRounded(std::vector<double> numbers) {
  constexpr auto most = static_cast<double>(std::numeric_limits<float>::max());
  for (double& number : numbers) {
    if (std::abs(number) <= most) {
      number = static_cast<double>(static_cast<float>(number));
    }
  }
  return pack(numbers);
}

}  // namespace mdf_tools
