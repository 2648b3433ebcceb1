#include "group.h"

#include <algorithm>
#include <utility>

#include "texts.h"

namespace mdf_writer {

using mdf_v4_10::CNBLOCK;

namespace {

constexpr std::uint32_t offset_bits = 64;  // of a value of variable length

constexpr std::uint64_t lowBits(std::uint32_t count) {
  return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

/// Where a channel's first bit lies in the record, and where its last one ends.
std::uint64_t firstBit(const ChannelPlan& channel) {
  return std::uint64_t{8} * channel.byte_offset + channel.bit_offset;
}

std::uint64_t endBit(const ChannelPlan& channel) {
  return firstBit(channel) + channel.recordBits();
}

}  // namespace

Group::Group(std::string name, Order order) : name_(std::move(name)), order_(order) {
  if (order == Order::time) {
    const auto time = addChannel<double>("time", "s");
    channels_[time.index].master = CNBLOCK::CN_SYNCTYPE_TIME;
  } else if (order == Order::index) {
    ChannelPlan index = named("index", "", {});
    index.master = CNBLOCK::CN_SYNCTYPE_INDEX;
    addField(std::move(index));
  }
}

ChannelPlan Group::named(std::string name, std::string unit, Conversion conversion) {
  ChannelPlan plan;
  plan.name = std::move(name);
  plan.unit = std::move(unit);
  plan.conversion = std::move(conversion);
  return plan;
}

ChannelRef Group::addField(ChannelPlan plan) {
  ChannelRef channel;
  channel.index = static_cast<std::uint32_t>(channels_.size());
  if (plan.fault().empty()) {
    channel.group = this;
    const auto end = static_cast<std::size_t>((endBit(plan) + 7) / 8);
    record_.resize(std::max(record_.size(), end));
    if (plan.invalidation_bit) {
      invalid_.resize(std::max<std::size_t>(invalid_.size(), *plan.invalidation_bit / 8 + 1));
    }
  }
  channels_.push_back(std::move(plan));
  values_.resize(channels_.size());
  return channel;
}

ChannelRef Group::addAtEnd(ChannelPlan plan) {
  plan.byte_offset = dataBytes();
  return addField(std::move(plan));
}

ChannelRef Group::addBitsAtEnd(ChannelPlan plan, std::uint32_t most) {
  plan.bits = std::min(plan.bits, most + 1);
  if (plan.bits > most) {
    plan.bits = 65;  // more than the values have: refused with the plan
  }
  if (!channels_.empty()) {
    const ChannelPlan& last = channels_.back();
    const std::uint64_t end = endBit(last);
    const auto bit = static_cast<std::uint32_t>(end % 8);
    if (last.isInteger() && bit != 0 && bit + plan.bits <= 64 && end / 8 + 1 == record_.size()) {
      plan.byte_offset = static_cast<std::uint32_t>(end / 8);
      plan.bit_offset = static_cast<std::uint8_t>(bit);
      return addField(std::move(plan));
    }
  }
  return addAtEnd(std::move(plan));
}

ChannelRef Group::addFixed(std::string name, std::uint32_t bytes, ChannelPlan::DataType type,
                           Conversion conversion) {
  ChannelPlan plan = named(std::move(name), "", std::move(conversion));
  plan.type = type;
  plan.bits = bytes > (1U << 27U) ? 0 : 8 * bytes;
  return addAtEnd(std::move(plan));
}

ChannelRef Group::addVariable(std::string name, ChannelPlan::DataType type, Conversion conversion) {
  ChannelPlan plan = named(std::move(name), "", std::move(conversion));
  plan.type = type;
  plan.bits = offset_bits;
  plan.has_variable_length = true;
  return addAtEnd(std::move(plan));
}

FixedChannel Group::addText(std::string name, std::uint32_t bytes, Conversion conversion) {
  return {
      addFixed(std::move(name), bytes, CNBLOCK::CN_DATATYPE_STRING_UTF8, std::move(conversion))};
}

FixedChannel Group::addBytes(std::string name, std::uint32_t bytes) {
  return {addFixed(std::move(name), bytes, CNBLOCK::CN_DATATYPE_BYTEARRAY, {})};
}

VariableChannel Group::addText(std::string name, Conversion conversion) {
  return {addVariable(std::move(name), CNBLOCK::CN_DATATYPE_STRING_UTF8, std::move(conversion))};
}

VariableChannel Group::addBytes(std::string name) {
  return {addVariable(std::move(name), CNBLOCK::CN_DATATYPE_BYTEARRAY, {})};
}

ChannelRef Group::addStructure(std::string name, const ChannelRef& first) {
  ChannelPlan plan = named(std::move(name), "", {});
  plan.type = CNBLOCK::CN_DATATYPE_BYTEARRAY;
  plan.is_bus_event = is_bus_event;
  if (first.group == this) {
    plan.first_member = first.index;
    plan.byte_offset = channels_[first.index].byte_offset;
    std::uint64_t end = 0;
    for (std::size_t i = first.index; i < channels_.size(); ++i) {
      plan.byte_offset = std::min(plan.byte_offset, channels_[i].byte_offset);
      end = std::max(end, endBit(channels_[i]));
    }
    plan.bits = 8 * (static_cast<std::uint32_t>((end + 7) / 8) - plan.byte_offset);
  }
  return addField(std::move(plan));
}

void Group::mayBeInvalid(const ChannelRef& channel) {
  if (channel.group != this || channels_[channel.index].invalidation_bit) {
    return;
  }
  std::uint32_t bit = 0;
  for (const ChannelPlan& each : channels_) {
    bit = std::max(bit, each.invalidation_bit ? *each.invalidation_bit + 1 : 0);
  }
  channels_[channel.index].invalidation_bit = bit;
  invalid_.resize(std::max<std::size_t>(invalid_.size(), bit / 8 + 1));
}

ChannelNotes& Group::describe(const ChannelRef& channel) {
  return channel.group == this ? channels_[channel.index] : no_channel_;
}

bool Group::setBits(const ChannelRef& channel, std::uint64_t value, bool negative) {
  if (channel.group != this) {
    return false;
  }
  const ChannelPlan& plan = channels_[channel.index];
  const std::uint64_t mask = lowBits(plan.bits);
  const bool is_signed = plan.type == CNBLOCK::CN_DATATYPE_INT_LE;
  const std::uint64_t magnitude = negative ? ~value : value;
  if (magnitude > (is_signed ? mask >> 1U : mask)) {
    return false;
  }
  const std::uint64_t shifted_mask = mask << plan.bit_offset;
  const std::uint64_t shifted = (value & mask) << plan.bit_offset;
  for (std::uint32_t i = 0; 8 * i < plan.bit_offset + plan.bits; ++i) {
    const auto keep = static_cast<std::uint8_t>(~(shifted_mask >> (8 * i)));
    const auto put = static_cast<std::uint8_t>(shifted >> (8 * i));
    char& byte = record_[plan.byte_offset + i];
    byte = static_cast<char>((static_cast<std::uint8_t>(byte) & keep) | put);
  }
  return true;
}

bool Group::set(const FixedChannel& channel, std::string_view value) {
  if (channel.group != this) {
    return false;
  }
  const ChannelPlan& plan = channels_[channel.index];
  const std::size_t room = plan.bits / 8;
  if (value.size() > room || (plan.isText() && !isUtf8(value))) {
    return false;
  }
  char* const at = record_.data() + plan.byte_offset;
  std::fill(std::copy(value.begin(), value.end(), at), at + room, '\0');
  return true;
}

bool Group::set(const VariableChannel& channel, std::string_view value) {
  if (channel.group != this || value.size() > std::numeric_limits<std::uint32_t>::max() - 8 ||
      (channels_[channel.index].isText() && !isUtf8(value))) {
    return false;
  }
  values_[channel.index].assign(value);
  return true;
}

bool Group::setValid(const ChannelRef& channel, bool valid) {
  if (channel.group != this || !channels_[channel.index].invalidation_bit) {
    return false;
  }
  const std::uint32_t bit = *channels_[channel.index].invalidation_bit;
  const auto mask = static_cast<std::uint8_t>(1U << (bit % 8));
  char& byte = invalid_[bit / 8];
  const auto kept = static_cast<std::uint8_t>(static_cast<std::uint8_t>(byte) & ~mask);
  byte = static_cast<char>(valid ? kept : kept | mask);
  return true;
}

std::string Group::fault() const {
  if (name_.empty() || !isUtf8(name_)) {
    return "a group has no name in UTF-8";
  }
  const std::string group = "group \"" + name_ + "\": ";
  for (const ChannelPlan& channel : channels_) {
    const std::string fault = channel.fault();
    if (!fault.empty()) {
      return group + fault;
    }
  }
  if (!isUtf8(comment) || !source.isUtf8()) {
    return group + "its comment or its source is not UTF-8";
  }
  for (const double interval : reductions) {
    if (order_ != Order::time || !(interval >= 1e-9 && interval <= 1e9)) {
      return group + "a sample reduction needs the order of time and an interval of it";
    }
  }
  std::string fault = faultOfNames();
  if (fault.empty() && !has_shared_bits) {
    fault = faultOfPlaces();
  }
  if (fault.empty()) {
    fault = faultOfMembers();
  }
  return fault.empty() ? "" : group + fault;
}

std::string Group::faultOfNames() const {
  std::vector<std::string_view> names;
  int masters = 0;
  for (const ChannelPlan& channel : channels_) {
    names.push_back(channel.name);
    masters += channel.master != CNBLOCK::CN_SYNCTYPE_NONE ? 1 : 0;
  }
  std::sort(names.begin(), names.end());
  const auto twice = std::adjacent_find(names.begin(), names.end());
  if (twice != names.end()) {
    return "two channels are named \"" + std::string(*twice) + "\"";
  }
  if (masters != 1) {
    return masters == 0 ? "there is no master channel" : "there is more than one master channel";
  }
  return "";
}

std::string Group::faultOfPlaces() const {
  std::vector<const ChannelPlan*> sorted;
  for (const ChannelPlan& channel : channels_) {
    if (!channel.isVirtual() && !channel.first_member) {
      sorted.push_back(&channel);
    }
  }
  std::sort(sorted.begin(), sorted.end(),
            [](const ChannelPlan* a, const ChannelPlan* b) { return firstBit(*a) < firstBit(*b); });
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    if (firstBit(*sorted[i]) < endBit(*sorted[i - 1])) {
      return "channels \"" + sorted[i - 1]->name + "\" and \"" + sorted[i]->name + "\" overlap";
    }
  }
  return "";
}

/// A channel is a member of one structure at most, which lies around it.
std::string Group::faultOfMembers() const {
  for (std::size_t i = 0; i < channels_.size(); ++i) {
    const ChannelPlan& structure = channels_[i];
    bool fits = !structure.first_member || *structure.first_member < i;
    for (std::size_t k = structure.first_member.value_or(0);
         structure.first_member && fits && k < i; ++k) {
      const ChannelPlan& member = channels_[k];
      fits = member.master == CNBLOCK::CN_SYNCTYPE_NONE &&
             firstBit(member) >= firstBit(structure) && endBit(member) <= endBit(structure) &&
             member.first_member.value_or(k) >= *structure.first_member;
    }
    if (!fits) {
      return "structure \"" + structure.name + "\" has no members, or some that it does not hold";
    }
  }
  return "";
}

}  // namespace mdf_writer
