#include "recording/sample_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>
#include <vector>

using namespace mdf_tools;

namespace {

/// When each sample of a schedule is due, if each is taken in time.
std::vector<std::int64_t> dueTimes(SampleSchedule schedule) {
  std::vector<std::int64_t> times;
  while (!schedule.over()) {
    times.push_back(schedule.due());
    schedule.skipMissed(schedule.due());
    schedule.take();
  }
  EXPECT_EQ(schedule.missed(), 0U);
  return times;
}

TEST(SampleSchedule, SamplesAreOnePeriodApartAndTheEndIsNoSample) {
  EXPECT_EQ(dueTimes(SampleSchedule(10, 0.3)),
            (std::vector<std::int64_t>{0, 100'000'000, 200'000'000}));
  EXPECT_EQ(dueTimes(SampleSchedule(3, 1)),
            (std::vector<std::int64_t>{0, 333'333'333, 666'666'667}));
}

TEST(SampleSchedule, PartOfAPeriodAtTheEndHasItsSample) {
  EXPECT_EQ(dueTimes(SampleSchedule(10, 0.201)).size(), 3U);
  EXPECT_EQ(dueTimes(SampleSchedule(0.1, 1)).size(), 1U);
  EXPECT_EQ(dueTimes(SampleSchedule(1e-5, 1e-3)).size(), 1U);
}

TEST(SampleSchedule, NumberOfSamplesIsDurationTimesRateWhateverIsRoundedOnTheWay) {
  for (int tenths = 1; tenths <= 100; ++tenths) {
    for (const double rate : {0.1, 1.0, 7.0, 30.0, 100.0, 1000.0}) {
      const double exact = tenths * rate * 10 / 100;
      const auto expected = static_cast<std::size_t>(std::ceil(exact - 1e-9));
      EXPECT_EQ(dueTimes(SampleSchedule(rate, tenths * 0.1)).size(), expected)
          << rate << " Hz, " << tenths << " tenths of a second";
    }
  }
}

TEST(SampleSchedule, EndOfTheDurationIsDueLast) {
  SampleSchedule schedule(10, 0.15);
  schedule.take();
  EXPECT_FALSE(schedule.over());
  schedule.take();
  EXPECT_TRUE(schedule.over());
  EXPECT_EQ(schedule.due(), 150'000'000);
}

TEST(SampleSchedule, SampleCanBeTakenUntilTheNextIsDue) {
  SampleSchedule schedule(10, 1);
  schedule.skipMissed(99'999'999);
  EXPECT_EQ(schedule.due(), 0);
  EXPECT_EQ(schedule.missed(), 0U);
  schedule.skipMissed(100'000'000);
  EXPECT_EQ(schedule.due(), 100'000'000);
  EXPECT_EQ(schedule.missed(), 1U);
}

TEST(SampleSchedule, AllThatCameTooLateAreMissedAndTheNewestIsTaken) {
  SampleSchedule schedule(10, 1);
  schedule.skipMissed(20'000'000);
  schedule.take();
  schedule.skipMissed(570'000'000);
  EXPECT_EQ(schedule.missed(), 4U);
  EXPECT_EQ(schedule.due(), 500'000'000);
  schedule.take();
  schedule.skipMissed(600'000'000);
  EXPECT_EQ(schedule.missed(), 4U);
}

TEST(SampleSchedule, NoMoreAreMissedThanTheDurationHas) {
  SampleSchedule schedule(10, 1);
  schedule.take();
  schedule.skipMissed(5'000'000'000);
  EXPECT_TRUE(schedule.over());
  EXPECT_EQ(schedule.missed(), 9U);
}

TEST(SampleSchedule, DurationOf0HasNoEnd) {
  SampleSchedule schedule(100e3, 0);
  schedule.skipMissed(315'576'000'000'000'000);
  EXPECT_FALSE(schedule.over());
  EXPECT_EQ(schedule.missed(), 31'557'600'000'000U);
}

bool sleepFor(std::int64_t nanoseconds) {
  std::this_thread::sleep_for(std::chrono::nanoseconds(nanoseconds));
  return true;
}

TEST(SampleClock, TakesEachSampleAtItsTimeOrReportsItMissed) {
  SampleClock clock({100}, 0.2);
  std::vector<std::int64_t> times;
  while (clock.waitForSample(sleepFor)) {
    times.push_back(clock.now());
  }
  EXPECT_EQ(times.size() + clock.missed(), 20U);
  EXPECT_GE(clock.now(), 200'000'000);
  for (std::size_t i = 1; i < times.size(); ++i) {
    EXPECT_GT(times[i], times[i - 1]);
    EXPECT_GE(times[i], 10'000'000 * static_cast<std::int64_t>(i)) << "before its time";
  }
}

TEST(SampleClock, CountsTheSamplesThatItsUserSleptThrough) {
  SampleClock clock({100}, 0.3);
  ASSERT_TRUE(clock.waitForSample(sleepFor));
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  ASSERT_TRUE(clock.waitForSample(sleepFor));
  EXPECT_GE(clock.missed(), 14U);
}

TEST(SampleClock, EachRateHasItsSamples) {
  SampleClock clock({20, 50, 5}, 0.2);
  std::vector<std::uint64_t> taken(3);
  while (const auto rate = clock.waitForSample(sleepFor)) {
    ++taken[*rate];
  }
  EXPECT_EQ(taken[0] + taken[1] + taken[2] + clock.missed(), 4U + 10U + 1U);
  EXPECT_EQ(taken[2], 1U);
}

TEST(SampleClock, TimeIsMoreAtEachCall) {
  SampleClock clock({1}, 1);
  std::int64_t last = -1;
  for (int i = 0; i < 10000; ++i) {
    const std::int64_t now = clock.now();
    ASSERT_GT(now, last);
    last = now;
  }
}

}  // namespace
