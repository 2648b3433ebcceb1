// What mdf info says of the time spans and rates of channel groups: true, or not known.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using nlohmann::json;

namespace {

std::string times(const std::vector<double>& values) {
  Bytes bytes;
  for (const double value : values) {
    bytes.f64(value);
  }
  return bytes;
}

GroupSpec timesOnly(std::uint64_t count) { return {count, 8}; }

std::string fileOf(std::uint64_t count, const std::vector<double>& values,
                   const ChannelSpec& time = timeChannel()) {
  FileBuilder file;
  file.addSortedGroup(timesOnly(count), {time}, file.addData(times(values)));
  return file.bytes();
}

/// The page's only file.
json infoOf(const std::string& bytes, int exit_code = 0, const std::string& option = "--json") {
  const TempFile temp(bytes);
  const RunResult result = run({"info", "--json", option, temp.path()});
  EXPECT_EQ(result.exit_code, exit_code) << result.messages;
  return json::parse(result.output)["files"][0];
}

/// What it says of one group's axis: from, to, source, extent and rate.
std::string axisOf(const json& info, std::size_t group = 0) {
  const json& said = info["groups"].at(group);
  const json& span = said["span"];
  const std::string ends = span.is_null() ? "not known"
                                          : span["from"].dump() + " to " + span["to"].dump() +
                                                " by " + span["source"].get<std::string>();
  return ends + ", " + said["extent"].dump() + ", " + said["rate"].dump();
}

const std::string nothing = "not known, null, null";

TEST(InfoSpans, TheFirstAndTheLastRecord) {
  const json info = infoOf(fileOf(5, {1.5, 2, 2.5, 3, 3.5}));
  EXPECT_EQ(axisOf(info), "1.5 to 3.5 by records, 2.0, 2.0");
  EXPECT_EQ(info["duration"], 2.0);
}

TEST(InfoSpans, ThePageShowsThemWithTheMastersUnit) {
  const TempFile temp(fileOf(5, {1.5, 2, 2.5, 3, 3.5}));
  const std::string page = run({"info", temp.path()}).output;
  EXPECT_PRED2(contains, page, "\nDuration:  2 s\n");
  EXPECT_PRED2(contains, page,
               "group  data  name  source  records  span  rate  record bytes  channels\n"
               "    0     0                      5  2 s   2/s              8         1\n");
}

TEST(InfoSpans, WithoutASpanThereIsNoDuration) {
  EXPECT_EQ(infoOf(fileOf(0, {}))["duration"], json());
  EXPECT_EQ(infoOf(fileOf(3, {5, 6, 4}))["duration"], json());
}

TEST(InfoSpans, RecordsAndStatedRanges) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  const ChannelSpec plain = timeChannel();
  ChannelSpec invalid = plain;
  invalid.flags = 1;
  ChannelSpec outside_record = plain;
  outside_record.byte_offset = 1;
  const auto stating = [&](double range_max) {
    ChannelSpec time = plain;
    time.flags = 8;
    time.range_min = 1;
    time.range_max = range_max;
    return time;
  };
  const struct {
    std::uint64_t count;
    std::vector<double> values;
    ChannelSpec time;
    std::string axis;
  } cases[] = {
      {0, {}, plain, nothing},
      {1, {1.5}, plain, "1.5 to 1.5 by records, 0.0, null"},
      {3, {5, 6, 4}, plain, "5.0 to 4.0 by records, null, null"},
      {3, {nan, 1, 2}, plain, nothing},
      {3, {0, 1, nan}, plain, nothing},
      {3, {0, 1, infinite}, plain, nothing},
      {3, {0, nan, 2}, plain, "0.0 to 2.0 by records, 2.0, 1.0"},
      // The last record is the one that the count speaks of.
      {2, {0, 1, 2}, plain, "0.0 to 1.0 by records, 1.0, 1.0"},
      {4, {0, 1, 2}, plain, nothing},
      {UINT64_MAX, {0, 1, 2}, plain, nothing},
      {(std::uint64_t{1} << 61U) + 1, {0, 1, 2}, plain, nothing},
      {2, {0, 1}, invalid, nothing},
      {2, {0, 1}, outside_record, nothing},
      // A range that is stated comes first, when it is one.
      {5, {1.5, 2, 2.5, 3, 3.5}, stating(3), "1.0 to 3.0 by stated range, 2.0, 2.0"},
      {2, {1.5, 2}, stating(1), "1.5 to 2.0 by records, 0.5, 2.0"},
      {2, {1.5, 2}, stating(nan), "1.5 to 2.0 by records, 0.5, 2.0"},
  };
  for (const auto& [count, values, time, axis] : cases) {
    EXPECT_EQ(axisOf(infoOf(fileOf(count, values, time))), axis)
        << count << testing::PrintToString(values);
  }
}

