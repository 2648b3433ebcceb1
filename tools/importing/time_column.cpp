#include "time_column.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>

#include "column_facts.h"

namespace mdf_tools {

namespace {

using Kind = ScannedNumber::Kind;

constexpr int nano = 9;

constexpr std::array<std::int64_t, nano + 1> powers = {
    1, 10, 100, 1'000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

double powerOfTen(int exponent) {
  return static_cast<double>(powers[static_cast<std::size_t>(exponent)]);
}

bool isNameOfTime(const std::string& name) {
  constexpr std::array<std::string_view, 4> names = {"t", "time", "timestamp", "timestamps"};
  std::string small = name;
  std::transform(small.begin(), small.end(), small.begin(), [](char each) {
    return static_cast<char>(each >= 'A' && each <= 'Z' ? each - 'A' + 'a' : each);
  });
  return std::find(names.begin(), names.end(), small) != names.end();
}

/// Decimal places between a unit and the second; -1 for a unit of something else.
int placesOf(const std::string& unit) {
  if (unit.empty() || unit == "s") {
    return 0;
  }
  return unit == "ms" ? 3 : unit == "us" || unit == "µs" ? 6 : unit == "ns" ? nano : -1;
}

}  // namespace

TimeColumn::TimeColumn(const ColumnName& column, bool is_stated)
    : is_stated_(is_stated),
      is_named_(is_stated || column.unit == "s" ||
                (column.unit.empty() && isNameOfTime(column.name))),
      has_unit_(!column.unit.empty()),
      is_index_(column.name.rfind("index", 0) == 0) {
  if (is_stated) {
    shift_ = placesOf(column.unit);
    if (shift_ < 0) {
      throw ImportFailure("the unit of the time \"" + column.name +
                          "\" must be s, ms, us or ns; it is \"" + column.unit + '"');
    }
  }
}

std::string TimeColumn::add(const Cell& cell) {
  if (rows_ == 0) {
    are_dates_ = readIsoTime(cell.text).has_value();
  }
  std::string fault = are_dates_ ? addDate(cell) : addNumber(cell);
  if (fault.empty()) {
    ++rows_;
  } else if (!is_stated_) {
    is_sound_ = false;
  }
  return fault;
}

std::string TimeColumn::addDate(const Cell& cell) {
  const auto date = readIsoTime(cell.text);
  if (!date) {
    return "expected a date such as 2024-05-17T13:45:12.5+02:00, found " + shownText(cell.text);
  }
  if (rows_ > 0 && date->nanoseconds < date_.nanoseconds) {
    return "expected no time before that of the row above, found " + shownText(cell.text);
  }
  date_ = *date;
  start_ = rows_ == 0 ? date_ : start_;
  return "";
}

std::string TimeColumn::addNumber(const Cell& cell) {
  const ScannedNumber& number = cell.number;
  const double real = number.kind == Kind::none ? NAN : cell.real();
  if (!std::isfinite(real)) {
    return "expected a time, found " +
           (cell.kind == Cell::Kind::missing ? "none" : shownText(cell.text));
  }
  if (rows_ > 0 && real < greatest_) {
    return "expected no time before that of the row above, found " + shownText(cell.text);
  }
  if (rows_ == 0) {
    least_ = real;
    start_ = {static_cast<std::int64_t>(number.magnitude), 0};
  }
  greatest_ = real;
  number_ = number;
  noteDigits(number);
  return "";
}

void TimeColumn::noteDigits(const ScannedNumber& number) {
  const bool is_minus_zero = number.is_negative && number.magnitude == 0;
  is_plain_ = is_plain_ && number.is_plain && !is_minus_zero;
  is_integer_ = is_integer_ && number.kind == Kind::integer;
  is_counter_ = is_counter_ && number.kind == Kind::integer && !number.is_negative &&
                number.magnitude == rows_;
  decimals_ = std::max<int>(decimals_, number.decimals);
}

void TimeColumn::settle() {
  places_ = placesOfAll();
  form_ = formOfAll();
  places_ = hasStart() ? nano : places_;
}

TimeColumn::Form TimeColumn::formOfAll() const {
  constexpr double long_ago = 1e17;  // nanoseconds: in 1973
  constexpr double most = 9.2e18;
  if (!is_sound_) {
    return Form::none;
  }
  if (are_dates_) {
    return Form::dates;
  }
  if (!is_named_) {
    return (rows_ > 0 ? is_counter_ : is_index_) && !has_unit_ ? Form::counter : Form::none;
  }
  if (is_integer_ && shift_ % nano == 0 && least_ >= long_ago && greatest_ < most) {
    return Form::since_1970;
  }
  return places_ < 0 ? Form::real : Form::decimals;
}

/// The reader multiplies the integers by a power of ten. Below this limit that gives the number
/// which has these digits.
int TimeColumn::placesOfAll() const {
  constexpr double most = 2251799813685248;  // 2^51
  const int needed = decimals_ + shift_;
  const double seconds = std::max(std::abs(least_), std::abs(greatest_)) / powerOfTen(shift_);
  if (is_plain_ && needed <= nano && seconds * powerOfTen(nano) < most) {
    return nano;
  }
  return is_plain_ && needed <= nano && seconds * powerOfTen(needed) < most ? needed : -1;
}

double TimeColumn::seconds() const { return greatest_ / powerOfTen(shift_); }

std::int64_t TimeColumn::integer(const IsoTime& since) const {
  if (form_ == Form::dates) {
    return date_.nanoseconds - since.nanoseconds;
  }
  const auto magnitude = static_cast<std::int64_t>(number_.magnitude);
  if (form_ == Form::since_1970) {
    return magnitude - since.nanoseconds;
  }
  const int exponent = std::max(0, places_ - number_.decimals - shift_);
  return (number_.is_negative ? -magnitude : magnitude) *
         powers[static_cast<std::size_t>(exponent)];
}

}  // namespace mdf_tools
