#include "reader/columns/remote_master.h"

#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

#include "exported.h"
#include "pictures/chart.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Query;

namespace {

FileBuilder newFile() { return FileBuilder("MDF     ", 420); }

/// A group of the time alone with so many records, half a second apart.
std::uint64_t addTimes(FileBuilder& file, std::uint64_t cycles, int records) {
  Bytes data;
  for (int i = 0; i < records; ++i) {
    data.f64(0.5 * i);
  }
  const std::uint64_t group = file.addChannelGroup({cycles, 8}, {file.addTime()});
  file.addDataGroup({group}, file.add("DV", {}, data));
  return group;
}

/// A group of a byte for each letter whose master is elsewhere.
std::uint64_t addRemote(FileBuilder& file, const std::string& letters, std::uint64_t master,
                        const std::string& name = "a") {
  GroupSpec fields{letters.size(), 1};
  fields.flags = 8;
  fields.master = master;
  const std::uint64_t group = file.addChannelGroup(fields, {file.addChannel(firstByte(name))});
  file.addDataGroup({group}, file.add("DV", {}, letters));
  return group;
}

Query onlyGroup(std::size_t group) {
  Query query;
  query.group = std::to_string(group);
  return query;
}

TEST(RemoteMaster, StandsInFrontOfJsonLines) {
  FileBuilder file = newFile();
  addRemote(file, "A", addTimes(file, 1, 1));
  EXPECT_EQ(jsonOf(file.bytes(), onlyGroup(1)).text,
            R"({"schema":2,"file":"FILE","group":1,"name":"","columns":[)"
            R"({"name":"time","unit":"s"},{"name":"a","unit":""}]})"
            "\n"
            R"({"schema":2,"file":"FILE","group":1,"values":{"time":0,"a":65}})"
            "\n");
}

TEST(RemoteMaster, LimitsTheRange) {
  FileBuilder file = newFile();
  addRemote(file, "ABCDE", addTimes(file, 5, 5));
  Query query = onlyGroup(1);
  query.from = 0.5;
  query.to = 1.5;
  const Exported exported = csvOf(file.bytes(), query);
  EXPECT_EQ(exported.text, "time [s],a\n0.5,66\n1,67\n1.5,68\n");
  EXPECT_EQ(exported.notes, std::vector<std::string>());
}

TEST(RemoteMaster, StandsInFrontOfWhatPatternsSelect) {
  FileBuilder file = newFile();
  addRemote(file, "AB", addTimes(file, 2, 2));
  Query query;
  query.channels = {"a"};
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "time [s],a\n0,65\n0.5,66\n");
  query.channels = {"time"};  // is a channel of the other group alone
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "time [s]\n0\n0.5\n");
}

TEST(RemoteMaster, IsConvertedUnlessRawValuesAreWanted) {
  FileBuilder file = newFile();
  ChannelSpec count = firstByte("count");
  count.type = 2;
  count.sync_type = 4;
  count.conversion = file.addConversion({1, {}, {100, 2}});
  const std::uint64_t group = file.addChannelGroup({2, 1}, {file.addChannel(count)});
  file.addDataGroup({group}, file.addData("\1\2"));
  addRemote(file, "AB", group);
  EXPECT_EQ(healthyCsvOf(file.bytes(), onlyGroup(1)), "count,a\n102,65\n104,66\n");
  Query raw = onlyGroup(1);
  raw.raw = true;
  EXPECT_EQ(healthyCsvOf(file.bytes(), raw), "count,a\n1,65\n2,66\n");
}

TEST(RemoteMaster, GivesWayToAMasterOfItsOwn) {
  FileBuilder file = newFile();
  const std::uint64_t times = addTimes(file, 1, 1);
  GroupSpec fields{1, 8};
  fields.flags = 8;
  fields.master = times;
  ChannelSpec own = firstByte("own");
  own.type = 2;
  own.sync_type = 4;
  file.addDataGroup({file.addChannelGroup(fields, {file.addChannel(own)})},
                    file.addData("ABCDEFGH"));
  EXPECT_EQ(healthyCsvOf(file.bytes(), onlyGroup(1)), "own\n65\n");
}

TEST(RemoteMaster, IsDrawnOver) {
  FileBuilder file = newFile();
  addRemote(file, "AB", addTimes(file, 2, 2));
  const TempFile path(file.bytes());
  mdf_reader::InputFile input(path.path());
  std::vector<mdf_tools::Curve> curves;
  mdf_tools::CurveCollector collector(curves, 100);
  Query query;
  query.channels = {"a"};
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& finding) {
    ADD_FAILURE() << finding.sentence;
  };
  const mdf_reader::NoteSink note = [](const std::string& /*text*/) {};
  mdf_reader::Tables tables(input, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    collector.begin(table->head());
  }
  ASSERT_EQ(curves.size(), 1U);
  EXPECT_EQ(curves[0].x_label, "time [s]");
}

