// mdf export --on-time

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/sampling/exported.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

struct Sample {
  double time;
  int value;
};

GroupSpec groupCalled(const std::string& name, std::size_t records, std::uint32_t bytes) {
  GroupSpec group{records, bytes};
  group.name = name;
  return group;
}

/// A channel after the time.
ChannelSpec afterTime(const std::string& name) { return channelOf(name, 0, 8, 8); }

/// A group with the time and one channel of bytes.
void addGroup(FileBuilder& file, const std::string& group, const std::string& channel,
              const std::vector<Sample>& samples) {
  Bytes records;
  for (const Sample& sample : samples) {
    records.f64(sample.time).u8(static_cast<std::uint8_t>(sample.value));
  }
  file.addSortedGroup(groupCalled(group, samples.size(), 9), {timeChannel(), afterTime(channel)},
                      file.addData(records));
}

/// An engine at 0, 1 and 2 s, and the speed at 0.5 and 1.5 s.
FileBuilder trip() {
  FileBuilder file;
  addGroup(file, "engine", "rpm", {{0, 10}, {1, 20}, {2, 40}});
  addGroup(file, "gps", "speed", {{0.5, 1}, {1.5, 3}});
  return file;
}

RunResult onTime(const FileBuilder& builder, std::vector<std::string> options) {
  const TempFile file(builder.bytes());
  options.insert(options.begin(), {"export", file.path(), "--on-time"});
  RunResult result = run(options);
  const std::size_t at = result.messages.find(file.path());
  if (at != std::string::npos) {
    result.messages.replace(at, file.path().size(), "FILE");
  }
  return result;
}

TEST(ExportOnTime, OneTable) {
  struct Case {
    std::vector<std::string> options;
    std::string table;
  };
  const std::string both = "time [s],rpm,speed\n";
  const std::vector<Case> cases = {
      {{"engine"}, both + "0,10,\n1,20,1\n2,40,\n"},
      {{"0", "--linear"}, both + "0,10,\n1,20,2\n2,40,\n"},
      {{"gps"}, both + "0.5,10,1\n1.5,20,3\n"},
      {{"g*", "--linear"}, both + "0.5,15,1\n1.5,30,3\n"},
      {{"2Hz"}, both + "0,10,\n0.5,10,1\n1,20,1\n1.5,20,3\n2,40,\n"},
      {{"500ms", "--linear"}, both + "0,10,\n0.5,15,1\n1,20,2\n1.5,30,3\n2,40,\n"},
      {{"1e-9Hz"}, both + "0,10,\n"},
      {{"10s"}, both + "0,10,\n"},
      {{"0.5s", "--from", "0.75", "--to", "1.6"}, both + "0.75,10,1\n1.25,20,1\n"},
      {{"2Hz", "--from", "-1", "--to", "0.6"}, both + "0,10,\n0.5,10,1\n"},
      {{"2Hz", "--first", "3", "--stride", "2"}, both + "0,10,\n1,20,1\n"},
      {{"engine", "--from", "0.1", "--to", "1.9"}, both + "1,20,1\n"},
      {{"engine", "--stride", "2"}, both + "0,10,\n2,40,\n"},
      {{"engine", "--first", "2"}, both + "0,10,\n1,20,1\n"},
      {{"2Hz", "--skip", "1", "--first", "2"}, both + "0.5,10,1\n1,20,1\n"},
      {{"engine", "--skip", "1"}, both + "1,20,1\n2,40,\n"},
      {{"engine", "--last", "2"}, both + "1,20,1\n2,40,\n"},
      {{"engine", "-c", "speed"}, "time [s],speed\n0,\n1,1\n2,\n"},
      {{"engine", "-g", "gps"}, "time [s],speed\n0,\n1,1\n2,\n"},
      {{"engine", "-c", "time"}, "time [s]\n0\n1\n2\n"},
      {{"gps", "-g", "0", "--linear", "--digits", "2"}, "time [s],rpm\n0.5,15\n1.5,30\n"},
      {{"1Hz", "-c", "speed"}, "time [s],speed\n0.5,1\n1.5,3\n"},
  };
  for (const Case& each : cases) {
    EXPECT_EQ(onTime(trip(), each.options), wrote(each.table))
        << testing::PrintToString(each.options);
  }
}

