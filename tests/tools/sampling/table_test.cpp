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

ChannelSpec number(const std::string& name, unsigned data_type, std::uint32_t byte_offset,
                   std::uint32_t bit_count) {
  ChannelSpec fields;
  fields.name = name;
  fields.data_type = data_type;
  fields.byte_offset = byte_offset;
  fields.bit_count = bit_count;
  return fields;
}

/// A time of 0, 0.5, 1, ... and a byte of 10, 11, 12, ... in each record.
std::string timedRecords(int count, const std::string& in_front = "") {
  Bytes records;
  for (int i = 0; i < count; ++i) {
    records.text(in_front).f64(0.5 * i).u8(static_cast<std::uint8_t>(10 + i));
  }
  return records;
}

/// A file with one channel group of time and speed.
FileBuilder timedFile(std::uint64_t cycles, const std::string& records,
                      const std::string& file_word = "MDF     ") {
  FileBuilder file(file_word);
  const std::uint64_t time = file.addTime();
  ChannelSpec speed = number("speed", 0, 8, 8);
  speed.unit = "km/h";
  const std::uint64_t group = file.addChannelGroup({cycles, 9}, {time, file.addChannel(speed)});
  file.addDataGroup({group}, records.empty() ? 0 : file.addData(records));
  return file;
}

const std::string three_rows = "time [s],speed [km/h]\n0,10\n0.5,11\n1,12\n";

TEST(Table, SortedRecords) {
  EXPECT_EQ(healthyCsvOf(timedFile(3, timedRecords(3)).bytes()), three_rows);
}

TEST(Table, NoRecords) {
  EXPECT_EQ(healthyCsvOf(timedFile(0, "").bytes()), "time [s],speed [km/h]\n");
}

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

TEST(Table, UnfinishedFile) {
  FileBuilder file = timedFile(0, timedRecords(3) + "cut", "UnFinMF ");
  file.write(60, Bytes().u16(1 + 4));
  const Exported exported = csvOf(file.bytes());
  expectFinding(exported, three_rows,
                "expected 9 bytes of a record up to 774, found 3; 3 bytes were not read");
  EXPECT_EQ(exported.notes.size(), 1U);
}

TEST(Table, UnfinishedFileWithAnOpenLastBlock) {
  FileBuilder file("UnFinMF ");
  file.write(60, Bytes().u16(1 + 4));
  const std::uint64_t time = file.addTime();
  const std::uint64_t group =
      file.addChannelGroup({0, 9}, {time, file.addChannel(number("n", 0, 8, 8))});
  const std::uint64_t data_group = file.addDataGroup({group}, 0);
  const std::uint64_t first = file.addData(timedRecords(2));
  const std::uint64_t empty = file.addData("");
  const std::uint64_t last = file.addData("");
  file.link(data_group, 2, addList(file, {first, empty, last}));
  EXPECT_EQ(csvOf(file.bytes()).text, "time [s],n\n0,10\n0.5,11\n");

  FileBuilder open("UnFinMF ");
  open.write(60, Bytes().u16(1 + 4));
  const std::uint64_t channel = open.addTime();
  const std::uint64_t records = open.addChannelGroup({0, 9}, {channel});
  const std::uint64_t list = addList(open, {0, 0});
  open.addDataGroup({records}, list);
  open.link(list, 1, open.addData(timedRecords(2)));
  open.link(list, 2, open.addData(""));
  open.append(timedRecords(3));
  EXPECT_EQ(csvOf(open.bytes()).text, "time [s]\n0\n0.5\n0\n0.5\n1\n");
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
  Query query = queryFor({}, {}, 2);
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
  ChannelSpec index;
  index.name = "index";
  index.bit_count = 0;
  index.type = 6;
  file.addDataGroup({file.addChannelGroup({10, 0}, {file.addChannel(index)})}, 0);
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor({}, 7, 3)), "index\n3\n6\n9\n");
}

TEST(Table, RecordIdsOfASortedGroup) {
  for (const unsigned size : {1U, 2U, 8U}) {
    FileBuilder file;
    const std::uint64_t time = file.addTime();
    const std::uint64_t group = file.addChannelGroup({2, 9}, {time});
    file.addDataGroup({group}, file.addData(timedRecords(2, std::string(size, '\x07'))), size);
    EXPECT_EQ(healthyCsvOf(file.bytes()), "time [s]\n0\n0.5\n");
  }
}

