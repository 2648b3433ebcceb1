#include "record_format.h"

#include <algorithm>
#include <string>

namespace mdf_reader {

using mdf_v4_10::detail::hostSize;

namespace {

/// What reading data with record ids of a width comes to.
struct Trial {
  bool fits = false;           ///< it is made of whole records, or as much of it as shows that
  std::uint64_t position = 0;  ///< as far as there are records
};

Trial tryIdBytes(const DataGroup& data_group, DataStream& data, unsigned id_bytes,
                 bool has_counts) {
  constexpr std::size_t enough = 10000;
  const RecordFormat format(data_group, id_bytes);
  std::unordered_map<const ChannelGroup*, std::uint64_t> counts;
  Trial trial;
  for (std::size_t i = 0; i < enough; ++i) {
    const Record record = format.at(data, trial.position);
    if (record.group == nullptr) {
      const auto is_counted = [&](const ChannelGroup& group) {
        return counts[&group] == group.cycles;
      };
      trial.fits = has_counts ? record.kind == Record::end &&
                                    std::all_of(data_group.groups.begin(), data_group.groups.end(),
                                                is_counted)
                              : record.kind != Record::unknown_id;
      return trial;
    }
    ++counts[record.group];
    trial.position = record.next;
  }
  trial.fits = true;
  return trial;
}

}  // namespace

RecordFormat::RecordFormat(const DataGroup& data_group, unsigned id_bytes) : id_bytes_(id_bytes) {
  constexpr std::uint64_t is_small = 256;
  const std::vector<ChannelGroup>& groups = data_group.groups;
  for (std::size_t index = 0; index < groups.size(); ++index) {
    const ChannelGroup& group = groups[index];
    const Frame frame{&group, group.recordBytes(), index, group.holdsVariableLength()};
    if (id_bytes == 0 && groups.size() == 1) {
      only_ = frame;
    }
    if (group.record_id >= is_small) {
      large_ids_.emplace(group.record_id, frame);
      continue;
    }
    const auto id = static_cast<std::size_t>(group.record_id);
    small_ids_.resize(std::max(small_ids_.size(), id + 1));
    small_ids_[id] = small_ids_[id].group == nullptr ? frame : small_ids_[id];
  }
}

const RecordFormat::Frame& RecordFormat::frameOfLarge(std::uint64_t id) const {
  const auto frame = large_ids_.find(id);
  return frame == large_ids_.end() ? none_ : frame->second;
}

Record RecordFormat::at(DataStream& data, std::uint64_t position) const {
  const std::string_view id_bytes = data.at(position, id_bytes_);
  if (id_bytes.size() < id_bytes_) {
    return id_bytes.empty() ? Record() : Record{Record::torn, nullptr, {}, position, id_bytes_};
  }
  const std::uint64_t id = loadId(id_bytes.data());
  const Frame& frame = frameOf(id);
  if (frame.group == nullptr) {
    return {Record::unknown_id, nullptr, {}, position, id};
  }
  return frame.has_length ? variable(data, position, frame) : fixed(data, position, frame);
}

Record RecordFormat::fixed(DataStream& data, std::uint64_t position, const Frame& frame) const {
  const std::uint64_t size = id_bytes_ + frame.bytes;
  const std::string_view bytes = data.at(position, hostSize(size));
  if (bytes.empty()) {
    return {};
  }
  return bytes.size() < size
             ? Record{Record::torn, nullptr, {}, position, size}
             : Record{Record::whole, frame.group, bytes.substr(id_bytes_), position + size, 0,
                      frame.index,   false};
}

Record RecordFormat::variable(DataStream& data, std::uint64_t position, const Frame& frame) const {
  const std::size_t head = id_bytes_ + length_bytes;
  std::string_view bytes = data.at(position, head);
  if (bytes.size() < head) {
    return bytes.empty() ? Record() : Record{Record::torn, nullptr, {}, position, head};
  }
  const std::uint64_t length = lengthIn(bytes.data());
  bytes = data.at(position, hostSize(head + length));
  return bytes.size() < head + length
             ? Record{Record::past_end, nullptr, {}, position, length}
             : Record{Record::whole, frame.group, bytes.substr(head), position + head + length, 0,
                      frame.index,   true};
}

unsigned recordIdBytes(const DataGroup& data_group, DataStream& data, bool has_counts) {
  const auto possible = recordIdBytesFor(data_group.record_id_code);
  if (possible.size() < 2) {
    return possible.empty() ? 0 : possible.front();
  }
  const Trial first = tryIdBytes(data_group, data, possible.front(), has_counts);
  if (first.fits) {
    return possible.front();
  }
  const Trial last = tryIdBytes(data_group, data, possible.back(), has_counts);
  return last.fits || last.position > first.position ? possible.back() : possible.front();
}

}  // namespace mdf_reader