TEST(ExportOnTime, WhatIsRefused) {
  const auto refusal = [](const std::vector<std::string>& options) {
    const RunResult result = onTime(trip(), options);
    EXPECT_EQ(result.output, "");
    return std::to_string(result.exit_code) + ' ' + result.messages;
  };
  const std::string rates = "\" is not a rate from 1e-9Hz to 1e9Hz, or from 1ns to 1e9s\n";
  for (const std::string rate : {"0Hz", "-1Hz", "1e-300Hz", "1e300Hz", "1e999s", "0.1ns", "2GHz"}) {
    EXPECT_EQ(refusal({rate}), "2 mdf: --on-time: \"" + rate + rates);
  }
  EXPECT_EQ(refusal({"1Hz", "--last", "1"}),
            "2 mdf: --last needs a channel group for --on-time: where the rows of a rate end is "
            "known when all is read\n");
  EXPECT_EQ(refusal({"1Hz", "--raw"}).substr(0, 1), "2");
  EXPECT_EQ(refusal({"nanHz"}),
            "1 mdf: FILE: expected one channel group for the rows, found none that matches "
            "\"nanHz\"\n");
  EXPECT_EQ(refusal({"*"}),
            "1 mdf: FILE: expected one channel group for the rows, found 2 that match \"*\": 0 "
            "\"engine\", 1 \"gps\"\n");
  EXPECT_EQ(refusal({"engine", "-c", "fuel"}), "1 mdf: FILE: note: no channel matches \"fuel\"\n");
}

TEST(ExportOnTime, JsonSaysWhoseTheRowsAre) {
  const TempFile file(trip().bytes());
  const std::string begin = "{\"schema\":2,\"file\":\"" + file.path() + "\",\"group\":";
  const std::string columns =
      ",\"columns\":[{\"name\":\"time\",\"unit\":\"s\"},{\"name\":\"speed\",\"unit\":\"\"}]}\n";
  EXPECT_EQ(run({"export", file.path(), "--json", "-c", "speed", "--on-time", "1", "--first", "1"}),
            wrote(begin + "1,\"name\":\"gps\"" + columns + begin +
                  "1,\"values\":{\"time\":0.5,\"speed\":1}}\n"));
  EXPECT_EQ(
      run({"export", file.path(), "--json", "-c", "speed", "--on-time", "1s", "--first", "1"}),
      wrote(begin + "null,\"name\":\"\"" + columns + begin +
            "null,\"values\":{\"time\":0.5,\"speed\":1}}\n"));
}

TEST(ExportOnTime, AFileForEachInputInAFolder) {
  const ScratchFolder folder;
  folder.write("a.mf4", trip().bytes());
  folder.write("b.mf4", trip().bytes());
  EXPECT_EQ(run({"export", (folder / "a.mf4").string(), (folder / "b.mf4").string(), "-o",
                 (folder / "new").string() + "/", "--on-time", "gps"}),
            wrote(""));
  for (const char* const name : {"new/a.csv", "new/b.csv"}) {
    EXPECT_EQ(bytesOf(folder / name), "time [s],rpm,speed\n0.5,10,1\n1.5,20,3\n") << name;
  }
}

TEST(ExportOnTime, NamesThatSeveralGroupsHave) {
  FileBuilder file;
  addGroup(file, "a", "v", {{0, 1}});
  addGroup(file, "b", "v", {{0, 2}});
  addGroup(file, "b", "v", {{0, 3}});
  addGroup(file, "", "w", {{0, 4}});
  addGroup(file, "c", "time", {{0, 5}});
  addGroup(file, "d", "a.v", {{0, 6}});
  EXPECT_EQ(onTime(file, {"a"}).output, "time [s],a.v,1.v,2.v,w,time (2),a.v (2)\n0,1,2,3,4,5,6\n");
}

/// Numbers and texts whose second sample is invalid.
TEST(ExportOnTime, InvalidSamplesAndTexts) {
  FileBuilder file;
  ChannelSpec number = afterTime("number");
  number.flags = 2;
  ChannelSpec text = number;
  text.name = "text";
  text.data_type = 7;
  text.byte_offset = 9;
  text.bit_count = 16;
  Bytes data;
  const auto add = [&](double time, std::uint8_t value, const std::string& label, bool is_valid) {
    data.f64(time).u8(value).text(label).u8(is_valid ? 0 : 1);
  };
  add(0, 1, "on", true);
  add(1, 2, "xx", false);
  add(2, 3, "of", true);
  add(3, 5, "at", true);
  file.addSortedGroup({4, 11, 1}, {timeChannel(), number, text}, file.addData(data));
  EXPECT_EQ(
      onTime(file, {"2Hz"}),
      wrote("time [s],number,text\n0,1,on\n0.5,1,on\n1,,\n1.5,,\n2,3,of\n2.5,3,of\n3,5,at\n"));
  EXPECT_EQ(onTime(file, {"2Hz", "--linear"}),
            wrote("time [s],number,text\n0,1,on\n0.5,,on\n1,,\n1.5,,\n2,3,of\n2.5,4,of\n3,5,at\n"));
}

