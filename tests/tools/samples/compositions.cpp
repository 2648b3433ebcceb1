// Channels that are made of others: structures and arrays.

#include <utility>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

/// A structure's channel: its bytes, and its members.
std::uint64_t addStructure(SampleFile& file, const std::string& name, std::uint32_t byte_offset,
                           std::uint32_t bytes, const std::vector<std::uint64_t>& members) {
  file.chain(members);
  ChannelSpec channel = part(name, byte_offset, 8 * bytes);
  channel.data_type = 10;
  channel.composition = members[0];
  return file.addChannel(channel);
}

/// A group over time whose second channel is there already.
Sample composed(const std::string& name, const std::string& shows, SampleFile file,
                std::uint64_t channel, const std::vector<std::string>& records,
                const ValueTable& table) {
  Bytes data;
  GroupSpec group{records.size()};
  for (std::size_t i = 0; i < records.size(); ++i) {
    data.f64(timeOf(i)).text(hex(records[i]));
    group.data_bytes = static_cast<std::uint32_t>(8 + hex(records[i]).size());
  }
  const auto channel_group = file.addGroupOf(group, {timeMaster()});
  file.link(file.channels()[0], 0, channel);
  file.addDataGroup({channel_group}, file.addData(data));
  return sampleOf(name, shows, file, {table});
}

Sample structure() {
  SampleFile file;
  const auto channel = addStructure(
      file, "point", 8, 3, {file.addChannel(part("x", 8)), file.addChannel(part("y", 9, 16))});
  return composed("structure", "a channel with two members", std::move(file), channel,
                  {"010200", "030004"},
                  {{{"t", "s"}, {"point.x", ""}, {"point.y", ""}}, {"0,1,2", "0.5,3,1024"}});
}

Sample nestedStructure() {
  SampleFile file;
  const auto inner = addStructure(file, "inner", 9, 2,
                                  {file.addChannel(part("a", 9)), file.addChannel(part("b", 10))});
  const auto outer = addStructure(file, "outer", 8, 3, {file.addChannel(part("c", 8)), inner});
  file.link(outer, 0, file.addChannel(part("last", 11)));
  return composed(
      "structure-nested", "a structure in a structure, and a channel after it", std::move(file),
      outer, {"01020304", "05060708"},
      {{{"t", "s"}, {"outer.c", ""}, {"outer.inner.a", ""}, {"outer.inner.b", ""}, {"last", ""}},
       {"0,1,2,3,4", "0.5,5,6,7,8"}});
}

Sample bitStructure() {
  SampleFile file;
  const auto channel =
      addStructure(file, "flags", 8, 1,
                   {file.addChannel(part("ready", 8, 1)), file.addChannel(part("mode", 8, 3, 1)),
                    file.addChannel(part("level", 8, 4, 4))});
  return composed("structure-of-bits", "members that share a byte", std::move(file), channel,
                  {"a5", "5a"},
                  {{{"t", "s"}, {"flags.ready", ""}, {"flags.mode", ""}, {"flags.level", ""}},
                   {"0,1,2,10", "0.5,0,5,5"}});
}

/// Members that carry their structure's name, as bus loggers write them.
Sample busFrames() {
  SampleFile file;
  const auto member = [&](const std::string& name, std::uint32_t byte, std::uint32_t bits,
                          unsigned bit = 0) {
    return file.addChannel(part("CAN_DataFrame." + name, byte, bits, bit));
  };
  ChannelSpec data = part("CAN_DataFrame.DataBytes", 14, 16);
  data.data_type = 10;
  const auto channel =
      addStructure(file, "CAN_DataFrame", 8, 8,
                   {member("BusChannel", 8, 8), member("ID", 9, 29), member("IDE", 12, 1, 7),
                    member("Dir", 13, 1), member("EDL", 13, 1, 1), member("BRS", 13, 1, 2),
                    member("ESI", 13, 1, 3), member("DLC", 13, 4, 4), file.addChannel(data)});
  ValueTable table{{{"t", "s"}}, {"0,1,291,0,0,0,0,0,2,1234", "0.5,2,419361024,1,1,1,1,0,1,ab00"}};
  for (const char* name :
       {"BusChannel", "ID", "IDE", "Dir", "EDL", "BRS", "ESI", "DLC", "DataBytes"}) {
    table.columns.push_back({std::string("CAN_DataFrame.") + name, ""});
  }
  return composed("bus-frames", "frames of CAN and CAN FD", std::move(file), channel,
                  {"01 23010000 20 1234", "02 00f1fe98 17 ab00"}, table);
}