/// Raw values 10, 20, 30 of a byte.
std::string convertedBytes(const ConversionSpec& conversion, std::uint32_t flags = 0) {
  FileBuilder file;
  ChannelSpec time{2, 1, 0, 0, 0, 8};
  time.name = "t";
  time.flags = flags;
  time.range_min = 10;
  time.range_max = 30;
  time.conversion = file.addConversion(conversion);
  GroupSpec group = timesOnly(3);
  group.data_bytes = 1;
  file.addSortedGroup(group, {time}, file.addData(Bytes().u8s({10, 20, 30})));
  return file.bytes();
}

TEST(InfoSpans, ValuesArePhysical) {
  const ConversionSpec linear{1, {}, {1, 0.5}, "s", ""};
  EXPECT_EQ(axisOf(infoOf(convertedBytes(linear))), "6.0 to 16.0 by records, 10.0, 0.2");
  EXPECT_EQ(axisOf(infoOf(convertedBytes(linear, 8))), "6.0 to 16.0 by stated range, 10.0, 0.2");
  const ConversionSpec falling{1, {}, {0, -1}, "s", ""};
  EXPECT_EQ(axisOf(infoOf(convertedBytes(falling))), "-10.0 to -30.0 by records, null, null");
  EXPECT_EQ(axisOf(infoOf(convertedBytes(falling, 8))),
            "-30.0 to -10.0 by stated range, 20.0, 0.1");
  const ConversionSpec same{1, {}, {0, 1}, "s", ""};
  EXPECT_EQ(axisOf(infoOf(convertedBytes(same))), "10.0 to 30.0 by records, 20.0, 0.1");
  const ConversionSpec table{4, {}, {0, 0, 100, 10}, "s", ""};
  EXPECT_EQ(axisOf(infoOf(convertedBytes(table))), "1.0 to 3.0 by records, 2.0, 1.0");
}

TEST(InfoSpans, ConversionsThatCannotBeUsedTellNothing) {
  for (const std::uint32_t flags : {0U, 8U}) {
    EXPECT_EQ(axisOf(infoOf(convertedBytes({1, {}, {1}, "s", ""}, flags), 1)), nothing);
    EXPECT_EQ(axisOf(infoOf(convertedBytes({99, {}, {}, "s", ""}, flags))), nothing);
    EXPECT_EQ(axisOf(infoOf(convertedBytes({7, {0}, {10}, "s", ""}, flags))), nothing);
  }
}

TEST(InfoSpans, NumbersOfRecordsForAVirtualMaster) {
  FileBuilder file;
  ChannelSpec time{3, 1};
  time.name = "t";
  time.bit_count = 0;
  time.conversion = file.addConversion({1, {}, {2, 0.25}, "s", ""});
  file.addSortedGroup(timesOnly(5), {time}, 0);
  file.addSortedGroup(timesOnly(0), {time}, 0);
  time.conversion = file.addConversion({1, {}, {0, -0.5}, "s", ""});
  file.addSortedGroup(timesOnly(3), {time}, 0);
  const json info = infoOf(file.bytes());
  EXPECT_EQ(axisOf(info), "2.0 to 3.0 by record numbers, 1.0, 4.0");
  EXPECT_EQ(axisOf(info, 1), nothing);
  EXPECT_EQ(axisOf(info, 2), "0.0 to -1.0 by record numbers, 1.0, 2.0");
}

TEST(InfoSpans, AMasterInAnotherGroupWithAsManyRecords) {
  FileBuilder file;
  const auto master = file.addGroupOf(timesOnly(3), {timeChannel()});
  file.addDataGroup({master}, file.addData(times({0, 1, 4})));
  GroupSpec without = timesOnly(3);
  without.master = master;
  without.flags = 8;
  file.addSortedGroup(without, {}, file.addData(times({7, 8, 9})));
  without.cycles = 2;
  file.addSortedGroup(without, {}, file.addData(times({7, 8})));
  const json info = infoOf(file.bytes());
  EXPECT_EQ(axisOf(info, 1), "0.0 to 4.0 by records, 4.0, 0.5");
  EXPECT_EQ(info["groups"][1]["master_unit"], "s");
  EXPECT_EQ(axisOf(info, 2), nothing);
}