TEST(ExportOnTime, TimesThatDoNotGrow) {
  FileBuilder file;
  addGroup(file, "a", "v",
           {{0, 1}, {NAN, 2}, {2, 3}, {1, 4}, {1.5, 5}, {2, 6}, {INFINITY, 7}, {3, 8}});
  addGroup(file, "b", "w", {{0, 1}, {2, 2}, {2, 3}, {3, 4}});
  const std::string left_out =
      "mdf: FILE: note: channel group 0: 2 records whose times go backwards are left out, the "
      "first "
      "is record 3\n";
  RunResult held = onTime(file, {"1Hz"});
  EXPECT_EQ(held.output, "time [s],v,w\n0,1,1\n1,1,1\n2,6,3\n3,8,4\n");
  EXPECT_EQ(held.messages.substr(0, left_out.size()), left_out);
  EXPECT_TRUE(contains(held.messages,
                       "note: channel group 0: 2 records without a time that is a finite number "
                       "are left out\n"))
      << held.messages;
  EXPECT_EQ(onTime(file, {"a"}).output, "time [s],v,w\n0,1,1\n2,3,3\n2,6,3\n3,8,4\n");
  EXPECT_EQ(onTime(file, {"b"}).output, "time [s],v,w\n0,1,1\n2,6,2\n2,6,3\n3,8,4\n");

  FileBuilder none;
  addGroup(none, "a", "v", {{NAN, 1}, {NAN, 2}});
  for (const char* const base : {"a", "1Hz"}) {
    EXPECT_TRUE(contains(onTime(none, {base}).messages,
                         "note: channel group 0: 2 records without a time that is a finite number "
                         "are left out\n"))
        << base;
  }
}

/// Tenths of a second, stored as integers: 3 times 0.1 is not the double nearest to 0.3.
TEST(ExportOnTime, TimesThatAreWrittenAlikeAreAlike) {
  FileBuilder file;
  ChannelSpec time = firstByte("time");
  time.type = 2;
  time.sync_type = 1;
  time.conversion = file.addConversion({1, {}, {0, 0.1}});
  file.addSortedGroup({4, 2}, {time, channelOf("v", 0, 1, 8)},
                      file.addData(Bytes().u8s({0, 1, 1, 2, 2, 3, 3, 4})));
  EXPECT_EQ(onTime(file, {"10Hz"}), wrote("time,v\n0,1\n0.1,2\n0.2,3\n0.3,4\n"));
  EXPECT_EQ(onTime(file, {"10Hz", "--from", "0.1"}), wrote("time,v\n0.1,2\n0.2,3\n0.3,4\n"));
  FileBuilder doubles;
  addGroup(doubles, "", "v", {{0, 1}, {0.1, 2}, {2 * 0.1, 3}, {3 * 0.1, 4}});
  for (const std::string option : {"--empty", "--linear"}) {
    EXPECT_EQ(onTime(doubles, {"10Hz", option}), wrote("time [s],v\n0,1\n0.1,2\n0.2,3\n0.3,4\n"));
  }
}

/// Two thirds are 0.6666666666666666, one bit above it.
TEST(ExportOnTime, LastSampleBelowItsRowByTheLastDigits) {
  FileBuilder file;
  addGroup(file, "", "v", {{0, 1}, {1.0 / 3, 2}, {0.6666666666666665, 3}});
  FileBuilder before;
  addGroup(before, "", "v", {{0, 1}, {1.0 / 3, 2}, {0.666666666666665, 3}});
  const std::string two_rows = "time [s],v\n0,1\n0.3333333333333333,2\n";
  for (const std::string option : {"--empty", "--linear"}) {
    EXPECT_EQ(onTime(file, {"3Hz", option}), wrote(two_rows + "0.6666666666666666,3\n"));
    EXPECT_EQ(onTime(before, {"3Hz", option}), wrote(two_rows));
  }
}

