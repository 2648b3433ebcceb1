#include "recording/start_time.h"

#include <gtest/gtest.h>

#include <string>

#include "support/time_zone.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

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
