#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/time_zone.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

// Rules rather than names of places, so that nothing depends on an installed time zone database.
const char* const utc = "UTC0";
const char* const berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
const char* const kathmandu = "<+0545>-5:45";

std::tm calendar(int year, int month, int day, int hour, int minute, int second, int is_dst) {
  std::tm time{};
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  time.tm_mday = day;
  time.tm_hour = hour;
  time.tm_min = minute;
  time.tm_sec = second;
  time.tm_isdst = is_dst;
  return time;
}

/// All members of a calendar time: "2000-7-1 12:0:0 weekday 6 day 182 dst 1 CEST+7200".
std::string shown(const std::tm& time) {
  const auto text = [](long number) { return std::to_string(number); };
  return text(time.tm_year + 1900) + '-' + text(time.tm_mon + 1) + '-' + text(time.tm_mday) + ' ' +
         text(time.tm_hour) + ':' + text(time.tm_min) + ':' + text(time.tm_sec) + " weekday " +
         text(time.tm_wday) + " day " + text(time.tm_yday) + " dst " + text(time.tm_isdst) + ' ' +
         time.tm_zone + '+' + text(time.tm_gmtoff);
}

/// The header block's start time. All that a time operation must leave alone is set.
struct StartTime {
  using Block = HDBLOCK;
  static constexpr const char* name = "HDBLOCK";
  static constexpr auto stamp = &HDBLOCK::hd_start_time_ns;
  static constexpr auto dst_offset = &HDBLOCK::hd_dst_offset_min;

  static HDBLOCK block() {
    HDBLOCK block(200, 100, 12345, -90, HDBLOCK::TIME_EXT_SOURCE, 0, 0);
    block.hd_dst_offset_min = 17;
    block.hd_time_flags = 255;
    block.hd_flags = 3;
    block.hd_reserved = 9;
    block.hd_start_angle_rad = block.hd_start_distance_m = 1.5;
    return block;
  }

  static std::string bytes(std::uint64_t stamp_written, std::int16_t dst_offset_written) {
    return header("HD", 104, 6) + links(100, 200, 0, 0, 0, 0) + u64(stamp_written) +
           u16(-90, dst_offset_written) + u8(255, 10, 3, 9) + f64(1.5, 1.5);
  }
};

/// The same for the time of a file history entry.
struct ChangeTime {
  using Block = FHBLOCK;
  static constexpr const char* name = "FHBLOCK";
  static constexpr auto stamp = &FHBLOCK::fh_time_ns;
  static constexpr auto dst_offset = &FHBLOCK::fh_dst_offset_min;

  static FHBLOCK block() {
    FHBLOCK block(200, 12345, -90, 100);
    block.fh_dst_offset_min = 17;
    block.fh_time_flags = 255;
    setBytes(block.fh_reserved, {7, 8, 9});
    return block;
  }

  static std::string bytes(std::uint64_t stamp_written, std::int16_t dst_offset_written) {
    return header("FH", 56, 2) + links(100, 200) + u64(stamp_written) +
           u16(-90, dst_offset_written) + u8(255, 7, 8, 9);
  }
};

template <class Field>
class TimeStamp : public testing::Test {
 protected:
  /// Expects that a calendar time is stored as these seconds with this daylight-saving offset, and
  /// that nothing else in the block changes.
  static void expectStored(const char* zone, const std::tm& time, std::int64_t seconds,
                           std::int16_t dst_offset) {
    SCOPED_TRACE(std::string(zone) + ", expecting " + std::to_string(seconds));
    const TimeZone time_zone(zone);
    auto block = Field::block();
    block.setDateAndTime(time);
    EXPECT_BYTES(written(block), Field::bytes(static_cast<std::uint64_t>(seconds), dst_offset));
  }

  /// Expects that a stored time is given as this calendar time, every member of it.
  static void expectGiven(const char* zone, std::uint64_t stamp, std::int16_t dst_offset,
                          const std::string& expected) {
    SCOPED_TRACE(std::string(zone) + ", stamp " + std::to_string(stamp));
    const TimeZone time_zone(zone);
    auto block = Field::block();
    block.*Field::stamp = stamp;
    block.*Field::dst_offset = dst_offset;
    std::tm time = calendar(-7, -7, -7, -7, -7, -7, -7);
    time.tm_wday = time.tm_yday = -7;
    time.tm_gmtoff = -7;
    time.tm_zone = "unset";
    static_cast<const typename Field::Block&>(block).getDateAndTime(time);
    EXPECT_EQ(shown(time), expected);
    EXPECT_BYTES(written(block), Field::bytes(stamp, dst_offset));
  }
};

