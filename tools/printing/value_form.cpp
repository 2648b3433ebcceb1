#include "value_form.h"

#include <array>
#include <charconv>
#include <cmath>

namespace mdf_tools {

namespace {

using Digits = std::array<char, 64>;

/// A number with so many decimal places and no zeros at their end.
void printDecimals(double number, int decimals, std::string& text) {
  constexpr double exact = 9007199254740992;  // beyond it a double does not hold each integer
  if (!(std::abs(number) * std::pow(10, decimals) < exact)) {
    printNumber(number, text);
    return;
  }
  Digits digits;
  const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                  std::chars_format::fixed, decimals)
                        .ptr;
  if (decimals > 0) {
    while (end[-1] == '0') {
      --end;
    }
    end -= end[-1] == '.' ? 1 : 0;
  }
  const bool is_minus_zero = end - digits.data() == 2 && digits[0] == '-' && digits[1] == '0';
  const char* const begin = digits.data() + (is_minus_zero ? 1 : 0);
  text.append(begin, static_cast<std::size_t>(end - begin));
}

void printDigits(double number, int count, std::string& text) {
  if (!std::isfinite(number)) {
    printNumber(number, text);
    return;
  }
  Digits digits;
  const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), number,
                                        std::chars_format::general, count)
                              .ptr;
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

}  // namespace

bool ValueForm::isTime(const TableHead& table, std::size_t column) const {
  constexpr unsigned is_time = 1;  // the synchronization type
  return start && column == 0 && table.has_master && isNumber(table.columns[0].type) &&
         table.columns[0].channel->sync_type == is_time;
}

void ValueForm::printTime(double seconds, std::optional<int> decimals, std::string& text) const {
  const auto nanoseconds =
      time != Time::seconds && start ? start->nanosecondsAfter(seconds) : std::nullopt;
  if (nanoseconds) {
    text += time == Time::iso ? start->isoAfter(seconds) : std::to_string(*nanoseconds);
  } else if (digits > 0) {
    printDigits(seconds, digits, text);
  } else if (decimals) {
    printDecimals(seconds, *decimals, text);
  } else {
    printNumber(seconds, text);
  }
}

void ValueForm::print(const Batch& batch, std::size_t column, std::size_t row,
                      std::string& text) const {
  const ColumnData& values = batch.column(column);
  const bool is_there = values.isValid(row) && isNumber(values.type());
  const bool is_real = is_there && !isInteger(values.type());
  const bool is_master = batch.head().has_master && column == 0;
  const auto decimals = is_master ? batch.head().columns[0].decimals : std::nullopt;
  if (is_there && time != Time::seconds && isTime(batch.head(), column) &&
      start->nanosecondsAfter(values.real(row))) {
    printTime(values.real(row), decimals, text);
  } else if (is_real && digits > 0) {
    printDigits(values.real(row), digits, text);
  } else if (is_real && decimals) {
    printDecimals(values.real(row), *decimals, text);
  } else {
    values.print(row, text);
  }
}

}  // namespace mdf_tools
