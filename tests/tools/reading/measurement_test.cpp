#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "mdf_reader/mdf_reader.h"
#include "reader/bytes/input_file.h"
#include "reader/summary/file_json.h"
#include "reader/summary/json.h"
#include "support/bytes.h"
#include "tools/support/bus_file.h"
#include "tools/support/file_builder.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

/// Two groups in one data group each: three records of a time and a speed in 1/2 m/s, two of a
/// level alone.
FileBuilder twoGroups(const std::string& file_word = "MDF     ", std::uint64_t cycles = 3) {
  FileBuilder builder(file_word);
  ChannelSpec speed = channelOf("speed", 0, 8, 8);
  speed.unit = "m/s";
  speed.conversion = builder.addConversion({1, {}, {0, 0.5}});
  GroupSpec engine{cycles, 9};
  engine.name = "engine";
  builder.addSortedGroup(engine, {timeChannel(), speed},
                         builder.addData(Bytes().f64(0).u8(10).f64(0.25).u8(11).f64(0.5).u8(12)));
  GroupSpec tank{2, 1};
  tank.name = "tank";
  builder.addSortedGroup(tank, {firstByte("level")}, builder.addData(Bytes().u8s({7, 8})));
  return builder;
}

/// "group number: name=text unit, ..." a line for each row.
std::string rowsOf(const Measurement& measurement, const Query& query) {
  std::string lines;
  Batches batches = measurement.read(query);
  while (const Batch* const batch = batches.next()) {
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      lines += std::string(batch->group().name) + ' ' + std::to_string(batch->record(row)) + ':';
      for (std::size_t i = 0; i < batch->columnCount(); ++i) {
        lines += ' ' + batch->name(i) + '=';
        batch->column(i).print(row, lines);
        lines += batch->unit(i);
      }
      lines += '\n';
    }
  }
  return lines;
}

TEST(Measurement, GroupsWithTheirChannelsAndRecords) {
  const TempFile temp(twoGroups().bytes());
  const Measurement measurement(temp.path());
  std::ostringstream lines;
  for (const ChannelGroup& group : measurement.groups()) {
    lines << group.index << ' ' << group.name << ' ' << measurement.records(group);
    for (const Channel& channel : group.channels) {
      lines << ' ' << channel.name << " [" << channel.unit << ']';
    }
    lines << '\n';
  }
  EXPECT_EQ(lines.str(), "0 engine 3 time [s] speed [m/s]\n1 tank 2 level []\n");
  EXPECT_EQ(measurement.groups().size(), 2U);
  EXPECT_EQ(measurement.groups()[1].name, "tank");
  EXPECT_EQ(measurement.dataGroups().size(), 2U);
  EXPECT_EQ(measurement.identification().version, 410U);
  EXPECT_TRUE(measurement.findings().empty());
}

TEST(Measurement, ChannelsByNameOrPattern) {
  const TempFile temp(twoGroups().bytes());
  const Measurement measurement(temp.path());
  const auto speed = measurement.channels("speed");
  ASSERT_EQ(speed.size(), 1U);
  EXPECT_EQ(speed[0].group->name, "engine");
  EXPECT_EQ(speed[0].channel->bit_count, 8U);
  EXPECT_EQ(measurement.channels("*e*").size(), 3U);
  EXPECT_TRUE(measurement.channels("spee").empty());
}

TEST(Measurement, MembersHaveTheNameOfTheirStructureToo) {
  FileBuilder builder;
  ChannelSpec frame = firstByte("CAN_DataFrame");
  frame.composition = builder.addChannel(firstByte("ID"));
  builder.addSortedGroup({0, 1}, {frame}, 0);
  const TempFile temp(builder.bytes());
  const Measurement measurement(temp.path());
  ASSERT_EQ(measurement.channels("CAN_DataFrame.ID").size(), 1U);
  EXPECT_EQ(measurement.channels("CAN_DataFrame.ID")[0].channel->name, "ID");
  EXPECT_EQ(measurement.channels("ID").size(), 1U);
  EXPECT_EQ(measurement.channels("CAN*").size(), 2U);
}