using Fields = testing::Types<StartTime, ChangeTime>;
struct FieldName {
  template <class Field>
  static std::string GetName(int) {
    return Field::name;
  }
};
TYPED_TEST_SUITE(TimeStamp, Fields, FieldName);

TYPED_TEST(TimeStamp, IsStoredUnchanged) {
  for (const std::uint64_t stamp : {std::uint64_t{0}, std::uint64_t{0x0102030405060708},
                                    std::uint64_t{1000000000000000000}, UINT64_MAX}) {
    auto block = TypeParam::block();
    block.setTimestamp(stamp);
    EXPECT_BYTES(written(block), TypeParam::bytes(stamp, 17));
  }
}

TYPED_TEST(TimeStamp, DaylightSavingIsSixtyMinutesOrNone) {
  auto block = TypeParam::block();
  block.setDST(true);
  EXPECT_BYTES(written(block), TypeParam::bytes(12345, 60));
  block.setDST(false);
  EXPECT_BYTES(written(block), TypeParam::bytes(12345, 0));
}

TYPED_TEST(TimeStamp, CalendarTimeIsStoredInSeconds) {
  for (const int is_dst : {-1, 0}) {
    TestFixture::expectStored(utc, calendar(2000, 1, 1, 12, 0, 0, is_dst), 946728000, 0);
    TestFixture::expectStored(berlin, calendar(2000, 1, 1, 12, 0, 0, is_dst), 946724400, 0);
    TestFixture::expectStored(kathmandu, calendar(2000, 1, 1, 12, 0, 0, is_dst), 946707300, 0);
  }
}

TYPED_TEST(TimeStamp, SummerTimeSetsTheDaylightSavingOffset) {
  TestFixture::expectStored(berlin, calendar(2000, 7, 1, 12, 0, 0, -1), 962445600, 60);
  TestFixture::expectStored(berlin, calendar(2000, 7, 1, 12, 0, 0, 1), 962445600, 60);
  TestFixture::expectStored(kathmandu, calendar(2000, 7, 1, 12, 0, 0, -1), 962432100, 0);
}

TYPED_TEST(TimeStamp, TheDaylightSavingFlagCountsAsTheZoneSettlesIt) {
  // Standard time in summer, and summer time in winter: the same hour under another name.
  TestFixture::expectStored(berlin, calendar(2000, 7, 1, 12, 0, 0, 0), 962449200, 60);
  TestFixture::expectStored(berlin, calendar(2000, 1, 1, 12, 0, 0, 1), 946720800, 0);
}

TYPED_TEST(TimeStamp, FieldsOutOfTheirRangeAreNormalised) {
  constexpr std::int64_t noon = 946728000;
  TestFixture::expectStored(utc, calendar(1999, 12, 32, 12, 0, 0, 0), noon, 0);
  TestFixture::expectStored(utc, calendar(1999, 13, 1, 12, 0, 0, 0), noon, 0);
  TestFixture::expectStored(utc, calendar(2000, 1, 2, -12, 0, 0, 0), noon, 0);
  TestFixture::expectStored(utc, calendar(2000, 1, 1, 0, 720, 0, 0), noon, 0);
  TestFixture::expectStored(utc, calendar(2000, 1, 1, 11, 0, 3600, 0), noon, 0);
  TestFixture::expectStored(utc, calendar(2000, 2, -30, 12, 0, 0, 0), noon, 0);
  // 183 days after the first of January it is summer.
  TestFixture::expectStored(berlin, calendar(2000, 1, 183, 12, 0, 0, -1), 962445600, 60);
}

TYPED_TEST(TimeStamp, TimesBefore1970AreNegative) {
  TestFixture::expectStored(utc, calendar(1969, 12, 31, 23, 59, 58, 0), -2, 0);
  TestFixture::expectStored(utc, calendar(1960, 1, 1, 0, 0, 0, -1), -315619200, 0);
  TestFixture::expectStored(berlin, calendar(1960, 1, 1, 0, 0, 0, -1), -315622800, 0);
  TestFixture::expectStored(kathmandu, calendar(1960, 1, 1, 0, 0, 0, 0), -315639900, 0);
}

TYPED_TEST(TimeStamp, ASecondBefore1970IsATimeAndNoFailure) {
  // It is stored as a failure would be, but its daylight-saving flag is the normalised one.
  TestFixture::expectStored(utc, calendar(1969, 12, 31, 23, 59, 59, -1), -1, 0);
}

TYPED_TEST(TimeStamp, TheLastTimesThatFitAreStored) {
  TestFixture::expectStored(utc, calendar(2038, 1, 19, 3, 14, 7, -1), INT32_MAX, 0);
  TestFixture::expectStored(utc, calendar(1901, 12, 13, 20, 45, 52, -1), INT32_MIN, 0);
}

