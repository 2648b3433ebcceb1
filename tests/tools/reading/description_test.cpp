#include "reader/model/description.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

/// A file's description, and the findings on the way.
struct Described {
  explicit Described(const FileBuilder& builder) : temp(builder.bytes()), file(temp.path()) {
    measurement = readDescription(file, [&](const Finding& finding) {
      findings += std::to_string(finding.offset) + ": " + finding.sentence + '\n';
    });
  }

  const ChannelGroup& group(std::size_t data_group = 0, std::size_t index = 0) const {
    return measurement.data_groups.at(data_group).groups.at(index);
  }

  TempFile temp;
  InputFile file;
  Description measurement;
  std::string findings;
};

/// "name/depth" of each channel.
std::string outline(const ChannelGroup& group) {
  std::string text;
  for (const Channel& channel : group.channels) {
    text += std::string(channel.name) + '/' + std::to_string(channel.depth) + ' ';
  }
  return text;
}

TEST(Description, Identification) {
  FileBuilder builder("UnFinMF ", 411);
  builder.write(16, std::string("ab\0cdefg", 8));
  builder.write(60, Bytes().u16(5).u16(7));
  const Described described(builder);
  const auto& id = described.measurement.identification;
  EXPECT_EQ(id.file_word, "UnFinMF ");
  EXPECT_TRUE(id.isUnfinished());
  EXPECT_EQ(id.version_text, "4.11    ");
  EXPECT_EQ(id.version, 411U);
  EXPECT_EQ(id.program, "ab");
  EXPECT_EQ(id.standard_flags, 5U);
  EXPECT_EQ(id.custom_flags, 7U);
  EXPECT_EQ(described.findings, "");
}

TEST(Description, AFileTooShortForItsIdentification) {
  const TempFile temp("MDF     4.10");
  InputFile file(temp.path());
  const auto id = readIdentification(file);
  EXPECT_EQ(id.file_word, "MDF     ");
  EXPECT_FALSE(id.isUnfinished());
  EXPECT_EQ(id.version, 0U);
}

TEST(Description, Header) {
  FileBuilder builder;
  builder.write(64 + 24, Bytes().u64(0).u64(1000).u64(2000).u64(3000).u64(4000));
  builder.link(64, 5, builder.metadata("<HDcomment><TX>a drive</TX></HDcomment>"));
  builder.write(64 + 72, Bytes().u64(12345).i16(-60).i16(60).u8s({3, 16, 1, 0}).f64(0.5).f64(100));
  const Described described(builder);
  const auto& header = described.measurement.header;
  EXPECT_EQ(header.start_time, 12345U);
  EXPECT_EQ(header.zone_minutes, -60);
  EXPECT_EQ(header.daylight_minutes, 60);
  EXPECT_EQ(header.time_flags, 3U);
  EXPECT_EQ(header.time_class, 16U);
  EXPECT_EQ(header.flags, 1U);
  EXPECT_EQ(header.start_angle, 0.5);
  EXPECT_EQ(header.start_distance, 100);
  EXPECT_EQ(header.first_history, 1000U);
  EXPECT_EQ(header.first_hierarchy, 2000U);
  EXPECT_EQ(header.first_attachment, 3000U);
  EXPECT_EQ(header.first_event, 4000U);
  EXPECT_EQ(header.comment, "a drive");
}

TEST(Description, ChannelWithEverything) {
  FileBuilder builder;
  const auto conversion = builder.addConversion({1, {}, {0, 0.5}, "km/h", "scaled"});
  const auto source = builder.addSource("engine", "ECU.engine", 1, 2);
  ChannelSpec spec{1, 0, 8, 3, 70000, 48, 2, 9};
  spec.name = "speed";
  spec.conversion = conversion;
  spec.data = 4711;
  spec.source = source;
  spec.comment = "of the car";
  GroupSpec group{1000, 10, 2, 7, 2};
  group.name = "acquisition";
  group.source = source;
  group.comment = "fast";
  builder.addSortedGroup(group, {spec}, 0);
  const Described described(builder);
  EXPECT_EQ(described.findings, "");
  const ChannelGroup& read = described.group();
  EXPECT_EQ(read.name, "acquisition");
  EXPECT_EQ(read.comment, "fast");
  EXPECT_EQ(read.record_id, 7U);
  EXPECT_EQ(read.cycles, 1000U);
  EXPECT_EQ(read.recordBytes(), 12U);
  EXPECT_EQ(read.source, source);
  EXPECT_FALSE(read.holdsVariableLength());
  const Channel& channel = read.channels.at(0);
  EXPECT_EQ(channel.name, "speed");
  EXPECT_EQ(channel.unit, "km/h") << "the conversion's, since the channel has none";
  EXPECT_EQ(channel.comment, "of the car");
  EXPECT_EQ(channel.type, Channel::variable_length);
  EXPECT_EQ(channel.data_type, Channel::string_utf16_le);
  EXPECT_EQ(channel.byte_offset, 70000U);
  EXPECT_EQ(channel.bit_count, 48U);
  EXPECT_EQ(channel.bit_offset, 3U);
  EXPECT_EQ(channel.flags, 2U);
  EXPECT_EQ(channel.invalidation_bit, 9U);
  EXPECT_EQ(channel.conversion, conversion);
  EXPECT_EQ(channel.data, 4711U);
  EXPECT_FALSE(channel.is_structure);
}

