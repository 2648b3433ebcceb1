#include "record_change.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "copy_failure.h"
#include "file_describer.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/number_loader.h"
#include "reader/values/raw_type.h"

namespace mdf_tools {

using mdf_v4_10::detail::storeLe;
using Form = ValueChange::Form;

namespace {

constexpr unsigned whole = 64;  // bits
constexpr std::size_t wide_bytes = 8;
constexpr unsigned over_time = 1;  // a sync type

RawType typeOf(const Channel& channel) {
  return {channel.data_type, channel.bit_offset, channel.bit_count};
}

/// The bytes of a record that hold a value.
std::string_view bytesOf(const Channel& channel, std::string_view record) {
  const auto size = static_cast<std::size_t>(typeOf(channel).bytes());
  return channel.byte_offset < record.size() ? record.substr(channel.byte_offset, size)
                                             : std::string_view();
}

/// Writes the lowest bits of a number to where a channel has its integer.
void storeBits(const Channel& channel, std::uint64_t bits, std::string& record) {
  const auto size = static_cast<std::size_t>(typeOf(channel).bytes());
  const bool is_big = typeOf(channel).isBigEndian();
  const std::uint64_t mask =
      (channel.bit_count < whole ? (std::uint64_t{1} << channel.bit_count) : 0) - 1;
  const std::uint64_t to_set = (bits & mask) << channel.bit_offset;
  const std::uint64_t to_clear = mask << channel.bit_offset;
  for (std::size_t i = 0; i < size; ++i) {
    const std::size_t place = channel.byte_offset + (is_big ? size - 1 - i : i);
    const auto old = static_cast<unsigned char>(record[place]);
    record[place] = static_cast<char>((old & ~(to_clear >> 8 * i)) | ((to_set >> 8 * i) & 0xFFU));
  }
}

std::uint64_t bitsOf(double number) {
  std::uint64_t bits = 0;
  static_assert(sizeof bits == sizeof number, "doubles have 64 bits");
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

std::string nameOf(const Channel& channel, const ChannelGroup& group) {
  return "the master channel \"" + std::string(channel.name) + "\" of channel group " +
         std::to_string(group.index);
}

}  // namespace

bool hasNumbers(const ChannelGroup& group, const Channel& channel) {
  const RawType type = typeOf(channel);
  return channel.isVirtual() || (channel.bit_count > 0 && isNumber(columnTypeOf(type)) &&
                                 channel.byte_offset + type.bytes() <= group.data_bytes);
}

double physicalValue(const Channel& channel, Conversion* conversion, std::string_view record,
                     std::uint64_t number) {
  const RawType type = typeOf(channel);
  const double raw = channel.isVirtual() ? static_cast<double>(number)
                                         : numberIn<double>(type, bytesOf(channel, record));
  if (conversion == nullptr) {
    return raw;
  }
  const Conversion::Result result = conversion->of(raw, channel.isVirtual() || !type.isReal());
  return result.kind == Conversion::Result::number      ? result.real
         : result.kind == Conversion::Result::unchanged ? raw
                                                        : std::nan("");
}

GroupChange::GroupChange(JoinInputs& inputs, const std::vector<GroupSource>& sources,
                         const std::vector<std::uint64_t>& counts, bool is_wide)
    : inputs_(inputs),
      sources_(sources),
      counts_(counts),
      is_wide_(is_wide),
      is_shifted_(std::any_of(sources.begin(), sources.end(), [&](const GroupSource& source) {
        return inputs[source.file].later != 0;
      })) {
  for (std::size_t channel = 0; channel < sources.front().group->channels.size(); ++channel) {
    add(channel);
  }
}

std::size_t GroupChange::bytesMore() const {
  return wide_bytes * static_cast<std::size_t>(
                          std::count_if(values_.begin(), values_.end(),
                                        [](const ValueChange& value) { return value.isWide(); }));
}

void GroupChange::add(std::size_t channel) {
  const Channel& first = channelOf(0, channel);
  if (first.isVirtual()) {
    addVirtual(channel);
  } else if (first.type == Channel::master && first.sync_type == over_time && is_shifted_) {
    addMaster(channel);
  } else if (first.type == Channel::variable_length && sources_.size() > 1) {
    const bool gets_wide = is_wide_ && first.bit_count < whole;
    values_.push_back({channel, gets_wide ? Form::wide_offset : Form::offset});
  }
}

void GroupChange::addMaster(std::size_t channel) {
  const Channel& first = channelOf(0, channel);
  const RawType type = typeOf(first);
  expectNumbers(channel);
  if (!hasNumbers(*sources_[0].group, first)) {
    throw CopyFailure(nameOf(first, *sources_[0].group) + " of " + inputs_[sources_[0].file].name +
                      " has no numbers, which could go on from another start");
  }
  const auto linear = linearAt(inputs_[sources_[0].file].file, first.conversion);
  Form form = Form::wide_real;
  if (linear && linear->factor != 0 && type.isReal()) {
    const bool may_be_narrow = first.bit_count == whole || (first.bit_count == 32 && !is_wide_);
    form = may_be_narrow && first.bit_offset == 0 ? Form::real : Form::wide_real;
  } else if (linear && linear->factor != 0) {
    form = formOfInteger(first, linear->factor);
  }
  values_.push_back({channel, form});
}

Form GroupChange::formOfInteger(const Channel& channel, double factor) const {
  if (channel.bit_offset + channel.bit_count > whole || (is_wide_ && channel.bit_count == whole)) {
    return Form::wide_real;
  }
  for (const GroupSource& source : sources_) {
    if (!ticksIn(inputs_[source.file].later, factor)) {
      return Form::wide_real;
    }
  }
  return is_wide_ ? Form::wide_integer : Form::integer;
}

/// Texts of conversions have no numbers that could grow.
void GroupChange::expectNumbers(std::size_t channel) {
  for (std::size_t source = 0; source < sources_.size(); ++source) {
    const Channel& each = channelOf(source, channel);
    JoinInput& input = inputs_[sources_[source].file];
    const Conversion* const conversion = input.conversions.at(each.conversion);
    if (conversion != nullptr && conversion->ofNumbers() == Conversion::Effect::texts) {
      throw CopyFailure(nameOf(each, *sources_[source].group) + " of " + input.name +
                        " has no numbers, which could go on from another start");
    }
  }
}

void GroupChange::addVirtual(std::size_t channel) {
  const Channel& first = channelOf(0, channel);
  const bool is_time = first.type == Channel::virtual_master && first.sync_type == over_time;
  if (goesOnByItself(channel)) {
    return;
  }
  const auto has_same_conversion = [&](std::size_t source) {
    const GroupSource& home = sources_[0];
    return inputs_[home.file].describer->conversion(first) ==
           inputs_[sources_[source].file].describer->conversion(channelOf(source, channel));
  };
  bool are_same = true;
  for (std::size_t source = 1; source < sources_.size(); ++source) {
    are_same = are_same && has_same_conversion(source);
  }
  if (are_same && !(is_time && is_shifted_)) {
    values_.push_back({channel, Form::wide_index});
    return;
  }
  expectNumbers(channel);
  values_.push_back({channel, Form::wide_real});
}

/// Whether the numbers of the records in the joined group give the same values as those in the
/// files. A master that counts records goes on counting.
bool GroupChange::goesOnByItself(std::size_t channel) const {
  constexpr unsigned by_index = 4;
  constexpr double rounding = 1e-12;
  const Channel& home = channelOf(0, channel);
  const bool is_master = home.type == Channel::virtual_master;
  const bool is_time = is_master && home.sync_type == over_time;
  if (sources_.size() == 1 && !(is_time && is_shifted_)) {
    return true;
  }
  if (is_master && home.sync_type == by_index) {
    return true;
  }
  const auto linear = linearAt(inputs_[sources_[0].file].file, home.conversion);
  if (is_wide_ || !linear) {
    return false;
  }
  const Linear first = *linear;
  std::uint64_t before = 0;
  for (std::size_t source = 0; source < sources_.size(); ++source) {
    JoinInput& input = inputs_[sources_[source].file];
    const auto own = linearAt(input.file, channelOf(source, channel).conversion);
    if (!own || first.factor != own->factor) {
      return false;
    }
    const double begin = own->offset + (is_time ? input.secondsLater() : 0);
    const double expected = first.of(static_cast<double>(before));
    if (counts_[source] > 0 &&
        std::abs(begin - expected) > rounding * std::max(std::abs(begin), std::abs(own->factor))) {
      return false;
    }
    before += counts_[source];
  }
  return true;
}

RecordChange::RecordChange(JoinInput& input, const ChannelGroup& group, const GroupChange& change)
    : data_bytes_(group.data_bytes) {
  for (const ValueChange& each : change.values()) {
    const Channel& channel = group.channels[each.channel];
    const bool is_time = channel.isMaster() && channel.sync_type == over_time;
    const std::int64_t later = is_time ? input.later : 0;
    const double seconds = is_time ? input.secondsLater() : 0;
    Value value{each, &channel};
    const double factor = linearAt(input.file, channel.conversion).value_or(Linear()).factor;
    if (each.form == Form::integer || each.form == Form::wide_integer) {
      value.ticks = ticksIn(later, factor).value_or(0);
    }
    value.more = each.form == Form::real ? seconds / factor : seconds;
    if (each.form == Form::wide_real) {
      value.conversion = input.conversions.at(channel.conversion);
    }
    values_.push_back(value);
  }
}

void RecordChange::setBase(std::size_t channel, std::uint64_t base) {
  for (Value& value : values_) {
    if (value.change.channel == channel) {
      value.base = base;
    }
  }
}

std::string_view RecordChange::of(std::string_view record, std::uint64_t number) {
  changed_ = record;
  std::string more;
  for (const Value& value : values_) {
    if (value.change.form == Form::integer) {
      changeInteger(value, record);
    } else if (value.change.form == Form::real) {
      changeReal(value, record);
    } else if (value.change.form == Form::offset) {
      changeOffset(value);
    } else {
      more.resize(more.size() + wide_bytes);
      storeLe(&more[more.size() - wide_bytes], wideBits(value, record, number));
    }
  }
  changed_.insert(std::min(data_bytes_, changed_.size()), more);
  return changed_;
}

/// The raw number with what it grows by.
std::int64_t RecordChange::grownInteger(const Value& value, std::string_view record) const {
  const RawType type = typeOf(*value.channel);
  const std::string_view bytes = bytesOf(*value.channel, record);
  const bool is_large = !type.isSigned() && numberIn<std::uint64_t>(type, bytes) >
                                                std::numeric_limits<std::int64_t>::max();
  const std::int64_t raw =
      type.isSigned()
          ? numberIn<std::int64_t>(type, bytes)
          : static_cast<std::int64_t>(is_large ? 0 : numberIn<std::uint64_t>(type, bytes));
  const auto sum = is_large ? std::nullopt : sumOf(raw, value.ticks);
  if (!sum) {
    throw TooNarrow();
  }
  return *sum;
}

void RecordChange::changeInteger(const Value& value, std::string_view record) {
  const Channel& channel = *value.channel;
  if (value.ticks == 0) {
    return;
  }
  const std::int64_t sum = grownInteger(value, record);
  const unsigned bits = channel.bit_count - (typeOf(channel).isSigned() ? 1 : 0);
  const std::int64_t most =
      bits < whole - 1 ? (std::int64_t{1} << bits) - 1 : std::numeric_limits<std::int64_t>::max();
  const std::int64_t least = typeOf(channel).isSigned() ? -most - 1 : 0;
  if (sum > most || sum < least) {
    throw TooNarrow();
  }
  storeBits(channel, static_cast<std::uint64_t>(sum), changed_);
}

void RecordChange::changeReal(const Value& value, std::string_view record) {
  const Channel& channel = *value.channel;
  if (value.more == 0) {
    return;
  }
  const double sum = numberIn<double>(typeOf(channel), bytesOf(channel, record)) + value.more;
  if (channel.bit_count == whole) {
    storeBits(channel, bitsOf(sum), changed_);
    return;
  }
  const auto narrow = static_cast<float>(sum);
  if (static_cast<double>(narrow) != sum && !std::isnan(sum)) {
    throw TooNarrow();
  }
  std::uint32_t bits = 0;
  std::memcpy(&bits, &narrow, sizeof bits);
  storeBits(channel, bits, changed_);
}

/// One that is out of its place already stays so.
void RecordChange::changeOffset(const Value& value) {
  const Channel& channel = *value.channel;
  const RawType type{Channel::unsigned_le, 0, channel.bit_count};
  const auto offset = numberIn<std::uint64_t>(
      type, std::string_view(changed_).substr(channel.byte_offset, channel.bit_count / 8));
  const std::uint64_t sum = offset + value.base;
  if (channel.bit_count < whole && sum >> channel.bit_count != 0) {
    throw TooNarrow();
  }
  std::string bytes(sizeof sum, '\0');
  storeLe(bytes.data(), sum);
  changed_.replace(channel.byte_offset, channel.bit_count / 8, bytes, 0, channel.bit_count / 8);
}

std::uint64_t RecordChange::wideBits(const Value& value, std::string_view record,
                                     std::uint64_t number) const {
  const Channel& channel = *value.channel;
  if (value.change.form == Form::wide_index) {
    return number;
  }
  if (value.change.form == Form::wide_offset) {
    const RawType type{Channel::unsigned_le, 0, channel.bit_count};
    return value.base +
           numberIn<std::uint64_t>(type, record.substr(channel.byte_offset, channel.bit_count / 8));
  }
  if (value.change.form == Form::wide_integer) {
    return static_cast<std::uint64_t>(grownInteger(value, record));
  }
  return bitsOf(physicalValue(channel, value.conversion, record, number) + value.more);
}

}  // namespace mdf_tools
