#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "exported.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "support/allocation_counter.h"
#include "tools/support/file_reads.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::Query;

namespace {

/// A channel without bytes, whose values are the index of the record.
ChannelSpec recordIndex() {
  ChannelSpec index = channelOf("index", 0, 0, 0);
  index.type = 6;
  return index;
}

/// A time of 0, 0.5, 1, ... and a byte of 10, 11, 12, ... in each record.
std::string timedRecords(int count) {
  Bytes records;
  for (int i = 0; i < count; ++i) {
    records.f64(0.5 * i).u8(static_cast<std::uint8_t>(10 + i));
  }
  return records;
}

/// A file with one channel group of time and speed.
FileBuilder timedFile(std::uint64_t cycles, const std::string& records) {
  FileBuilder file;
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "km/h";
  file.addSortedGroup({cycles, 9}, {timeChannel(), speed}, file.addData(records));
  return file;
}

const std::string three_rows = "time [s],speed [km/h]\n0,10\n0.5,11\n1,12\n";

TEST(Table, CycleCountEndsTheRecords) {
  expectFinding(csvOf(timedFile(3, timedRecords(5)).bytes()), three_rows,
                "expected data for 3 records of 9 bytes, found 45 bytes; 18 bytes were not read");
}

TEST(Table, DataThatEndsBeforeTheCycleCount) {
  expectFinding(csvOf(timedFile(4, timedRecords(3) + "cut").bytes()), three_rows,
                "expected data for 4 records of 9 bytes, found 30 bytes; 3 bytes were not read");
}

TEST(Table, RecordsThatNobodyCounted) {
  const Exported exported = csvOf(timedFile(0, timedRecords(3)).bytes());
  EXPECT_EQ(exported.text, three_rows);
  EXPECT_EQ(exported.findings.size(), 1U);
}

/// Which samples of a file with ten of them are read: their speeds.
std::string speedsOf(const Query& query, const FileBuilder& file) {
  std::string text = healthyCsvOf(file.bytes(), query);
  std::string speeds;
  for (std::size_t at = text.find('\n'); at + 1 < text.size(); at = text.find('\n', at + 1)) {
    const std::size_t comma = text.find(',', at);
    speeds += text.substr(comma + 1, text.find('\n', comma) - comma - 1) + ' ';
  }
  return speeds;
}

Query queryFor(std::optional<std::uint64_t> first, std::optional<std::uint64_t> last,
               std::uint64_t stride) {
  Query query;
  query.first = first;
  query.last = last;
  query.stride = stride;
  return query;
}

TEST(Table, RecordsByTheirNumbers) {
  const FileBuilder file = timedFile(10, timedRecords(10));
  EXPECT_EQ(speedsOf(queryFor(3, {}, 1), file), "10 11 12 ");
  EXPECT_EQ(speedsOf(queryFor({}, 3, 1), file), "17 18 19 ");
  EXPECT_EQ(speedsOf(queryFor({}, {}, 4), file), "10 14 18 ");
  EXPECT_EQ(speedsOf(queryFor({}, 5, 2), file), "15 17 19 ");
  EXPECT_EQ(speedsOf(queryFor(5, {}, 3), file), "10 13 ");
  EXPECT_EQ(speedsOf(queryFor(0, {}, 1), file), "");
  EXPECT_EQ(speedsOf(queryFor({}, 0, 1), file), "");
  EXPECT_EQ(speedsOf(queryFor(100, {}, 1), file), "10 11 12 13 14 15 16 17 18 19 ");
  EXPECT_EQ(speedsOf(queryFor({}, UINT64_MAX, UINT64_MAX), file), "10 ");
  Query query = queryFor(3, {}, 2);
  query.skip = 4;
  EXPECT_EQ(speedsOf(query, file), "14 16 ");
  query = queryFor({}, 8, 3);
  query.skip = 4;
  EXPECT_EQ(speedsOf(query, file), "14 17 ");
  query.skip = 10;
  EXPECT_EQ(speedsOf(query, file), "");
  query.skip = UINT64_MAX;
  EXPECT_EQ(speedsOf(query, file), "");
  query = queryFor({}, {}, 2);
  query.skip = 1;
  query.from = 1.5;
  EXPECT_EQ(speedsOf(query, file), "13 15 17 19 ");
  query = queryFor({}, {}, 2);
  query.from = 1.5;
  EXPECT_EQ(speedsOf(query, file), "14 16 18 ");
  query.batch_rows = 1;
  EXPECT_EQ(speedsOf(query, file), "14 16 18 ");
}

/// A file of times 0, 1, 2, ... in eight bytes each, with other records in some places.
FileBuilder timesFile(std::uint64_t count, const std::map<std::uint64_t, double>& others = {}) {
  Bytes times;
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto other = others.find(i);
    times.f64(other == others.end() ? static_cast<double>(i) : other->second);
  }
  FileBuilder file;
  file.addDataGroup({file.addChannelGroup({count, 8}, {file.addTime()})}, file.addData(times));
  return file;
}

