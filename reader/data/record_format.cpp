#include "record_format.h"

#include <algorithm>
#include <string>

#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;
using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t length_bytes = 4;

std::uint64_t loadId(std::string_view bytes) {
  std::uint64_t id = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) {
    id = (id << 8U) | static_cast<unsigned char>(bytes[i]);
  }
  return id;
}

/// Whether the data, or enough of it, consists of records with ids of so many bytes.
bool fits(const DataGroup& data_group, DataStream& data, unsigned id_bytes, bool has_counts) {
  constexpr std::size_t enough = 10000;
  const RecordFormat format(data_group, id_bytes);
  std::unordered_map<const ChannelGroup*, std::uint64_t> counts;
  std::uint64_t position = 0;
  for (std::size_t i = 0; i < enough; ++i) {
    const Record record = format.at(data, position);
    if (record.group == nullptr) {
      const bool is_counted =
          std::all_of(data_group.groups.begin(), data_group.groups.end(),
                      [&](const ChannelGroup& group) { return counts[&group] == group.cycles; });
      return record.is_end && (!has_counts || (position == data.size() && is_counted));
    }
    ++counts[record.group];
    position = record.next;
  }
  return true;
}

}  // namespace

RecordFormat::RecordFormat(const DataGroup& data_group, unsigned id_bytes) : id_bytes_(id_bytes) {
  for (const ChannelGroup& group : data_group.groups) {
    groups_.emplace(group.record_id, &group);
  }
}

Record RecordFormat::at(DataStream& data, std::uint64_t position) const {
  const std::string_view id_bytes = data.at(position, id_bytes_);
  Record record;
  if (id_bytes.size() < id_bytes_) {
    return record;
  }
  const std::uint64_t id = loadId(id_bytes);
  const auto group = groups_.find(id);
  if (group == groups_.end()) {
    record.unknown_id = id;
    record.is_end = false;
    return record;
  }
  return group->second->holdsVariableLength() ? variable(data, position, *group->second)
                                              : fixed(data, position, *group->second);
}

Record RecordFormat::fixed(DataStream& data, std::uint64_t position,
                           const ChannelGroup& group) const {
  const std::uint64_t size = id_bytes_ + group.recordBytes();
  const std::string_view bytes = data.at(position, hostSize(size));
  return bytes.size() < size || size == 0
             ? Record()
             : Record{&group, bytes.substr(id_bytes_), position + size, 0, false};
}

Record RecordFormat::variable(DataStream& data, std::uint64_t position,
                              const ChannelGroup& group) const {
  const std::size_t head = id_bytes_ + length_bytes;
  std::string_view bytes = data.at(position, head);
  if (bytes.size() < head) {
    return {};
  }
  const std::uint64_t size = head + std::uint64_t{loadLe<std::uint32_t>(bytes.data() + id_bytes_)};
  bytes = data.at(position, hostSize(size));
  return bytes.size() < size ? Record()
                             : Record{&group, bytes.substr(head), position + size, 0, false};
}

unsigned recordIdBytes(const DataGroup& data_group, DataStream& data, bool has_counts,
                       const FindingSink& report) {
  const auto possible = recordIdBytesFor(data_group.record_id_code);
  if (possible.empty()) {
    report({data_group.offset, "expected record ids of 0, 1, 2, 4 or 8 bytes, found the code " +
                                   std::to_string(data_group.record_id_code)});
    return 0;
  }
  const bool is_the_last = possible.size() > 1 &&
                           !fits(data_group, data, possible.front(), has_counts) &&
                           fits(data_group, data, possible.back(), has_counts);
  return is_the_last ? possible.back() : possible.front();
}

}  // namespace mdf_reader
