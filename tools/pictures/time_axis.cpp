#include "time_axis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "engineering_unit.h"
#include "reader/model/description.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

namespace {

constexpr double a_day = 86400;

/// "2024-05-17"
std::string dayOf(double seconds) {
  constexpr double most = 9e9;  // what 64 bits of nanoseconds can say
  const double day = std::floor(std::clamp(seconds, a_day, most) / a_day) * a_day;
  return StoredTime(static_cast<std::uint64_t>(day) * 1'000'000'000U, 0, 0, 0)
      .isoAfter(0)
      .substr(0, 10);
}

double stepFor(double least) {
  constexpr std::array steps = {1.,   2.,   5.,    10.,   15.,   30.,    60.,    120.,   300.,
                                600., 900., 1800., 3600., 7200., 10800., 21600., 43200., a_day};
  const auto* const step = std::lower_bound(steps.begin(), steps.end(), least);
  if (least > 0.5 && step != steps.end()) {
    return *step;
  }
  const double unit = least > 0.5 ? a_day : 1;
  return roundStep(least / unit) * unit;
}

std::string formatFor(double step, bool is_one_day) {
  if (step >= a_day) {
    return "%Y-%m-%d";
  }
  const char* const seconds = step >= 60      ? ""
                              : step >= 1     ? ":%S"
                              : step >= 0.001 ? ":%.3S"
                                              : ":%.6S";
  return (is_one_day ? "%H:%M" : "%m-%d %H:%M") + std::string(seconds);
}

}  // namespace

std::optional<WallClock> wallClockOf(const Header& header) {
  const StoredTime start = startTimeOf(header);
  const auto nanoseconds = start.nanoseconds();
  if (!nanoseconds) {
    return std::nullopt;
  }
  const double seconds = static_cast<double>(*nanoseconds) / 1e9;
  if (!start.zone().empty()) {
    return WallClock{seconds + 60. * (header.zone_minutes + header.daylight_minutes),
                     "UTC" + start.zone()};
  }
  return WallClock{seconds, start.utc().empty() ? "local time" : "UTC"};
}

TimeTicks timeTicks(double from, double to, std::size_t most) {
  constexpr double least = 1e-6;  // finer than that, doubles do not hold dates
  const std::string first_day = dayOf(from);
  const std::string last_day = dayOf(to);
  TimeTicks ticks;
  ticks.step = stepFor(std::max((to - from) / static_cast<double>(most), least));
  ticks.first = std::ceil(from / ticks.step) * ticks.step;
  ticks.format = formatFor(ticks.step, first_day == last_day);
  ticks.dates = first_day == last_day ? first_day : first_day + " to " + last_day;
  return ticks;
}

}  // namespace mdf_tools
