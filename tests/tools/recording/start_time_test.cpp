#include "recording/start_time.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

using namespace mdf_tools;

namespace {

/// Sets the process's time zone, and the old one again afterwards.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* const old = std::getenv("TZ")) {
      old_ = old;
    }
    setenv("TZ", zone, 1);
    tzset();
  }
  ~TimeZone() {
    old_ ? setenv("TZ", old_->c_str(), 1) : unsetenv("TZ");
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> old_;
};

StartTime at(std::int64_t nanoseconds) {
  return startTime(std::chrono::system_clock::time_point(
      std::chrono::duration_cast<std::chrono::system_clock::duration>(
          std::chrono::nanoseconds(nanoseconds))));
}

constexpr std::int64_t winter = 1'704'110'400'123'456'789;  // 2024-01-01 12:00 UTC
constexpr std::int64_t summer = 1'719'835'200'123'456'789;  // 2024-07-01 12:00 UTC

void expectStart(const char* zone, std::int64_t time, int zone_minutes, bool daylight_saving) {
  SCOPED_TRACE(std::string(zone) + " at " + std::to_string(time));
  const TimeZone local(zone);
  const StartTime start = at(time);
  EXPECT_EQ(start.nanoseconds, static_cast<mdf_v4_10::UINT64>(time));
  EXPECT_EQ(start.zone_minutes, zone_minutes);
  EXPECT_EQ(start.daylight_saving, daylight_saving);
}

TEST(StartTime, IsNanosecondsUtcWithTheOffsetsOfTheTimeZone) {
  expectStart("UTC0", winter, 0, false);
  expectStart("CET-1CEST,M3.5.0,M10.5.0/3", winter, 60, false);
  expectStart("CET-1CEST,M3.5.0,M10.5.0/3", summer, 60, true);
  expectStart("<+0530>-5:30", summer, 330, false);
  expectStart("EST5EDT,M3.2.0,M11.1.0", winter, -300, false);
  expectStart("EST5EDT,M3.2.0,M11.1.0", summer, -300, true);
}

}  // namespace