TEST(Description, TheChannelsOwnUnitComesFirst) {
  FileBuilder builder;
  const auto conversion = builder.addConversion({1, {}, {0, 0.5}, "km/h", ""});
  ChannelSpec spec;
  spec.unit = "m/s";
  spec.conversion = conversion;
  builder.addSortedGroup({}, {spec}, 0);
  EXPECT_EQ(Described(builder).group().channels.at(0).unit, "m/s");
}

TEST(Description, VariableLengthGroupsStateTheLengthOfAllValues) {
  FileBuilder builder;
  GroupSpec spec{0, 5, 2};
  spec.flags = 1;
  builder.addSortedGroup(spec, {}, 0);
  const Described described(builder);
  EXPECT_TRUE(described.group().holdsVariableLength());
  EXPECT_EQ(described.group().lengthOfAll(), 0x200000005U);
}

TEST(Description, GroupsAreCountedThroughTheFile) {
  FileBuilder builder;
  for (const int count : {2, 0, 1}) {
    std::vector<std::uint64_t> groups;
    for (int i = 0; i < count; ++i) {
      groups.push_back(builder.addChannelGroup({}));
    }
    builder.addDataGroup(groups, 500, 1);
  }
  const Described described(builder);
  EXPECT_EQ(described.findings, "");
  ASSERT_EQ(described.measurement.data_groups.size(), 3U);
  EXPECT_EQ(described.measurement.data_groups[2].index, 2U);
  EXPECT_EQ(described.measurement.data_groups[1].record_id_code, 1U);
  EXPECT_EQ(described.measurement.data_groups[1].data, 500U);
  EXPECT_EQ(described.measurement.data_groups[1].groups.size(), 0U);
  EXPECT_EQ(described.group(0, 1).index, 1U);
  EXPECT_EQ(described.group(2, 0).index, 2U);
}

TEST(Description, MembersFollowTheirStructure) {
  FileBuilder builder;
  const auto channel = [&](const std::string& name, std::uint64_t composition) {
    ChannelSpec spec = firstByte(name);
    spec.composition = composition;
    return builder.addChannel(spec);
  };
  const auto inner = channel("inner", 0);
  const auto first = channel("first", inner);
  const auto second = channel("second", 0);
  builder.chain({first, second});
  const auto outer = channel("outer", first);
  const auto last = channel("last", 0);
  builder.addDataGroup({builder.addChannelGroup({}, {outer, last})}, 0);
  const Described described(builder);
  EXPECT_EQ(described.findings, "");
  EXPECT_EQ(outline(described.group()), "outer/0 first/1 inner/2 second/1 last/0 ");
  EXPECT_TRUE(described.group().channels[0].is_structure);
  EXPECT_FALSE(described.group().channels[2].is_structure);
}

TEST(Description, ChannelsCanBeVisitedInsteadOfKept) {
  FileBuilder builder;
  builder.addSortedGroup({7}, {firstByte("one"), firstByte("one")}, 0);
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  std::string visited;
  const Description measurement = readDescription(
      file, [](const Finding&) { FAIL(); },
      [&](const ChannelGroup& its_group, const Channel& channel) {
        visited += std::to_string(its_group.cycles) + ' ' + std::string(channel.name) + '\n';
      });
  EXPECT_EQ(visited, "7 one\n7 one\n");
  EXPECT_TRUE(measurement.data_groups.at(0).groups.at(0).channels.empty());
}

