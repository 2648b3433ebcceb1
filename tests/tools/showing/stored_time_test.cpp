#include "reader/summary/stored_time.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

using mdf_reader::StoredTime;

namespace {

constexpr std::uint64_t second = 1'000'000'000;

/// "UTC / local / zone".
std::string shown(const StoredTime& time) {
  return time.utc() + " / " + time.local() + " / " + time.zone();
}

TEST(StoredTime, NanosecondsAsFarAsThereAreAny) {
  EXPECT_EQ(StoredTime(1'600'000'000 * second + 7, 60, 0, 2).nanoseconds(),
            1'600'000'000'000'000'007);
  EXPECT_EQ(StoredTime(1'600'000'000, 0, 0, 0).nanoseconds(), 1'600'000'000'000'000'000);
  EXPECT_EQ(StoredTime(9'223'372'036 * second - 1, 0, 0, 0).nanoseconds(),
            9'223'372'035'999'999'999);
  EXPECT_EQ(StoredTime(9'223'372'036 * second, 0, 0, 0).nanoseconds(), std::nullopt);
  EXPECT_EQ(StoredTime(0, 0, 0, 0).nanoseconds(), std::nullopt);
}

TEST(StoredTime, UtcAlone) {
  EXPECT_EQ(shown({1'600'000'000 * second, 0, 0, 0}), "2020-09-13 12:26:40 /  / ");
  EXPECT_EQ(shown({1'600'000'000 * second + 7, 60, 60, 0}), "2020-09-13 12:26:40.000000007 /  / ");
}

TEST(StoredTime, UtcWithOffsets) {
  EXPECT_EQ(shown({1'600'000'000 * second, 60, 60, 2}),
            "2020-09-13 12:26:40 / 2020-09-13 14:26:40 / +02:00");
  EXPECT_EQ(shown({1'600'000'000 * second, -210, 0, 2}),
            "2020-09-13 12:26:40 / 2020-09-13 08:56:40 / -03:30");
}

TEST(StoredTime, LocalTimeHasNoZone) {
  EXPECT_EQ(shown({1'600'000'000 * second, 60, 60, 1}), " / 2020-09-13 12:26:40 / ");
  EXPECT_EQ(shown({1'600'000'000 * second, 60, 60, 3}), " / 2020-09-13 12:26:40 / ");
}

TEST(StoredTime, Dates) {
  const auto dateOf = [](std::uint64_t seconds) {
    return StoredTime(seconds * second, 0, 0, 0).utc();
  };
  EXPECT_EQ(dateOf(951'782'399), "2000-02-28 23:59:59");
  EXPECT_EQ(dateOf(951'782'400), "2000-02-29 00:00:00");
  EXPECT_EQ(dateOf(951'868'800), "2000-03-01 00:00:00");
  EXPECT_EQ(dateOf(978'307'199), "2000-12-31 23:59:59");
  EXPECT_EQ(dateOf(978'307'200), "2001-01-01 00:00:00");
  EXPECT_EQ(dateOf(4'107'542'399), "2100-02-28 23:59:59");
  EXPECT_EQ(dateOf(4'107'542'400), "2100-03-01 00:00:00");
  EXPECT_EQ(dateOf(18'446'744'073), "2554-07-21 23:34:33");
}

TEST(StoredTime, BeforeMidnightOfTheFirstDay) {
  EXPECT_EQ(StoredTime(9 * second, -600, 0, 2).local(), "1969-12-31 14:00:09");
}

TEST(StoredTime, SmallStampsAreSeconds) {
  const StoredTime time(1'600'000'000, 0, 0, 0);
  EXPECT_TRUE(time.isInSeconds());
  EXPECT_EQ(time.utc(), "2020-09-13 12:26:40");
  EXPECT_TRUE(StoredTime((std::uint64_t{1} << 33U) - 1, 0, 0, 0).isInSeconds());
  EXPECT_FALSE(StoredTime(std::uint64_t{1} << 33U, 0, 0, 0).isInSeconds());
}

TEST(StoredTime, UnsetStamps) {
  for (const std::uint64_t stamp :
       {std::uint64_t{0}, std::uint64_t{UINT32_MAX}, std::uint64_t{UINT64_MAX}}) {
    const StoredTime time(stamp, 60, 0, 2);
    EXPECT_TRUE(time.isUnset());
    EXPECT_EQ(time.utc() + time.local(), "");
    EXPECT_EQ(time.sentence(), "not stated");
  }
}

TEST(StoredTime, Sentences) {
  EXPECT_EQ(StoredTime(1'600'000'000 * second, 60, 60, 2).sentence(),
            "2020-09-13 12:26:40 UTC, 2020-09-13 14:26:40 local time (+02:00)");
  EXPECT_EQ(StoredTime(1'600'000'000 * second, 0, 0, 1).sentence(),
            "2020-09-13 12:26:40 local time, the zone is not stated");
  EXPECT_EQ(StoredTime(1'600'000'000, 0, 0, 0).sentence(),
            "2020-09-13 12:26:40 UTC; read as seconds, since as nanoseconds it would be in the "
            "first moments of 1970");
}

}  // namespace
