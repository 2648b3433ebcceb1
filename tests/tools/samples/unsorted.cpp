// Data groups whose records are told apart by record ids.

#include <functional>

#include "sample_file.h"
#include "tools/support/data_blocks.h"

namespace mdf_tests {

namespace {

/// A record id of so many bytes.
std::string idBytes(std::uint64_t id, std::size_t size) {
  return Bytes().u64(id).str().substr(0, size);
}

std::string record(std::size_t index) { return countingRecords(index + 1).substr(10 * index); }

std::string timeRecord(std::size_t index, std::uint8_t value) {
  return Bytes().f64(timeOf(index)).u8(value);
}

GroupSpec groupWith(std::uint64_t record_id, std::uint64_t cycles, std::uint32_t bytes) {
  GroupSpec spec{cycles, bytes};
  spec.record_id = record_id;
  return spec;
}

std::vector<ChannelSpec> byteChannels(const std::string& name = "b") {
  ChannelSpec value = part(name, 8);
  return {timeMaster(), value};
}

ValueTable byteTable(const std::vector<std::string>& rows, const std::string& name = "b") {
  return {{{"t", "s"}, {name, ""}}, rows};
}

/// Two groups, records of 10 and 9 bytes, mixed: five of the one and two of the other.
Sample twoGroups(const std::string& name, const std::string& shows, std::uint8_t code,
                 std::size_t id_size, std::uint64_t first_id, std::uint64_t second_id) {
  SampleFile file;
  const std::string a = idBytes(first_id, id_size);
  const std::string b = idBytes(second_id, id_size);
  const std::string data = a + record(0) + b + timeRecord(0, 100) + a + record(1) + a + record(2) +
                           a + record(3) + b + timeRecord(3, 200) + a + record(4);
  const auto first = file.addGroupOf(groupWith(first_id, 5, 10), countingChannels());
  const auto second = file.addGroupOf(groupWith(second_id, 2, 9), byteChannels());
  file.addDataGroup({first, second}, file.addData(data), code);
  return sampleOf(name, shows, file, {countingTable(5), byteTable({"0,100", "1.5,200"})});
}

/// One group whose records have an id all the same.
Sample sortedWithId(const std::string& name, const std::string& shows, std::uint8_t code,
                    std::size_t id_size, std::uint64_t id) {
  SampleFile file;
  std::string data;
  for (std::size_t i = 0; i < 4; ++i) {
    data += idBytes(id, id_size) + record(i);
  }
  const auto group = file.addGroupOf(groupWith(id, 4, 10), countingChannels());
  file.addDataGroup({group}, file.addData(data), code);
  return sampleOf(name, shows, file, {countingTable(4)});
}

Samples idSizes() {
  return {
      twoGroups("unsorted-record-id-1", "record ids of one byte", 1, 1, 1, 2),
      twoGroups("unsorted-record-id-2", "record ids of two bytes", 2, 2, 0x0102, 0x0201),
      twoGroups("unsorted-record-id-4", "record ids of four bytes", 4, 4, 0x01020304, 7),
      twoGroups("unsorted-record-id-8", "record ids of eight bytes", 8, 8, 0xFEDCBA9876543210, 1),
      twoGroups("unsorted-record-id-code-3", "code 3 for record ids of four bytes", 3, 4, 70000, 5),
      twoGroups("unsorted-record-id-code-4", "code 4 for record ids of eight bytes", 4, 8,
                5000000000, 6),
      twoGroups("unsorted-record-id-0-and-255", "the least and the greatest id of a byte", 1, 1, 0,
                255),
      sortedWithId("sorted-record-id-1", "one group whose records have an id of one byte", 1, 1, 9),
      sortedWithId("sorted-record-id-2", "one group whose records have an id of two bytes", 2, 2,
                   513),
      sortedWithId("sorted-record-id-4", "one group whose records have an id of four bytes", 4, 4,
                   70000),
      sortedWithId("sorted-record-id-8", "one group whose records have an id of eight bytes", 8, 8,
                   1),
      sortedWithId("sorted-record-id-code-4", "code 4 for an id of eight bytes", 4, 8, 3),
  };
}

/// Records of two groups in blocks of any kind.
Sample placed(const std::string& name, const std::string& shows,
              const std::function<std::uint64_t(SampleFile&, const std::string&)>& place) {
  SampleFile file;
  Bytes data;
  for (std::size_t i = 0; i < 6; ++i) {
    data.u8(1).text(record(i));
    if (i % 2 == 1) {
      data.u8(2).text(timeRecord(i, static_cast<std::uint8_t>(i)));
    }
  }
  const auto first = file.addGroupOf(groupWith(1, 6, 10), countingChannels());
  const auto second = file.addGroupOf(groupWith(2, 3, 9), byteChannels());
  file.addDataGroup({first, second}, place(file, data), 1);
  return sampleOf(name, shows, file, {countingTable(6), byteTable({"0.5,1", "1.5,3", "2.5,5"})});
}

Samples placements() {
  return {
      placed("unsorted-list", "unsorted records that cross the borders of blocks",
             [](SampleFile& file, const std::string& data) {
               return addEqualList(file, addPieces(file, "DT", data, 25), 25);
             }),
      placed("unsorted-zipped", "unsorted records in a zipped block",
             [](SampleFile& file, const std::string& data) { return addZipped(file, "DT", data); }),
      placed("unsorted-list-of-zipped", "unsorted records that cross the borders of zipped blocks",
             [](SampleFile& file, const std::string& data) {
               const auto blocks = addZippedPieces(file, "DT", data, 32);
               return addHeaderList(file, addEqualList(file, blocks, 32), 1, 0);
             }),
  };
}

Sample manyGroups() {
  SampleFile file;
  constexpr std::size_t count = 30;
  std::vector<std::uint64_t> groups;
  std::vector<ValueTable> tables;
  Bytes data;
  for (std::size_t round = 0; round < 2; ++round) {
    for (std::size_t i = 0; i < count; ++i) {
      data.u16(static_cast<std::uint16_t>(1000 + i));
      data.text(timeRecord(round, static_cast<std::uint8_t>(i + 100 * round)));
    }
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::string name = "c" + std::to_string(i);
    groups.push_back(file.addGroupOf(groupWith(1000 + i, 2, 9), byteChannels(name)));
    tables.push_back(byteTable({"0," + std::to_string(i), "0.5," + std::to_string(i + 100)}, name));
  }
  file.addDataGroup(groups, file.addData(data), 2);
  return sampleOf("unsorted-thirty-groups", "thirty groups in one data group", file, tables);
}

Sample emptyGroup() {
  SampleFile file;
  const auto first = file.addGroupOf(groupWith(1, 0, 10), countingChannels());
  const auto second = file.addGroupOf(groupWith(2, 1, 9), byteChannels());
  file.addDataGroup({first, second}, file.addData(Bytes().u8(2).text(timeRecord(0, 5))), 1);
  return sampleOf("unsorted-group-without-records", "a group that no record belongs to", file,
                  {countingTable(0), byteTable({"0,5"})});
}

Sample invalidUnsorted() {
  SampleFile file;
  std::vector<ChannelSpec> channels = byteChannels();
  channels[1].flags = 2;
  GroupSpec with_bits = groupWith(1, 2, 9);
  with_bits.invalidation_bytes = 1;
  const auto first = file.addGroupOf(with_bits, channels);
  const auto second = file.addGroupOf(groupWith(2, 1, 10), countingChannels());
  const std::string data =
      u8(1) + timeRecord(0, 5) + u8(1, 2) + record(0) + u8(1) + timeRecord(1, 6) + u8(0);
  file.addDataGroup({first, second}, file.addData(data), 1);
  return sampleOf("unsorted-invalidation", "records with invalidation bytes among others", file,
                  {byteTable({"0,", "0.5,6"}), countingTable(1)});
}

/// Records with offsets of texts that are records of another group.
struct VariableParts {
  std::uint8_t id_size = 1;
  bool is_values_first = false;  ///< in the list of channel groups
  bool are_zipped = false;
};

Sample variableLength(const std::string& name, const std::string& shows,
                      const VariableParts& parts) {
  SampleFile file;
  const std::vector<std::string> texts = {"first", "", "the third"};
  std::uint64_t offset = 0;
  Bytes data;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    data.text(idBytes(3, parts.id_size))
        .u32(static_cast<std::uint32_t>(texts[i].size()))
        .text(texts[i]);
    data.text(idBytes(1, parts.id_size)).f64(timeOf(i)).u64(offset);
    offset += 4 + texts[i].size();
  }
  // The length of all values, each with the four bytes of its length, as data bytes.
  GroupSpec value_spec = groupWith(3, texts.size(), static_cast<std::uint32_t>(offset));
  value_spec.flags = 1;
  const auto values = file.addGroupOf(value_spec, {});
  ChannelSpec text = stored(7, 64);
  text.byte_offset = 8;
  text.type = 1;
  text.data = values;
  const auto group = file.addGroupOf(groupWith(1, texts.size(), 16), {timeMaster(), text});
  const auto groups = parts.is_values_first ? std::vector<std::uint64_t>{values, group}
                                            : std::vector<std::uint64_t>{group, values};
  const std::uint64_t block = parts.are_zipped ? addZipped(file, "DT", data) : file.addData(data);
  file.addDataGroup(groups, block, parts.id_size);
  return sampleOf(name, shows, file,
                  {{{{"t", "s"}, {"v", ""}}, {"0,first", "0.5,", "1,the third"}}});
}

Samples variableLengths() {
  return {
      variableLength("unsorted-variable-length", "texts in the records of another group", {}),
      variableLength("unsorted-variable-length-group-first", "the group with the texts comes first",
                     {1, true, false}),
      variableLength("unsorted-variable-length-record-id-4", "texts after record ids of four bytes",
                     {4, false, false}),
      variableLength("unsorted-variable-length-zipped", "texts among records in a zipped block",
                     {1, false, true}),
  };
}

/// Two channels with a group for each.
Sample twoVariableLengths() {
  SampleFile file;
  Bytes data;
  const auto value = [&data](std::uint8_t id, const std::string& text) {
    data.u8(id).u32(static_cast<std::uint32_t>(text.size())).text(text);
  };
  value(10, "a0");
  value(11, "b0 longer");
  data.u8(1).f64(0).u64(0).u64(0);
  value(11, "b1");
  data.u8(1).f64(0.5).u64(0).u64(13);
  std::vector<std::uint64_t> groups;
  std::vector<ChannelSpec> channels = {timeMaster()};
  const std::uint32_t lengths[] = {6, 19};
  for (std::uint32_t i = 0; i < 2; ++i) {
    GroupSpec spec = groupWith(10 + i, 1 + i, lengths[i]);
    spec.flags = 1;
    groups.push_back(file.addGroupOf(spec, {}));
    ChannelSpec text = stored(7, 64);
    text.name = i == 0 ? "a" : "b";
    text.byte_offset = 8 + 8 * i;
    text.type = 1;
    text.data = groups.back();
    channels.push_back(text);
  }
  groups.insert(groups.begin(), file.addGroupOf(groupWith(1, 2, 24), channels));
  file.addDataGroup(groups, file.addData(data), 1);
  return sampleOf("unsorted-two-variable-lengths", "two channels with texts of their own", file,
                  {{{{"t", "s"}, {"a", ""}, {"b", ""}}, {"0,a0,b0 longer", "0.5,a0,b1"}}});
}

}  // namespace

Samples unsortedSamples() {
  return together({idSizes(),
                   placements(),
                   variableLengths(),
                   {manyGroups(), emptyGroup(), invalidUnsorted(), twoVariableLengths()}});
}

}  // namespace mdf_tests