Query rangeOf(std::optional<double> from, std::optional<double> to) {
  Query query;
  query.from = from;
  query.to = to;
  return query;
}

TEST(Table, RangeIsFoundWithoutReadingAllRecords) {
  constexpr std::uint64_t count = 1000000;
  const std::string bytes = timesFile(count).bytes();
  const FileReads reads;
  EXPECT_EQ(healthyCsvOf(bytes, rangeOf(654320.5, 654323)), "time [s]\n654321\n654322\n654323\n");
  EXPECT_LT(reads.bytes(), 1000000U);
  EXPECT_EQ(healthyCsvOf(bytes, rangeOf({}, 1)), "time [s]\n0\n1\n");
  EXPECT_EQ(healthyCsvOf(bytes, rangeOf(999998, {})), "time [s]\n999998\n999999\n");
  EXPECT_EQ(healthyCsvOf(bytes, rangeOf(1e6, {})), "time [s]\n");
  EXPECT_EQ(healthyCsvOf(bytes, rangeOf({}, -1)), "time [s]\n");
}

TEST(Table, RangeAndStride) {
  Query query = rangeOf(4.5, 12);
  query.stride = 3;
  EXPECT_EQ(healthyCsvOf(timesFile(20).bytes(), query), "time [s]\n6\n9\n12\n");
  query.first = 8;
  EXPECT_EQ(healthyCsvOf(timesFile(20).bytes(), query), "time [s]\n6\n");
}

TEST(Table, RangeOfTimesThatDoNotGrow) {
  // The record in the middle, which is looked at first.
  EXPECT_EQ(healthyCsvOf(timesFile(9, {{4, -5}}).bytes(), rangeOf(5.5, 7)), "time [s]\n6\n7\n");
  EXPECT_EQ(healthyCsvOf(timesFile(9, {{4, NAN}}).bytes(), rangeOf(2, 3)), "time [s]\n2\n3\n");
  EXPECT_EQ(healthyCsvOf(timesFile(9, {{0, 100}}).bytes(), rangeOf(7, {})),
            "time [s]\n100\n7\n8\n");
}

TEST(Table, NumbersOfRecordsThatAreLeftOut) {
  FileBuilder file;
  file.addSortedGroup({10, 0}, {recordIndex()}, 0);
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor({}, 7, 3)), "index\n3\n6\n9\n");
}

/// Two channel groups in one data group: time and a byte, and two bytes.
FileBuilder unsortedFile(unsigned code) {
  FileBuilder file;
  const std::uint64_t first = file.addChannelGroup(
      {2, 9, 0, 1}, {file.addTime(), file.addChannel(channelOf("a", 0, 8, 8))});
  const std::uint64_t second = file.addGroupOf({3, 2, 0, 2}, {channelOf("b", 0, 0, 16)});
  const std::string records = u8(2) + u16(100) + u8(1) + f64(0) + u8(10, 2) + u16(200) + u8(2) +
                              u16(300) + u8(1) + f64(0.5) + u8(11);
  file.addDataGroup({first, second}, file.addData(records), code);
  return file;
}