TYPED_TEST(TimeStamp, ATimeThatDoesNotFitIsAFailure) {
  TestFixture::expectStored(utc, calendar(2038, 1, 19, 3, 14, 8, 0), -1, 0);
  TestFixture::expectStored(utc, calendar(1901, 12, 13, 20, 45, 51, 0), -1, 0);
  TestFixture::expectStored(kathmandu, calendar(9999, 1, 1, 0, 0, 0, 0), -1, 0);
}

TYPED_TEST(TimeStamp, ATimeThatDoesNotFitKeepsItsOwnDaylightSavingFlag) {
  for (const int year : {1850, 2050}) {
    TestFixture::expectStored(berlin, calendar(year, 7, 1, 12, 0, 0, 0), -1, 0);
    TestFixture::expectStored(berlin, calendar(year, 1, 1, 12, 0, 0, 1), -1, 60);
    TestFixture::expectStored(berlin, calendar(year, 1, 1, 12, 0, 0, -1), -1, 60);
    TestFixture::expectStored(utc, calendar(year, 1, 1, 12, 0, 0, -1), -1, 60);
  }
}

TYPED_TEST(TimeStamp, ATimeThatTheLibraryCannotConvertIsAFailure) {
  std::tm time = calendar(2000, 25, 1, 0, 0, 0, 0);
  time.tm_year = INT_MAX;
  std::tm copy = time;
  ASSERT_EQ(std::mktime(&copy), -1);
  TestFixture::expectStored(utc, time, -1, 0);
  for (const int is_dst : {-1, 1}) {
    time.tm_isdst = is_dst;
    TestFixture::expectStored(utc, time, -1, 60);
  }
}

TYPED_TEST(TimeStamp, IsGivenInTheProcessesTimeZone) {
  TestFixture::expectGiven(utc, 946728000, 0, "2000-1-1 12:0:0 weekday 6 day 0 dst 0 UTC+0");
  TestFixture::expectGiven(berlin, 946724400, 0, "2000-1-1 12:0:0 weekday 6 day 0 dst 0 CET+3600");
  TestFixture::expectGiven(berlin, 962445600, 60,
                           "2000-7-1 12:0:0 weekday 6 day 182 dst 1 CEST+7200");
  TestFixture::expectGiven(kathmandu, 946707300, 0,
                           "2000-1-1 12:0:0 weekday 6 day 0 dst 0 +0545+20700");
}

TYPED_TEST(TimeStamp, WithoutAnOffsetTheZonesDaylightSavingFlagStays) {
  TestFixture::expectGiven(berlin, 962445600, 0,
                           "2000-7-1 12:0:0 weekday 6 day 182 dst 1 CEST+7200");
}

TYPED_TEST(TimeStamp, WithAnOffsetTheDaylightSavingFlagIsSet) {
  for (const auto dst_offset : std::vector<std::int16_t>{60, 1, -60, INT16_MIN}) {
    TestFixture::expectGiven(utc, 946728000, dst_offset,
                             "2000-1-1 12:0:0 weekday 6 day 0 dst 1 UTC+0");
    TestFixture::expectGiven(berlin, 946724400, dst_offset,
                             "2000-1-1 12:0:0 weekday 6 day 0 dst 1 CET+3600");
  }
}

TYPED_TEST(TimeStamp, OnlyTheLowBitsAreGiven) {
  TestFixture::expectGiven(utc, 1000000000000000000, 0,
                           "1922-11-22 18:22:56 weekday 3 day 325 dst 0 UTC+0");
  for (const std::uint64_t high : {0x00000001U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    TestFixture::expectGiven(utc, high << 32U | 946728000U, 0,
                             "2000-1-1 12:0:0 weekday 6 day 0 dst 0 UTC+0");
  }
}

TYPED_TEST(TimeStamp, TheLowBitsAreSigned) {
  TestFixture::expectGiven(utc, UINT64_MAX, 0, "1969-12-31 23:59:59 weekday 3 day 364 dst 0 UTC+0");
  TestFixture::expectGiven(kathmandu, 0xFFFFFFFF, 0,
                           "1970-1-1 5:44:59 weekday 4 day 0 dst 0 +0545+20700");
  TestFixture::expectGiven(utc, 0x80000000, 0, "1901-12-13 20:45:52 weekday 5 day 346 dst 0 UTC+0");
  TestFixture::expectGiven(utc, 0x7FFFFFFF, 0, "2038-1-19 3:14:7 weekday 2 day 18 dst 0 UTC+0");
}

}  // namespace