/// Two channel groups in one data group: time and a byte, and two bytes.
FileBuilder unsortedFile(unsigned code, const std::string& records, std::uint64_t first_id = 1,
                         std::uint64_t second_id = 2) {
  FileBuilder file;
  const std::uint64_t time = file.addTime();
  const std::uint64_t first =
      file.addChannelGroup({2, 9, 0, first_id}, {time, file.addChannel(number("a", 0, 8, 8))});
  const std::uint64_t second =
      file.addChannelGroup({3, 2, 0, second_id}, {file.addChannel(number("b", 0, 0, 16))});
  file.addDataGroup({first, second}, file.addData(records), code);
  return file;
}

/// Five records with ids of so many bytes.
std::string mixedRecords(unsigned id_bytes, std::uint64_t first_id = 1,
                         std::uint64_t second_id = 2) {
  const std::string a = Bytes().u64(first_id).str().substr(0, id_bytes);
  const std::string b = Bytes().u64(second_id).str().substr(0, id_bytes);
  return Bytes()
      .text(b)
      .u16(100)
      .text(a)
      .f64(0)
      .u8(10)
      .text(b)
      .u16(200)
      .text(b)
      .u16(300)
      .text(a)
      .f64(0.5)
      .u8(11);
}

const std::string mixed_tables = "time [s],a\n0,10\n0.5,11\n\nb\n100\n200\n300\n";

TEST(Table, UnsortedRecords) {
  EXPECT_EQ(healthyCsvOf(unsortedFile(1, mixedRecords(1)).bytes()), mixed_tables);
  EXPECT_EQ(healthyCsvOf(unsortedFile(2, mixedRecords(2, 513, 300), 513, 300).bytes()),
            mixed_tables);
  EXPECT_EQ(healthyCsvOf(unsortedFile(8, mixedRecords(8)).bytes()), mixed_tables);
}

TEST(Table, RecordIdCodesThatAreNoByteCounts) {
  EXPECT_EQ(healthyCsvOf(unsortedFile(3, mixedRecords(4)).bytes()), mixed_tables);
  EXPECT_EQ(healthyCsvOf(unsortedFile(4, mixedRecords(4)).bytes()), mixed_tables);
  EXPECT_EQ(healthyCsvOf(unsortedFile(4, mixedRecords(8)).bytes()), mixed_tables);
}

TEST(Table, RecordIdCodeThatIsUnknown) {
  const Exported exported = csvOf(unsortedFile(7, mixedRecords(1)).bytes());
  expectFinding(exported, "time [s],a\n\nb\n", "found dg_rec_id_size 7; 29 bytes were not read");
}

TEST(Table, RecordIdThatNoGroupHas) {
  const Exported exported = csvOf(unsortedFile(1, mixedRecords(1) + "\x05zz").bytes());
  expectFinding(exported, mixed_tables,
                "found record id 5 of no channel group; 3 bytes were not read");
}

TEST(Table, UnsortedRecordsByTheirNumbers) {
  const FileBuilder file = unsortedFile(1, mixedRecords(1));
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor({}, 1, 1)).substr(0, 18), "time [s],a\n0.5,11\n");
  EXPECT_EQ(healthyCsvOf(file.bytes(), queryFor(2, {}, 2)), "time [s],a\n0,10\n\nb\n100\n");
}

TEST(Table, UnsortedRecordsInPieces) {
  FileBuilder file = unsortedFile(1, "");
  const std::string records = mixedRecords(1);
  const std::uint64_t list = addList(
      file, {file.addData(records.substr(0, 5)), addZipped(file, "DT", records.substr(5, 10)),
             file.addData(records.substr(15))});
  const std::uint64_t data_group = file.bytes().find("##DG");
  file.link(data_group, 2, list);
  EXPECT_EQ(healthyCsvOf(file.bytes()), mixed_tables);
}