TEST(Table, RecordIdCodeThatIsUnknown) {
  expectFinding(csvOf(unsortedFile(7).bytes()), "time [s],a\n\nb\n",
                "found dg_rec_id_size 7; 29 bytes were not read");
}

TEST(Table, UnsortedRecordsByTheirNumbers) {
  const FileBuilder file = unsortedFile(1);
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor({}, 1, 1)).substr(0, 18), "time [s],a\n0.5,11\n");
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor(2, {}, 2)), "time [s],a\n0,10\n\nb\n100\n");
}

/// A channel whose values are found by offsets of four bytes.
ChannelSpec variable(const std::string& name, unsigned data_type, std::uint64_t data,
                     std::uint32_t byte_offset = 0) {
  ChannelSpec fields = channelOf(name, data_type, byte_offset, 32);
  fields.type = 1;
  fields.data = data;
  return fields;
}

TEST(Table, VariableLengthBeyondTheSignalData) {
  FileBuilder file;
  const std::uint64_t values = file.add("SD", {}, Bytes().u32(2).text("ok").u32(99).text("cut"));
  const std::uint64_t time = file.addTime();
  const std::uint64_t channel = file.addChannel(variable("text", 7, values, 8));
  const std::uint64_t group = file.addChannelGroup({4, 12}, {time, channel});
  file.addDataGroup(
      {group}, file.addData(Bytes().f64(0).u32(0).f64(1).u32(6).f64(2).u32(999).f64(3).u32(0)));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "time [s],text\n0,ok\n1,\n2,\n3,ok\n");
  EXPECT_EQ(exported.findings.size(), 1U);  // the first one tells
}

TEST(Table, VariableLengthInManyRecordsBackwards) {
  FileBuilder file;
  const std::uint64_t text = file.addChannel(variable("text", 7, 0));
  const std::uint64_t group = file.addChannelGroup({2000, 4, 0, 1}, {text});
  const std::uint64_t values = file.addChannelGroup({2000, 0, 0, 2, 1}, {});
  file.link(text, 5, values);
  Bytes records;
  std::string expected = "text\n";
  for (std::uint32_t i = 0; i < 2000; ++i) {
    const std::string value = std::to_string(100000 + i) + std::string(40, 'v');
    records.u8(2).u32(46).text(value);
    expected += std::to_string(100000 + 1999 - i) + std::string(40, 'v') + '\n';
  }
  for (std::uint32_t i = 0; i < 2000; ++i) {
    records.u8(1).u32(50 * (1999 - i));
  }
  file.addDataGroup({group, values}, file.addData(records), 1);
  EXPECT_EQ(healthyCsvOf(file.bytes()), expected);
}

TEST(Table, MaximumLengthEndsValuesThatStateMore) {
  FileBuilder file;
  ChannelSpec bytes = channelOf("bytes", 10, 1, 32);
  bytes.type = 5;
  file.addSortedGroup({2, 5}, {firstByte("size"), bytes}, file.addData("\2abcd\11efgh"));
  file.link(file.channels()[1], 5, file.channels()[0]);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "size,bytes\n2,6162\n9,65666768\n");
}

TEST(Table, VirtualChannelsAloneWithACountThatLies) {
  FileBuilder contents;
  contents.addSortedGroup({std::uint64_t{1} << 60U, 0}, {recordIndex()}, 0);
  const TempFile path(contents.bytes());
  const Read read = readThrough(path.path());
  EXPECT_EQ(read.samples, std::uint64_t{1} << 20U);
  EXPECT_EQ(read.findings, 1U);
}