TEST(Measurement, RowsHavePhysicalValuesAfterTheMasters) {
  const TempFile temp(twoGroups().bytes());
  const Measurement measurement(temp.path());
  EXPECT_EQ(rowsOf(measurement, {{"speed"}, {}, {}, {}}),
            "engine 0: time=0s speed=5m/s\n"
            "engine 1: time=0.25s speed=5.5m/s\n"
            "engine 2: time=0.5s speed=6m/s\n");
  EXPECT_EQ(rowsOf(measurement, {{"speed"}, {}, 0.2, 0.3, true}),
            "engine 1: time=0.25s speed=11m/s\n");
  EXPECT_EQ(rowsOf(measurement, {{}, "tank", {}, {}}), "tank 0: level=7\ntank 1: level=8\n");
  EXPECT_EQ(rowsOf(measurement, {{"nothing"}, {}, {}, {}}), "");
}

TEST(Measurement, BatchesHaveColumnsOfTheTypesThatAreStored) {
  const TempFile temp(twoGroups().bytes());
  Batches batches = Measurement(temp.path()).read({});  // reads on without the measurement
  const Batch* batch = batches.next();
  ASSERT_NE(batch, nullptr);
  ASSERT_EQ(batch->rows(), 3U);
  ASSERT_EQ(batch->columnCount(), 2U);
  EXPECT_TRUE(batch->head().has_master);
  const auto* const speed = batch->column(1).values<double>();
  ASSERT_NE(speed, nullptr);
  EXPECT_EQ(std::vector<double>(speed, speed + 3), (std::vector<double>{5, 5.5, 6}));
  EXPECT_EQ(batch->column(1).values<float>(), nullptr);
  Batches moved = std::move(batches);
  batch = moved.next();
  ASSERT_NE(batch, nullptr);
  ASSERT_EQ(batch->rows(), 2U);
  const auto* const level = batch->column(0).values<std::uint8_t>();
  ASSERT_NE(level, nullptr);
  EXPECT_EQ(std::vector<int>(level, level + 2), (std::vector<int>{7, 8}));
  EXPECT_EQ(moved.next(), nullptr);
}

TEST(Measurement, BatchesAreAsLongAsWanted) {
  const TempFile temp(twoGroups().bytes());
  Query query;
  query.batch_rows = 2;
  Batches batches = Measurement(temp.path()).read(query);
  std::string sizes;
  while (const Batch* const batch = batches.next()) {
    sizes += std::to_string(batch->record(0)) + '+' + std::to_string(batch->rows()) + ' ';
  }
  EXPECT_EQ(sizes, "0+2 2+1 0+2 ");
}

TEST(Measurement, BatchesThatAreTakenLast) {
  const TempFile temp(twoGroups().bytes());
  std::vector<std::unique_ptr<const Batch>> taken;
  {
    Query query{{}, "engine", {}, {}};
    query.batch_rows = 2;
    Batches batches = Measurement(temp.path()).read(query);
    EXPECT_EQ(batches.take(), nullptr);
    while (batches.next() != nullptr) {
      taken.push_back(batches.take());
      EXPECT_EQ(batches.take(), nullptr);
    }
    EXPECT_EQ(batches.take(), nullptr);
  }
  std::string text;
  for (const auto& batch : taken) {
    text += batch->name(1) + " in " + batch->unit(1) + ':';
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      text += ' ';
      batch->column(1).print(row, text);
    }
    text += '\n';
  }
  EXPECT_EQ(text, "speed in m/s: 5 5.5\nspeed in m/s: 6\n");
}

/// "group: name type, ...", a line for each table; the master channel in brackets.
std::string headsOf(const Measurement& measurement, const Query& query) {
  std::string lines;
  Batches batches = measurement.read(query);
  for (const TableHead& head : batches.heads()) {
    lines += std::string(head.group->name) + ':';
    for (const ColumnHead& column : head.columns) {
      const bool is_master = head.has_master && &column == &head.columns.front();
      lines += is_master ? " [" + column.name + ']' : ' ' + column.name;
      lines += ' ' + std::to_string(static_cast<int>(column.type));
    }
    lines += '\n';
  }
  return lines;
}

