#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
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

/// A channel of whole bytes.
ChannelSpec channelOf(const std::string& name, unsigned data_type, std::uint32_t byte_offset,
                      std::uint32_t bytes) {
  ChannelSpec channel;
  channel.name = name;
  channel.data_type = data_type;
  channel.byte_offset = byte_offset;
  channel.bit_count = 8 * bytes;
  return channel;
}

/// A group with the time and a channel after it.
std::string fileOf(std::uint64_t records, const ChannelSpec& channel, const std::string& bytes,
                   std::uint32_t invalidation_bytes = 0) {
  FileBuilder file;
  const std::uint64_t time = file.addTime();
  const GroupSpec group{records, 8 + channel.bit_count / 8, invalidation_bytes};
  file.addDataGroup({file.addChannelGroup(group, {time, file.addChannel(channel)})},
                    file.addData(bytes));
  return file.bytes();
}

/// A group without a master, of a channel alone.
std::string fileOfOne(std::uint64_t records, const ChannelSpec& channel, const std::string& bytes) {
  FileBuilder file;
  file.addSortedGroup({records, channel.bit_count / 8}, {channel}, file.addData(bytes));
  return file.bytes();
}

std::string speedFile() {
  ChannelSpec speed = channelOf("speed", 0, 8, 1);
  speed.unit = "km/h";
  return fileOf(4, speed, Bytes().f64(0).u8(10).f64(0.5).u8(20).f64(1).u8(30).f64(2).u8(40));
}

/// A group of times alone.
std::string timesFile(const std::vector<double>& times) {
  Bytes records;
  for (const double time : times) {
    records.f64(time);
  }
  FileBuilder file;
  file.addDataGroup({file.addChannelGroup({times.size(), 8}, {file.addTime()})},
                    file.addData(records));
  return file.bytes();
}

