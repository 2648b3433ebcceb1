#include "number_scan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

#include "mdf_writer/mdf_writer.h"

namespace mdf_tools {

namespace {

using Kind = ScannedNumber::Kind;

constexpr std::ptrdiff_t most_digits = 18;  // that 64 bits hold

constexpr std::array<double, most_digits + 1> powers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,
                                                        1e7,  1e8,  1e9,  1e10, 1e11, 1e12, 1e13,
                                                        1e14, 1e15, 1e16, 1e17, 1e18};

bool isMark(char character, DecimalMark mark) {
  return (character == '.' && mark != DecimalMark::comma) ||
         (character == ',' && mark != DecimalMark::point);
}

constexpr std::array<std::uint64_t, 8> scale = {1,      10,      100,       1'000,
                                                10'000, 100'000, 1'000'000, 10'000'000};

/// The number of eight digits, each of them a byte, the first of which is the lowest: pairs, fours,
/// all.
std::uint64_t numberOfDigits(std::uint64_t digits) {
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

/// "nan" and "inf", in any case: the words that from_chars() takes besides are texts.
bool isWord(std::string_view text) {
  std::string small(text.substr(0, 4));
  std::transform(small.begin(), small.end(), small.begin(), [](char each) {
    return static_cast<char>(each >= 'A' && each <= 'Z' ? each - 'A' + 'a' : each);
  });
  return small == "nan" || small == "inf";
}

/// Numbers with exponents or many digits, and those that are not finite, without their sign.
ScannedNumber scanOther(std::string_view text, bool is_negative, DecimalMark mark) {
  ScannedNumber number;
  number.is_negative = is_negative;
  const bool begins_with_digit = !text.empty() && text[0] >= '0' && text[0] <= '9';
  const bool has_leading_zero =
      begins_with_digit && text[0] == '0' && text.size() > 1 && text[1] >= '0' && text[1] <= '9';
  if (has_leading_zero ||
      !(begins_with_digit || (!text.empty() && isMark(text[0], mark)) || isWord(text)) ||
      (mark == DecimalMark::comma && text.find('.') != std::string_view::npos)) {
    return {};
  }
  const char* const end = text.data() + text.size();
  const auto whole = std::from_chars(text.data(), end, number.magnitude);
  if (whole.ec == std::errc() && whole.ptr == end &&
      (!is_negative || number.magnitude <= std::uint64_t{1} << 63U)) {
    number.kind = Kind::integer;
    number.real = static_cast<double>(number.magnitude);
  } else {
    std::string with_point(text);
    std::replace_if(
        with_point.begin(), with_point.end(), [&](char each) { return isMark(each, mark); }, '.');
    const char* const last = with_point.data() + with_point.size();
    const auto real = std::from_chars(with_point.data(), last, number.real);
    if (real.ec != std::errc() || real.ptr != last) {
      return {};
    }
    number.kind = Kind::real;
  }
  number.real = is_negative ? -number.real : number.real;
  number.has_real = true;
  return number;
}

/// A double holds each integer up to it.
constexpr std::uint64_t most_exact = std::uint64_t{1} << 53U;

}  // namespace

const char* scanDigits(const char* at, const char* end, DecimalMark mark, ScannedNumber& number) {
  number = {};
  const bool is_negative = at != end && *at == '-';
  at += is_negative ? 1 : 0;
  const char* const begin = at;
  std::uint64_t magnitude = 0;
  at = takeDigits(at, end, magnitude);
  const std::ptrdiff_t whole = at - begin;
  const bool has_mark = at != end && isMark(*at, mark);
  const bool has_comma = has_mark && *at == ',';
  std::ptrdiff_t decimals = 0;
  if (has_mark) {
    const char* const fraction = at + 1;
    at = takeDigits(fraction, end, magnitude);
    decimals = at - fraction;
  }
  const std::ptrdiff_t count = whole + decimals;
  const bool is_plain = count <= most_digits;
  const bool is_short = is_plain && magnitude <= most_exact;
  const bool is_known = is_short || (has_mark ? !has_comma && count < 300 : is_plain);
  if (count == 0 || (whole > 1 && *begin == '0') || !is_known) {
    return at;
  }
  const bool is_minus_zero = is_negative && magnitude == 0;
  number.kind = has_mark || is_minus_zero ? Kind::real : Kind::integer;
  number.is_negative = is_negative;
  number.is_plain = is_plain;
  number.decimals = static_cast<int>(decimals);
  number.magnitude = magnitude;
  return at;
}

ScannedNumber scanNumber(std::string_view text, DecimalMark mark) {
  ScannedNumber number;
  const char* const end = text.data() + text.size();
  if (scanDigits(text.data(), end, mark, number) == end && number.kind != Kind::none) {
    return number;
  }
  const bool has_sign = !text.empty() && (text[0] == '-' || text[0] == '+');
  return scanOther(text.substr(has_sign ? 1 : 0), !text.empty() && text[0] == '-', mark);
}

double realOf(const ScannedNumber& number, std::string_view text) {
  if (number.has_real) {
    return number.real;
  }
  double real = static_cast<double>(number.magnitude);
  if (number.kind == Kind::real && (!number.is_plain || number.magnitude > most_exact)) {
    std::from_chars(text.data(), text.data() + text.size(), real);
    return real;
  }
  if (number.decimals > 0) {
    // Both are exact, so that their quotient is rounded once, as the number itself would be.
    real /= powers[static_cast<std::size_t>(number.decimals)];
  }
  return number.is_negative ? -real : real;
}

}  // namespace mdf_tools