TEST(Measurement, TablesAreKnownBeforeTheirRecords) {
  const TempFile temp(twoGroups().bytes());
  const Measurement measurement(temp.path());
  EXPECT_EQ(headsOf(measurement, {}), "engine: [time] 9 speed 9\ntank: level 0\n");
  EXPECT_EQ(headsOf(measurement, {{"speed"}, {}, {}, {}, true}), "engine: [time] 9 speed 0\n");
  EXPECT_EQ(headsOf(measurement, {{}, {}, 0.1, {}}), "engine: [time] 9 speed 9\n");
  EXPECT_EQ(headsOf(measurement, {{"nothing"}, {}, {}, {}}), "");
}

TEST(Measurement, TextsAreNoNumbers) {
  FileBuilder builder;
  builder.addSortedGroup({1, 2}, {channelOf("text", 7, 0, 16)}, builder.addData("ab"));
  const TempFile temp(builder.bytes());
  Batches batches = Measurement(temp.path()).read({});
  const Batch* const batch = batches.next();
  ASSERT_NE(batch, nullptr);
  EXPECT_EQ(batch->column(0).type(), ColumnType::text);
  EXPECT_EQ(batch->column(0).text(0), "ab");
  EXPECT_TRUE(std::isnan(batch->column(0).real(0)));
}

TEST(Measurement, RecordsAsStored) {
  const TempFile temp(twoGroups().bytes());
  const Measurement measurement(temp.path());
  std::vector<std::string> records;
  measurement.forEachRecord(measurement.groups()[0], [&](std::string_view record) {
    records.emplace_back(record);
    return records.size() < 2;
  });
  EXPECT_EQ(records, (std::vector<std::string>{Bytes().f64(0).u8(10), Bytes().f64(0.25).u8(11)}));
}

TEST(Measurement, RecordsOfAnUnfinishedFileAreCounted) {
  FileBuilder builder = twoGroups("UnFinMF ", 0);
  builder.write(60, Bytes().u16(1));
  const TempFile temp(builder.bytes());
  const Measurement measurement(temp.path());
  const RecordCount count = measurement.records(measurement.groups()[0]);
  EXPECT_EQ(count.records, 3U);
  EXPECT_TRUE(count.is_counted);
}

TEST(Measurement, CountThatNobodyKnowsIsUnknown) {
  std::ostringstream text;
  text << RecordCount{std::nullopt, true};
  EXPECT_EQ(text.str(), "unknown");
}

TEST(Measurement, AttachmentsEventsHierarchyAndHistory) {
  SmallFile file;
  const auto name = file.text("start");
  file.link(FileBuilder::header, 1, file.add("FH", {0, name}, Bytes().u64(5).zeros(8)));
  file.link(FileBuilder::header, 2,
            file.add("CH", {0, 0, name, 0}, Bytes().u32(0).u8s({3, 0, 0, 0})));
  file.link(FileBuilder::header, 3,
            file.add("AT", {0, name, 0, 0}, Bytes().u16(1).zeros(22).u64(3).u64(3).text("abc")));
  file.link(FileBuilder::header, 4,
            file.add("EV", {0, 0, 0, name, 0},
                     Bytes().u8s({6, 1, 0, 0, 0, 0, 0, 0}).zeros(8).i64(4).f64(0.5)));
  const TempFile temp(file.bytes());
  const Measurement measurement(temp.path());
  ASSERT_EQ(measurement.history().size(), 1U);
  EXPECT_EQ(measurement.history()[0].comment, "start");
  ASSERT_EQ(measurement.hierarchy().size(), 1U);
  EXPECT_EQ(measurement.hierarchy()[0].type, 3U);
  ASSERT_EQ(measurement.events().size(), 1U);
  EXPECT_EQ(measurement.events()[0].position(), 2);
  const auto attachments = measurement.attachments();
  ASSERT_EQ(attachments.size(), 1U);
  std::string data;
  EXPECT_EQ(
      measurement.readAttachment(attachments[0], [&](std::string_view piece) { data += piece; }),
      AttachmentData::fine);
  EXPECT_EQ(data, "abc");
  EXPECT_TRUE(measurement.findings().empty());
}

