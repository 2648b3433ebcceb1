#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "tools/sampling/exported.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// Two channel groups: time and speed, and a counter.
std::string twoTables() {
  FileBuilder file;
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "km/h";
  file.addSortedGroup({2, 9}, {timeChannel(), speed},
                      file.addData(Bytes().f64(0).u8(10).f64(0.5).u8(20)));
  file.addSortedGroup({2, 1}, {firstByte("counter")}, file.addData("AB"));
  return file.bytes();
}

const std::string first_table = "time [s],speed [km/h]\n0,10\n0.5,20\n";
const std::string second_table = "counter\n65\n66\n";

TEST(ExportCommand, TablesOneAfterTheOther) {
  const TempFile file(twoTables());
  EXPECT_EQ(run({"export", file.path()}), wrote(first_table + "\n" + second_table));
}

TEST(ExportCommand, StandardInputAndSeveralFiles) {
  const TempFile file(twoTables());
  RunOptions options;
  options.input = twoTables();
  EXPECT_EQ(run({"export", "-g", "1", "-", file.path()}, options),
            wrote(second_table + "\n" + second_table));
}

TEST(ExportCommand, ChannelsTimesAndRecords) {
  const TempFile file(twoTables());
  const std::string first = "time [s],speed [km/h]\n0,10\n\ncounter\n65\n";
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{"--channel", "count*", "--channel", "none"}, second_table},
      {{"-c", "speed", "--from", "0.1", "--to", "1e3"}, "time [s],speed [km/h]\n0.5,20\n"},
      {{"--first", "1"}, first},
      {{"--stride", "2"}, first},
      {{"--skip", "1"}, "time [s],speed [km/h]\n0.5,20\n\ncounter\n66\n"},
      {{"--last", "1"}, "time [s],speed [km/h]\n0.5,20\n\ncounter\n66\n"},
  };
  for (auto [options, table] : cases) {
    options.insert(options.begin(), {"export", file.path()});
    EXPECT_EQ(run(options).output, table) << testing::PrintToString(options);
  }
  EXPECT_EQ(run({"export", file.path(), "--stride", "0"}).exit_code, 2);
  EXPECT_EQ(run({"export", file.path(), "--first", "1", "--last", "1"}).exit_code, 2);
}

/// A time of 9106 and one of 20000 ten-thousandths of a second, and a real.
FileBuilder timedTable() {
  FileBuilder file;
  ChannelSpec time = channelOf("time", 0, 0, 16);
  time.type = 2;
  time.sync_type = 1;
  time.conversion = file.addConversion({1, {}, {0, 0.0001}});
  file.addSortedGroup({2, 10}, {time, channelOf("level", 4, 2, 64)},
                      file.addData(Bytes().u16(9106).f64(2.0 / 3).u16(20000).f64(1e6)));
  return file;
}

TEST(ExportCommand, TimesHaveNoMoreDecimalPlacesThanTheyAreStoredWith) {
  const TempFile file(timedTable().bytes());
  EXPECT_EQ(run({"export", file.path()}).output,
            "time,level\n0.9106,0.6666666666666666\n2,1e+06\n");
}

TEST(ExportCommand, SignificantDigits) {
  const TempFile file(timedTable().bytes());
  EXPECT_EQ(run({"export", file.path(), "--digits", "3"}).output,
            "time,level\n0.911,0.667\n2,1e+06\n");
  EXPECT_EQ(run({"export", file.path(), "--digits", "18"}).exit_code, 2);
}

TEST(ExportCommand, TimesAsDates) {
  FileBuilder contents = timedTable();
  // 2023-11-14T22:13:20.25 UTC, two hours east of it, one of them for daylight saving.
  contents.write(64 + 24 + 6 * 8, Bytes().u64(1700000000250000000).u16(60).u16(60).u8(2));
  const TempFile file(contents.bytes());
  EXPECT_EQ(run({"export", file.path(), "-c", "time", "--time", "iso"}).output,
            "time\n2023-11-15T00:13:21.160600000+02:00\n2023-11-15T00:13:22.250000000+02:00\n");
  EXPECT_EQ(run({"export", file.path(), "-c", "time", "--time", "ns"}).output,
            "time\n1700000001160600000\n1700000002250000000\n");
  const std::string json = run({"export", "--json", file.path(), "--time", "iso"}).output;
  EXPECT_NE(json.find("{\"time\":\"2023-11-15T00:13:21.160600000+02:00\",\"level\":0.6"),
            std::string::npos)
      << json;
}

