#ifndef MDF_TESTS_TOOLS_SUPPORT_FLOAT_BITS_H_
#define MDF_TESTS_TOOLS_SUPPORT_FLOAT_BITS_H_

#include <cstdint>
#include <cstring>

namespace mdf_tests {

/// The number whose 64 bits these are.
inline double doubleOf(std::uint64_t bits) {
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

/// The number whose bits are the low 32 of these.
inline float floatOf(std::uint64_t bits) {
  const auto low_bits = static_cast<std::uint32_t>(bits);
  float value;
  std::memcpy(&value, &low_bits, sizeof value);
  return value;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FLOAT_BITS_H_
