#include "pictures/time_axis.h"

#include <gtest/gtest.h>

#include "reader/model/description.h"

using mdf_reader::Header;
using mdf_tools::TimeTicks;
using mdf_tools::timeTicks;
using mdf_tools::wallClockOf;

namespace {

constexpr double noon = 1715947200;  // 2024-05-17 12:00:00

TEST(TimeAxis, TicksAtRoundTimes) {
  struct {
    double from, to, step;
    const char* format;
    const char* dates;
  } const all[] = {
      {noon + 1, noon + 400, 60, "%H:%M", "2024-05-17"},
      {noon + 1, noon + 17, 2, "%H:%M:%S", "2024-05-17"},
      {noon, noon + 2, 0.2, "%H:%M:%.3S", "2024-05-17"},
      {noon, noon + 0.0015, 0.0002, "%H:%M:%.6S", "2024-05-17"},
      {noon, noon + 86400, 10800, "%m-%d %H:%M", "2024-05-17 to 2024-05-18"},
      {noon, noon + 86400 * 30, 432000, "%Y-%m-%d", "2024-05-17 to 2024-06-16"},
  };
  for (const auto& each : all) {
    const TimeTicks ticks = timeTicks(each.from, each.to, 10);
    EXPECT_NEAR(ticks.step, each.step, each.step * 1e-9);
    EXPECT_EQ(ticks.format, each.format);
    EXPECT_EQ(ticks.dates, each.dates);
    EXPECT_GE(ticks.first, each.from);
    EXPECT_LT(ticks.first, each.from + ticks.step);
  }
  EXPECT_EQ(timeTicks(noon + 1, noon + 400, 10).first, noon + 60);
}

TEST(TimeAxis, ClockOfTheFile) {
  Header header;
  EXPECT_FALSE(wallClockOf(header));
  header.start_time = 1715947200500000000U;
  EXPECT_EQ(wallClockOf(header)->start, noon + 0.5);
  EXPECT_EQ(wallClockOf(header)->zone, "UTC");
  header.time_flags = Header::offsets_valid;
  header.zone_minutes = 60;
  header.daylight_minutes = 60;
  EXPECT_EQ(wallClockOf(header)->start, noon + 7200.5);
  EXPECT_EQ(wallClockOf(header)->zone, "UTC+02:00");
  header.time_flags = Header::is_local_time;
  EXPECT_EQ(wallClockOf(header)->start, noon + 0.5);
  EXPECT_EQ(wallClockOf(header)->zone, "local time");
}

}  // namespace