TEST(ExportCommand, TimesThatNoDateHoldsStayNumbers) {
  FileBuilder file;
  file.write(64 + 24 + 6 * 8, Bytes().u64(1700000000250000000).u16(60).u16(60).u8(2));
  file.addSortedGroup({3, 8}, {timeChannel()}, file.addData(f64(0, 1e12, INFINITY)));
  const TempFile path(file.bytes());
  EXPECT_EQ(run({"export", path.path(), "--time", "iso"}).output,
            "time [s]\n2023-11-15T00:13:20.250000000+02:00\n1e+12\ninf\n");
  EXPECT_EQ(run({"export", path.path(), "--time", "ns"}).output,
            "time [s]\n1700000000250000000\n1e+12\ninf\n");
}

TEST(ExportCommand, DatesNeedTheTimeOfTheBeginning) {
  FileBuilder contents = timedTable();
  contents.write(64 + 24 + 6 * 8, Bytes().u64(0));
  const TempFile file(contents.bytes());
  const RunResult result = run({"export", file.path(), "-c", "time", "--time", "iso"});
  EXPECT_EQ(result.output, "time\n0.9106\n2\n");
  EXPECT_NE(result.messages.find("note: the file does not say when it was begun"),
            std::string::npos)
      << result.messages;
}

TEST(ExportCommand, SameTextOnAnyNumberOfThreads) {
  FileBuilder builder;
  std::string data;
  std::string expected = "counter\n";
  for (unsigned i = 0; i < 20000; ++i) {
    data += static_cast<char>(i % 251);
    expected += std::to_string(i % 251) + '\n';
  }
  builder.addSortedGroup({data.size(), 1}, {firstByte("counter")}, builder.addData(data));
  const TempFile file(builder.bytes());
  for (const char* const threads : {"1", "2", "7"}) {
    EXPECT_EQ(run({"export", file.path(), "--threads", threads}).output, expected) << threads;
  }
  EXPECT_EQ(run({"export", file.path(), "--threads", "0"}).exit_code, 2);
}

TEST(ExportCommand, JsonLines) {
  const TempFile file(twoTables());
  const std::string begin = R"({"schema":2,"file":")" + file.path() + R"(","group":1,)";
  const RunResult expected =
      wrote(begin + R"("name":"","columns":[{"name":"counter","unit":""}]})" + '\n' + begin +
            R"("values":{"counter":65}})" + '\n' + begin + R"("values":{"counter":66}})" + '\n');
  EXPECT_EQ(run({"export", "--format", "jsonl", "--group", "1", file.path()}), expected);
  EXPECT_EQ(run({"export", "--json", "--group", "1", file.path()}), expected);
}

TEST(ExportCommand, OutputFile) {
  const TempFile file(twoTables());
  const ScratchFolder folder;
  EXPECT_EQ(run({"export", file.path(), "-o", (folder / "out.csv").string()}), wrote(""));
  EXPECT_EQ(bytesOf(folder / "out.csv"), first_table + "\n" + second_table);
}

TEST(ExportCommand, OutputFolderGetsAFileForEachTable) {
  const ScratchFolder folder;
  folder.write("trip.mf4", twoTables());
  EXPECT_EQ(run({"export", (folder / "trip.mf4").string(), "-o", (folder / "new").string() + "/"}),
            wrote(""));
  EXPECT_EQ(bytesOf(folder / "new/trip.0.csv"), first_table);
  EXPECT_EQ(bytesOf(folder / "new/trip.1.csv"), second_table);
}

/// Three groups with one record each: two of one name, and one whose name is a path.
std::string namedTables() {
  FileBuilder file;
  for (const char* name : {"engine", "engine", "../CAN 1\n"}) {
    GroupSpec group{1, 1};
    group.name = name;
    file.addSortedGroup(group, {firstByte("v")}, file.addData("A"));
  }
  return file.bytes();
}