/// Groups of 2, 3 and 2 bytes without masters; the last one has no name.
std::string threeGroups() {
  FileBuilder file;
  for (const std::string name : {"few", "most", ""}) {
    GroupSpec group{name == "most" ? 3U : 2U, 1};
    group.name = name;
    const std::string bytes = name == "most" ? "\1\2\6" : "\7\7";
    file.addSortedGroup(group, {channelOf('n' + name, 0, 0, 1)}, file.addData(bytes));
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

/// What it says of the channels of the only group, from the one at a place on.
std::string channelsOf(const std::string& bytes, std::size_t begin = 0,
                       const std::vector<std::string>& options = {}) {
  const ordered_json json = jsonOf(bytes, options);
  std::string lines;
  for (std::size_t i = begin; i < json["channels"].size(); ++i) {
    lines += json["channels"][i].dump() + '\n';
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
  EXPECT_EQ(statsOf(fileOfOne(2, channelOf("n", 0, 0, 1), "\1\3"), {"--json"}),
            R"({"schema":2,"file":"FILE","group":0,"name":"","records":2,"record_bytes":1,)"
            R"("bytes":2,"master":null,"rate":null,"longest_gap":null,"backwards":null,)"
            R"("first_backwards":null,"channels":[)"
            R"({"name":"n","unit":"","values":2,"invalid":0,"not_finite":0,"first":1,"last":3,)"
            R"("minimum":1,"maximum":3,"mean":2.0,"deviation":1.4142135623730951}]})"
            "\n");
}

TEST(StatsCommand, TimesThatGoBackwards) {
  const std::string bytes = timesFile({0, 1, 0.5, 2, 1.5});
  EXPECT_EQ(axisOf(bytes),
            R"(2.6666666666666665, {"record":2,"from":0.5,"to":2.0,"length":1.5}, 2, )"
            R"({"record":1,"from":1.0,"to":0.5,"length":-0.5})");
  EXPECT_EQ(
      statsOf(bytes),
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

TEST(StatsCommand, TimesThatOnlyGoBackwardsHaveNoRateAndNoGap) {
  EXPECT_EQ(axisOf(timesFile({2, 1})),
            R"(null, null, 1, {"record":0,"from":2.0,"to":1.0,"length":-1.0})");
}

TEST(StatsCommand, TimesThatStayHaveAGapOfNothing) {
  EXPECT_EQ(axisOf(timesFile({2, 2})),
            R"(null, {"record":0,"from":2.0,"to":2.0,"length":0.0}, 0, null)");
}

TEST(StatsCommand, TheFirstOfEqualGapsIsShown) {
  EXPECT_EQ(axisOf(timesFile({0, 1, 2})),
            R"(1.0, {"record":0,"from":0.0,"to":1.0,"length":1.0}, 0, null)");
}

TEST(StatsCommand, TimesThatAreNotFiniteArePassedOver) {
  EXPECT_EQ(axisOf(timesFile({nan, 0, infinite, nan, 2, -infinite})),
            R"(1.5, {"record":1,"from":0.0,"to":2.0,"length":2.0}, 0, null)");
}

TEST(StatsCommand, ATimeAlone) { EXPECT_EQ(axisOf(timesFile({7})), "null, null, 0, null"); }

TEST(StatsCommand, AGroupWithoutRecords) {
  EXPECT_EQ(axisOf(timesFile({})), "null, null, 0, null");
  EXPECT_EQ(
      statsOf(timesFile({})),
      "group  name  records  bytes  rate  longest gap  after  backwards  first after\n"
      "    0              0      0                                    0\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      " deviation\n"
      "    0  time     s          0        0           0\n");
}

TEST(StatsCommand, ASingleValueHasNoDeviation) {
  EXPECT_EQ(channelsOf(timesFile({7})),
            R"({"name":"time","unit":"s","values":1,"invalid":0,"not_finite":0,"first":7.0,)"
            R"("last":7.0,"minimum":7.0,"maximum":7.0,"mean":7.0,"deviation":null})"
            "\n");
}

TEST(StatsCommand, InvalidValuesAreCountedApart) {
  ChannelSpec gear = channelOf("gear", 0, 8, 1);
  gear.flags = 2;  // has an invalidation bit
  const Bytes records =
      Bytes().f64(0).u8(200).u8(1).f64(1).u8(1).u8(0).f64(2).u8(3).u8(0).f64(3).u8(0).u8(1);
  EXPECT_EQ(channelsOf(fileOf(4, gear, records, 1), 1),
            R"({"name":"gear","unit":"","values":2,"invalid":2,"not_finite":0,"first":1,)"
            R"("last":3,"minimum":1,"maximum":3,"mean":2.0,"deviation":1.4142135623730951})"
            "\n");
}

TEST(StatsCommand, AChannelWithoutAnyValue) {
  ChannelSpec gear = channelOf("gear", 0, 8, 1);
  gear.flags = 1;  // all are invalid
  EXPECT_EQ(channelsOf(fileOf(2, gear, Bytes().f64(0).u8(1).f64(1).u8(2)), 1),
            R"({"name":"gear","unit":"","values":0,"invalid":2,"not_finite":0,"first":null,)"
            R"("last":null,"minimum":null,"maximum":null,"mean":null,"deviation":null})"
            "\n");
}

TEST(StatsCommand, ValuesThatAreNotFiniteAreCountedApart) {
  const Bytes records = Bytes().f64(nan).f64(1).f64(infinite).f64(5).f64(3).f64(-infinite);
  const std::string bytes = fileOfOne(6, channelOf("v", real, 0, 8), records);
  EXPECT_EQ(channelsOf(bytes),
            R"({"name":"v","unit":"","values":3,"invalid":0,"not_finite":3,"first":1.0,)"
            R"("last":3.0,"minimum":1.0,"maximum":5.0,"mean":3.0,"deviation":2.0})"
            "\n");
}

TEST(StatsCommand, WhatNoDoubleHoldsIsNull) {
  const double largest = std::numeric_limits<double>::max();
  const Bytes records = Bytes().f64(largest).f64(-largest);
  EXPECT_EQ(channelsOf(fileOfOne(2, channelOf("v", real, 0, 8), records)),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,)"
            R"("first":1.7976931348623157e+308,"last":-1.7976931348623157e+308,)"
            R"("minimum":-1.7976931348623157e+308,"maximum":1.7976931348623157e+308,)"
            R"("mean":null,"deviation":null})"
            "\n");
}

TEST(StatsCommand, LargeIntegersKeepAllTheirDigits) {
  const Bytes unsigneds = Bytes().u64(18446744073709551615U).u64(18446744073709551613U);
  EXPECT_EQ(channelsOf(fileOfOne(2, channelOf("v", 0, 0, 8), unsigneds)),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,)"
            R"("first":18446744073709551615,"last":18446744073709551613,)"
            R"("minimum":18446744073709551613,"maximum":18446744073709551615,)"
            R"("mean":1.8446744073709552e+19,"deviation":1.4142135623730951})"
            "\n");
  const Bytes integers =
      Bytes().i64(std::numeric_limits<std::int64_t>::min()).i64(9223372036854775807);
  EXPECT_EQ(channelsOf(fileOfOne(2, channelOf("v", 2, 0, 8), integers)),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,)"
            R"("first":-9223372036854775808,"last":9223372036854775807,)"
            R"("minimum":-9223372036854775808,"maximum":9223372036854775807,)"
            R"("mean":0.0,"deviation":1.3043817825332783e+19})"
            "\n");
}

TEST(StatsCommand, TimesInNanosecondsKeepAllTheirDigits) {
  ChannelSpec time{2, 1, 0, 0, 0, 64};
  time.name = "t";
  time.unit = "ns";
  const std::uint64_t begin = 1700000000000000000U;
  const Bytes records = Bytes().u64(begin).u64(begin + 1).u64(begin + 4).u64(begin + 3);
  EXPECT_EQ(axisOf(fileOfOne(4, time, records)),
            R"(1.0, {"record":1,"from":1700000000000000001,"to":1700000000000000004,)"
            R"("length":3.0}, 1, {"record":2,"from":1700000000000000004,)"
            R"("to":1700000000000000003,"length":-1.0})");
}

TEST(StatsCommand, DeviationOfValuesFarFromZero) {
  const Bytes records = Bytes().f64(1e9 + 4).f64(1e9 + 7).f64(1e9 + 13).f64(1e9 + 16);
  EXPECT_EQ(channelsOf(fileOfOne(4, channelOf("v", real, 0, 8), records)),
            R"({"name":"v","unit":"","values":4,"invalid":0,"not_finite":0,)"
            R"("first":1000000004.0,"last":1000000016.0,"minimum":1000000004.0,)"
            R"("maximum":1000000016.0,"mean":1000000010.0,"deviation":5.477225575051661})"
            "\n");
}

TEST(StatsCommand, AConstantDoesNotDeviate) {
  Bytes records;
  for (int i = 0; i < 5000; ++i) {
    records.f64(0.1);
  }
  EXPECT_EQ(channelsOf(fileOfOne(5000, channelOf("v", real, 0, 8), records)),
            R"({"name":"v","unit":"","values":5000,"invalid":0,"not_finite":0,"first":0.1,)"
            R"("last":0.1,"minimum":0.1,"maximum":0.1,"mean":0.1,"deviation":0.0})"
            "\n");
}

/// 0 to 2047: their variance is 2048 * 2049 / 12.
TEST(StatsCommand, ManyValues) {
  Bytes records;
  for (std::uint16_t i = 0; i < 2048; ++i) {
    records.u16(i);
  }
  EXPECT_EQ(channelsOf(fileOfOne(2048, channelOf("v", 0, 0, 2), records)),
            R"({"name":"v","unit":"","values":2048,"invalid":0,"not_finite":0,"first":0,)"
            R"("last":2047,"minimum":0,"maximum":2047,"mean":1023.5,)"
            R"("deviation":591.3509956024425})"
            "\n");
}

/// As many, each after a value that is not finite.
TEST(StatsCommand, ManyValuesAmongOthers) {
  Bytes records;
  for (int i = 0; i < 2048; ++i) {
    records.f64(nan).f64(i);
  }
  EXPECT_EQ(channelsOf(fileOfOne(4096, channelOf("v", real, 0, 8), records)),
            R"({"name":"v","unit":"","values":2048,"invalid":0,"not_finite":2048,"first":0.0,)"
            R"("last":2047.0,"minimum":0.0,"maximum":2047.0,"mean":1023.5,)"
            R"("deviation":591.3509956024425})"
            "\n");
}

TEST(StatsCommand, TextsHaveAFirstAndALast) {
  const std::string bytes = fileOfOne(3, channelOf("state", latin1, 0, 3), "on onxoff");
  EXPECT_EQ(channelsOf(bytes),
            R"({"name":"state","unit":"","values":3,"invalid":0,"not_finite":0,"first":"on ",)"
            R"("last":"off","minimum":null,"maximum":null,"mean":null,"deviation":null})"
            "\n");
  EXPECT_EQ(
      statsOf(bytes),
      "group  name  records  bytes  rate  longest gap  after  backwards  first after\n"
      "    0              3      9\n"
      "\n"
      "group  channel  unit  values  invalid  not finite  first  last  minimum  maximum  mean "
      " deviation\n"
      "    0  state               3        0           0    on    off\n");
}

TEST(StatsCommand, TextsOfInvalidSamplesAreNone) {
  ChannelSpec state = channelOf("state", latin1, 8, 1);
  state.flags = 2;  // has an invalidation bit
  const Bytes records = Bytes()
                            .f64(0)
                            .text("a")
                            .u8(1)
                            .f64(1)
                            .text("b")
                            .u8(0)
                            .f64(2)
                            .text("c")
                            .u8(0)
                            .f64(3)
                            .text("d")
                            .u8(1);
  EXPECT_EQ(channelsOf(fileOf(4, state, records, 1), 1),
            R"({"name":"state","unit":"","values":2,"invalid":2,"not_finite":0,"first":"b",)"
            R"("last":"c","minimum":null,"maximum":null,"mean":null,"deviation":null})"
            "\n");
}

TEST(StatsCommand, LongTextsAreCutBetweenCharacters) {
  constexpr unsigned utf8 = 7;
  const std::string text = std::string(999, 'x') + "\u00e4 and more";
  const std::string bytes =
      fileOfOne(1, channelOf("v", utf8, 0, static_cast<std::uint32_t>(text.size())), text);
  const ordered_json json = jsonOf(bytes, {});
  EXPECT_EQ(json["channels"][0]["first"], std::string(999, 'x') + "...");
  EXPECT_NE(statsOf(bytes).find(' ' + std::string(21, 'x') + "...  "), std::string::npos);
}

TEST(StatsCommand, BytesAreShownAsDigits) {
  constexpr unsigned byte_array = 10;
  const std::string bytes =
      fileOfOne(2, channelOf("v", byte_array, 0, 2), Bytes().u8s({0, 255, 1, 16}));
  EXPECT_EQ(channelsOf(bytes),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,"first":"00ff",)"
            R"("last":"0110","minimum":null,"maximum":null,"mean":null,"deviation":null})"
            "\n");
  const std::string longer =
      fileOfOne(1, channelOf("v", byte_array, 0, 501), std::string(501, '\1'));
  std::string digits;
  for (int i = 0; i < 500; ++i) {
    digits += "01";
  }
  EXPECT_EQ(jsonOf(longer, {})["channels"][0]["last"], digits + "...");
}

TEST(StatsCommand, PartOfTheSamples) {
  EXPECT_EQ(channelsOf(speedFile(), 0, {"--from", "0.5", "--to", "1", "-c", "speed"}),
            R"({"name":"time","unit":"s","values":2,"invalid":0,"not_finite":0,"first":0.5,)"
            R"("last":1.0,"minimum":0.5,"maximum":1.0,"mean":0.75,)"
            R"("deviation":0.3535533905932738})"
            "\n"
            R"({"name":"speed","unit":"km/h","values":2,"invalid":0,"not_finite":0,"first":20,)"
            R"("last":30,"minimum":20,"maximum":30,"mean":25.0,"deviation":7.0710678118654755})"
            "\n");
  EXPECT_EQ(axisOf(speedFile(), {"--from", "0.5"}),
            R"(1.3333333333333333, {"record":2,"from":1.0,"to":2.0,"length":1.0}, 0, null)");
  EXPECT_EQ(axisOf(timesFile({0, 1, 2, 3, 4, 6, 8}), {"--stride", "3"}),
            R"(0.25, {"record":3,"from":3.0,"to":8.0,"length":5.0}, 0, null)");
}

TEST(StatsCommand, PhysicalAndStoredValues) {
  FileBuilder file;
  ChannelSpec channel = channelOf("v", 0, 0, 1);
  channel.conversion = file.addConversion({1, {}, {0.5, 2}});  // 2 x + 0.5
  file.addSortedGroup({2, 1}, {channel}, file.addData("\1\3"));
  EXPECT_EQ(channelsOf(file.bytes()),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,"first":2.5,)"
            R"("last":6.5,"minimum":2.5,"maximum":6.5,"mean":4.5,"deviation":2.8284271247461903})"
            "\n");
  EXPECT_EQ(channelsOf(file.bytes(), 0, {"--raw"}),
            R"({"name":"v","unit":"","values":2,"invalid":0,"not_finite":0,"first":1,)"
            R"("last":3,"minimum":1,"maximum":3,"mean":2.0,"deviation":1.4142135623730951})"
            "\n");
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
  ChannelSpec array = channelOf("v", 0, 0, 1);
  array.composition =
      file.add("CA", {0}, Bytes().u8(0).u8(1).u16(1).zeros(12).u64(2).u64(1).u64(1));
  file.addDataGroup({file.addChannelGroup({1, 1}, {file.addChannel(array)})},
                    file.addData(Bytes().u8s({0, 7, 1, 8})), 1);
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
  const TempFile first(fileOfOne(1, channelOf("n", 0, 0, 1), "\1"));
  const TempFile second(fileOfOne(1, channelOf("n", 0, 0, 1), "\2"));
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