TEST(Description, RemoteMastersAreThoseOfGroupsWithTheFlag) {
  for (const std::uint16_t flags : {std::uint16_t{0}, std::uint16_t{8}}) {
    FileBuilder builder;
    GroupSpec spec;
    spec.flags = flags;
    spec.master = 4711;
    builder.addSortedGroup(spec, {}, 0);
    const Described described(builder);
    EXPECT_EQ(described.findings, "");
    EXPECT_EQ(described.group().hasRemoteMaster(), flags == 8);
    EXPECT_EQ(described.group().master_group, flags == 8 ? 4711U : 0U);
  }
}

/// A channel that is an array with these fields.
FileBuilder withArray(const std::string& fields) {
  FileBuilder builder;
  ChannelSpec spec;
  spec.composition = builder.add("CA", {0}, fields);
  builder.addSortedGroup({}, {spec}, 0);
  return builder;
}

TEST(Description, Arrays) {
  const Described described(withArray(u8(0, 0) + u16(2) + u32(64, 0xFFFFFFFE, 3) + u64(4, 5, 99)));
  EXPECT_EQ(described.findings, "");
  const auto& shape = described.group().channels.at(0).array;
  EXPECT_EQ(shape.dimensions, (std::vector<std::uint64_t>{4, 5}));
  EXPECT_EQ(shape.byte_step, -2);
  EXPECT_EQ(shape.invalidation_step, 3U);
  EXPECT_TRUE(shape.in_records);
  EXPECT_TRUE(shape.is_column_oriented);
  EXPECT_FALSE(described.group().channels.at(0).is_structure);
}

TEST(Description, ArraysOfArraysOfStructures) {
  FileBuilder builder;
  const auto fields = [](std::uint32_t step) {
    return u8(0, 0) + u16(1) + u32(0, step, 0) + u64(2);
  };
  const auto inner = builder.add("CA", {builder.addChannel(firstByte("member"))}, fields(1));
  ChannelSpec spec;
  spec.composition = builder.add("CA", {inner}, fields(8));
  builder.addSortedGroup({}, {spec, {}}, 0);
  const Described described(builder);
  EXPECT_EQ(described.findings, "");
  const auto& channels = described.group().channels;
  ASSERT_EQ(channels.size(), 3U);
  EXPECT_TRUE(channels[0].is_structure);
  ASSERT_EQ(channels[0].array.inner.size(), 1U);
  EXPECT_EQ(channels[0].array.byte_step, 8);
  EXPECT_EQ(channels[0].array.inner[0].byte_step, 1);
  EXPECT_EQ(channels[1].name, "member");
  EXPECT_EQ(channels[1].depth, 1U);
  EXPECT_EQ(channels[2].depth, 0U);
}

TEST(Description, ArraysHaveNoMoreDimensionsThanAnybodyTakes) {
  const std::vector<std::int64_t> ones(1000, 1);
  const Described described(withArray(u8(0, 0) + u16(1000) + zeros(12) + listed(ones)));
  EXPECT_EQ(described.group().channels.at(0).array.dimensions.size(), 17U);
}

TEST(Description, ArraysWithLyingDimensionsHaveThoseThatAreThere) {
  const Described described(withArray(u8(0, 1) + u16(65535) + zeros(12) + u64(4)));
  const auto& shape = described.group().channels.at(0).array;
  EXPECT_EQ(shape.dimensions, (std::vector<std::uint64_t>{4}));
  EXPECT_FALSE(shape.in_records);
}

TEST(Description, TheMasterIsOverTimeIfThereIsOne) {
  const auto masterOf = [](std::vector<std::pair<unsigned, unsigned>> types_and_syncs) {
    FileBuilder builder;
    std::vector<ChannelSpec> specs;
    for (const auto& [type, sync] : types_and_syncs) {
      specs.push_back({type, sync});
      specs.back().name = std::to_string(type) + ':' + std::to_string(sync);
    }
    builder.addSortedGroup({}, specs, 0);
    const Described described(builder);
    const Channel* master = described.group().masterChannel();
    return master == nullptr ? "none" : std::string(master->name);
  };
  EXPECT_EQ(masterOf({{0, 1}, {2, 4}, {2, 2}, {3, 1}}), "3:1");
  EXPECT_EQ(masterOf({{2, 3}, {2, 3}}), "2:3");
  EXPECT_EQ(masterOf({{0, 1}, {6, 1}}), "none");
}

TEST(Description, ALinkToAnotherTypeEndsItsChain) {
  FileBuilder builder;
  const auto text = builder.text("no channel");
  const auto group = builder.addGroupOf({}, {firstByte("one")});
  builder.addDataGroup({group}, 0);
  const auto channel = builder.channels()[0];
  builder.link(channel, 0, text);
  builder.link(group, 0, 100001);
  const Described described(builder);
  EXPECT_EQ(described.findings,
            std::to_string(channel) + ": expected a link to a new block \"##CN\" at " +
                decimalAndHex(text) + ", found none\n" + std::to_string(group) +
                ": expected a link to a new block \"##CG\" at 100001 (0x186a1), found none\n");
  EXPECT_EQ(outline(described.group()), "one/0 ");
}