TEST(Table, MemoryDoesNotGrowWithTheSamples) {
  FileBuilder contents;
  constexpr std::uint64_t cycles = 500000;
  constexpr std::uint32_t size = 200;
  const std::uint64_t group = contents.addChannelGroup({cycles, size}, {contents.addTime()});
  contents.addDataGroup({group}, 0);
  const std::uint64_t data = contents.addData("");
  contents.write(data + 8, Bytes().u64(24 + cycles * size));
  contents.link(contents.bytes().find("##DG"), 2, data);
  TempFile path(contents.bytes());
  path.writeAt(data + 24 + cycles * size - 1,
               std::string(1, '\0'));  // 100 MB, most of them no bytes
  const Read read = readThrough(path.path());
  EXPECT_LT(read.peak_bytes, 2000000U);
  EXPECT_EQ(read.samples, cycles);
  EXPECT_EQ(read.findings, 0U);
}

TEST(Table, MemoryDoesNotGrowWithZippedBlocks) {
  FileBuilder contents;
  const std::uint64_t group = contents.addChannelGroup({8000, 50}, {contents.addTime()});
  std::vector<std::uint64_t> blocks;
  for (int i = 0; i < 40; ++i) {
    blocks.push_back(addZipped(contents, "DT", std::string(10000, '\0')));
  }
  contents.addDataGroup({group}, addList(contents, blocks));
  const TempFile path(contents.bytes());
  const Read read = readThrough(path.path());
  EXPECT_LT(read.peak_bytes, 250000U);
  EXPECT_EQ(read.samples, 8000U);
  EXPECT_EQ(read.findings, 0U);
}

TEST(Table, UnsortedGroupsAreInMemoryOnce) {
  FileBuilder contents;
  constexpr std::uint32_t size = 200000;
  const std::uint64_t large =
      contents.addChannelGroup({100, size, 0, 1}, {contents.addChannel(firstByte("a"))});
  const std::uint64_t small =
      contents.addChannelGroup({100, 1, 0, 2}, {contents.addChannel(firstByte("b"))});
  Bytes records;
  for (int i = 0; i < 100; ++i) {
    records.u8(1).zeros(size).u8(2).u8(7);
  }
  contents.addDataGroup({large, small}, contents.addData(records), 1);
  const TempFile path(contents.bytes());
  const Read read = readThrough(path.path());
  EXPECT_LT(read.peak_bytes, 100 * size + 2000000U);
  EXPECT_EQ(read.samples, 200U);
  EXPECT_EQ(read.findings, 0U);
}

TEST(Table, DataGroupsThatShareTheirDataHaveALimit) {
  FileBuilder file;
  const std::uint64_t data = file.addData(std::string(100000, 'x'));
  for (int i = 0; i < 20; ++i) {
    file.addDataGroup({file.addChannelGroup({1, 100000}, {file.addChannel(firstByte("c"))})}, data);
  }
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  std::string expected;
  for (int i = 0; i < 5; ++i) {
    expected += std::string(i == 0 ? "" : "\n") + "c\n120\n";
  }
  EXPECT_EQ(exported.text, expected);
}

/// A channel array block of unsigned bytes.
std::uint64_t arrayOf(FileBuilder& file, const std::vector<std::uint64_t>& dimensions,
                      std::uint32_t step, std::uint8_t storage = 0) {
  return file.add("CA", {0},
                  u8(0, storage) + u16(dimensions.size()) + u32(0, step, 0) + listed(dimensions));
}

/// An array, of arrays or structures where it has a composition, and a channel after it.
std::string arrayFile(FileBuilder file, std::uint64_t array, std::uint64_t composition = 0) {
  ChannelSpec fields = channelOf("v", 0, 0, 8);
  fields.composition = array;
  file.link(array, 0, composition);
  file.addSortedGroup({1, 7}, {fields, channelOf("last", 0, 6, 8)}, file.addData("ABCDEFG"));
  return file.bytes();
}