Sample busErrors() {
  SampleFile file;
  const auto channel = addStructure(file, "CAN_ErrorFrame", 8, 2,
                                    {file.addChannel(part("CAN_ErrorFrame.BusChannel", 8)),
                                     file.addChannel(part("CAN_ErrorFrame.ErrorType", 9))});
  return composed(
      "bus-errors", "error frames of CAN", std::move(file), channel, {"0103", "0200"},
      {{{"t", "s"}, {"CAN_ErrorFrame.BusChannel", ""}, {"CAN_ErrorFrame.ErrorType", ""}},
       {"0,1,3", "0.5,2,0"}});
}

/// What an array block says.
struct ArraySpec {
  std::uint32_t flags = 0;
  std::int32_t byte_step = 1;
  std::uint32_t invalidation_step = 0;
  std::vector<std::uint64_t> dimensions;
};

std::uint64_t addArray(SampleFile& file, const ArraySpec& spec, std::uint64_t composition = 0) {
  Bytes contents;
  contents.u8(0).u8(0).u16(static_cast<std::uint16_t>(spec.dimensions.size())).u32(spec.flags);
  contents.u32(static_cast<std::uint32_t>(spec.byte_step)).u32(spec.invalidation_step);
  for (const std::uint64_t dimension : spec.dimensions) {
    contents.u64(dimension);
  }
  return file.add("CA", {composition}, contents);
}

Sample array(const std::string& name, const std::string& shows, const ArraySpec& spec,
             ChannelSpec element, const std::vector<std::string>& records,
             const ValueTable& table) {
  SampleFile file;
  element.composition = addArray(file, spec);
  const auto channel = file.addChannel(element);
  return composed(name, shows, std::move(file), channel, records, table);
}

/// The time, and elements of the channel "v".
std::vector<Column> elements(const std::vector<std::string>& indices) {
  std::vector<Column> columns = {{"t", "s"}};
  for (const std::string& index : indices) {
    columns.push_back({"v" + index, ""});
  }
  return columns;
}

Samples arrays() {
  const ArraySpec row{0, 1, 0, {3}};
  const ArraySpec wide{0, 4, 0, {2}};
  const ArraySpec matrix{0, 1, 0, {2, 3}};
  const ArraySpec columns{64, 1, 0, {2, 3}};
  const ArraySpec cube{0, 1, 0, {2, 1, 2}};
  const ArraySpec backwards{0, -1, 0, {3}};
  const std::vector<Column> three = elements({"[0]", "[1]", "[2]"});
  return {
      array("array", "three elements side by side", row, part("v", 8), {"010203", "0a0b0c"},
            {three, {"0,1,2,3", "0.5,10,11,12"}}),
      array("array-with-gaps", "elements of two bytes, four bytes apart", wide, part("v", 9, 16),
            {"ff 0100 eeee 0200"}, {elements({"[0]", "[1]"}), {"0,1,2"}}),
      array("array-of-two-dimensions", "rows one after another", matrix, part("v", 8),
            {"010203040506"},
            {elements({"[0][0]", "[0][1]", "[0][2]", "[1][0]", "[1][1]", "[1][2]"}),
             {"0,1,2,3,4,5,6"}}),
      array("array-by-columns", "columns one after another", columns, part("v", 8),
            {"010203040506"},
            {elements({"[0][0]", "[1][0]", "[0][1]", "[1][1]", "[0][2]", "[1][2]"}),
             {"0,1,2,3,4,5,6"}}),
      array("array-of-three-dimensions", "a dimension of one element among them", cube,
            part("v", 8), {"01020304"},
            {elements({"[0][0][0]", "[0][0][1]", "[1][0][0]", "[1][0][1]"}), {"0,1,2,3,4"}}),
      array("array-backwards", "the first element stands last", backwards, part("v", 10),
            {"010203"}, {three, {"0,3,2,1"}}),
      array("array-of-bits", "elements within their bytes", row, part("v", 8, 4, 2), {"3cffc3"},
            {three, {"0,15,15,0"}}),
  };
}

