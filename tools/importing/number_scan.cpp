#include "number_scan.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#include <system_error>

#include "digit_scan.h"

namespace mdf_tools {

namespace {

using Kind = ScannedNumber::Kind;

constexpr std::array<double, detail::most_digits + 1> powers = {
    1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
    1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};

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
      !(begins_with_digit || (!text.empty() && detail::isMark(text[0], mark)) || isWord(text)) ||
      (mark == DecimalMark::comma && text.find('.') != std::string_view::npos)) {
    return {};
  }
  const char* const end = text.data() + text.size();
  const auto whole = std::from_chars(text.data(), end, number.magnitude);
  if (whole.ec == std::errc() && whole.ptr == end &&
      (!is_negative || number.magnitude <= std::uint64_t{1} << 63U)) {
    number.kind = Kind::integer;
    return number;
  }
  std::string with_point(text);
  std::replace_if(
      with_point.begin(), with_point.end(), [&](char each) { return detail::isMark(each, mark); },
      '.');
  const char* const last = with_point.data() + with_point.size();
  double value = 0;
  const auto real = std::from_chars(with_point.data(), last, value);
  if (real.ec != std::errc() || real.ptr != last) {
    return {};
  }
  return realNumber(is_negative ? -value : value);
}

}  // namespace

ScannedNumber scanNumber(std::string_view text, DecimalMark mark) {
  ScannedNumber number;
  const char* const end = text.data() + text.size();
  if (scanDigits(text.data(), end, mark, number) == end && number.kind != Kind::none) {
    return number;
  }
  const bool has_sign = !text.empty() && (text[0] == '-' || text[0] == '+');
  return scanOther(text.substr(has_sign ? 1 : 0), !text.empty() && text[0] == '-', mark);
}

ScannedNumber realNumber(double real) {
  ScannedNumber number;
  number.kind = Kind::real;
  number.is_negative = std::signbit(real);
  number.has_real = true;
  std::memcpy(&number.magnitude, &real, sizeof real);
  return number;
}

double realOf(const ScannedNumber& number, std::string_view text) {
  double real = static_cast<double>(number.magnitude);
  if (number.has_real) {
    std::memcpy(&real, &number.magnitude, sizeof real);
    return real;
  }
  if (number.kind == Kind::real && (!number.is_plain || number.magnitude > most_exact)) {
    std::from_chars(text.data(), text.data() + text.size(), real);
    return real;
  }
  // Both are exact, so that their quotient is rounded once, as the number itself would be. Which
  // numbers are negative cannot be foreseen: there is no branch for it.
  const double power = powers[static_cast<std::size_t>(number.decimals)];
  return std::copysign(real / power, number.is_negative ? -1.0 : 1.0);
}

}  // namespace mdf_tools