/// Members "a" and "b" of a byte each; the first one.
std::uint64_t addMembers(FileBuilder& file) {
  const std::uint64_t a = file.addChannel(channelOf("a", 0, 0, 8));
  file.chain({a, file.addChannel(channelOf("b", 0, 1, 8))});
  return a;
}

TEST(Table, PatternsSelectMembersOfElements) {
  FileBuilder file;
  const std::uint64_t members = addMembers(file);
  const std::uint64_t array = arrayOf(file, {3}, 2);
  Query query;
  query.channels = {"v.b"};
  EXPECT_EQ(healthyCsvOf(arrayFile(file, array, members), query),
            "v[0].b,v[1].b,v[2].b\n66,68,70\n");
}

TEST(Table, ArraysThatDoNotFitAreLeftOut) {
  FileBuilder file;
  const std::uint64_t members = addMembers(file);
  const std::string sentence = "expected the array to fit into records of 7 bytes";
  for (const std::uint64_t composition : {std::uint64_t{0}, members}) {
    for (const auto& dimensions :
         std::vector<std::vector<std::uint64_t>>{{5},
                                                 {100000},
                                                 {UINT64_MAX},
                                                 {UINT64_MAX, UINT64_MAX},
                                                 {2, 4},
                                                 std::vector<std::uint64_t>(17, 1)}) {
      const std::uint64_t array = arrayOf(file, dimensions, 2);
      expectFinding(csvOf(arrayFile(file, array, composition)), "last\n71\n", sentence);
    }
  }
  const std::uint64_t one = arrayOf(file, {1}, 2);
  const std::uint64_t too_many = arrayOf(file, {65536}, 1);
  const std::uint64_t elsewhere = arrayOf(file, {2}, 1, 1);
  for (const std::uint64_t inner : {too_many, elsewhere}) {
    expectFinding(csvOf(arrayFile(file, one, inner)), "last\n71\n", sentence);
  }
  EXPECT_EQ(csvOf(arrayFile(file, elsewhere)).findings.size(), 1U);
  const std::uint64_t overlapping = arrayOf(file, {2}, 0);
  EXPECT_EQ(csvOf(arrayFile(file, overlapping)).findings.size(), 1U);
}

/// Structures in arrays in structures, and so on: each level twice what there is below.
TEST(Table, ArraysOfStructuresInOneAnotherHaveALimit) {
  FileBuilder file;
  std::uint64_t member = file.addChannel(channelOf("a", 0, 0, 8));
  for (int i = 0; i < 30; ++i) {
    ChannelSpec fields = channelOf("s", 10, 0, 8);
    fields.composition = arrayOf(file, {2}, 1);
    file.link(fields.composition, 0, member);
    member = file.addChannel(fields);
  }
  file.addDataGroup({file.addChannelGroup({1, 7}, {member})}, file.addData("ABCDEFG"));
  const Exported exported = csvOf(file.bytes());
  EXPECT_FALSE(exported.findings.empty());
  EXPECT_LT(exported.findings.size(), 65537U);
}

TEST(Table, CompositionsOfArraysInACircle) {
  FileBuilder file;
  const std::uint64_t inner = arrayOf(file, {1}, 1);
  file.link(inner, 0, inner);
  const std::uint64_t outer = arrayOf(file, {3}, 2);
  EXPECT_EQ(csvOf(arrayFile(file, outer, inner)).findings.size(), 1U);
}

