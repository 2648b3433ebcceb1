#include "measurement_blocks.h"

namespace mdf_tests {

namespace {

std::uint64_t textOrNone(FileBuilder& file, const std::string& text) {
  return text.empty() ? 0 : file.text(text);
}

}  // namespace

std::uint64_t addChannel(FileBuilder& file, const ChannelSpec& spec) {
  const std::uint64_t name = textOrNone(file, spec.name);
  const std::uint64_t unit = textOrNone(file, spec.unit);
  const std::uint64_t comment = textOrNone(file, spec.comment);
  return file.add(
      "CN", {0, spec.composition, name, spec.source, spec.conversion, spec.data, unit, comment},
      Bytes()
          .u8(static_cast<std::uint8_t>(spec.type))
          .u8(static_cast<std::uint8_t>(spec.sync_type))
          .u8(static_cast<std::uint8_t>(spec.data_type))
          .u8(static_cast<std::uint8_t>(spec.bit_offset))
          .u32(spec.byte_offset)
          .u32(spec.bit_count)
          .u32(spec.flags)
          .u32(spec.invalidation_bit)
          .zeros(4)
          .f64(spec.range_min)
          .f64(spec.range_max)
          .zeros(32));
}

std::uint64_t addChannelGroup(FileBuilder& file, const GroupSpec& spec) {
  const std::uint64_t name = textOrNone(file, spec.name);
  const std::uint64_t comment = textOrNone(file, spec.comment);
  std::vector<std::uint64_t> links = {0, 0, name, spec.source, 0, comment};
  if (spec.master != 0) {
    links.push_back(spec.master);
  }
  return file.add("CG", links,
                  Bytes()
                      .u64(spec.record_id)
                      .u64(spec.cycles)
                      .u16(spec.flags)
                      .zeros(6)
                      .u32(spec.data_bytes)
                      .u32(spec.invalidation_bytes));
}

std::uint64_t addDataGroup(FileBuilder& file, std::uint8_t record_id_size, std::uint64_t data) {
  return file.add("DG", {0, 0, data, 0}, Bytes().u8(record_id_size).zeros(7));
}

std::uint64_t addConversion(FileBuilder& file, const ConversionSpec& spec) {
  std::vector<std::uint64_t> links = {textOrNone(file, spec.name), textOrNone(file, spec.unit), 0,
                                      0};
  links.insert(links.end(), spec.refs.begin(), spec.refs.end());
  Bytes contents;
  contents.u8(static_cast<std::uint8_t>(spec.type))
      .u8(0)
      .u16(0)
      .u16(static_cast<std::uint16_t>(spec.refs.size()))
      .u16(static_cast<std::uint16_t>(spec.values.size()))
      .zeros(16);
  for (const double value : spec.values) {
    contents.f64(value);
  }
  return file.add("CC", links, contents);
}

std::uint64_t addSource(FileBuilder& file, const std::string& name, const std::string& path,
                        unsigned type, unsigned bus_type) {
  const std::uint64_t name_text = textOrNone(file, name);
  const std::uint64_t path_text = textOrNone(file, path);
  return file.add(
      "SI", {name_text, path_text, 0},
      Bytes().u8(static_cast<std::uint8_t>(type)).u8(static_cast<std::uint8_t>(bus_type)).zeros(6));
}

void chain(FileBuilder& file, const std::vector<std::uint64_t>& blocks) {
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    file.link(blocks[i - 1], 0, blocks[i]);
  }
}

std::uint64_t addGroup(FileBuilder& file, const GroupSpec& group,
                       const std::vector<ChannelSpec>& channels, std::uint64_t data) {
  std::vector<std::uint64_t> channel_blocks;
  for (const ChannelSpec& channel : channels) {
    channel_blocks.push_back(addChannel(file, channel));
  }
  chain(file, channel_blocks);
  const std::uint64_t channel_group = addChannelGroup(file, group);
  if (!channel_blocks.empty()) {
    file.link(channel_group, 1, channel_blocks[0]);
  }
  const std::uint64_t data_group = addDataGroup(file, 0, data);
  file.link(data_group, 1, channel_group);
  file.link(FileBuilder::header, 0, data_group);
  return channel_group;
}

}  // namespace mdf_tests