/// An element with an invalidation bit of its own each.
Sample invalidElements() {
  SampleFile file;
  ChannelSpec element = part("v", 8);
  element.flags = 2;
  element.composition = addArray(file, {0, 1, 1, {3}});
  const GroupSpec group{2, 11, 1};
  file.addSortedGroup(group, {timeMaster(), element},
                      file.addData(Bytes().f64(0).u8s({1, 2, 3, 2}).f64(0.5).u8s({4, 5, 6, 5})));
  return sampleOf(
      "array-invalidation", "an invalidation bit for each element", file,
      {{{{"t", "s"}, {"v[0]", ""}, {"v[1]", ""}, {"v[2]", ""}}, {"0,1,,3", "0.5,,5,"}}});
}

Sample convertedArray() {
  SampleFile file;
  ChannelSpec element = part("v", 8);
  element.unit = "V";
  element.conversion = file.addConversion({1, {}, {0, 0.5}, "", ""});
  element.composition = addArray(file, {0, 1, 0, {2}});
  const auto channel = file.addChannel(element);
  return composed("array-converted", "a conversion of each element", std::move(file), channel,
                  {"0102", "03ff"},
                  {{{"t", "s"}, {"v[0]", "V"}, {"v[1]", "V"}}, {"0,0.5,1", "0.5,1.5,127.5"}});
}

Sample arrayInStructure() {
  SampleFile file;
  ChannelSpec wheel = part("wheel", 9);
  wheel.composition = addArray(file, {0, 1, 0, {2}});
  const auto channel =
      addStructure(file, "axle", 8, 3, {file.addChannel(part("load", 8)), file.addChannel(wheel)});
  return composed("array-in-a-structure", "a member that is an array", std::move(file), channel,
                  {"090a0b"},
                  {{{"t", "s"}, {"axle.load", ""}, {"axle.wheel[0]", ""}, {"axle.wheel[1]", ""}},
                   {"0,9,10,11"}});
}

/// Two points of three bytes each, four bytes apart.
Sample arrayOfStructures() {
  SampleFile file;
  const auto x = file.addChannel(part("x", 8));
  const auto y = file.addChannel(part("y", 9, 16));
  file.chain({x, y});
  ChannelSpec points = part("point", 8, 24);
  points.data_type = 10;
  points.composition = addArray(file, {0, 4, 0, {2}}, x);
  const auto channel = file.addChannel(points);
  file.link(channel, 0, file.addChannel(part("last", 15)));
  return composed("array-of-structures", "elements with members, and a channel after them",
                  std::move(file), channel, {"010200ff03040005", "060007fe08000909"},
                  {{{"t", "s"},
                    {"point[0].x", ""},
                    {"point[0].y", ""},
                    {"point[1].x", ""},
                    {"point[1].y", ""},
                    {"last", ""}},
                   {"0,1,2,3,4,5", "0.5,6,1792,8,2304,9"}});
}

/// Members that are arrays in turn.
Sample arrayOfStructuresOfArrays() {
  SampleFile file;
  ChannelSpec wheels = part("wheel", 9);
  wheels.composition = addArray(file, {0, 1, 0, {2}});
  const auto load = file.addChannel(part("load", 8));
  file.chain({load, file.addChannel(wheels)});
  ChannelSpec axles = part("axle", 8, 24);
  axles.data_type = 10;
  axles.composition = addArray(file, {0, 3, 0, {2}}, load);
  const auto channel = file.addChannel(axles);
  return composed("array-of-structures-of-arrays", "elements with a member that is an array",
                  std::move(file), channel, {"010203040506"},
                  {{{"t", "s"},
                    {"axle[0].load", ""},
                    {"axle[0].wheel[0]", ""},
                    {"axle[0].wheel[1]", ""},
                    {"axle[1].load", ""},
                    {"axle[1].wheel[0]", ""},
                    {"axle[1].wheel[1]", ""}},
                   {"0,1,2,3,4,5,6"}});
}

Sample arrayOfArrays() {
  SampleFile file;
  const auto inner = addArray(file, {0, 1, 0, {2}});
  ChannelSpec outer = part("v", 8);
  outer.composition = addArray(file, {0, 3, 0, {2}}, inner);
  const auto channel = file.addChannel(outer);
  return composed("array-of-arrays", "elements of two bytes, three bytes apart", std::move(file),
                  channel, {"0102ff0304"},
                  {elements({"[0][0]", "[0][1]", "[1][0]", "[1][1]"}), {"0,1,2,3,4"}});
}

