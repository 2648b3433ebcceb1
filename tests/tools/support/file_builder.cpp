#include "file_builder.h"

#include <string>

namespace mdf_tests {

namespace {

constexpr std::uint64_t header_size = 24;
constexpr std::uint64_t link_size = 8;

/// "4.10    " for 410.
std::string versionText(unsigned version) {
  std::string text = std::to_string(version / 100) + '.' + std::to_string(version % 100);
  if (version % 100 < 10) {
    text.insert(2, "0");
  }
  text.resize(8, ' ');
  return text;
}

}  // namespace

std::string ChannelSpec::fields() const {
  return u8(type, sync_type, data_type, bit_offset) +
         u32(byte_offset, bit_count, flags, invalidation_bit) + u16(0, attachments) +
         f64(range_min, range_max) + zeros(32);
}

ChannelSpec channelOf(const std::string& name, unsigned data_type, std::uint32_t byte_offset,
                      std::uint32_t bit_count) {
  ChannelSpec channel{0, 0, data_type, 0, byte_offset, bit_count};
  channel.name = name;
  return channel;
}

ChannelSpec timeChannel(std::uint32_t byte_offset) {
  ChannelSpec time{2, 1, 4, 0, byte_offset, 64};
  time.name = "time";
  time.unit = "s";
  return time;
}

std::string GroupSpec::fields() const {
  return u64(record_id, cycles) + u16(flags) + zeros(6) + u32(data_bytes, invalidation_bytes);
}

std::string dataGroupFields(unsigned record_id_size) { return u8(record_id_size) + zeros(7); }

FileBuilder::FileBuilder(const std::string& file_word, unsigned version) {
  bytes_ = file_word + versionText(version) + "testprog" + zeros(4) + u16(version) + zeros(34);
  add("HD", {0, 0, 0, 0, 0, 0}, zeros(32));
}

std::uint64_t FileBuilder::add(const std::string& letters, const std::vector<std::uint64_t>& links,
                               const std::string& contents) {
  bytes_.resize((bytes_.size() + 7) / 8 * 8);
  const std::uint64_t offset = bytes_.size();
  const std::uint64_t length = header_size + link_size * links.size() + contents.size();
  bytes_ += mdf_tests::header(letters, length, links.size()) + listed(links) + contents;
  return offset;
}

std::uint64_t FileBuilder::textOrNone(const std::string& text) {
  return text.empty() ? 0 : this->text(text);
}

std::uint64_t FileBuilder::addChannel(const ChannelSpec& spec) {
  const std::uint64_t name = textOrNone(spec.name);
  const std::uint64_t unit = textOrNone(spec.unit);
  const std::uint64_t comment = textOrNone(spec.comment);
  return add("CN",
             {0, spec.composition, name, spec.source, spec.conversion, spec.data, unit, comment},
             spec.fields());
}

std::uint64_t FileBuilder::addChannelGroup(const GroupSpec& spec,
                                           const std::vector<std::uint64_t>& channels) {
  chain(channels);
  const std::uint64_t name = textOrNone(spec.name);
  const std::uint64_t comment = textOrNone(spec.comment);
  std::vector<std::uint64_t> links = {
      0, channels.empty() ? 0 : channels[0], name, spec.source, 0, comment};
  if (spec.master != 0) {
    links.push_back(spec.master);
  }
  return add("CG", links, spec.fields());
}

std::uint64_t FileBuilder::addGroupOf(const GroupSpec& spec,
                                      const std::vector<ChannelSpec>& channels) {
  channels_.clear();
  for (const ChannelSpec& channel : channels) {
    channels_.push_back(addChannel(channel));
  }
  return addChannelGroup(spec, channels_);
}

std::uint64_t FileBuilder::addDataGroup(const std::vector<std::uint64_t>& groups,
                                        std::uint64_t data, unsigned record_id_size) {
  chain(groups);
  const std::uint64_t data_group =
      add("DG", {0, groups.empty() ? 0 : groups[0], data, 0}, dataGroupFields(record_id_size));
  link(last_data_group_ == 0 ? header : last_data_group_, 0, data_group);
  last_data_group_ = data_group;
  return data_group;
}

std::uint64_t FileBuilder::addConversion(const ConversionSpec& spec) {
  std::vector<std::uint64_t> links = {textOrNone(spec.name), textOrNone(spec.unit), 0, 0};
  links.insert(links.end(), spec.refs.begin(), spec.refs.end());
  std::string values;
  for (const double value : spec.values) {
    values += f64(value);
  }
  return add("CC", links,
             u8(spec.type, 0) + u16(0, spec.refs.size(), spec.values.size()) + zeros(16) + values);
}

std::uint64_t FileBuilder::addSource(const std::string& name, const std::string& path,
                                     unsigned type, unsigned bus_type) {
  const std::uint64_t name_text = textOrNone(name);
  const std::uint64_t path_text = textOrNone(path);
  return add("SI", {name_text, path_text, 0}, u8(type, bus_type) + zeros(6));
}

void FileBuilder::chain(const std::vector<std::uint64_t>& blocks) {
  for (std::size_t i = 1; i < blocks.size(); ++i) {
    link(blocks[i - 1], 0, blocks[i]);
  }
}

void FileBuilder::link(std::uint64_t block, std::size_t index, std::uint64_t target) {
  write(block + header_size + link_size * index, u64(target));
}

void FileBuilder::write(std::uint64_t offset, const std::string& bytes) {
  bytes_.replace(static_cast<std::size_t>(offset), bytes.size(), bytes);
}

}  // namespace mdf_tests
