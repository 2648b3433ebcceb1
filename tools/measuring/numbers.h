#ifndef MDF_TOOLS_MEASURING_NUMBERS_H_
#define MDF_TOOLS_MEASURING_NUMBERS_H_

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "statistics.h"

namespace mdf_tools {

template <class T>
bool isFinite([[maybe_unused]] T number) {
  if constexpr (std::is_floating_point_v<T>) {
    return std::isfinite(number);
  } else {
    return true;
  }
}

/// The difference of two numbers. That of neighbours is exact even where a double cannot tell one
/// from the other.
template <class T>
double differenceOf(T to, T from) {
  if constexpr (std::is_floating_point_v<T> || sizeof(T) < sizeof(std::uint64_t)) {
    return static_cast<double>(to) - static_cast<double>(from);
  } else {
    const std::uint64_t difference =
        static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
    return to >= from ? static_cast<double>(difference) : -static_cast<double>(0 - difference);
  }
}

template <class T>
Value valueOf(T number) {
  if constexpr (std::is_floating_point_v<T>) {
    return static_cast<double>(number);
  } else if constexpr (std::is_signed_v<T>) {
    return std::int64_t{number};
  } else {
    return std::uint64_t{number};
  }
}

inline std::optional<double> finiteOrNone(double number) {
  return std::isfinite(number) ? std::optional(number) : std::nullopt;
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MEASURING_NUMBERS_H_
