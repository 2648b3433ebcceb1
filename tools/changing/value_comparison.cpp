#include "value_comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
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

bool areEqual(const char* a, const char* b, std::size_t bytes) {
  return std::string_view(a, bytes) == std::string_view(b, bytes);
}

bool haveSameNumbers(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  const std::size_t width = widthOf(a.data.type());
  return areEqual(a.data.bytes() + a.begin * width, b.data.bytes() + b.begin * width,
                  count * width);
}

/// Of rows that have texts of their own, or of texts in the table.
bool haveSameTexts(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  const std::int64_t* const offsets_a = a.data.offsets() + a.begin;
  const std::int64_t* const offsets_b = b.data.offsets() + b.begin;
  return std::equal(offsets_a, offsets_a + count + 1, offsets_b) &&
         areEqual(a.data.bytes() + *offsets_a, b.data.bytes() + *offsets_b,
                  static_cast<std::size_t>(offsets_a[count] - *offsets_a));
}

/// The table is looked at where it is no longer than the rows.
bool haveSameCodes(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  const std::size_t texts = a.data.textCount();
  const std::uint32_t* const codes = a.data.codes() + a.begin;
  return texts == b.data.textCount() && texts <= count &&
         std::equal(codes, codes + count, b.data.codes() + b.begin) &&
         haveSameTexts({a.data, 0}, {b.data, 0}, texts);
}

/// Whether all values are the same byte by byte, which is quick to see, and mostly so.
bool haveSameBytes(const ColumnRows& a, const ColumnRows& b, std::size_t count) {
  if (a.data.type() != b.data.type() || !haveSameNulls(a, b, count)) {
    return false;
  }
  if (isNumber(a.data.type())) {
    return haveSameNumbers(a, b, count);
  }
  const bool has_codes = a.data.codes() != nullptr;
  return has_codes == (b.data.codes() != nullptr) &&
         (has_codes ? haveSameCodes(a, b, count) : haveSameTexts(a, b, count));
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