TEST(Table, ChannelsOfTheSameName) {
  FileBuilder file;
  file.addSortedGroup({1, 4},
                      {channelOf("a", 0, 0, 8), channelOf("a (2)", 0, 1, 8),
                       channelOf("a", 0, 2, 8), channelOf("", 0, 3, 8)},
                      file.addData("ABCD"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a,a (2),a (3),unnamed\n65,66,67,68\n");
}

TEST(Table, ValuesOutsideTheRecord) {
  FileBuilder file;
  file.addSortedGroup({1, 2}, {channelOf("a", 0, 0, 16), channelOf("b", 0, 1, 16)},
                      file.addData("AB"));
  expectFinding(csvOf(file.bytes()), "a,b\n16961,\n",
                "expected the value inside the record's 2 bytes, found byte 1 and 16 bits");
}

/// Texts that a conversion gives, the number 9 that has none, and some rows without a value.
FileBuilder stateFile() {
  FileBuilder file;
  ChannelSpec state = channelOf("state", 0, 0, 8);
  state.flags = 2;
  state.invalidation_bit = 0;
  state.conversion = file.addConversion(
      {7, {file.text("on, off"), file.text("say \"x\""), file.text(""), 0}, {1, 2, 3}});
  const std::string records = Bytes()
                                  .u8s({1, 0, 2, 0, 3, 0, 9, 0, 2, 1, 1, 0, 1, 0, 1, 0})
                                  .u8s({2, 0, 2, 0, 3, 0, 9, 0, 9, 1, 3, 0, 2, 0, 1, 0});
  file.addDataGroup({file.addChannelGroup({16, 1, 1}, {file.addChannel(state)})},
                    file.addData(records));
  return file;
}

TEST(Table, TextsOfAConversionAsCsv) {
  EXPECT_EQ(healthyCsvOf(stateFile().bytes()),
            "state\n\"on, off\"\n\"say \"\"x\"\"\"\n\"\"\n9\n\"\"\n\"on, off\"\n\"on, off\"\n"
            "\"on, off\"\n\"say \"\"x\"\"\"\n\"say \"\"x\"\"\"\n\"\"\n9\n\"\"\n\"\"\n"
            "\"say \"\"x\"\"\"\n\"on, off\"\n");
}

TEST(Table, TextsOfAConversionStandInATable) {
  const TempFile path(stateFile().bytes());
  mdf_reader::InputFile file(path.path());
  const Query query;
  const mdf_reader::FindingSink report = [](const mdf_reader::Finding& /*finding*/) {};
  mdf_reader::Tables tables(file, query, report, [](const std::string& /*note*/) {});
  const mdf_reader::Batch* const batch = tables.next()->next();
  ASSERT_NE(batch, nullptr);
  const mdf_reader::ColumnData& column = batch->column(0);
  std::string rows;
  for (std::size_t row = 0; row < batch->rows(); ++row) {
    EXPECT_EQ(column.text(row), column.textAt(column.codes()[row]));
    rows += column.isValid(row) ? std::string(column.text(row)) + '|' : "none|";
  }
  EXPECT_EQ(rows,
            "on, off|say \"x\"||9|none|on, off|on, off|on, off|say \"x\"|say \"x\"||9|none||"
            "say \"x\"|on, off|");
  EXPECT_EQ(column.nullCount(), 2U);
  EXPECT_LT(column.textCount(), column.rows());
}

TEST(Table, PatternsSelectChannels) {
  FileBuilder file = timedFile(2, timedRecords(2));
  file.addSortedGroup({1, 1}, {firstByte("other")}, file.addData("A"));
  Query query;
  query.channels = {"sp*"};
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "time [s],speed [km/h]\n0,10\n0.5,11\n");
  query.channels = {"time"};
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "time [s]\n0\n0.5\n");
  query.channels = {"nothing", "o?her"};
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "other\n65\n");
  query.channels = {"nothing"};
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "");
}

TEST(Table, RangeOfTheMaster) {
  FileBuilder file = timedFile(5, timedRecords(5));
  file.addSortedGroup({1, 1}, {firstByte("other")}, file.addData("A"));
  Query query;
  query.from = 0.5;
  query.to = 1;
  const Exported exported = csvOf(file.bytes(), query);
  EXPECT_EQ(exported.text, "time [s],speed [km/h]\n0.5,11\n1,12\n");
  EXPECT_EQ(exported.notes.size(), 1U);  // the other group has no master
}

