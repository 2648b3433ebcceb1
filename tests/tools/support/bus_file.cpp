#include "bus_file.h"

#include "support/bytes.h"

namespace mdf_tests {

namespace {

constexpr unsigned byte_array = 10;
constexpr std::uint16_t bus_event = 2;

}  // namespace

ChannelSpec structureOf(FileBuilder& file, const std::string& name,
                        const std::vector<ChannelSpec>& members) {
  std::vector<std::uint64_t> blocks;
  for (ChannelSpec member : members) {
    member.name = name + '.' + member.name;
    blocks.push_back(file.addChannel(member));
  }
  file.chain(blocks);
  ChannelSpec structure = channelOf(name, byte_array, 8, 8 * 22);
  structure.composition = blocks[0];
  return structure;
}

ChannelSpec bitOf(const std::string& name, std::uint32_t byte, unsigned bit, std::uint32_t bits) {
  ChannelSpec spec = channelOf(name, 0, byte, bits);
  spec.bit_offset = bit;
  return spec;
}

std::vector<ChannelSpec> canMembers() {
  return {bitOf("BusChannel", 8, 0, 8),  bitOf("ID", 9, 0, 29),
          bitOf("IDE", 12, 7, 1),        bitOf("Dir", 13, 0, 1),
          bitOf("EDL", 13, 1, 1),        bitOf("BRS", 13, 2, 1),
          bitOf("ESI", 13, 3, 1),        bitOf("ErrorType", 13, 4, 4),
          bitOf("DataLength", 14, 0, 8), channelOf("DataBytes", byte_array, 15, 8 * 15)};
}

std::string frameRecord(double time, unsigned bus, std::uint32_t id, unsigned flags,
                        unsigned length, const std::string& data) {
  Bytes bytes;
  bytes.f64(time).u8(static_cast<std::uint8_t>(bus)).u32(id);
  bytes.u8(static_cast<std::uint8_t>(flags)).u8(static_cast<std::uint8_t>(length)).text(data);
  return bytes.zeros(15 - data.size());
}

void addFrames(FileBuilder& file, const std::string& name, const std::vector<ChannelSpec>& members,
               const std::string& records) {
  GroupSpec group{records.size() / 30, 30};
  group.flags = bus_event;
  const ChannelSpec structure = structureOf(file, name, members);
  file.addSortedGroup(group, {timeChannel(), structure}, file.addData(records));
}

}  // namespace mdf_tests