TEST(Measurement, AnyBlockByItsOffset) {
  const TempFile temp(SmallFile().bytes());
  const Measurement measurement(temp.path());
  const auto block = measurement.block(SmallFile::data_group);
  ASSERT_TRUE(block);
  EXPECT_EQ(block->type, "DG");
  EXPECT_EQ(block->length, 64U);
  std::string shown;
  for (const Block::Link& link : block->links) {
    shown += link.role + '=' + std::to_string(link.target) + ' ';
  }
  for (const Block::Field& field : block->fields) {
    shown += field.name + '=' + field.value + ' ';
  }
  EXPECT_EQ(shown,
            "dg_dg_next=0 dg_cg_first=232 dg_data=720 dg_md_comment=0 "
            "dg_rec_id_size=0 dg_reserved=00 00 00 00 00 00 00 ");
  EXPECT_FALSE(measurement.block(SmallFile::data_group + 8));
  EXPECT_FALSE(measurement.block(SmallFile::end));
}

TEST(Measurement, FindingsOfTheDataComeWhenItIsReadAndCountOnce) {
  const TempFile temp(twoGroups("MDF     ", 4).bytes());
  const Measurement measurement(temp.path());
  EXPECT_TRUE(measurement.findings().empty());
  measurement.forEachRecord(measurement.groups()[0], [](std::string_view) { return true; });
  EXPECT_EQ(measurement.findingCount(), 1U);
  EXPECT_EQ(rowsOf(measurement, {}), rowsOf(measurement, {}));
  ASSERT_EQ(measurement.findings().size(), 1U);
  EXPECT_EQ(measurement.findings()[0].code, Code::cycle_count_wrong);
  EXPECT_EQ(measurement.findingCount(), 1U);
}

TEST(Measurement, DescribesItself) {
  const TempFile temp(twoGroups().bytes());
  const Json described = Json::parse(Measurement(temp.path()).describe());
  InputFile file(temp.path());
  const Json info = fileAsJson(file, Depth::records, [](const Finding&) {});
  ASSERT_EQ(described["channels"].size(), 3U);
  EXPECT_EQ(described, Json({{"schema", 2},
                             {"info", info},
                             {"channels", described["channels"]},
                             {"attachments", Json::array()},
                             {"events", Json::array()}}));
  EXPECT_EQ(described["channels"][2], Json::parse(R"({
    "group": 1, "name": "level", "unit": "", "type": "fixed", "type_number": 0,
    "sync_type": "none", "sync_type_number": 0, "data_type": "uint LE", "data_type_number": 0,
    "bit_offset": 0, "byte_offset": 0, "bit_count": 8, "flags": 0, "dimensions": [], "depth": 0,
    "records": 2, "records_counted": false, "conversion": null, "conversion_number": null,
    "source": "", "comment": "", "offset": 1032})"));
}

/// Events that all have the same long name.
TEST(Measurement, DescribesEventsOnlyAsFarAsTheFileHasTexts) {
  FileBuilder builder;
  const std::uint64_t name = builder.text(std::string(std::size_t{1} << 20U, 'e'));
  std::vector<std::uint64_t> events;
  for (int i = 0; i < 20; ++i) {
    events.push_back(builder.add("EV", {0, 0, 0, name, 0}, zeros(32)));
  }
  builder.chain(events);
  builder.link(FileBuilder::header, 4, events[0]);
  const TempFile temp(builder.bytes());
  const Measurement measurement(temp.path());
  EXPECT_EQ(Json::parse(measurement.describe())["events"].size(), 16U);
  ASSERT_EQ(measurement.findings().size(), 1U);
  EXPECT_EQ(measurement.findings()[0].offset, events[16]);
  EXPECT_EQ(measurement.findings()[0].sentence,
            "expected events with texts of their own, found the same long ones again and again; "
            "the other events are left out");
}