TEST(Description, CyclesAreTakenInOnce) {
  FileBuilder builder;
  const auto first = builder.addChannel(firstByte("a"));
  ChannelSpec spec = firstByte("b");
  spec.composition = first;
  const auto second = builder.addChannel(spec);
  const auto group = builder.addChannelGroup({}, {first, second, first});
  builder.addDataGroup({group}, 0);
  builder.link(group, 0, group);
  const Described described(builder);
  EXPECT_EQ(outline(described.group()), "a/0 b/0 ");
  const std::string again = "found one that was visited before\n";
  std::size_t count = 0;
  for (std::size_t at = described.findings.find(again); at != std::string::npos;
       at = described.findings.find(again, at + 1)) {
    ++count;
  }
  EXPECT_EQ(count, 3U) << described.findings;
}

TEST(Description, DeepNestingNeedsNoDeepStack) {
  FileBuilder builder;
  std::uint64_t below = 0;
  for (int depth = 0; depth < 200000; ++depth) {
    below = builder.add("CN", {0, below, 0, 0, 0, 0, 0, 0}, Bytes().zeros(72));
  }
  builder.addDataGroup({builder.addChannelGroup({}, {below})}, 0);
  const Described described(builder);
  EXPECT_EQ(described.findings, "");
  EXPECT_EQ(described.group().channels.size(), 200000U);
  EXPECT_EQ(described.group().channels.back().depth, 199999U);
}

TEST(Description, BlocksThatAreCutOffAreReported) {
  FileBuilder builder;
  const auto group = builder.add("DG", {0, 0, 0}, {});
  builder.link(64, 0, group);
  EXPECT_EQ(Described(builder).findings,
            std::to_string(group) +
                ": expected all links and fields of ##DG, found a length of 48 and 3 links\n");
}

TEST(Description, NoHeaderBlock) {
  const TempFile temp(std::string(200, 'x'));
  InputFile file(temp.path());
  std::string findings;
  const Description measurement =
      readDescription(file, [&](const Finding& finding) { findings += finding.sentence; });
  EXPECT_EQ(findings,
            "expected the file identifier \"MDF     \" or \"UnFinMF \", found \"xxxxxxxx\"");
  EXPECT_TRUE(measurement.data_groups.empty());
}

TEST(Description, NoHeaderBlockInAMeasurementFile) {
  FileBuilder builder;
  builder.write(64, "####");
  EXPECT_EQ(Described(builder).findings,
            "0: expected a link to a new block \"##HD\" at 64 (0x40), found none\n");
}

TEST(ForEachInChain, EndsAtACycle) {
  FileBuilder builder;
  const auto first = builder.add("FH", {0, 0}, Bytes().zeros(16));
  const auto second = builder.add("FH", {first, 0}, Bytes().zeros(16));
  builder.link(first, 0, second);
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  std::string findings;
  const auto report = [&](const Finding& finding) {
    findings += std::to_string(finding.offset) + ": " + finding.sentence + '\n';
  };
  const auto visited = [&](std::uint64_t from) {
    std::vector<std::uint64_t> offsets;
    forEachInChain(file, from, "FH", report,
                   [&](const BlockFields& block) { offsets.push_back(block.offset()); });
    return offsets;
  };
  EXPECT_EQ(visited(first), (std::vector<std::uint64_t>{first, second}));
  EXPECT_EQ(findings, std::to_string(second) + ": expected a link to a new block \"##FH\" at " +
                          decimalAndHex(first) + ", found one that was visited before\n");
  EXPECT_TRUE(visited(0).empty());
}

TEST(ReadSource, AllOfIt) {
  FileBuilder builder;
  const auto source = builder.addSource("engine", "ECU.engine", 1, 2);
  builder.write(source + 24 + 24 + 2, "\x01");
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  Texts texts;
  const auto read = readSource(file, source, texts);
  EXPECT_EQ(read.name, "engine");
  EXPECT_EQ(read.path, "ECU.engine");
  EXPECT_EQ(read.type, 1U);
  EXPECT_EQ(read.bus_type, 2U);
  EXPECT_TRUE(read.is_simulated);
  EXPECT_EQ(readSource(file, 0, texts).name, "");
}

}  // namespace
