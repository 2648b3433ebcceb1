#include "column.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "../bytes/work_budget.h"
#include "conversion.h"
#include "text_encoding.h"

namespace mdf_reader {

namespace {

constexpr std::size_t longest_unit = 256;

std::string_view slice(const Sample& sample, std::uint64_t begin, std::uint64_t count) {
  if (begin > sample.bytes.size() || count > sample.bytes.size() - begin) {
    return {};
  }
  return sample.bytes.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(count));
}

RawType typeOf(const Channel& channel) {
  return {channel.data_type, channel.bit_offset, channel.bit_count};
}

}  // namespace

Column::Column(std::string name, ColumnSource source, const FindingSink& report)
    : name_(std::move(name)), source_(std::move(source)), report_(report) {
  const Channel& channel = *source_.channel;
  unit_ = fromUtf8(channel.unit.substr(0, longest_unit));
  type_ = typeOf(channel);
  const std::int64_t begin = std::int64_t{channel.byte_offset} + source_.byte_shift;
  begin_ = static_cast<std::uint64_t>(begin);
  is_inside_ = begin >= 0 && begin_ + type_.bytes() <= source_.group->data_bytes;
  if (channel.isVirtual()) {
    return;
  }
  if (!type_.isKnown()) {
    tell(Code::data_type_unknown,
         "expected a known data type, found " + std::to_string(channel.data_type));
  } else if (!is_inside_) {
    tell(Code::channel_outside_record, "expected the value inside the record's " +
                                           std::to_string(source_.group->data_bytes) +
                                           " bytes, found byte " + std::to_string(begin) + " and " +
                                           std::to_string(type_.bit_count) + " bits");
  }
}

/// Reports the first problem of the column only: every sample may have it.
void Column::tell(Code code, const std::string& sentence) {
  if (!has_told_) {
    report_({code, source_.channel->offset, sentence});
    has_told_ = true;
  }
}

bool Column::isValid(const Sample& sample) const {
  const Channel& channel = *source_.channel;
  if ((channel.flags & Channel::all_invalid) != 0) {
    return false;
  }
  if ((channel.flags & Channel::has_invalidation_bit) == 0) {
    return true;
  }
  const std::uint64_t bit = channel.invalidation_bit + source_.invalidation_shift;
  const std::string_view byte = slice(sample, source_.group->data_bytes + bit / 8, 1);
  return byte.empty() ||
         ((std::uint64_t{static_cast<unsigned char>(byte[0])} >> (bit % 8)) & 1U) == 0;
}

/// The bytes of the value in the record.
std::string_view Column::stored(const Sample& sample) const {
  std::uint64_t count = type_.bytes();
  if (source_.length_channel != nullptr) {
    const Channel& length = *source_.length_channel;
    const RawType length_type = typeOf(length);
    const std::string_view bytes = slice(sample, length.byte_offset, length_type.bytes());
    if (bytes.size() == length_type.bytes() && length_type.data_type <= Channel::unsigned_be) {
      const Value number = rawValue(length_type, bytes);
      const auto* used = std::get_if<std::uint64_t>(&number);
      count = used == nullptr ? count : std::min(count, *used);
    }
  }
  return slice(sample, begin_, count);
}

Value Column::raw(const Sample& sample) {
  if (source_.elsewhere == nullptr) {
    return own(sample);
  }
  const auto record = source_.elsewhere->at(sample.number);
  return record ? own({*record, sample.number}) : Value();
}

/// The value in the records of the column's own group.
Value Column::own(const Sample& sample) {
  if (!isValid(sample)) {
    return {};
  }
  if (source_.channel->isVirtual()) {
    return sample.number;
  }
  if (!is_inside_) {
    return {};
  }
  if (source_.channel->type == Channel::variable_length) {
    const auto bytes = found(sample);
    return bytes ? rawValue({type_.data_type, 0, std::uint64_t{bytes->size()} * 8}, *bytes)
                 : Value();
  }
  return rawValue(type_, stored(sample));
}

void Column::look(const Sample& sample) {
  if (source_.elsewhere != nullptr) {
    source_.elsewhere->at(sample.number);
  } else if (source_.channel->type == Channel::variable_length && is_inside_ && isValid(sample)) {
    found(sample);
  }
}

/// A value that stands elsewhere: the record has its offset there.
std::optional<std::string_view> Column::found(const Sample& sample) {
  if (source_.values == nullptr) {
    return std::nullopt;
  }
  const RawType offset_type{Channel::unsigned_le, type_.bit_offset, type_.bit_count};
  const Value offset = rawValue(offset_type, stored(sample));
  const auto* number = std::get_if<std::uint64_t>(&offset);
  const auto bytes = number == nullptr ? std::nullopt : source_.values->at(*number);
  if (!bytes) {
    tell(Code::value_outside_signal_data,
         "expected a value of variable length for each record, found none at offset " +
             (number == nullptr ? "?" : std::to_string(*number)) +
             " of the signal data for record " + std::to_string(sample.number));
    return std::nullopt;
  }
  return mayGive(bytes->size()) ? bytes : std::nullopt;
}

/// Many records may share a value. Reading a long one again must have a limit.
bool Column::mayGive(std::size_t bytes) {
  constexpr std::size_t is_long = 4096;
  constexpr std::uint64_t always = std::uint64_t{1} << 24U;
  constexpr std::uint64_t times = 4;
  if (bytes <= is_long) {
    return true;
  }
  given_ += bytes;
  if (given_ > always && !WorkBudget(source_.values->size(), times).take(given_)) {
    tell(Code::work_limited,
         "expected a value of variable length for each record, found the same long ones again and "
         "again");
    return false;
  }
  return true;
}

Value Column::value(const Sample& sample) {
  Value value = raw(sample);
  if (source_.conversion == nullptr || isNone(value)) {
    return value;
  }
  return source_.conversion->physical(value);
}

}  // namespace mdf_reader
