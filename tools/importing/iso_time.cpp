#include "iso_time.h"

#include <array>
#include <cstddef>

namespace mdf_tools {

namespace {

/// Takes what a text begins with.
class Taker {
 public:
  explicit Taker(std::string_view text) : text_(text) {}

  bool isDone() const { return text_.empty(); }

  bool take(std::string_view any_of) {
    const bool is_there = !text_.empty() && any_of.find(text_[0]) != std::string_view::npos;
    text_.remove_prefix(is_there ? 1 : 0);
    return is_there;
  }

  /// A number of so many digits that lies in a range.
  bool take(std::size_t digits, int least, int most, int& number) {
    number = 0;
    for (std::size_t i = 0; i < digits; ++i) {
      if (i >= text_.size() || text_[i] < '0' || text_[i] > '9') {
        return false;
      }
      number = 10 * number + (text_[i] - '0');
    }
    text_.remove_prefix(digits);
    return number >= least && number <= most;
  }

  /// One to nine digits of a fraction, as nanoseconds.
  bool takeFraction(int& nanoseconds) {
    int scale = 100'000'000;
    int digit = 0;
    nanoseconds = 0;
    while (scale > 0 && take(1, 0, 9, digit)) {
      nanoseconds += digit * scale;
      scale /= 10;
    }
    return scale < 100'000'000;
  }

 private:
  std::string_view text_;
};

bool isLeap(int year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

int lengthOf(int month, int year) {
  constexpr std::array<int, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return lengths[static_cast<std::size_t>(month - 1)] + (month == 2 && isLeap(year) ? 1 : 0);
}

std::int64_t daysSince1970(int year, int month, int day) {
  const auto leapYears = [](int up_to) { return up_to / 4 - up_to / 100 + up_to / 400; };
  std::int64_t days =
      std::int64_t{365} * (year - 1970) + leapYears(year - 1) - leapYears(1969) + day - 1;
  for (int before = 1; before < month; ++before) {
    days += lengthOf(before, year);
  }
  return days;
}

bool takeZone(Taker& text, int& minutes) {
  minutes = 0;
  if (text.isDone() || text.take("Z")) {
    return text.isDone();
  }
  const bool is_negative = !text.take("+");
  int hour = 0;
  int minute = 0;
  if ((is_negative && !text.take("-")) || !text.take(2, 0, 23, hour)) {
    return false;
  }
  text.take(":");
  const bool is_whole = text.isDone() || text.take(2, 0, 59, minute);
  minutes = (is_negative ? -1 : 1) * (60 * hour + minute);
  return is_whole && text.isDone();
}

}  // namespace

std::optional<IsoTime> readIsoTime(std::string_view text) {
  Taker left(text);
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;
  int fraction = 0;
  IsoTime time;
  const bool is_one =
      left.take(4, 1970, 2261, year) && left.take("-") && left.take(2, 1, 12, month) &&
      left.take("-") && left.take(2, 1, lengthOf(month, year), day) && left.take("T ") &&
      left.take(2, 0, 23, hour) && left.take(":") && left.take(2, 0, 59, minute) &&
      left.take(":") && left.take(2, 0, 59, second) &&
      (!left.take(".,") || left.takeFraction(fraction)) && takeZone(left, time.zone_minutes);
  if (!is_one) {
    return std::nullopt;
  }
  const std::int64_t minutes =
      (daysSince1970(year, month, day) * 24 + hour) * 60 + minute - time.zone_minutes;
  time.nanoseconds = (minutes * 60 + second) * 1'000'000'000 + fraction;
  return time;
}

}  // namespace mdf_tools
