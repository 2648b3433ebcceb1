#include "stored_time.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "../bytes/formatted.h"
#include "../model/description.h"

namespace mdf_reader {

namespace {

constexpr std::uint64_t nanoseconds_a_second = 1'000'000'000;
constexpr std::uint64_t largest_in_seconds = std::uint64_t{1} << 33U;
constexpr std::int64_t seconds_a_day = 86400;

struct Date {
  std::int64_t year;
  int month;
  int day;
};

/// The day of the Gregorian calendar so many days after 1970-01-01.
Date dateAfter1970(std::int64_t days) {
  constexpr std::array<int, 12> lengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  constexpr std::int64_t days_in_400_years = 146097;
  // Years from 1600 on, a year in which the cycle of 400 years begins.
  std::int64_t left = days + 135140;
  std::int64_t year = 1600 + 400 * (left / days_in_400_years);
  left %= days_in_400_years;
  const auto isLeap = [&] { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; };
  while (left >= (isLeap() ? 366 : 365)) {
    left -= isLeap() ? 366 : 365;
    ++year;
  }
  int month = 1;
  for (const int usual : lengths) {
    const int length = usual + (month == 2 && isLeap() ? 1 : 0);
    if (left < length) {
      break;
    }
    left -= length;
    ++month;
  }
  return {year, month, static_cast<int>(left) + 1};
}

std::string dateAndTime(std::int64_t seconds, std::uint32_t nanoseconds) {
  std::int64_t days = seconds / seconds_a_day;
  std::int64_t of_day = seconds % seconds_a_day;
  if (of_day < 0) {
    of_day += seconds_a_day;
    --days;
  }
  const Date date = dateAfter1970(days);
  const std::string text =
      formatted("%04lld-%02d-%02d %02d:%02d:%02d", static_cast<long long>(date.year), date.month,
                date.day, static_cast<int>(of_day / 3600), static_cast<int>(of_day / 60 % 60),
                static_cast<int>(of_day % 60));
  return nanoseconds == 0 ? text : text + formatted(".%09u", static_cast<unsigned>(nanoseconds));
}

}  // namespace

StoredTime::StoredTime(std::uint64_t stamp, int zone_minutes, int daylight_minutes, unsigned flags)
    : zone_minutes_(zone_minutes),
      daylight_minutes_(daylight_minutes),
      flags_(flags),
      is_in_seconds_(stamp < largest_in_seconds),
      is_unset_(stamp == 0 || stamp == UINT32_MAX || stamp == UINT64_MAX) {
  const std::uint64_t unit = is_in_seconds_ ? 1 : nanoseconds_a_second;
  seconds_ = static_cast<std::int64_t>(stamp / unit);
  nanoseconds_ = static_cast<std::uint32_t>(stamp % unit);
}

bool StoredTime::hasZone() const {
  return (flags_ & Header::offsets_valid) != 0 && (flags_ & Header::is_local_time) == 0;
}

std::string StoredTime::shifted(int minutes) const {
  return dateAndTime(seconds_ + std::int64_t{60} * minutes, nanoseconds_);
}

std::string StoredTime::utc() const {
  return is_unset_ || (flags_ & Header::is_local_time) != 0 ? "" : shifted(0);
}

std::string StoredTime::local() const {
  if (is_unset_) {
    return "";
  }
  if ((flags_ & Header::is_local_time) != 0) {
    return shifted(0);
  }
  return hasZone() ? shifted(zone_minutes_ + daylight_minutes_) : "";
}

std::string StoredTime::zone() const {
  if (!hasZone()) {
    return "";
  }
  const int minutes = zone_minutes_ + daylight_minutes_;
  return formatted("%c%02d:%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                   std::abs(minutes) % 60);
}

std::optional<std::int64_t> StoredTime::nanosecondsAfter(double seconds) const {
  constexpr double most = 9.2e9;  // seconds, of which 64 bits hold the nanoseconds
  const double whole = std::floor(seconds);
  const auto begin = nanoseconds();
  if (!begin || !(std::abs(whole + static_cast<double>(seconds_)) < most)) {
    return std::nullopt;
  }
  constexpr auto a_second = static_cast<std::int64_t>(nanoseconds_a_second);
  return (seconds_ + static_cast<std::int64_t>(whole)) * a_second + nanoseconds_ +
         std::llround((seconds - whole) * 1e9);
}

std::string StoredTime::isoAfter(double seconds) const {
  const auto all = nanosecondsAfter(seconds);
  if (!all) {
    return "";
  }
  constexpr auto a_second = static_cast<std::int64_t>(nanoseconds_a_second);
  const std::int64_t of_second = (*all % a_second + a_second) % a_second;
  const std::int64_t shift = hasZone() ? std::int64_t{60} * (zone_minutes_ + daylight_minutes_) : 0;
  std::string text =
      dateAndTime((*all - of_second) / a_second + shift, static_cast<std::uint32_t>(of_second));
  text[text.find(' ')] = 'T';
  return text + (hasZone() ? zone() : utc().empty() ? "" : "Z");
}

std::optional<std::int64_t> StoredTime::nanoseconds() const {
  constexpr auto a_second = static_cast<std::int64_t>(nanoseconds_a_second);
  if (is_unset_ || seconds_ >= INT64_MAX / a_second) {
    return std::nullopt;
  }
  return seconds_ * a_second + nanoseconds_;
}

std::string StoredTime::sentence() const {
  if (is_unset_) {
    return "not stated";
  }
  std::string text =
      utc().empty() ? local() + " local time, the zone is not stated" : utc() + " UTC";
  if (hasZone()) {
    text += ", " + local() + " local time (" + zone() + ")";
  }
  if (is_in_seconds_) {
    text += "; read as seconds, since as nanoseconds it would be in the first moments of 1970";
  }
  return text;
}

StoredTime startTimeOf(const Header& header) {
  return {header.start_time, header.zone_minutes, header.daylight_minutes, header.time_flags};
}

}  // namespace mdf_reader