TEST(Table, CsvFieldsAreQuotedWhereverACommaOrALineEndIs) {
  for (const std::uint32_t length : {1U, 7U, 8U, 9U, 20U}) {
    std::string records(length, 'x');
    std::string expected = "t\n" + records + '\n';
    for (const char special : {',', '\r', '\n'}) {
      for (std::uint32_t at = 0; at < length; ++at) {
        std::string text(length, at % 2 == 0 ? '-' : '#');
        text[at] = special;
        records += text;
        expected += '"' + text + "\"\n";
      }
    }
    FileBuilder file;
    file.addSortedGroup({records.size() / length, length}, {channelOf("t", 6, 0, 8 * length)},
                        file.addData(records));
    EXPECT_EQ(healthyCsvOf(file.bytes()), expected) << length;
  }
}

TEST(Table, CsvFieldsAreQuotedWhereTheyNeedToBe) {
  FileBuilder file;
  ChannelSpec text = channelOf("a, \"b\"", 7, 0, 32);
  text.unit = "x\ny";
  file.addSortedGroup({4, 4}, {text, firstByte("n")},
                      file.addData("a,b" + zeros(1) + "\"q\"" + zeros(1) + "a\r\nb pad"));
  EXPECT_EQ(
      healthyCsvOf(file.bytes()),
      "\"a, \"\"b\"\" [x\ny]\",n\n\"a,b\",97\n\"\"\"q\"\"\",34\n\"a\r\nb\",97\n\" pad\",32\n");
}

TEST(Table, JsonLines) {
  FileBuilder file;
  ChannelSpec real = channelOf("r \"q\"", 4, 0, 32);
  real.unit = "°C";
  ChannelSpec text = channelOf("t", 6, 4, 16);
  text.flags = 2;
  const std::string records = u32(0x3FC00000) + "\\\n" + u8(0) + u32(0x7FC00000) + "ab" + u8(1) +
                              u32(0xFF800000) + "\xE9\"" + u8(0);
  file.addSortedGroup({3, 6, 1}, {real, text}, file.addData(records));
  const Exported exported = jsonOf(file.bytes());
  EXPECT_EQ(exported.findings, std::vector<std::string>());
  EXPECT_EQ(exported.text,
            R"({"schema":2,"file":"FILE","group":0,"name":"","columns":[)"
            R"({"name":"r \"q\"","unit":"°C"},{"name":"t","unit":""}]})"
            "\n"
            R"({"schema":2,"file":"FILE","group":0,"values":{"r \"q\"":1.5,"t":"\\\u000a"}})"
            "\n"
            R"({"schema":2,"file":"FILE","group":0,"values":{"r \"q\"":"nan","t":null}})"
            "\n"
            R"({"schema":2,"file":"FILE","group":0,"values":{"r \"q\"":"-inf","t":"é\""}})"
            "\n");
}

TEST(Table, ManyChannelsForFewBytesAreLimited) {
  FileBuilder file;
  std::vector<ChannelSpec> channels;
  for (int i = 0; i < 400; ++i) {
    channels.push_back(firstByte("c" + std::to_string(i)));
  }
  file.addSortedGroup({1, 1}, channels, file.addData("A"));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_EQ(exported.text.substr(exported.text.find('\n') + 1, 6), "65,65,");
}

TEST(Table, LongValuesAreNotGivenWithoutEnd) {
  FileBuilder file;
  const std::string value(60000, 'v');
  const std::uint64_t values = file.add("SD", {}, u32(value.size()) + value);
  file.addSortedGroup({1000, 4}, {variable("v", 7, values)}, file.addData(zeros(4000)));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_LT(exported.text.size(), 20000000U);
}

}  // namespace
