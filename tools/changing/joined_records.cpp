#include "joined_records.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "copy_failure.h"
#include "framework/wire.h"
#include "group_facts.h"
#include "mixed_records.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::size_t length_bytes = 4;

/// Bytes up to the end of the last value that is whole.
std::uint64_t wholeValuesOf(DataStream& stream) {
  std::uint64_t end = 0;
  while (true) {
    const std::string_view length = stream.at(end, length_bytes);
    if (length.size() < length_bytes) {
      return end;
    }
    const std::uint64_t next = end + length_bytes + loadLe<std::uint32_t>(length.data());
    if (!stream.reaches(next)) {
      return end;
    }
    end = next;
  }
}

}  // namespace

std::uint64_t JoinedGroup::records() const {
  return std::accumulate(
      parts.begin(), parts.end(), std::uint64_t{0},
      [](std::uint64_t sum, const JoinedPart& part) { return sum + part.records; });
}

bool JoinedGroup::overlaps() const {
  std::optional<double> end;
  bool overlaps = false;
  for (const JoinedPart& part : parts) {
    overlaps = overlaps || (part.first && end && *part.first <= *end);
    end = part.last ? part.last : end;
  }
  return overlaps;
}

JoinedRecords::JoinedRecords(JoinInputs& inputs, std::vector<JoinedGroup>& groups,
                             const Component& component, BlockWriter& out)
    : inputs_(inputs), groups_(groups), component_(component) {
  constexpr std::size_t room_for_blocks = std::size_t{1} << 25U;
  constexpr std::size_t least_block = 64;
  std::size_t writers = 0;
  for (const std::size_t joined : component.groups) {
    Output& output = outputs_[joined];
    const Channels& channels = groups_[joined].sources.front().group->channels;
    for (std::size_t channel = 0; channel < channels.size(); ++channel) {
      if (channels[channel].type == Channel::variable_length) {
        output.values[channel] = nullptr;
      }
    }
    writers += 1 + output.values.size();
  }
  const std::size_t block_bytes =
      std::min(out.form().block_bytes,
               std::max(least_block, room_for_blocks / std::max<std::size_t>(1, writers)));
  for (auto& [joined, output] : outputs_) {
    const GroupSource& home = groups_[joined].sources.front();
    output.records = std::make_unique<DataWriter>(
        out, "DT", home.group->recordBytes() + groups_[joined].change->bytesMore(), block_bytes);
    for (auto& [channel, writer] : output.values) {
      writer = std::make_unique<DataWriter>(out, "SD", 0, block_bytes);
    }
  }
}

void JoinedRecords::write() {
  for (const Component::Data& data : component_.data) {
    read(data);
  }
  for (auto& [joined, output] : outputs_) {
    groups_[joined].data = output.records->finish();
    for (const auto& [channel, writer] : output.values) {
      groups_[joined].values[channel] = writer->finish();
    }
  }
}

void JoinedRecords::read(const Component::Data& data) {
  JoinInput& input = inputs_[data.file];
  const DataGroup& data_group = *data.data_group;
  std::vector<Reading> readings = readingsOf(data);
  Records records(input.data, data_group, input.report);
  if (readings.size() == 1 && readings.front().group != nullptr) {
    readSorted(records, data_group.groups.front(), readings.front());
  } else {
    records.examine();
    readMixed(input, data_group, records.idBytes(), readings);
  }
  for (std::size_t i = 0; i < readings.size(); ++i) {
    if (readings[i].group != nullptr) {
      finish(input, data_group.groups[i], readings[i]);
    }
  }
  if (!input.data.mayGoOnAfter(records.storedBytes())) {
    throw CopyFailure(input.name + " has groups with the same data again and again");
  }
}

/// One for each channel group of the data group.
std::vector<JoinedRecords::Reading> JoinedRecords::readingsOf(const Component::Data& data) {
  JoinInput& input = inputs_[data.file];
  const std::vector<ChannelGroup>& groups = data.data_group->groups;
  std::vector<Reading> readings(groups.size());
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const ChannelGroup& group = groups[i];
    if (group.holdsVariableLength()) {
      continue;
    }
    Reading& reading = readings[i];
    const std::size_t joined = input.joined.at(group.offset);
    reading.group = &groups_[joined];
    const std::vector<GroupSource>& sources = reading.group->sources;
    while (sources[reading.source].file != data.file) {
      ++reading.source;
    }
    reading.output = &outputs_.at(joined);
    reading.change = std::make_unique<RecordChange>(input, group, *reading.group->change);
    reading.bytes = group.recordBytes();
    const bool has_limit = input.data.isCountFinal(group) && group.cycles > 0;
    reading.limit = has_limit ? group.cycles : UINT64_MAX;
    beginValues(input, *data.data_group, reading, readings);
  }
  return readings;
}

