#ifndef MDF_TOOLS_IMPORTING_DIGIT_SCAN_H_
#define MDF_TOOLS_IMPORTING_DIGIT_SCAN_H_

#include <array>
#include <cstddef>
#include <cstdint>

#include "mdf_writer/mdf_writer.h"
#include "number_scan.h"

namespace mdf_tools {

namespace detail {

inline constexpr std::ptrdiff_t most_digits = 18;  // that 64 bits hold

inline bool isMark(char character, DecimalMark mark) {
  return (character == '.' && mark != DecimalMark::comma) ||
         (character == ',' && mark != DecimalMark::point);
}

inline constexpr std::array<std::uint64_t, 8> scale = {1,      10,      100,       1'000,
                                                       10'000, 100'000, 1'000'000, 10'000'000};

/// The number of eight digits, each of them a byte, the first of which is the lowest: pairs, fours,
/// all.
inline std::uint64_t numberOfDigits(std::uint64_t digits) {
  digits = (digits * 10 + (digits >> 8U)) & 0x00FF00FF00FF00FFU;
  digits = (digits * 100 + (digits >> 16U)) & 0x0000FFFF0000FFFFU;
  return (digits * 10000 + (digits >> 32U)) & 0xFFFFFFFFU;
}

/// Takes digits, up to eight at a time and without a branch for each: how many there are differs
/// from field to field.
inline const char* takeDigits(const char* at, const char* end, std::uint64_t& magnitude) {
  while (end - at >= 8) {
    const std::uint64_t digits = mdf_v4_10::detail::loadLe<std::uint64_t>(at) ^ 0x3030303030303030U;
    const std::uint64_t others =
        (digits | (digits + 0x7676767676767676U)) & 0x8080808080808080U;  // more than 9
    if (others == 0) {
      magnitude = magnitude * 100'000'000 + numberOfDigits(digits);
      at += 8;
      continue;
    }
    const auto bits = static_cast<unsigned>(__builtin_ctzll(others)) & ~7U;
    if (bits > 0) {
      magnitude = magnitude * scale[bits / 8] + numberOfDigits(digits << (64 - bits));
    }
    return at + bits / 8;
  }
  while (at != end) {
    const auto digit = static_cast<unsigned>(*at - '0');
    if (digit > 9) {
      break;
    }
    magnitude = 10 * magnitude + digit;
    ++at;
  }
  return at;
}

}  // namespace detail

/// Reads digits with a sign and a decimal mark at the front of a text. Returns where they end; the
/// number is none where something else follows that may belong to it.
inline const char* scanDigits(const char* at, const char* end, DecimalMark mark,
                              ScannedNumber& number) {
  number = {};
  const bool is_negative = at != end && *at == '-';
  at += is_negative ? 1 : 0;
  const char* const begin = at;
  std::uint64_t magnitude = 0;
  at = detail::takeDigits(at, end, magnitude);
  const std::ptrdiff_t whole = at - begin;
  const bool has_mark = at != end && detail::isMark(*at, mark);
  const bool has_comma = has_mark && *at == ',';
  std::ptrdiff_t decimals = 0;
  if (has_mark) {
    const char* const fraction = at + 1;
    at = detail::takeDigits(fraction, end, magnitude);
    decimals = at - fraction;
  }
  const std::ptrdiff_t count = whole + decimals;
  const bool is_plain = count <= detail::most_digits;
  const bool is_known =
      has_comma ? is_plain && magnitude <= most_exact : count < 300 && (has_mark || is_plain);
  if (count == 0 || (whole > 1 && *begin == '0') || !is_known) {
    return at;
  }
  const bool is_real = has_mark || (magnitude == 0 && is_negative);
  number.kind = is_real ? ScannedNumber::Kind::real : ScannedNumber::Kind::integer;
  number.is_negative = is_negative;
  number.is_plain = is_plain;
  number.decimals = static_cast<std::int16_t>(decimals);
  number.magnitude = magnitude;
  return at;
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_DIGIT_SCAN_H_