TEST(RemoteMaster, IsEmptyWhereSamplesMiss) {
  struct Case {
    std::uint64_t cycles;
    int records;
    std::string letters;
    std::string table;
    std::string finding;
  };
  const std::vector<Case> cases = {
      {2, 2, "ABCD", "0,65\n0.5,66\n,67\n,68\n", "for each record, found none for record 2"},
      {1, 3, "ABC", "0,65\n,66\n,67\n", "found none for record 1"},
      {0, 0, "AB", ",65\n,66\n", "found none for record 0"},
  };
  for (const Case& each : cases) {
    FileBuilder file = newFile();
    addRemote(file, each.letters, addTimes(file, each.cycles, each.records));
    expectFinding(csvOf(file.bytes(), onlyGroup(1)), "time [s],a\n" + each.table, each.finding);
  }
}

TEST(RemoteMaster, AtALinkThatLeadsToNoChannelGroup) {
  FileBuilder file = newFile();
  const std::uint64_t text = file.text("no group");
  for (const std::uint64_t link : {text, std::uint64_t{1} << 40U, UINT64_MAX}) {
    FileBuilder each = file;
    addRemote(each, "AB", link);
    expectFinding(csvOf(each.bytes()), "a\n65\n66\n", ", found none of the file");
  }
}

TEST(RemoteMaster, WithoutItsLink) {
  FileBuilder file = newFile();
  GroupSpec fields{1, 1};
  fields.flags = 8;
  file.addDataGroup({file.addChannelGroup(fields, {file.addChannel(firstByte("a"))})},
                    file.addData("A"));
  expectFinding(csvOf(file.bytes()), "a\n65\n", ", found none of the file");
}

TEST(RemoteMaster, OfAGroupWithoutOne) {
  FileBuilder file = newFile();
  const std::uint64_t other = file.addChannelGroup({1, 1}, {file.addChannel(firstByte("b"))});
  file.addDataGroup({other}, file.addData("B"));
  addRemote(file, "A", other);
  expectFinding(csvOf(file.bytes(), onlyGroup(1)), "a\n65\n", ", found one without a master");
}

/// A master is where the link leads, and not at the end of several links.
TEST(RemoteMaster, OfGroupsInACircle) {
  FileBuilder file = newFile();
  const std::uint64_t first = addRemote(file, "A", 8);
  const std::uint64_t second = addRemote(file, "B", first, "b");
  file.link(first, 6, second);
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "a\n65\n\nb\n66\n");
  EXPECT_EQ(exported.findings.size(), 2U);
  file.link(first, 6, first);
  EXPECT_EQ(csvOf(file.bytes()).findings.size(), 2U);
}

TEST(RemoteMaster, InUnsortedData) {
  FileBuilder file = newFile();
  const std::uint64_t times = file.addChannelGroup({1, 8, 0, 1}, {file.addTime()});
  const std::uint64_t other = file.addChannelGroup({1, 1, 0, 2}, {file.addChannel(firstByte("b"))});
  file.addDataGroup({times, other}, file.addData(Bytes().u8(1).f64(0).u8(2).u8(66)), 1);
  addRemote(file, "A", times);
  expectFinding(csvOf(file.bytes(), onlyGroup(2)), "a\n65\n",
                "with its records side by side, found them unsorted");
}

TEST(RemoteMaster, WithoutAMasterSamplesHaveNoRange) {
  FileBuilder file = newFile();
  addRemote(file, "A", 8);
  Query query;
  query.from = 0;
  const Exported exported = csvOf(file.bytes(), query);
  EXPECT_EQ(exported.text, "");
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_EQ(exported.notes.size(), 1U);
}

/// Each group takes as little of the file as there is to be shown of it.
TEST(RemoteMaster, InLongRecordsHasALimit) {
  FileBuilder file = newFile();
  constexpr std::uint32_t record = 1U << 20U;
  const std::uint64_t group = file.addChannelGroup({1, record}, {file.addTime()});
  file.addDataGroup({group}, file.add("DV", {}, std::string(record, '\0')));
  for (int i = 0; i < 400; ++i) {
    addRemote(file, "A", group);
  }
  Query query;
  query.channels = {"a"};
  const Exported exported = csvOf(file.bytes(), query);
  const std::string with_time = "time [s],a\n0,65\n";
  const std::string without = "\na\n65\n";
  EXPECT_EQ(exported.text.substr(0, with_time.size()), with_time);
  EXPECT_EQ(exported.text.substr(exported.text.size() - without.size()), without);
  ASSERT_FALSE(exported.findings.empty());
  EXPECT_LT(exported.findings.size(), 200U);
  EXPECT_NE(exported.findings[0].find("expected remote masters that are quick to read, found"),
            std::string::npos);
}

TEST(RemoteMaster, MemoryDoesNotGrowWithTheSamples) {
  FileBuilder contents = newFile();
  constexpr std::uint64_t cycles = 400000;
  const std::uint64_t times = contents.addChannelGroup({cycles, 8}, {contents.addTime()});
  contents.addDataGroup({times}, contents.add("DV", {}, std::string(8 * cycles, '\0')));
  addRemote(contents, std::string(cycles, 'A'), times);
  const TempFile path(contents.bytes());
  const Read read = readThrough(path.path());
  EXPECT_LT(read.peak_bytes, 3000000U);
  EXPECT_EQ(read.values, 2 * cycles);
  EXPECT_EQ(read.findings, 0U);
}

}  // namespace
