#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using nlohmann::ordered_json;

namespace {

constexpr unsigned real = 4;
constexpr unsigned latin1 = 6;
const double nan = std::numeric_limits<double>::quiet_NaN();
const double infinite = std::numeric_limits<double>::infinity();

/// A file with a group of these channels, and invalidation bytes after them.
std::string fileOf(std::uint64_t records, const std::vector<ChannelSpec>& channels,
                   const std::string& bytes, std::uint32_t invalidation_bytes = 0) {
  FileBuilder file;
  const ChannelSpec& last = channels.back();
  file.addSortedGroup({records, last.byte_offset + last.bit_count / 8, invalidation_bytes},
                      channels, file.addData(bytes));
  return file.bytes();
}

/// The same of a channel "v" alone.
std::string valuesFile(std::uint64_t records, unsigned data_type, std::uint32_t bytes,
                       const std::string& data) {
  return fileOf(records, {channelOf("v", data_type, 0, 8 * bytes)}, data);
}

std::string speedFile() {
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "km/h";
  return fileOf(4, {timeChannel(), speed},
                Bytes().f64(0).u8(10).f64(0.5).u8(20).f64(1).u8(30).f64(2).u8(40));
}

/// A group of times alone.
std::string timesFile(const std::vector<double>& times) {
  Bytes records;
  for (const double time : times) {
    records.f64(time);
  }
  return fileOf(times.size(), {timeChannel()}, records);
}

/// Groups of 2, 3 and 2 bytes without masters; the last one has no name.
std::string threeGroups() {
  FileBuilder file;
  for (const std::string name : {"few", "most", ""}) {
    GroupSpec group{name == "most" ? 3U : 2U, 1};
    group.name = name;
    const std::string bytes = name == "most" ? "\1\2\6" : "\7\7";
    file.addSortedGroup(group, {firstByte('n' + name)}, file.addData(bytes));
  }
  return file.bytes();
}

/// What the command says of a healthy file, which is called FILE.
std::string statsOf(const std::string& bytes, const std::vector<std::string>& options = {}) {
  const TempFile file(bytes);
  std::vector<std::string> words = {"stats", file.path()};
  words.insert(words.end(), options.begin(), options.end());
  RunResult result = run(words);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  for (std::size_t at = 0; (at = result.output.find(file.path())) != std::string::npos;) {
    result.output.replace(at, file.path().size(), "FILE");
  }
  return result.output;
}

/// The same as JSON, of a file with one group.
ordered_json jsonOf(const std::string& bytes, std::vector<std::string> options) {
  options.emplace_back("--json");
  return ordered_json::parse(statsOf(bytes, options));
}

/// What it says of the channels of the only group, from the one at a place on: in each line name,
/// unit, values, invalid ones, not finite ones, first, last, minimum, maximum, mean and deviation.
std::string channelsOf(const std::string& bytes, std::size_t begin = 0,
                       const std::vector<std::string>& options = {}) {
  const ordered_json json = jsonOf(bytes, options);
  std::string lines;
  for (std::size_t i = begin; i < json["channels"].size(); ++i) {
    lines += lines.empty() ? "" : "\n";
    for (const ordered_json& value : json["channels"][i]) {
      lines += (lines.empty() || lines.back() == '\n' ? "" : " ") + value.dump();
    }
  }
  return lines;
}

/// What it says of the master channel of the only group.
std::string axisOf(const std::string& bytes, const std::vector<std::string>& options = {}) {
  const ordered_json json = jsonOf(bytes, options);
  return json["rate"].dump() + ", " + json["longest_gap"].dump() + ", " + json["backwards"].dump() +
         ", " + json["first_backwards"].dump();
}

TEST(StatsCommand, PageOfAFile) {
  EXPECT_EQ(
      statsOf(speedFile()),
      "group  name  records  bytes   rate  longest gap  after           backwards  first after\n"
      "    0              4     36  1.5/s          1 s  1 s (record 2)          0\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum   mean  "
      "         deviation\n"
      "    0  time     s          4        0           0      0     2        0        2  0.875  "
      "0.8539125638299665\n"
      "    0  speed    km/h       4        0           0     10    40       10       40     25  "
      "12.909944487358056\n");
}

TEST(StatsCommand, JsonHasALineForEachGroup) {
  EXPECT_EQ(statsOf(speedFile(), {"--json"}),
            R"({"schema":2,"file":"FILE","group":0,"name":"","records":4,"record_bytes":9,)"
            R"("bytes":36,"master":"time","rate":1.5,)"
            R"("longest_gap":{"record":2,"from":1.0,"to":2.0,"length":1.0},)"
            R"("backwards":0,"first_backwards":null,"channels":[)"
            R"({"name":"time","unit":"s","values":4,"invalid":0,"not_finite":0,"first":0.0,)"
            R"("last":2.0,"minimum":0.0,"maximum":2.0,"mean":0.875,)"
            R"("deviation":0.8539125638299665},)"
            R"({"name":"speed","unit":"km/h","values":4,"invalid":0,"not_finite":0,"first":10,)"
            R"("last":40,"minimum":10,"maximum":40,"mean":25.0,)"
            R"("deviation":12.909944487358056}]})"
            "\n");
}

TEST(StatsCommand, WithoutAMasterThereIsNoAxis) {
  EXPECT_EQ(statsOf(fileOf(2, {firstByte("n")}, "\1\3"), {"--json"}),
            R"({"schema":2,"file":"FILE","group":0,"name":"","records":2,"record_bytes":1,)"
            R"("bytes":2,"master":null,"rate":null,"longest_gap":null,"backwards":null,)"
            R"("first_backwards":null,"channels":[)"
            R"({"name":"n","unit":"","values":2,"invalid":0,"not_finite":0,"first":1,"last":3,)"
            R"("minimum":1,"maximum":3,"mean":2.0,"deviation":1.4142135623730951}]})"
            "\n");
}

TEST(StatsCommand, TimesThatGoBackwards) {
  EXPECT_EQ(
      statsOf(timesFile({0, 1, 0.5, 2, 1.5})),
      "group  name  records  bytes                  rate  longest gap  after             "
      "backwards  first after\n"
      "    0              5     40  2.6666666666666665/s        1.5 s  0.5 s (record 2)  "
      "        2  1 s (record 1)\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      "          deviation\n"
      "    0  time     s          5        0           0      0   1.5        0        2     1 "
      " 0.7905694150420949\n");
}

TEST(StatsCommand, RateGapsAndStepsBackwards) {
  const std::vector<std::pair<std::vector<double>, std::string>> cases = {
      {{0, 1, 0.5, 2, 1.5},
       R"(2.6666666666666665, {"record":2,"from":0.5,"to":2.0,"length":1.5}, 2, )"
       R"({"record":1,"from":1.0,"to":0.5,"length":-0.5})"},
      {{2, 1}, R"(null, null, 1, {"record":0,"from":2.0,"to":1.0,"length":-1.0})"},
      {{2, 2}, R"(null, {"record":0,"from":2.0,"to":2.0,"length":0.0}, 0, null)"},
      {{0, 1, 2}, R"(1.0, {"record":0,"from":0.0,"to":1.0,"length":1.0}, 0, null)"},
      {{nan, 0, infinite, nan, 2, -infinite},
       R"(1.5, {"record":1,"from":0.0,"to":2.0,"length":2.0}, 0, null)"},
      {{7}, "null, null, 0, null"},
      {{}, "null, null, 0, null"},
  };
  for (const auto& [times, axis] : cases) {
    EXPECT_EQ(axisOf(timesFile(times)), axis) << testing::PrintToString(times);
  }
}

TEST(StatsCommand, AGroupWithoutRecords) {
  EXPECT_EQ(
      statsOf(timesFile({})),
      "group  name  records  bytes  rate  longest gap  after  backwards  first after\n"
      "    0              0      0                                    0\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      " deviation\n"
      "    0  time     s          0        0           0\n");
}

TEST(StatsCommand, InvalidValuesAreCountedApart) {
  ChannelSpec gear = channelOf("gear", 0, 8, 8);
  gear.flags = 2;  // has an invalidation bit
  const Bytes numbers =
      Bytes().f64(0).u8(200).u8(1).f64(1).u8(1).u8(0).f64(2).u8(3).u8(0).f64(3).u8(0).u8(1);
  EXPECT_EQ(channelsOf(fileOf(4, {timeChannel(), gear}, numbers, 1), 1),
            R"("gear" "" 2 2 0 1 3 1 3 2.0 1.4142135623730951)");
  gear.data_type = latin1;
  const std::string texts =
      f64(0) + "a\1" + f64(1) + "b" + u8(0) + f64(2) + "c" + u8(0) + f64(3) + "d\1";
  EXPECT_EQ(channelsOf(fileOf(4, {timeChannel(), gear}, texts, 1), 1),
            R"("gear" "" 2 2 0 "b" "c" null null null null)");
  gear.flags = 1;  // all are invalid
  EXPECT_EQ(channelsOf(fileOf(2, {timeChannel(), gear}, f64(0) + "a" + f64(1) + "b"), 1),
            R"("gear" "" 0 2 0 null null null null null null)");
}

TEST(StatsCommand, NumbersOfAChannel) {
  const double largest = std::numeric_limits<double>::max();
  // The deviation of 0 to 2047 is the root of 2048 * 2049 / 12.
  std::string counted;
  std::string counted_between;
  std::string tenths;
  for (int i = 0; i < 2048; ++i) {
    counted += u16(i);
    counted_between += f64(nan, i);
    tenths += f64(0.1);
  }
  struct Case {
    std::string bytes;
    std::string line;
  };
  const std::vector<Case> cases = {
      {timesFile({7}), R"("time" "s" 1 0 0 7.0 7.0 7.0 7.0 7.0 null)"},
      {valuesFile(6, real, 8, f64(nan, 1, infinite, 5, 3, -infinite)),
       R"("v" "" 3 0 3 1.0 3.0 1.0 5.0 3.0 2.0)"},
      {valuesFile(2, real, 8, f64(largest, -largest)),
       R"("v" "" 2 0 0 1.7976931348623157e+308 -1.7976931348623157e+308 )"
       R"(-1.7976931348623157e+308 1.7976931348623157e+308 null null)"},
      {valuesFile(2, 0, 8, u64(18446744073709551615U, 18446744073709551613U)),
       R"("v" "" 2 0 0 18446744073709551615 18446744073709551613 18446744073709551613 )"
       R"(18446744073709551615 1.8446744073709552e+19 1.4142135623730951)"},
      {valuesFile(2, 2, 8, Bytes().i64(INT64_MIN).i64(INT64_MAX)),
       R"("v" "" 2 0 0 -9223372036854775808 9223372036854775807 -9223372036854775808 )"
       R"(9223372036854775807 0.0 1.3043817825332783e+19)"},
      {valuesFile(4, real, 8, f64(1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16)),
       R"("v" "" 4 0 0 1000000004.0 1000000016.0 1000000004.0 1000000016.0 1000000010.0 )"
       R"(5.477225575051661)"},
      {valuesFile(2048, real, 8, tenths), R"("v" "" 2048 0 0 0.1 0.1 0.1 0.1 0.1 0.0)"},
      {valuesFile(2048, 0, 2, counted),
       R"("v" "" 2048 0 0 0 2047 0 2047 1023.5 591.3509956024425)"},
      {valuesFile(4096, real, 8, counted_between),
       R"("v" "" 2048 0 2048 0.0 2047.0 0.0 2047.0 1023.5 591.3509956024425)"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(channelsOf(each.bytes), each.line);
  }
}

TEST(StatsCommand, TimesInNanosecondsKeepAllTheirDigits) {
  ChannelSpec time = channelOf("t", 0, 0, 64);
  time.type = 2;
  time.sync_type = 1;
  time.unit = "ns";
  const std::uint64_t begin = 1700000000000000000U;
  EXPECT_EQ(axisOf(fileOf(4, {time}, u64(begin, begin + 1, begin + 4, begin + 3))),
            R"(1.0, {"record":1,"from":1700000000000000001,"to":1700000000000000004,)"
            R"("length":3.0}, 1, {"record":2,"from":1700000000000000004,)"
            R"("to":1700000000000000003,"length":-1.0})");
}

TEST(StatsCommand, TextsHaveAFirstAndALast) {
  const std::string bytes = fileOf(3, {channelOf("state", latin1, 0, 24)}, "on onxoff");
  EXPECT_EQ(channelsOf(bytes), R"("state" "" 3 0 0 "on " "off" null null null null)");
  EXPECT_EQ(
      statsOf(bytes),
      "group  name  records  bytes  rate  longest gap  after  backwards  first after\n"
      "    0              3      9\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      " deviation\n"
      "    0  state               3        0           0    on    off\n");
}

TEST(StatsCommand, LongTextsAreCutBetweenCharacters) {
  constexpr unsigned utf8 = 7;
  const std::string text = std::string(999, 'x') + "\u00e4 and more";
  const std::string bytes = valuesFile(1, utf8, static_cast<std::uint32_t>(text.size()), text);
  EXPECT_EQ(jsonOf(bytes, {})["channels"][0]["first"], std::string(999, 'x') + "...");
  EXPECT_NE(statsOf(bytes).find(' ' + std::string(21, 'x') + "...  "), std::string::npos);
}

TEST(StatsCommand, BytesAreShownAsDigits) {
  constexpr unsigned byte_array = 10;
  EXPECT_EQ(channelsOf(valuesFile(2, byte_array, 2, u8(0, 255, 1, 16))),
            R"("v" "" 2 0 0 "00ff" "0110" null null null null)");
  const std::string longer = valuesFile(1, byte_array, 501, std::string(501, '\x11'));
  EXPECT_EQ(jsonOf(longer, {})["channels"][0]["last"], std::string(1000, '1') + "...");
}

TEST(StatsCommand, PartOfTheSamples) {
  EXPECT_EQ(channelsOf(speedFile(), 0, {"--from", "0.5", "--to", "1", "-c", "speed"}),
            R"("time" "s" 2 0 0 0.5 1.0 0.5 1.0 0.75 0.3535533905932738)"
            "\n"
            R"("speed" "km/h" 2 0 0 20 30 20 30 25.0 7.0710678118654755)");
  EXPECT_EQ(axisOf(speedFile(), {"--from", "0.5"}),
            R"(1.3333333333333333, {"record":2,"from":1.0,"to":2.0,"length":1.0}, 0, null)");
  EXPECT_EQ(axisOf(timesFile({0, 1, 2, 3, 4, 6, 8}), {"--stride", "3"}),
            R"(0.25, {"record":3,"from":3.0,"to":8.0,"length":5.0}, 0, null)");
}

TEST(StatsCommand, PhysicalAndStoredValues) {
  FileBuilder file;
  ChannelSpec channel = firstByte("v");
  channel.conversion = file.addConversion({1, {}, {0.5, 2}});  // 2 x + 0.5
  file.addSortedGroup({2, 1}, {channel}, file.addData("\1\3"));
  EXPECT_EQ(channelsOf(file.bytes()), R"("v" "" 2 0 0 2.5 6.5 2.5 6.5 4.5 2.8284271247461903)");
  EXPECT_EQ(channelsOf(file.bytes(), 0, {"--raw"}),
            R"("v" "" 2 0 0 1 3 1 3 2.0 1.4142135623730951)");
}

const std::string titles_of_groups =
    "group  name  records  bytes  rate  longest gap  after  backwards  first after\n";
const std::string titles_of_channels =
    "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean  "
    "         deviation\n";
const std::string few =
    "    0  nfew                2        0           0      7     7        7   "
    "     7     7                   0\n";
const std::string most =
    "    1  nmost               3        0           0      1     6        1   "
    "     6     3  2.6457513110645907\n";
const std::string unnamed =
    "    2  n                   2        0           0      7     7        "
    "7        7     7                   0\n";

TEST(StatsCommand, GroupsComeInTheFilesOrder) {
  EXPECT_EQ(statsOf(threeGroups()), titles_of_groups +
                                        "    0  few         2      2\n"
                                        "    1  most        3      3\n"
                                        "    2              2      2\n"
                                        "\n" +
                                        titles_of_channels + few + most + unnamed);
}

TEST(StatsCommand, LargestGroupsFirst) {
  EXPECT_EQ(statsOf(threeGroups(), {"--du"}), titles_of_groups +
                                                  "    1  most        3      3\n"
                                                  "    0  few         2      2\n"
                                                  "    2              2      2\n"
                                                  "\n" +
                                                  titles_of_channels + most + few + unnamed);
  std::string order;
  std::istringstream lines(statsOf(threeGroups(), {"--du", "--json"}));
  for (std::string line; std::getline(lines, line);) {
    order += ordered_json::parse(line)["group"].dump();
  }
  EXPECT_EQ(order, "102");
}

TEST(StatsCommand, ElementsWithRecordsOfTheirOwnAreGroups) {
  FileBuilder file;
  ChannelSpec array = firstByte("v");
  array.composition =
      file.add("CA", {0}, Bytes().u8(0).u8(1).u16(1).zeros(12).u64(2).u64(1).u64(1));
  file.addDataGroup({file.addGroupOf({1, 1}, {array})}, file.addData(u8(0, 7, 1, 8)), 1);
  EXPECT_EQ(
      statsOf(file.bytes()),
      "group  name  records  bytes  rate  longest gap  after  backwards  first after\n"
      "  0.0              1      2\n"
      "  0.1              1      2\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      " deviation\n"
      "  0.0  v[0]                1        0           0      7     7        7        7     7\n"
      "  0.1  v[1]                1        0           0      8     8        8        8     8\n");
  const std::string json = statsOf(file.bytes(), {"--json"});
  EXPECT_EQ(json.substr(0, json.find(",\"master\"")),
            R"({"schema":2,"file":"FILE","group":0,"element":0,"name":"","records":1,)"
            R"("record_bytes":2,"bytes":2)");
}

TEST(StatsCommand, SeveralFilesAreNamed) {
  const TempFile first(fileOf(1, {firstByte("n")}, "\1"));
  const TempFile second(fileOf(1, {firstByte("n")}, "\2"));
  const RunResult page = run({"stats", first.path(), second.path()});
  const std::string groups = titles_of_groups + "    0              1      1\n\n";
  const std::string channels =
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean  "
      "deviation\n"
      "    0  n                   1        0           0      ";
  EXPECT_EQ(page.output, first.path() + ":\n" + groups + channels +
                             "1     1        1        1     1\n" + "\n" + second.path() + ":\n" +
                             groups + channels + "2     2        2        2     2\n");
  EXPECT_EQ(page.exit_code, 0);
  std::istringstream lines(run({"stats", "--json", first.path(), second.path()}).output);
  for (const TempFile* const file : {&first, &second}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(ordered_json::parse(line)["file"], file->path());
  }
}

TEST(StatsCommand, NothingThatIsWanted) {
  const TempFile file(speedFile());
  const RunResult result = run({"stats", file.path(), "-c", "rpm"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": note: no channel matches \"rpm\"\n");
}

TEST(StatsCommand, AFileWithoutGroupsHasNone) {
  EXPECT_EQ(statsOf(FileBuilder().bytes()), "");
  EXPECT_EQ(statsOf(FileBuilder().bytes(), {"--json"}), "");
}

TEST(StatsCommand, ProblemsOfTheFile) {
  const std::string bytes = threeGroups();
  const TempFile file(bytes.substr(0, bytes.size() - 1));
  const RunResult result = run({"stats", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, statsOf(bytes));
  EXPECT_EQ(result.messages, "mdf: " + file.path() +
                                 ": 1344 (0x540): expected all links and fields of ##DG, found a "
                                 "length of 64 and 4 links\n");
}

TEST(StatsCommand, UnreadableFileAndWrongOptions) {
  EXPECT_EQ(run({"stats", "/nowhere/trip.mf4"}).exit_code, 2);
  EXPECT_EQ(run({"stats"}).exit_code, 2);
  EXPECT_EQ(run({"stats", "x.mf4", "--from", "soon"}).exit_code, 2);
}

TEST(StatsCommand, HelpHasExamples) {
  const RunResult result = run({"stats", "--help"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_NE(result.output.find("mdf stats trip.mf4 --du"), std::string::npos);
}

}  // namespace