TEST(ExportOnTime, OnlyGroupsOverTheSameAxis) {
  FileBuilder file;
  addGroup(file, "a", "v", {{0, 1}, {1, 2}});
  const auto addOver = [&](unsigned kind, const std::string& unit, const std::string& name) {
    ChannelSpec axis = firstByte("axis");
    axis.type = 2;
    axis.sync_type = kind;
    axis.unit = unit;
    file.addSortedGroup({2, 2}, {axis, channelOf(name, 0, 1, 8)},
                        file.addData(Bytes().u8s({0, 3, 1, 4})));
  };
  addOver(3, "m", "far");
  addOver(3, "m", "near");
  addOver(1, "ms", "soon");
  file.addSortedGroup({1, 1}, {firstByte("none")}, file.addData("A"));
  const RunResult times = onTime(file, {"1Hz"});
  EXPECT_EQ(times.output, "time [s],v\n0,1\n1,2\n");
  EXPECT_EQ(times.messages,
            "mdf: FILE: note: channel groups 1, 2, 3, 4 are left out: they have no master channel "
            "of time in s\n");
  EXPECT_EQ(onTime(file, {"1"}).output, "axis [m],far,near\n0,3,3\n1,4,4\n");
  EXPECT_EQ(onTime(file, {"4"}),
            said(1,
                 "FILE: expected a master channel of numbers for the rows, found none in channel "
                 "group 4 \"\""));
  EXPECT_EQ(onTime(file, {"1Hz", "-g", "3"}).exit_code, 1);
}

/// Groups without records, and those of MDF 4.2 that have one master in common.
TEST(ExportOnTime, EmptyGroupsAndRemoteMasters) {
  FileBuilder file("MDF     ", 420);
  addGroup(file, "empty", "nothing", {});
  EXPECT_EQ(onTime(file, {"1Hz"}).output, "");
  EXPECT_EQ(onTime(file, {"1Hz", "--empty"}).output, "time [s],nothing\n");
  const auto times = file.addChannelGroup({3, 8}, {file.addTime()});
  file.addDataGroup({times}, file.add("DV", {}, Bytes().f64(0).f64(1).f64(2)));
  for (const std::string letters : {"ABC", "abc"}) {
    GroupSpec remote{3, 1};
    remote.flags = 8;
    remote.master = times;
    const auto group = file.addChannelGroup(remote, {file.addChannel(firstByte(letters))});
    file.addDataGroup({group}, file.add("DV", {}, letters));
  }
  EXPECT_EQ(onTime(file, {"2"}), wrote("time [s],nothing,ABC,abc\n0,,65,97\n1,,66,98\n2,,67,99\n"));
  EXPECT_EQ(onTime(file, {"2", "-c", "abc"}), wrote("time [s],abc\n0,97\n1,98\n2,99\n"));
}

/// More unsorted records than are kept in memory, of which a group has every third.
TEST(ExportOnTime, UnsortedRecords) {
  constexpr std::uint64_t count = 30000;
  constexpr std::uint32_t bytes = 1000;
  FileBuilder file;
  std::vector<std::uint64_t> groups;
  for (std::uint64_t id = 0; id < 2; ++id) {
    GroupSpec group = groupCalled(id == 0 ? "a" : "b", id == 0 ? 2 * count / 3 : count / 3, bytes);
    group.record_id = id;
    groups.push_back(file.addGroupOf(group, {timeChannel(), afterTime("v")}));
  }
  Bytes data;
  std::string rows = "time [s],a.v,b.v\n";
  const std::string rest(bytes - 9, '\0');
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto value = static_cast<std::uint8_t>(i % 251);
    data.u8(i % 3 == 2 ? 1 : 0).f64(static_cast<double>(i)).u8(value).text(rest);
    if (i % 3 == 2) {
      rows += std::to_string(i) + ',' + (i + 1 < count ? std::to_string((i - 1) % 251) : "") + ',' +
              std::to_string(i % 251) + '\n';
    }
  }
  file.addDataGroup(groups, file.addData(data), 1);
  EXPECT_EQ(onTime(file, {"b"}), wrote(rows));
}

/// Samples that are looked up over many batches, and in a window that ends within them.
TEST(ExportOnTime, ManySamples) {
  std::vector<Sample> fast;
  std::vector<Sample> slow;
  std::string rows = "time [s],fast,slow\n";
  for (int i = 0; i < 5000; ++i) {
    fast.push_back({i / 8.0, i % 251});
    if (i % 40 == 0) {
      slow.push_back({i / 8.0, i % 241});
    }
    if (i >= 1000 && i <= 3000 && i % 4 == 0) {
      const int half = i / 8 * 10 + i % 8 / 4 * 5;
      rows += std::to_string(half / 10) + (half % 10 == 0 ? "" : ".5") + ',' +
              std::to_string(i % 251) + ',' + std::to_string(i / 40 * 40 % 241) + '\n';
    }
  }
  FileBuilder file;
  addGroup(file, "", "fast", fast);
  addGroup(file, "", "slow", slow);
  EXPECT_EQ(onTime(file, {"2Hz", "--from", "125", "--to", "375"}), wrote(rows));
}

}  // namespace
