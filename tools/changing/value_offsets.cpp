#include "value_offsets.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>

#include "framework/wire.h"
#include "patching.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_file.h"
#include "reader/data/data_stream.h"
#include "reader/data/record_format.h"
#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t offset_bytes = sizeof(std::uint64_t);
constexpr std::uint64_t length_bytes = 4;

const FindingSink silent = [](const Finding& /*finding*/) {};

/// Where values begin, one after another: those of signal data, or records of a channel group.
class Values {
 public:
  Values(DataFile& file, DataLink link, const DataGroup& data_group, const ChannelGroup* group)
      : data_(file, link, DataStream::Access::forward, silent),
        format_(data_group, group == nullptr ? 0 : recordIdBytes(data_group, data_, false)),
        group_(group) {}

  /// The offset of the next value; nothing after the last whole one.
  std::optional<std::uint64_t> next() {
    const std::uint64_t offset = offset_;
    const auto bytes = group_ == nullptr ? nextInSignalData() : nextRecord();
    offset_ += bytes.value_or(0);
    return bytes ? std::optional(offset) : std::nullopt;
  }

 private:
  std::optional<std::uint64_t> nextInSignalData() {
    const std::string_view length = data_.at(offset_, length_bytes);
    const std::uint64_t bytes =
        length.size() < length_bytes ? 0 : length_bytes + loadLe<std::uint32_t>(length.data());
    return bytes > 0 && data_.reaches(offset_ + bytes) ? std::optional(bytes) : std::nullopt;
  }
  std::optional<std::uint64_t> nextRecord() {
    while (true) {
      const Record record = format_.at(data_, position_);
      if (record.group == nullptr) {
        return std::nullopt;
      }
      position_ = record.next;
      if (record.group == group_) {
        return length_bytes + record.bytes.size();
      }
    }
  }

  DataStream data_;
  RecordFormat format_;
  const ChannelGroup* group_;
  std::uint64_t offset_ = 0;
  std::uint64_t position_ = 0;
};

/// Sets the offsets of one channel.
class OffsetSetter {
 public:
  OffsetSetter(DataFile& file, const DataGroup& data_group, const ChannelGroup& group,
               const Channel& channel, mdf_writer::Output& output)
      : file_(file),
        group_(group),
        channel_(channel),
        output_(output),
        data_(file, {data_group.offset, data_group.data}, DataStream::Access::forward, silent),
        format_(data_group, recordIdBytes(data_group, data_, false)),
        values_(file, linkOf(data_group, channel), data_group, valuesIn(data_group, channel)) {}

  void set();

  std::uint64_t changed() const { return changed_; }
  /// What was not set and why; "" where everything is.
  const std::string& problem() const { return problem_; }

 private:
  static const ChannelGroup* valuesIn(const DataGroup& data_group, const Channel& channel) {
    const auto found = std::find_if(data_group.groups.begin(), data_group.groups.end(),
                                    [&](const auto& each) { return each.offset == channel.data; });
    return found == data_group.groups.end() ? nullptr : &*found;
  }
  static DataLink linkOf(const DataGroup& data_group, const Channel& channel) {
    return valuesIn(data_group, channel) == nullptr ? DataLink{channel.offset, channel.data}
                                                    : DataLink{data_group.offset, data_group.data};
  }
  bool hasOffsets() const {
    return channel_.bit_count == 8 * offset_bytes && channel_.bit_offset == 0 &&
           channel_.byte_offset + offset_bytes <= group_.data_bytes;
  }
  bool take(std::uint64_t position, std::string_view stored, std::uint64_t offset);
  bool write(std::uint64_t position, std::string_view bytes);

  DataFile& file_;
  const ChannelGroup& group_;
  const Channel& channel_;
  mdf_writer::Output& output_;
  DataStream data_;
  RecordFormat format_;
  Values values_;
  std::uint64_t changed_ = 0;
  std::string problem_;
};

void OffsetSetter::set() {
  if (!hasOffsets()) {
    problem_ = "expected offsets of 8 bytes in its records, found others; they are not set";
    return;
  }
  std::uint64_t position = 0;
  std::uint64_t count = 0;
  std::uint64_t without = 0;
  for (Record record = format_.at(data_, 0); record.group != nullptr;
       record = format_.at(data_, position)) {
    if (record.group == &group_) {
      const std::uint64_t at = position + format_.idBytes() + channel_.byte_offset;
      const std::string stored(record.bytes.substr(channel_.byte_offset, offset_bytes));
      const auto value = values_.next();
      without += value ? 0U : 1U;
      ++count;
      if (value && !take(at, stored, *value)) {
        problem_ += "; it is not set, nor are those after record " + std::to_string(count - 1);
        return;
      }
    }
    position = record.next;
  }
  std::uint64_t more = 0;
  for (; without == 0 && values_.next(); ++more) {
  }
  if (without > 0 || more > 0) {
    problem_ = "expected a value for each of " + std::to_string(count) + " records, found " +
               std::to_string(count - without + more);
  }
}

/// Sets the offset of a record where it has none; false where that cannot be.
bool OffsetSetter::take(std::uint64_t position, std::string_view stored, std::uint64_t offset) {
  const auto found = loadLe<std::uint64_t>(stored.data());
  if (found == offset) {
    return true;
  }
  if (found != 0) {
    problem_ = "expected the offset " + std::to_string(offset) + " of the next value, found " +
               std::to_string(found);
    return false;
  }
  if (!write(position, numberBytes(offset))) {
    problem_ = "expected data that is not zipped, found an offset in a zipped block";
    return false;
  }
  ++changed_;
  return true;
}

/// Bytes may be in several blocks. False where they are zipped.
bool OffsetSetter::write(std::uint64_t position, std::string_view bytes) {
  const std::uint64_t place = data_.placeOf(position);
  if (bytes.size() > 1 && data_.placeOf(position + bytes.size() - 1) - place != bytes.size() - 1) {
    return write(position, bytes.substr(0, 1)) && write(position + 1, bytes.substr(1));
  }
  std::string there(bytes.size(), 'x');
  file_.bytes().readAt(place, there.data(), there.size());
  if (there.find_first_not_of('\0') != std::string::npos) {
    return false;
  }
  put(output_, place, bytes);
  return true;
}

}  // namespace

std::vector<OffsetsSet> setValueOffsets(InputFile& file, mdf_writer::Output& output,
                                        const FindingSink& report) {
  DataFile data_file(file);
  std::vector<OffsetsSet> set;
  if ((data_file.identification().standard_flags & Identification::variable_length_offsets_open) ==
      0) {
    return set;
  }
  const Description description = readDescription(file, silent);
  for (const DataGroup& data_group : description.data_groups) {
    for (const ChannelGroup& group : data_group.groups) {
      for (const Channel& channel : group.channels) {
        if (channel.type != Channel::variable_length || channel.data == 0) {
          continue;
        }
        OffsetSetter setter(data_file, data_group, group, channel, output);
        setter.set();
        if (setter.changed() > 0) {
          set.push_back({channel.offset, setter.changed()});
        }
        if (!setter.problem().empty()) {
          report({Code::file_unfinished, channel.offset, setter.problem()});
        }
      }
    }
  }
  return set;
}

}  // namespace mdf_tools