/// Channels that all have the same long comment.
TEST(Measurement, DescribesChannelsOnlyAsFarAsTheFileHasTexts) {
  FileBuilder builder;
  const std::uint64_t comment = builder.text(std::string(std::size_t{1} << 20U, 'c'));
  std::vector<std::uint64_t> channels;
  for (int i = 0; i < 20; ++i) {
    channels.push_back(builder.addChannel({}));
    builder.link(channels.back(), 7, comment);
  }
  builder.addDataGroup({builder.addChannelGroup({}, channels)}, 0);
  const TempFile temp(builder.bytes());
  const Measurement measurement(temp.path());
  EXPECT_EQ(Json::parse(measurement.describe())["channels"].size(), 16U);
  ASSERT_EQ(measurement.findings().size(), 1U);
  EXPECT_EQ(measurement.findings()[0].code, Code::work_limited);
  EXPECT_EQ(measurement.findings()[0].offset, channels[16]);
}

TEST(Measurement, FindingsAreKeptUpToALimit) {
  FileBuilder builder;
  std::vector<std::uint64_t> groups;
  for (int i = 0; i < 1200; ++i) {
    const auto group = builder.addGroupOf({}, {ChannelSpec()});
    builder.link(group, 1, FileBuilder::header);  // where a channel should be
    groups.push_back(group);
  }
  builder.addDataGroup(groups, 0);
  const TempFile temp(builder.bytes());
  const Measurement measurement(temp.path());
  EXPECT_EQ(measurement.findings().size(), 1000U);
  EXPECT_EQ(measurement.findingCount(), 1200U);
}

TEST(Measurement, MovesWithAllThatItHandedOut) {
  const TempFile temp(twoGroups().bytes());
  Measurement first(temp.path());
  const ChannelGroup& group = first.groups()[0];
  const Measurement second = std::move(first);
  EXPECT_EQ(&second.groups()[0], &group);
  EXPECT_EQ(rowsOf(second, {{"level"}, {}, {}, {}, false}), "tank 0: level=7\ntank 1: level=8\n");
}

TEST(Measurement, TwoFilesInTwoThreads) {
  const TempFile temp(twoGroups().bytes());
  const TempFile other(SmallFile().bytes());
  std::string rows;
  std::string others;
  std::thread reader([&] { rows = rowsOf(Measurement(temp.path()), {}); });
  others = rowsOf(Measurement(other.path()), {});
  reader.join();
  EXPECT_EQ(rows,
            "engine 0: time=0s speed=5m/s\nengine 1: time=0.25s speed=5.5m/s\n"
            "engine 2: time=0.5s speed=6m/s\ntank 0: level=7\ntank 1: level=8\n");
  EXPECT_EQ(others, rowsOf(Measurement(other.path()), {}));
}

TEST(Measurement, SignalsOfFramesAreAMeasurementOfTheirOwn) {
  FileBuilder file;
  addFrames(
      file, "CAN_DataFrame", canMembers(),
      frameRecord(0.5, 1, 0x123, 0, 2, "\x10\x02") + frameRecord(1, 2, 0x123, 0, 2, "\x20\x02"));
  const TempFile log(file.bytes());
  const TempFile database("BO_ 291 Engine: 2 ECU\n SG_ Speed : 0|8@1+ (1,0) [0|0] \"m/s\" ECU\n");
  const DecodedSignals decoded = Measurement(log.path()).decode({database.path() + "@2"}, false);
  EXPECT_EQ(rowsOf(decoded.signals, {}), "Engine 0: time=1s Speed=32m/s\n");
  EXPECT_EQ(decoded.frames.frames, 1U);
  EXPECT_EQ(decoded.frames.unknown_frames, 1U);
  EXPECT_TRUE(decoded.faults.empty());
  EXPECT_THROW(Measurement(log.path()).decode({log.path() + ".dbc"}, false), CannotDecode);
}

}  // namespace
