#include "sample_file.h"

namespace mdf_tests {

namespace {

/// 2020-01-01 00:00:00 UTC in nanoseconds.
constexpr std::uint64_t start_time = 1577836800'000000000;

}  // namespace

SampleFile::SampleFile(const std::string& file_word, unsigned version)
    : FileBuilder(file_word, version) {
  const std::uint64_t comment = metadata("<FHcomment><TX>made by hand</TX></FHcomment>");
  history_ = add("FH", {0, comment}, Bytes().u64(start_time).zeros(8));
  link(header, 1, history_);
  write(header + 24 + 48, Bytes().u64(start_time));
}

SampleFile SampleFile::unfinished(std::uint16_t standard_flags, std::uint16_t custom_flags) {
  SampleFile file("UnFinMF ");
  file.write(60, Bytes().u16(standard_flags).u16(custom_flags));
  return file;
}

Sample sampleOf(const std::string& name, const std::string& shows, const FileBuilder& file,
                const std::vector<ValueTable>& tables) {
  return {name, shows, file.bytes(), tables};
}

std::string hex(const std::string& digits) {
  std::string bytes;
  std::string pair;
  for (const char digit : digits) {
    if (digit != ' ') {
      pair += digit;
    }
    if (pair.size() == 2) {
      bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
      pair.clear();
    }
  }
  return bytes;
}

ChannelSpec stored(unsigned data_type, std::uint32_t bit_count, unsigned bit_offset) {
  ChannelSpec channel{0, 0, data_type, bit_offset, 0, bit_count};
  channel.name = "v";
  return channel;
}

ChannelSpec part(const std::string& name, std::uint32_t byte_offset, std::uint32_t bit_count,
                 unsigned bit_offset) {
  ChannelSpec channel = stored(0, bit_count, bit_offset);
  channel.name = name;
  channel.byte_offset = byte_offset;
  return channel;
}

ChannelSpec timeMaster() {
  ChannelSpec channel = stored(4, 64);
  channel.name = "t";
  channel.unit = "s";
  channel.type = 2;
  channel.sync_type = 1;
  return channel;
}

double timeOf(std::size_t index) { return 0.5 * static_cast<double>(index); }

std::string timeCell(std::size_t index) {
  return std::to_string(index / 2) + (index % 2 == 0 ? "" : ".5");
}

Sample valueSample(const std::string& name, const std::string& shows, SampleFile file,
                   ChannelSpec channel, const std::vector<StoredValue>& values) {
  channel.byte_offset += 8;
  GroupSpec group{values.size()};
  ValueTable table{{{"t", "s"}, {channel.name, channel.unit}}, {}};
  Bytes records;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::string bytes = hex(values[i].digits);
    group.data_bytes = static_cast<std::uint32_t>(8 + bytes.size());
    records.f64(timeOf(i)).text(bytes);
    table.rows.push_back(timeCell(i) + ',' + values[i].cell);
  }
  file.addSortedGroup(group, {timeMaster(), channel}, file.addData(records));
  return sampleOf(name, shows, file, {table});
}

Sample valueSample(const std::string& name, const std::string& shows, const ChannelSpec& channel,
                   const std::vector<StoredValue>& values) {
  return valueSample(name, shows, SampleFile(), channel, values);
}

std::string countingRecords(std::size_t count) {
  Bytes records;
  for (std::size_t i = 0; i < count; ++i) {
    records.f64(timeOf(i)).u16(static_cast<std::uint16_t>(7 * i));
  }
  return records;
}

std::vector<ChannelSpec> countingChannels() {
  ChannelSpec number = part("v", 8, 16);
  return {timeMaster(), number};
}

GroupSpec countingGroup(std::size_t count) {
  const GroupSpec group{count, 10};
  return group;
}

ValueTable countingTable(std::size_t count) {
  ValueTable table{{{"t", "s"}, {"v", ""}}, {}};
  for (std::size_t i = 0; i < count; ++i) {
    table.rows.push_back(timeCell(i) + ',' + std::to_string(7 * i));
  }
  return table;
}

}  // namespace mdf_tests
