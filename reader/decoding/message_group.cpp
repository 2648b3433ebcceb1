#include "message_group.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <utility>

#include "framework/wire.h"

namespace mdf_reader {

namespace {

using mdf_v4_10::CNBLOCK;
using mdf_v4_10::SIBLOCK;
using mdf_v4_10::detail::storeLe;
using mdf_writer::ChannelPlan;
using Type = BusSignal::Type;

constexpr std::size_t time_bytes = sizeof(double);
constexpr std::uint32_t most_bits_in_place = 64;
constexpr std::size_t most_texts = 65534;  // of a conversion, with one for other values

bool isFloat(const BusSignal& signal) {
  return signal.type == Type::single_float || signal.type == Type::double_float;
}

ChannelPlan::DataType dataTypeOf(const BusSignal& signal, bool is_big_endian) {
  if (isFloat(signal)) {
    return is_big_endian ? CNBLOCK::CN_DATATYPE_FLOAT_BE : CNBLOCK::CN_DATATYPE_FLOAT_LE;
  }
  if (signal.type == Type::signed_integer) {
    return is_big_endian ? CNBLOCK::CN_DATATYPE_INT_BE : CNBLOCK::CN_DATATYPE_INT_LE;
  }
  return is_big_endian ? CNBLOCK::CN_DATATYPE_UINT_BE : CNBLOCK::CN_DATATYPE_UINT_LE;
}

/// Texts for some values, and the others on a line.
mdf_writer::Conversion conversionOf(const BusSignal& signal) {
  const bool is_scaled = signal.factor != 1 || signal.offset != 0;
  mdf_writer::Conversion scale;
  if (is_scaled) {
    scale = mdf_writer::linear(signal.offset, signal.factor);
  }
  if (signal.texts.empty()) {
    return scale;
  }
  std::map<double, std::string> by_value;
  for (const ValueText& each : signal.texts) {
    const double value = signal.type == Type::unsigned_integer
                             ? static_cast<double>(static_cast<std::uint64_t>(each.value))
                             : static_cast<double>(each.value);
    by_value.try_emplace(value, each.text);
  }
  std::vector<std::pair<double, std::string>> texts(by_value.begin(), by_value.end());
  texts.resize(std::min(texts.size(), most_texts));
  return is_scaled ? mdf_writer::texts(std::move(texts), std::move(scale))
                   : mdf_writer::texts(std::move(texts), std::string());
}

/// "time", or another name that no signal has.
std::string nameBeside(const BusMessage& message, const std::string& wanted) {
  std::string name = wanted;
  for (int number = 2; std::any_of(message.signals.begin(), message.signals.end(),
                                   [&](const BusSignal& signal) { return signal.name == name; });
       ++number) {
    name = wanted + " (" + std::to_string(number) + ')';
  }
  return name;
}

}  // namespace

MessageGroup::MessageGroup(mdf_writer::Plan& plan, const MessageFrames& frames)
    : message_(*frames.message),
      group_(plan.addGroup(frames.group, mdf_writer::Group::Order::own)),
      is_there_(message_.signals.size(), 1) {
  group_.has_shared_bits = true;
  group_.comment = message_.comment;
  group_.source.name = message_.sender;
  group_.source.path = frames.bus;
  group_.source.type = SIBLOCK::SI_SOURCETYPE_BUS;
  group_.source.bus = SIBLOCK::SI_BUSTYPE_CAN;
  addTime();
  for (std::size_t i = 0; i < message_.signals.size(); ++i) {
    addSignal(i, frames.least_bytes);
  }
  payload_bytes_ = std::min<std::size_t>(message_.length, group_.dataBytes() - time_bytes);
  if (frames.has_senders) {
    sender_at_ = group_.dataBytes();
    group_.addChannel<std::uint8_t>(nameBeside(message_, "SourceAddress"));
  }
  invalidation_at_ = group_.dataBytes();
  record_.assign(invalidation_at_ + group_.invalidationBytes(), '\0');
  orderMultiplexing();
}

void MessageGroup::addTime() {
  ChannelPlan time;
  time.name = nameBeside(message_, "time");
  time.unit = "s";
  time.type = CNBLOCK::CN_DATATYPE_FLOAT_LE;
  time.bits = 8 * time_bytes;
  time.master = CNBLOCK::CN_SYNCTYPE_TIME;
  group_.addField(std::move(time));
}

MessageGroup::Bits MessageGroup::bitsOf(const BusSignal& signal) {
  return {firstByteOf(signal), endByteOf(signal), lowestBitOf(signal), signal.bits,
          signal.is_big_endian};
}

void MessageGroup::addSignal(std::size_t index, std::size_t least_bytes) {
  const BusSignal& signal = message_.signals[index];
  ChannelPlan plan;
  plan.name = signal.name;
  plan.unit = signal.unit;
  plan.comment = signal.comment;
  plan.conversion = conversionOf(signal);
  plan.type = dataTypeOf(signal, signal.is_big_endian);
  plan.bits = signal.bits;
  plan.byte_offset = static_cast<std::uint32_t>(time_bytes + firstByteOf(signal));
  plan.bit_offset = static_cast<std::uint8_t>(lowestBitOf(signal));
  plan.is_discrete = !signal.texts.empty();
  if (signal.range && signal.range->first <= signal.range->second) {
    plan.limits = mdf_writer::Range{signal.range->first, signal.range->second};
  }
  const bool is_in_place =
      isFloat(signal) ? plan.bit_offset == 0 : plan.bit_offset + signal.bits <= most_bits_in_place;
  if (!is_in_place) {
    addMoved(signal, plan);
  }
  const mdf_writer::ChannelRef channel = group_.addField(std::move(plan));
  if (signal.multiplexing || endByteOf(signal) > least_bytes) {
    group_.mayBeInvalid(channel);
    optional_.push_back(
        {index, endByteOf(signal), *group_.channels()[channel.index].invalidation_bit});
  }
}

/// Copies stand after the data of the longest frame.
void MessageGroup::addMoved(const BusSignal& signal, ChannelPlan& plan) {
  const std::size_t at = time_bytes + message_.length + moved_.size() * sizeof(std::uint64_t);
  moved_.push_back({bitsOf(signal), signal.type == Type::signed_integer, at});
  plan.type = dataTypeOf(signal, false);
  plan.byte_offset = static_cast<std::uint32_t>(at);
  plan.bit_offset = 0;
}

void MessageGroup::orderMultiplexing() {
  std::vector<std::vector<std::size_t>> dependents(message_.signals.size());
  std::vector<std::size_t> ready;
  for (std::size_t i = 0; i < message_.signals.size(); ++i) {
    const auto& multiplexing = message_.signals[i].multiplexing;
    (multiplexing ? dependents[multiplexing->by] : ready).push_back(i);
  }
  while (!ready.empty()) {
    const std::size_t by = ready.back();
    ready.pop_back();
    for (const std::size_t signal : dependents[by]) {
      multiplexed_.push_back({signal, by, bitsOf(message_.signals[by])});
      ready.push_back(signal);
    }
  }
}

std::uint64_t MessageGroup::valueOf(const Bits& bits) const {
  const auto* const data = reinterpret_cast<const unsigned char*>(record_.data()) + time_bytes;
  std::uint64_t value = 0;
  std::uint32_t shift = 0;
  for (std::uint32_t i = 0; i < bits.end_byte - bits.first_byte; ++i) {
    const std::uint32_t byte = bits.is_big_endian ? bits.end_byte - 1 - i : bits.first_byte + i;
    const std::uint64_t stored = data[byte];
    if (i == 0) {
      value = stored >> bits.lowest_bit;
      shift = 8 - bits.lowest_bit;
    } else if (shift < 64) {
      value |= stored << shift;
      shift += 8;
    }
  }
  return bits.count >= 64 ? value : value & ((std::uint64_t{1} << bits.count) - 1);
}

void MessageGroup::findMultiplexed(std::size_t bytes) {
  for (const Multiplexed& each : multiplexed_) {
    const auto& ranges = message_.signals[each.signal].multiplexing->ranges;
    const std::uint64_t value = valueOf(each.bits);
    const bool is_chosen = std::any_of(ranges.begin(), ranges.end(), [&](const auto& range) {
      return range.first <= value && value <= range.second;
    });
    const bool has_switch = is_there_[each.by] != 0 && each.bits.end_byte <= bytes;
    is_there_[each.signal] = has_switch && is_chosen ? 1 : 0;
  }
}

/// Says which signals the data of so many bytes does not have.
void MessageGroup::setInvalid(std::size_t bytes) {
  findMultiplexed(bytes);
  std::fill(record_.begin() + static_cast<std::ptrdiff_t>(invalidation_at_), record_.end(), '\0');
  for (const Optional& each : optional_) {
    if (is_there_[each.signal] == 0 || each.end_byte > bytes) {
      char& byte = record_[invalidation_at_ + each.invalidation_bit / 8];
      byte =
          static_cast<char>(static_cast<unsigned char>(byte) | (1U << (each.invalidation_bit % 8)));
    }
  }
}

/// Copies signals to where channels can show them.
void MessageGroup::move() {
  for (const Moved& moved : moved_) {
    std::uint64_t value = valueOf(moved.bits);
    const std::uint32_t count = moved.bits.count;
    if (moved.is_signed && count < 64 && (value >> (count - 1)) != 0) {
      value |= ~std::uint64_t{0} << count;
    }
    storeLe(&record_[moved.at], value);
  }
}

std::string_view MessageGroup::record(std::uint32_t id, std::string_view data, double time) {
  storeLe(record_.data(), time);
  const std::size_t bytes = std::min(payload_bytes_, data.size());
  data.copy(&record_[time_bytes], bytes);
  std::memset(&record_[time_bytes + bytes], 0, payload_bytes_ - bytes);
  move();
  if (sender_at_ != 0) {
    record_[sender_at_] = static_cast<char>(id & 0xFFU);
  }
  if (!optional_.empty()) {
    setInvalid(data.size());
  }
  return record_;
}

}  // namespace mdf_reader