std::vector<std::string> namesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(ExportCommand, TablesInAFolderHaveTheNamesOfTheirGroups) {
  const ScratchFolder folder;
  folder.write("trip.mf4", namedTables());
  const std::string path = (folder / "trip.mf4").string();
  const std::string to = (folder / "new").string() + "/";
  EXPECT_EQ(run({"export", path, "-o", to}).exit_code, 0);
  EXPECT_EQ(run({"export", path, "-o", to, "--json", "-g", "1"}).exit_code, 0);
  EXPECT_EQ(namesIn(folder / "new"),
            (std::vector<std::string>{"trip.0_engine.csv", "trip.1_engine.csv",
                                      "trip.1_engine.jsonl", "trip.2_.._CAN 1_x0a.csv"}));
}

/// A group with a record between two without any.
std::string emptyTables() {
  FileBuilder file;
  file.addSortedGroup({0, 1}, {firstByte("before")}, 0);
  file.addSortedGroup({1, 1}, {firstByte("counter")}, file.addData("A"));
  file.addSortedGroup({0, 1}, {firstByte("after")}, 0);
  return file.bytes();
}

TEST(ExportCommand, TablesWithoutSamplesAreLeftOut) {
  const ScratchFolder folder;
  folder.write("trip.mf4", emptyTables());
  const std::string path = (folder / "trip.mf4").string();
  const std::string note = "mdf: " + path +
                           ": note: 2 tables without samples are left out; --empty writes such "
                           "tables, too\n";
  EXPECT_EQ(run({"export", path}), (RunResult{0, "counter\n65\n", note}));
  const std::string to = (folder / "new").string() + "/";
  EXPECT_EQ(run({"export", path, "-o", to}), (RunResult{0, "", note}));
  EXPECT_EQ(namesIn(to), std::vector<std::string>{"trip.1.csv"});
  EXPECT_EQ(bytesOf(folder / "new/trip.1.csv"), "counter\n65\n");
}

TEST(ExportCommand, EmptyWritesTablesWithoutSamples) {
  const ScratchFolder folder;
  folder.write("trip.mf4", emptyTables());
  const std::string path = (folder / "trip.mf4").string();
  EXPECT_EQ(run({"export", path, "--empty"}), wrote("before\n\ncounter\n65\n\nafter\n"));
  const std::string to = (folder / "new").string() + "/";
  EXPECT_EQ(run({"export", path, "--empty", "-o", to}).exit_code, 0);
  EXPECT_EQ(namesIn(to), (std::vector<std::string>{"trip.0.csv", "trip.1.csv", "trip.2.csv"}));
  EXPECT_EQ(bytesOf(folder / "new/trip.2.csv"), "after\n");
}

TEST(ExportCommand, ATableWithoutSamplesInTheRangeIsLeftOut) {
  const TempFile file(twoTables());
  EXPECT_EQ(
      run({"export", file.path(), "-g", "0", "--from", "7"}),
      said(0, file.path() + ": note: 1 table without samples is left out; --empty writes such "
                            "tables, too"));
}

TEST(ExportCommand, RecordsThatNobodyCountedMakeATable) {
  FileBuilder builder("UnFinMF ");
  builder.write(60, Bytes().u16(1));
  builder.addSortedGroup({0, 1}, {firstByte("counter")}, builder.addData("AB"));
  const TempFile file(builder.bytes());
  EXPECT_EQ(
      run({"export", file.path()}),
      (RunResult{
          0, second_table,
          "mdf: " + file.path() +
              ": note: the file was not finished; its records are read as far as they go\n"}));
}