TEST(InfoSpans, OfListedDataAndZippedDataOnlyTheEndsAreRead) {
  const std::string data = times({0, 1, 2, 3, 4, 5});
  FileBuilder listed;
  listed.addSortedGroup(timesOnly(6), {timeChannel()},
                        addList(listed, addPieces(listed, "DT", data, 20)));
  EXPECT_EQ(axisOf(infoOf(listed.bytes())), "0.0 to 5.0 by records, 5.0, 1.0");

  FileBuilder zipped;
  const auto pieces = addZippedPieces(zipped, "DT", data, 16);
  zipped.write(pieces[1] + 48, "no zlib stream");
  zipped.addSortedGroup(timesOnly(6), {timeChannel()}, addList(zipped, pieces));
  EXPECT_EQ(axisOf(infoOf(zipped.bytes())), "0.0 to 5.0 by records, 5.0, 1.0");
  zipped.write(pieces[2] + 48, "no zlib stream");
  EXPECT_EQ(axisOf(infoOf(zipped.bytes(), 1)), nothing);
}

/// Records of two groups in turns, the second one's later, with ids of one byte.
FileBuilder unsorted(const std::string& file_word, std::uint64_t first, std::uint64_t second) {
  FileBuilder file(file_word);
  GroupSpec groups[] = {timesOnly(first), timesOnly(second)};
  groups[1].record_id = 1;
  const std::uint64_t both[] = {file.addGroupOf(groups[0], {timeChannel()}),
                                file.addGroupOf(groups[1], {timeChannel()})};
  const std::string data =
      Bytes().u8(0).f64(0).u8(1).f64(10).u8(1).f64(11).u8(0).f64(2).u8(1).f64(14);
  file.addDataGroup({both[0], both[1]}, file.addData(data), 1);
  return file;
}

TEST(InfoSpans, UnsortedDataIsGoneThrough) {
  const json info = infoOf(unsorted("MDF     ", 2, 3).bytes());
  EXPECT_EQ(axisOf(info), "0.0 to 2.0 by records, 2.0, 0.5");
  EXPECT_EQ(axisOf(info, 1), "10.0 to 14.0 by records, 4.0, 0.5");
  const json wrong = infoOf(unsorted("MDF     ", 2, 2).bytes(), 1);
  EXPECT_EQ(axisOf(wrong), "0.0 to 2.0 by records, 2.0, 0.5");
  EXPECT_EQ(axisOf(wrong, 1), nothing);
}

TEST(InfoSpans, InUnfinishedFilesTheRecordsAreCountedFirst) {
  FileBuilder file = unsorted("UnFinMF ", 0, 0);
  file.write(60, Bytes().u16(1));
  file.addSortedGroup(timesOnly(0), {timeChannel()}, file.addData(times({1, 2, 3})));
  const json info = infoOf(file.bytes());
  EXPECT_EQ(axisOf(info), "0.0 to 2.0 by records, 2.0, 0.5");
  EXPECT_EQ(axisOf(info, 1), "10.0 to 14.0 by records, 4.0, 0.5");
  EXPECT_EQ(axisOf(info, 2), "1.0 to 3.0 by records, 2.0, 1.0");
  EXPECT_EQ(info["duration"], 4.0);
}

TEST(InfoSpans, HeadersAloneHaveStatedRangesAndFinalCounts) {
  FileBuilder file = unsorted("UnFinMF ", 0, 0);
  file.write(60, Bytes().u16(1));
  ChannelSpec time = timeChannel();
  time.flags = 8;
  time.range_max = 2;
  file.addSortedGroup(timesOnly(0), {time}, file.addData(times({0, 1, 2})));
  const json open = infoOf(file.bytes(), 0, "--headers");
  EXPECT_EQ(axisOf(open), nothing);
  EXPECT_EQ(axisOf(open, 2), nothing);
  EXPECT_EQ(open["groups"][0]["records"], json());
  EXPECT_EQ(open["groups"][0]["records_counted"], false);
  EXPECT_EQ(open["groups"][2]["records"], json());
  const json stated = infoOf(fileOf(3, {0, 1, 2}, time), 0, "--headers");
  EXPECT_EQ(axisOf(stated), "0.0 to 2.0 by stated range, 2.0, 1.0");
  const json silent = infoOf(fileOf(3, {0, 1, 2}), 0, "--headers");
  EXPECT_EQ(axisOf(silent), nothing);
  EXPECT_EQ(silent["groups"][0]["records"], 3);

  const TempFile temp(file.bytes());
  const std::string page = run({"info", "--headers", temp.path()}).output;
  EXPECT_PRED2(contains, page,
               "group  data  name  source  records  span  rate  record bytes  channels\n"
               "    0     0                      ?                         8         1\n");
}

}  // namespace