/// Copies values of variable length, or has them taken from the records that hold them.
void JoinedRecords::beginValues(JoinInput& input, const DataGroup& data_group, Reading& reading,
                                std::vector<Reading>& readings) {
  const std::vector<ChannelGroup>& groups = data_group.groups;
  const ChannelGroup& group = groups[static_cast<std::size_t>(&reading - readings.data())];
  for (auto& [place, writer] : reading.output->values) {
    const Channel& channel = group.channels[place];
    reading.change->setBase(place, writer->size());
    const auto holder = std::find_if(groups.begin(), groups.end(), [&](const ChannelGroup& each) {
      return each.holdsVariableLength() && each.offset == channel.data;
    });
    if (holder != groups.end()) {
      readings[static_cast<std::size_t>(holder - groups.begin())].values.push_back(writer.get());
    } else if (channel.data != 0) {
      appendValues(input, channel, *writer);
    }
  }
}

/// Of a file that was not finished, whole values.
void JoinedRecords::appendValues(JoinInput& input, const Channel& channel, DataWriter& to) {
  constexpr std::size_t piece = std::size_t{1} << 18U;
  if (dataLettersOf(input.file, channel.data) != "SD") {
    return;
  }
  DataStream stream(input.data, {channel.offset, channel.data}, DataStream::Access::forward,
                    input.report);
  const std::uint64_t end = input.data.isUnfinished() ? wholeValuesOf(stream) : UINT64_MAX;
  for (std::uint64_t at = 0; at < end;) {
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(piece, end - at));
    const std::string_view bytes = stream.from(at, 1, most);
    if (bytes.empty()) {
      break;
    }
    to.append(bytes);
    at += bytes.size();
  }
  if (!input.data.mayGoOnAfter(stream.storedBytes())) {
    throw CopyFailure(input.name + " has channels with the same values again and again");
  }
}

/// Where invalidation bytes stand apart, there may be none: then all values are valid.
void JoinedRecords::Reading::take(std::string_view record) {
  const std::string_view changed = change->isNone() ? record : change->of(record, number);
  output->records->append(changed);
  if (record.size() < bytes) {
    output->records->append(std::string(static_cast<std::size_t>(bytes - record.size()), '\0'));
  }
  ++number;
}

void JoinedRecords::readSorted(Records& records, const ChannelGroup& group, Reading& reading) {
  const auto cursor = records.read(group);
  while (true) {
    const RecordSpan span = cursor->next(SIZE_MAX);
    if (span.count == 0) {
      return;
    }
    if (reading.number == 0) {
      reading.first = span.at(0);
    }
    reading.last = span.at(span.count - 1);
    if (span.step == span.size && span.size == reading.bytes && reading.change->isNone()) {
      reading.output->records->append({span.bytes, span.size * span.count});
      reading.number += span.count;
    } else {
      for (std::size_t i = 0; i < span.count; ++i) {
        reading.take(span.at(i));
      }
    }
  }
}

/// Records beyond the count of their group are not read.
void JoinedRecords::readMixed(JoinInput& input, const DataGroup& data_group, unsigned id_bytes,
                              std::vector<Reading>& readings) {
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const RecordFormat format(data_group, id_bytes);
  DataStream stream(input.data, {data_group.offset, data_group.data}, DataStream::Access::forward,
                    silent);
  forEachMixedRecord(format, stream, [&](const Record& record, const auto& /*whole*/) {
    Reading& reading = readings[record.index];
    for (DataWriter* const values : reading.values) {
      std::array<char, length_bytes> length;
      storeLe(length.data(), static_cast<std::uint32_t>(record.bytes.size()));
      values->append({length.data(), length.size()});
      values->append(record.bytes);
    }
    if (reading.group != nullptr && reading.number < reading.limit) {
      if (reading.number == 0) {
        reading.first = record.bytes;
      }
      reading.last = record.bytes;
      reading.take(record.bytes);
    }
  });
}

void JoinedRecords::finish(JoinInput& input, const ChannelGroup& group, Reading& reading) {
  const JoinedGroup& joined = *reading.group;
  JoinedPart& part = reading.group->parts[reading.source];
  part.records = reading.number;
  if (joined.sources.size() > 1 && hasVirtual(group) &&
      part.records != joined.counts[reading.source]) {
    throw TooNarrow();
  }
  const Channel* const master = group.masterChannel();
  if (master != nullptr && master->sync_type == 1 && hasNumbers(group, *master) &&
      part.records > 0) {
    Conversion* const conversion = input.conversions.at(master->conversion);
    const double later = input.secondsLater();
    part.first = later + physicalValue(*master, conversion, reading.first, 0);
    part.last = later + physicalValue(*master, conversion, reading.last, part.records - 1);
  }
}

}  // namespace mdf_tools