TEST(ExportCommand, TablesInAFolderDoNotOverwriteOneAnother) {
  const ScratchFolder folder;
  std::filesystem::create_directory(folder / "monday");
  std::filesystem::create_directory(folder / "tuesday");
  folder.write("monday/trip.mf4", twoTables());
  folder.write("tuesday/trip.mf4", twoTables());
  const std::string monday = (folder / "monday/trip.mf4").string();
  const std::string tuesday = (folder / "tuesday/trip.mf4").string();
  const std::string to = (folder / "new").string() + "/";
  EXPECT_EQ(run({"export", monday, tuesday, "-o", to}),
            said(2, "the tables of " + monday + " and " + tuesday +
                        " would have the same names in " + to));
  EXPECT_FALSE(std::filesystem::exists(folder / "new"));
}

TEST(ExportCommand, StandardInputToAFolder) {
  const ScratchFolder folder;
  RunOptions options;
  options.input = twoTables();
  EXPECT_EQ(run({"export", "-", "-o", folder.path()}, options), wrote(""));
  EXPECT_EQ(bytesOf(folder / "stdin.0.csv"), first_table);
  EXPECT_EQ(bytesOf(folder / "stdin.1.csv"), second_table);
}

TEST(ExportCommand, OutputFolderGetsAFileForEachElementWithRecordsOfItsOwn) {
  FileBuilder file;
  ChannelSpec array = firstByte("v");
  array.composition =
      file.add("CA", {0}, Bytes().u8(0).u8(1).u16(1).zeros(12).u64(2).u64(1).u64(1));
  file.addDataGroup({file.addGroupOf({1, 1}, {array})}, file.addData(u8(0, 7, 1, 8)), 1);
  const ScratchFolder folder;
  folder.write("trip.mf4", file.bytes());
  const RunResult result =
      run({"export", (folder / "trip.mf4").string(), "-o", (folder / "new").string() + "/"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(bytesOf(folder / "new/trip.0.0.csv"), "v[0]\n7\n");
  EXPECT_EQ(bytesOf(folder / "new/trip.0.1.csv"), "v[1]\n8\n");
}

TEST(ExportCommand, APatternThatFitsNothingIsNoted) {
  const TempFile file(twoTables());
  EXPECT_EQ(run({"export", "-c", "speed", "-c", "spede", "-c", "count*", file.path()}),
            (RunResult{0, first_table + "\n" + second_table,
                       "mdf: " + file.path() + ": note: no channel matches \"spede\"\n"}));
}

TEST(ExportCommand, OutputDoesNotOverwriteTheInput) {
  const TempFile file(twoTables());
  EXPECT_EQ(run({"export", file.path(), "-o", file.path()}),
            said(2, "the output " + file.path() + " is one of the files to read"));
  EXPECT_EQ(bytesOf(file.path()), twoTables());
}

TEST(ExportCommand, OutputThatCannotBeWritten) {
  const TempFile file(twoTables());
  const ScratchFolder folder;
  const std::string path = (folder / "missing/out.csv").string();
  EXPECT_EQ(run({"export", file.path(), "-o", path}),
            said(2, "cannot write to " + path + ": No such file or directory"));
}

TEST(ExportCommand, FullDisk) {
  const TempFile file(twoTables());
  EXPECT_EQ(run({"export", file.path(), "-o", "/dev/full"}),
            said(1, "cannot write to /dev/full: No space left on device"));
}

TEST(ExportCommand, NothingThatIsWanted) {
  const TempFile file(twoTables());
  const RunResult channel = run({"export", file.path(), "-c", "a*", "-c", "b"});
  EXPECT_EQ(channel.exit_code, 1);
  EXPECT_EQ(channel.messages, "mdf: " + file.path() + ": note: no channel matches \"a*\" \"b\"\n");
  EXPECT_EQ(run({"export", file.path(), "-g", "1", "-c", "none"}),
            said(1, file.path() + ": note: no channel matches \"none\" in a channel group \"1\""));
}

TEST(ExportCommand, ProblemsOfTheFile) {
  const std::string bytes = twoTables();
  const TempFile file(bytes.substr(0, bytes.size() - 1));
  EXPECT_EQ(run({"export", file.path()}),
            (RunResult{1, first_table + "\n" + second_table,
                       "mdf: " + file.path() +
                           ": 1160 (0x488): expected all links and fields of ##DG, found a "
                           "length of 64 and 4 links\n"}));
}

}  // namespace