/// An array of bytes whose elements have records of their own, as many as is said for each.
std::uint64_t addSplitArray(SampleFile& file, std::uint8_t storage,
                            const std::vector<std::uint64_t>& dimensions,
                            const std::vector<std::uint64_t>& counts,
                            const std::vector<std::uint64_t>& data) {
  std::vector<std::uint64_t> links = {0};
  links.insert(links.end(), data.begin(), data.end());
  Bytes contents;
  contents.u8(0).u8(storage).u16(static_cast<std::uint16_t>(dimensions.size())).zeros(12);
  for (const auto* numbers : {&dimensions, &counts}) {
    for (const std::uint64_t number : *numbers) {
      contents.u64(number);
    }
  }
  return file.add("CA", links, contents);
}

/// The group of such an array: a time and a byte in each record.
std::uint64_t splitGroup(SampleFile& file, std::uint64_t array, GroupSpec group) {
  ChannelSpec element = part("v", 8);
  element.composition = array;
  group.data_bytes = 9;
  return file.addGroupOf(group, {timeMaster(), element});
}

Sample arrayOfChannelGroups() {
  SampleFile file;
  const auto array = addSplitArray(file, 1, {3}, {2, 1, 3}, {});
  GroupSpec group{2};
  group.record_id = 5;
  const auto first = splitGroup(file, array, group);
  GroupSpec other = countingGroup(1);
  other.record_id = 9;
  const auto second = file.addGroupOf(other, countingChannels());
  Bytes data;
  data.u8(7).f64(0).u8(30).u8(5).f64(0.5).u8(10).u8(6).f64(0.5).u8(20).u8(7).f64(1).u8(31);
  data.u8(9).text(countingRecords(1)).u8(5).f64(1.5).u8(11).u8(7).f64(2).u8(32);
  file.addDataGroup({first, second}, file.addData(data), 1);
  return sampleOf("array-of-channel-groups",
                  "elements with records of their own, by record ids that go up, and another group",
                  file,
                  {{elements({"[0]"}), {"0.5,10", "1.5,11"}},
                   {elements({"[1]"}), {"0.5,20"}},
                   {elements({"[2]"}), {"0,30", "1,31", "2,32"}},
                   countingTable(1)});
}

Sample arrayOfDataGroups() {
  SampleFile file;
  const auto first = file.addData(Bytes().f64(0).u8(1).f64(1).u8(2));
  const std::string records = Bytes().f64(0.5).u8(3).f64(1).u8(4).f64(1.5).u8(5);
  const auto second = addEqualList(file, addPieces(file, "DT", records, 10), 10);
  const auto last = addZipped(file, "DT", Bytes().f64(2).u8(6));
  const auto array = addSplitArray(file, 2, {2, 2}, {2, 3, 0, 1}, {first, second, 0, last});
  const GroupSpec group{2};
  file.addDataGroup({splitGroup(file, array, group)}, first);
  return sampleOf("array-of-data-groups",
                  "elements with data of their own: a block, a list, none, and zipped", file,
                  {{elements({"[0][0]"}), {"0,1", "1,2"}},
                   {elements({"[0][1]"}), {"0.5,3", "1,4", "1.5,5"}},
                   {elements({"[1][0]"}), {}},
                   {elements({"[1][1]"}), {"2,6"}}});
}

/// Values of the axes stand in front of the counts.
Sample arrayOfChannelGroupsWithAxis() {
  SampleFile file;
  const auto array =
      file.add("CA", {0},
               Bytes().u8(0).u8(1).u16(1).u32(32).zeros(8).u64(2).f64(100).f64(200).u64(1).u64(1));
  const GroupSpec group{1};
  const auto block = splitGroup(file, array, group);
  file.addDataGroup({block}, file.addData(Bytes().u8(0).f64(0).u8(1).u8(1).f64(0.5).u8(2)), 1);
  return sampleOf("array-of-channel-groups-with-axis",
                  "elements with records of their own, and the values of an axis", file,
                  {{elements({"[0]"}), {"0,1"}}, {elements({"[1]"}), {"0.5,2"}}});
}

}  // namespace

Samples compositionSamples() {
  return together({arrays(),
                   {structure(), nestedStructure(), bitStructure(), busFrames(), busErrors(),
                    invalidElements(), convertedArray(), arrayInStructure(), arrayOfChannelGroups(),
                    arrayOfChannelGroupsWithAxis(), arrayOfDataGroups(), arrayOfStructures(),
                    arrayOfStructuresOfArrays(), arrayOfArrays()}});
}

}  // namespace mdf_tests
