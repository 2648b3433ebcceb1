#include "value_comparison.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

namespace mdf_tools {

namespace {

constexpr std::size_t most_of_a_text = 1000;

struct Integer {
  bool is_negative;
  std::uint64_t bits;

  bool operator==(const Integer& other) const {
    return is_negative == other.is_negative && bits == other.bits;
  }
};

Integer integerAt(const ColumnData& data, std::size_t row) {
  return withNumberType(data.type(), [&](auto zero) {
    using T = decltype(zero);
    const T value = data.values<T>()[row];
    return Integer{std::is_signed_v<T> && static_cast<std::int64_t>(value) < 0,
                   static_cast<std::uint64_t>(value)};
  });
}

bool areSameNumbers(const ColumnData& a, std::size_t row_a, const ColumnData& b, std::size_t row_b,
                    const Tolerance& tolerance) {
  const double number_a = a.real(row_a);
  const double number_b = b.real(row_b);
  if (isInteger(a.type()) && isInteger(b.type())) {
    return integerAt(a, row_a) == integerAt(b, row_b) ||
           (tolerance.isSet() && tolerance.allows(number_a, number_b));
  }
  return number_a == number_b || (std::isnan(number_a) && std::isnan(number_b)) ||
         tolerance.allows(number_a, number_b);
}

bool areSame(const ColumnData& a, std::size_t row_a, const ColumnData& b, std::size_t row_b,
             const Tolerance& tolerance) {
  if (!a.isValid(row_a) || !b.isValid(row_b)) {
    return a.isValid(row_a) == b.isValid(row_b);
  }
  if (isNumber(a.type()) && isNumber(b.type())) {
    return areSameNumbers(a, row_a, b, row_b, tolerance);
  }
  return a.type() == b.type() && a.text(row_a) == b.text(row_b);
}

bool haveSameNulls(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  if (a.data.nullCount() + b.data.nullCount() == 0) {
    return true;
  }
  std::size_t row = 0;
  while (row < count && a.data.isValid(a.begin + row) == b.data.isValid(b.begin + row)) {
    ++row;
  }
  return row == count;
}

/// Whether all values are the same numbers, byte by byte: this is quick, and mostly so.
bool haveSameBytes(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  const std::size_t width = widthOf(a.data.type());
  return a.data.type() == b.data.type() && isNumber(a.data.type()) &&
         std::memcmp(a.data.bytes() + a.begin * width, b.data.bytes() + b.begin * width,
                     count * width) == 0 &&
         haveSameNulls(a, b, count);
}

}  // namespace

std::size_t firstDifferent(const ColumnRows& a, const ColumnRows& b, std::size_t count,
                           const Tolerance& tolerance, std::size_t from) {
  if (from == 0 && haveSameBytes(a, b, count)) {
    return count;
  }
  std::size_t row = from;
  while (row < count && areSame(a.data, a.begin + row, b.data, b.begin + row, tolerance)) {
    ++row;
  }
  return row;
}

Json valueAsJson(const ColumnData& data, std::size_t row) {
  if (!data.isValid(row)) {
    return {};
  }
  std::string text;
  data.print(row, text);
  if (isNumber(data.type()) && std::isfinite(data.real(row))) {
    return Json::parse(text);
  }
  return text.size() > most_of_a_text ? text.substr(0, most_of_a_text) + "..." : text;
}

}  // namespace mdf_tools