TEST(Table, GroupsWithoutRecordIdsWhereOneHasRecords) {
  FileBuilder file;
  const std::uint64_t first =
      file.addChannelGroup({0, 2}, {file.addChannel(number("a", 0, 0, 16))});
  const std::uint64_t second =
      file.addChannelGroup({2, 1}, {file.addChannel(number("b", 0, 0, 8))});
  file.addDataGroup({first, second}, file.addData("AB"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a\n\nb\n65\n66\n");
}

/// A channel whose values are found by offsets of four bytes.
ChannelSpec variable(const std::string& name, unsigned data_type, std::uint64_t data,
                     std::uint32_t byte_offset = 0) {
  ChannelSpec fields = number(name, data_type, byte_offset, 32);
  fields.type = 1;
  fields.data = data;
  return fields;
}

TEST(Table, VariableLengthInSignalData) {
  FileBuilder file;
  const std::uint64_t values =
      file.add("SD", {}, Bytes().u32(5).text("first").u32(0).u32(3).text("3rd"));
  const std::uint64_t channel = file.addChannel(variable("text", 7, values));
  const std::uint64_t group = file.addChannelGroup({4, 4}, {channel});
  file.addDataGroup({group}, file.addData(Bytes().u32(0).u32(9).u32(13).u32(0)));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "text\nfirst\n\"\"\n3rd\nfirst\n");
}

TEST(Table, VariableLengthInListsOfZippedSignalData) {
  FileBuilder file;
  const std::uint64_t list =
      addList(file, {addZipped(file, "SD", Bytes().u32(5).text("fi")),
                     addZipped(file, "SD", Bytes().text("rst").u32(2).u8s({1, 2}))});
  const std::uint64_t group =
      file.addChannelGroup({2, 4}, {file.addChannel(variable("bytes", 10, list))});
  file.addDataGroup({group}, file.addData(Bytes().u32(9).u32(0)));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "bytes\n0102\n6669727374\n");
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

TEST(Table, VariableLengthInAChannelGroup) {
  FileBuilder file;
  const std::uint64_t time = file.addTime();
  const std::uint64_t text = file.addChannel(variable("text", 7, 0, 8));
  const std::uint64_t group = file.addChannelGroup({3, 12, 0, 1}, {time, text});
  const std::uint64_t values = file.addChannelGroup({3, 0, 0, 2, 1}, {});
  file.link(text, 5, values);
  const std::string records = Bytes()
                                  .u8(2)
                                  .u32(5)
                                  .text("first")
                                  .u8(1)
                                  .f64(0)
                                  .u32(0)
                                  .u8(2)
                                  .u32(0)
                                  .u8(2)
                                  .u32(3)
                                  .text("3rd")
                                  .u8(1)
                                  .f64(1)
                                  .u32(9)
                                  .u8(1)
                                  .f64(2)
                                  .u32(13);
  file.addDataGroup({group, values}, file.addData(records), 1);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "time [s],text\n0,first\n1,\n2,3rd\n");
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

TEST(Table, MaximumLength) {
  FileBuilder file;
  const std::uint64_t size = file.addChannel(number("size", 0, 0, 8));
  ChannelSpec bytes = number("bytes", 10, 1, 32);
  bytes.type = 5;
  bytes.data = size;
  const std::uint64_t group = file.addChannelGroup({3, 5}, {size, file.addChannel(bytes)});
  file.addDataGroup({group}, file.addData(Bytes()
                                              .u8s({2, 0xA0, 0xA1, 0xA2, 0xA3})
                                              .u8s({0, 0xB0, 0xB1, 0xB2, 0xB3})
                                              .u8s({9, 0xC0, 0xC1, 0xC2, 0xC3})));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "size,bytes\n2,a0a1\n0,\n9,c0c1c2c3\n");
}

TEST(Table, InvalidationBits) {
  FileBuilder file;
  ChannelSpec a = number("a", 0, 0, 8);
  a.flags = 2;
  a.invalidation_bit = 0;
  ChannelSpec b = number("b", 0, 1, 8);
  b.flags = 2;
  b.invalidation_bit = 9;
  ChannelSpec never = number("never", 0, 0, 8);
  never.flags = 1;
  const std::uint64_t group = file.addChannelGroup(
      {3, 2, 2}, {file.addChannel(a), file.addChannel(b), file.addChannel(never)});
  file.addDataGroup({group}, file.addData(Bytes().u8s({1, 2, 0, 0, 3, 4, 1, 0, 5, 6, 0xFE, 2})));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a,b,never\n1,2,\n,4,\n5,,\n");
}

TEST(Table, InvalidationBitsApartFromTheData) {
  FileBuilder file("MDF     ", 420);
  const std::uint64_t group = file.addChannelGroup({4, 1, 1}, {file.addChannel(firstByte("a"))});
  const std::uint64_t first = file.add("DV", {}, "AB");
  const std::uint64_t second = file.add("DV", {}, "CD");
  const std::uint64_t invalid = file.add("DI", {}, Bytes().zeros(2));
  const std::uint64_t list =
      file.add("LD", {0, first, second, invalid, invalid}, Bytes().u32(0x80000001U).u32(2).u64(2));
  file.addDataGroup({group}, list);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a\n65\n66\n67\n68\n");
}

TEST(Table, VirtualChannels) {
  FileBuilder file;
  ChannelSpec time;
  time.name = "time";
  time.bit_count = 0;
  time.type = 3;
  time.sync_type = 1;
  time.unit = "s";
  time.conversion = file.addConversion({1, {}, {10, 0.25}});
  ChannelSpec index;
  index.name = "index";
  index.bit_count = 0;
  index.type = 6;
  const std::uint64_t group = file.addChannelGroup(
      {3, 1},
      {file.addChannel(index), file.addChannel(time), file.addChannel(number("a", 0, 0, 8))});
  file.addDataGroup({group}, file.addData("ABC"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "time [s],index,a\n10,0,65\n10.25,1,66\n10.5,2,67\n");
}

TEST(Table, VirtualChannelsAlone) {
  FileBuilder file;
  ChannelSpec index;
  index.name = "index";
  index.bit_count = 0;
  index.type = 6;
  file.addDataGroup({file.addChannelGroup({3, 0}, {file.addChannel(index)})}, 0);
  EXPECT_EQ(healthyCsvOf(file.bytes()), "index\n0\n1\n2\n");
}

TEST(Table, VirtualChannelsAloneWithACountThatLies) {
  FileBuilder contents;
  ChannelSpec index;
  index.name = "index";
  index.bit_count = 0;
  index.type = 6;
  contents.addDataGroup(
      {contents.addChannelGroup({std::uint64_t{1} << 60U, 0}, {contents.addChannel(index)})}, 0);
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

TEST(Table, ManyUnsortedGroups) {
  FileBuilder file;
  std::vector<std::uint64_t> groups;
  Bytes records;
  std::string expected;
  for (std::uint16_t i = 0; i < 300; ++i) {
    const std::string name = "c" + std::to_string(i);
    groups.push_back(file.addChannelGroup({2, 1, 0, i}, {file.addChannel(firstByte(name))}));
    records.u16(i).u8(static_cast<std::uint8_t>(i));
    expected += (i == 0 ? "" : "\n") + name + "\n" + std::to_string(i % 256) + "\n" +
                std::to_string((299 - i) % 256) + "\n";
  }
  for (std::uint16_t i = 0; i < 300; ++i) {
    records.u16(static_cast<std::uint16_t>(299 - i)).u8(static_cast<std::uint8_t>(i));
  }
  file.addDataGroup(groups, file.addData(records), 2);
  EXPECT_EQ(healthyCsvOf(file.bytes()), expected);
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

TEST(Table, MembersOfStructures) {
  FileBuilder file;
  const std::uint64_t x = file.addChannel(number("x", 0, 0, 8));
  const std::uint64_t y = file.addChannel(number("y", 0, 1, 8));
  file.chain({x, y});
  ChannelSpec point = number("point", 10, 0, 16);
  point.composition = x;
  ChannelSpec outer = number("outer", 10, 0, 16);
  outer.composition = file.addChannel(point);
  const std::uint64_t group =
      file.addChannelGroup({1, 3}, {file.addChannel(outer), file.addChannel(number("z", 0, 2, 8))});
  file.addDataGroup({group}, file.addData("ABC"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "outer.point.x,outer.point.y,z\n65,66,67\n");
}

/// A channel array block of unsigned bytes.
std::uint64_t arrayOf(FileBuilder& file, const std::vector<std::uint64_t>& dimensions,
                      std::uint32_t step, std::uint32_t flags = 0, std::uint8_t storage = 0) {
  Bytes fields;
  fields.u8(0).u8(storage).u16(static_cast<std::uint16_t>(dimensions.size())).u32(flags);
  fields.u32(step).u32(0);
  for (const std::uint64_t dimension : dimensions) {
    fields.u64(dimension);
  }
  return file.add("CA", {0}, fields);
}

std::string arrayFile(const std::vector<std::uint64_t>& dimensions, std::uint32_t step,
                      std::uint32_t flags = 0, std::uint8_t storage = 0) {
  FileBuilder file;
  ChannelSpec fields = number("map", 0, 0, 8);
  fields.composition = arrayOf(file, dimensions, step, flags, storage);
  const std::uint64_t last = file.addChannel(number("last", 0, 6, 8));
  file.addDataGroup({file.addChannelGroup({1, 7}, {file.addChannel(fields), last})},
                    file.addData("ABCDEFG"));
  return file.bytes();
}

TEST(Table, ElementsOfArrays) {
  EXPECT_EQ(healthyCsvOf(arrayFile({2, 3}, 1)),
            "map[0][0],map[0][1],map[0][2],map[1][0],map[1][1],map[1][2],last\n"
            "65,66,67,68,69,70,71\n");
  EXPECT_EQ(healthyCsvOf(arrayFile({2, 2}, 1, 64)),
            "map[0][0],map[1][0],map[0][1],map[1][1],last\n65,66,67,68,71\n");
  EXPECT_EQ(healthyCsvOf(arrayFile({3}, 2)), "map[0],map[1],map[2],last\n65,67,69,71\n");
}

TEST(Table, ArraysThatDoNotFitAreLeftOut) {
  for (const auto& dimensions : std::vector<std::vector<std::uint64_t>>{
           {100000}, {UINT64_MAX, UINT64_MAX}, {2, 4}, std::vector<std::uint64_t>(17, 1)}) {
    const Exported exported = csvOf(arrayFile(dimensions, 2));
    EXPECT_EQ(exported.text, "last\n71\n");
    EXPECT_EQ(exported.findings.size(), 1U);
  }
  EXPECT_EQ(csvOf(arrayFile({2}, 0)).findings.size(), 1U);        // elements that overlap
  EXPECT_EQ(csvOf(arrayFile({2}, 1, 0, 1)).findings.size(), 1U);  // elements elsewhere
}

/// An array of arrays or structures, and a channel after it.
std::string composedFile(FileBuilder file, const std::vector<std::uint64_t>& dimensions,
                         std::uint64_t composition) {
  ChannelSpec fields = number("v", 0, 0, 8);
  fields.composition = arrayOf(file, dimensions, 2);
  file.link(fields.composition, 0, composition);
  const std::uint64_t last = file.addChannel(number("last", 0, 6, 8));
  file.addDataGroup({file.addChannelGroup({1, 7}, {file.addChannel(fields), last})},
                    file.addData("ABCDEFG"));
  return file.bytes();
}

TEST(Table, ArraysOfStructures) {
  FileBuilder file;
  const std::uint64_t a = file.addChannel(number("a", 0, 0, 8));
  file.chain({a, file.addChannel(number("b", 0, 1, 8))});
  const std::string bytes = composedFile(file, {3}, a);
  EXPECT_EQ(healthyCsvOf(bytes),
            "v[0].a,v[0].b,v[1].a,v[1].b,v[2].a,v[2].b,last\n65,66,67,68,69,70,71\n");
  Query query;
  query.channels = {"v.b"};
  EXPECT_EQ(healthyCsvOf(bytes, query), "v[0].b,v[1].b,v[2].b\n66,68,70\n");
}

TEST(Table, ArraysOfArrays) {
  FileBuilder file;
  const std::uint64_t inner = arrayOf(file, {2}, 1);
  EXPECT_EQ(healthyCsvOf(composedFile(file, {3}, inner)),
            "v[0][0],v[0][1],v[1][0],v[1][1],v[2][0],v[2][1],last\n65,66,67,68,69,70,71\n");
}

TEST(Table, ArraysOfStructuresThatDoNotFitAreLeftOut) {
  FileBuilder file;
  const std::uint64_t a = file.addChannel(number("a", 0, 0, 8));
  file.chain({a, file.addChannel(number("b", 0, 1, 8))});
  for (const auto& dimensions : std::vector<std::vector<std::uint64_t>>{
           {5}, {UINT64_MAX}, std::vector<std::uint64_t>(17, 1)}) {
    expectFinding(csvOf(composedFile(file, dimensions, a)), "last\n71\n",
                  "expected the array to fit into records of 7 bytes");
  }
  const std::uint64_t too_many = arrayOf(file, {65536}, 1);
  const std::uint64_t elsewhere = arrayOf(file, {2}, 1, 0, 1);
  for (const std::uint64_t inner : {too_many, elsewhere}) {
    expectFinding(csvOf(composedFile(file, {1}, inner)), "last\n71\n",
                  "expected the array to fit into records of 7 bytes");
  }
}

/// Structures in arrays in structures, and so on: each level twice what there is below.
TEST(Table, ArraysOfStructuresInOneAnotherHaveALimit) {
  FileBuilder file;
  std::uint64_t member = file.addChannel(number("a", 0, 0, 8));
  for (int i = 0; i < 30; ++i) {
    ChannelSpec fields = number("s", 10, 0, 8);
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
  const Exported exported = csvOf(composedFile(file, {3}, inner));
  EXPECT_EQ(exported.findings.size(), 1U);
}

TEST(Table, ChannelsOfTheSameName) {
  FileBuilder file;
  const std::uint64_t group = file.addChannelGroup(
      {1, 4}, {file.addChannel(number("a", 0, 0, 8)), file.addChannel(number("a (2)", 0, 1, 8)),
               file.addChannel(number("a", 0, 2, 8)), file.addChannel(number("", 0, 3, 8))});
  file.addDataGroup({group}, file.addData("ABCD"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a,a (2),a (3),unnamed\n65,66,67,68\n");
}

TEST(Table, ValuesOutsideTheRecord) {
  FileBuilder file;
  const std::uint64_t group = file.addChannelGroup(
      {1, 2}, {file.addChannel(number("a", 0, 0, 16)), file.addChannel(number("b", 0, 1, 16))});
  file.addDataGroup({group}, file.addData("AB"));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.text, "a,b\n16961,\n");
  ASSERT_EQ(exported.findings.size(), 1U);
  EXPECT_NE(exported.findings[0].find("expected the value inside the record's 2 bytes, found byte "
                                      "1 and 16 bits"),
            std::string::npos);
}

TEST(Table, SharedConversions) {
  FileBuilder file;
  ChannelSpec a = number("a", 0, 0, 8);
  a.conversion = file.addConversion({7, {file.text("letter"), file.text("other")}, {65}});
  ChannelSpec b = number("b", 0, 1, 8);
  b.conversion = a.conversion;
  file.addDataGroup({file.addChannelGroup({2, 2}, {file.addChannel(a), file.addChannel(b)})},
                    file.addData("ABBA"));
  EXPECT_EQ(healthyCsvOf(file.bytes()), "a,b\nletter,other\nother,letter\n");
  Query raw;
  raw.raw = true;
  EXPECT_EQ(healthyCsvOf(file.bytes(), raw), "a,b\n65,66\n66,65\n");
}

TEST(Table, PatternsSelectChannels) {
  FileBuilder file = timedFile(2, timedRecords(2));
  file.addDataGroup({file.addChannelGroup({1, 1}, {file.addChannel(number("other", 0, 0, 8))})},
                    file.addData("A"));
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

TEST(Table, GroupsAreCountedThroughTheFile) {
  FileBuilder file = timedFile(1, timedRecords(1));
  file.addDataGroup({file.addChannelGroup({1, 1}, {file.addChannel(number("other", 0, 0, 8))})},
                    file.addData("A"));
  Query query;
  query.group = "1";
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "other\n65\n");
  query.group = "2";
  EXPECT_EQ(healthyCsvOf(file.bytes(), query), "");
}

TEST(Table, RangeOfTheMaster) {
  FileBuilder file = timedFile(5, timedRecords(5));
  file.addDataGroup({file.addChannelGroup({1, 1}, {file.addChannel(number("other", 0, 0, 8))})},
                    file.addData("A"));
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
    file.addDataGroup({file.addChannelGroup({records.size() / length, length},
                                            {file.addChannel(number("t", 6, 0, 8 * length))})},
                      file.addData(records));
    EXPECT_EQ(healthyCsvOf(file.bytes()), expected) << length;
  }
}

TEST(Table, CsvFieldsAreQuotedWhereTheyNeedToBe) {
  FileBuilder file;
  ChannelSpec text = number("a, \"b\"", 7, 0, 32);
  text.unit = "x\ny";
  const std::string records =
      Bytes().text("a,b").zeros(1).text("\"q\"").zeros(1).text("a\r\nb pad");
  file.addDataGroup({file.addChannelGroup(
                        {4, 4}, {file.addChannel(text), file.addChannel(number("n", 0, 0, 8))})},
                    file.addData(records));
  EXPECT_EQ(
      healthyCsvOf(file.bytes()),
      "\"a, \"\"b\"\" [x\ny]\",n\n\"a,b\",97\n\"\"\"q\"\"\",34\n\"a\r\nb\",97\n\" pad\",32\n");
}

TEST(Table, JsonLines) {
  FileBuilder file;
  ChannelSpec real = number("r \"q\"", 4, 0, 32);
  real.unit =
      "\xC2\xB0"
      "C";
  ChannelSpec text = number("t", 6, 4, 16);
  text.flags = 2;
  const std::uint64_t group =
      file.addChannelGroup({3, 6, 1}, {file.addChannel(real), file.addChannel(text)});
  file.addDataGroup({group}, file.addData(Bytes()
                                              .u32(0x3FC00000)
                                              .text("\\\n")
                                              .u8(0)
                                              .u32(0x7FC00000)
                                              .text("ab")
                                              .u8(1)
                                              .u32(0xFF800000)
                                              .text("\xE9\"")
                                              .u8(0)));
  const Exported exported = jsonOf(file.bytes());
  EXPECT_EQ(exported.findings, std::vector<std::string>());
  EXPECT_EQ(exported.text,
            "{\"schema\":2,\"file\":\"FILE\",\"group\":0,\"name\":\"\",\"columns\":[{\"name\":\"r "
            "\\\"q\\\"\",\"unit\":"
            "\"\xC2\xB0"
            "C\"},{\"name\":\"t\",\"unit\":\"\"}]}\n"
            "{\"schema\":2,\"file\":\"FILE\",\"group\":0,\"values\":{\"r "
            "\\\"q\\\"\":1.5,\"t\":\"\\\\\\u000a\"}}\n"
            "{\"schema\":2,\"file\":\"FILE\",\"group\":0,\"values\":{\"r "
            "\\\"q\\\"\":\"nan\",\"t\":null}}\n"
            "{\"schema\":2,\"file\":\"FILE\",\"group\":0,\"values\":{\"r "
            "\\\"q\\\"\":\"-inf\",\"t\":\"\xC3\xA9\\\"\"}}\n");
}

TEST(Table, ManyChannelsForFewBytesAreLimited) {
  FileBuilder file;
  std::vector<std::uint64_t> channels;
  for (int i = 0; i < 400; ++i) {
    channels.push_back(file.addChannel(number("c" + std::to_string(i), 0, 0, 8)));
  }
  file.addDataGroup({file.addChannelGroup({1, 1}, channels)}, file.addData("A"));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_EQ(exported.text.substr(exported.text.find('\n') + 1, 6), "65,65,");
}

TEST(Table, LongValuesAreNotGivenWithoutEnd) {
  FileBuilder file;
  const std::string value(60000, 'v');
  const std::uint64_t values =
      file.add("SD", {}, Bytes().u32(static_cast<std::uint32_t>(value.size())).text(value));
  const std::uint64_t group =
      file.addChannelGroup({1000, 4}, {file.addChannel(variable("v", 7, values))});
  file.addDataGroup({group}, file.addData(std::string(4000, '\0')));
  const Exported exported = csvOf(file.bytes());
  EXPECT_EQ(exported.findings.size(), 1U);
  EXPECT_LT(exported.text.size(), 20000000U);
}

}  // namespace
