#include "bus_group.h"

#include <algorithm>
#include <charconv>

#include "socket_can.h"

namespace mdf_tools {

using mdf_v4_10::SIBLOCK;

namespace {

using Kind = BusFrame::Kind;

constexpr std::uint32_t classic_bytes = 8;

const char* nameOf(Kind kind) {
  return kind == Kind::data     ? "CAN_DataFrame"
         : kind == Kind::remote ? "CAN_RemoteFrame"
                                : "CAN_ErrorFrame";
}

/// The number at the end of a name: 1 of "can1".
std::optional<std::uint8_t> numberIn(std::string_view name) {
  const std::size_t begin = name.find_last_not_of("0123456789") + 1;
  std::uint8_t number = 0;
  const char* const end = name.data() + name.size();
  const auto [rest, error] = std::from_chars(name.data() + begin, end, number);
  return error == std::errc{} && rest == end ? std::optional(number) : std::nullopt;
}

}  // namespace

BusGroup::BusGroup(mdf_writer::Plan& plan, const BusGroupKind& kind)
    : group_(plan.addGroup(kind.bus)), kind_(kind), name_(nameOf(kind.kind)) {
  group_.is_bus_event = true;
  group_.source = {kind.bus, kind.bus, "", SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN};
  channel_ = group_.addChannel<std::uint8_t>(name_ + ".BusChannel");
  group_.set(channel_, kind.channel);
  if (kind.kind == Kind::error) {
    addErrorClass();
  } else {
    addIdentifier();
  }
  addData();
  number_ = group_.addChannel<std::uint16_t>(name_ + ".FrameNumber");
  group_.describe(number_).comment = "Which frame of the log it is, modulo 65536";
  group_.addStructure(name_, channel_);
  group_.mayBeInvalid(direction_);
}

BusGroup::Bits BusGroup::addBits(const char* member, std::uint32_t bits) {
  return group_.addBits<std::uint32_t>(name_ + '.' + member, bits);
}

void BusGroup::addIdentifier() {
  id_ = addBits("ID", 29);
  is_extended_ = addBits("IDE", 1);
  direction_ = addBits("Dir", 1);
  is_fd_ = addBits("EDL", 1);
  bit_rate_switch_ = addBits("BRS", 1);
  error_state_ = addBits("ESI", 1);
  length_code_ = addBits("DLC", 4);
}

void BusGroup::addErrorClass() {
  error_class_ = addBits("ErrorClass", 29);
  group_.describe(*error_class_).comment = "The bits of the class, as linux/can/error.h has them";
  error_type_ = addBits("ErrorType", 3);
  direction_ = addBits("Dir", 1);
}

void BusGroup::addData() {
  length_ = group_.addChannel<std::uint8_t>(name_ + ".DataLength");
  if (kind_.is_fd) {
    fd_data_ = group_.addBytes(name_ + ".DataBytes");
  } else if (kind_.kind != Kind::remote) {
    data_ = group_.addBytes(name_ + ".DataBytes", classic_bytes);
  }
}

void BusGroup::set(const BusFrame& frame, std::uint16_t number) {
  group_.set(number_, number);
  group_.set(direction_, frame.direction == BusFrame::Direction::sent ? 1 : 0);
  group_.setValid(direction_, frame.direction != BusFrame::Direction::unknown);
  group_.set(length_, frame.length);
  if (error_class_) {
    group_.set(*error_class_, frame.error_class.value_or(0));
    group_.set(*error_type_, static_cast<unsigned>(frame.error));
  } else {
    group_.set(*id_, frame.id);
    group_.set(*is_extended_, frame.is_extended ? 1 : 0);
    group_.set(is_fd_, frame.is_fd ? 1 : 0);
    group_.set(bit_rate_switch_, frame.has_bit_rate_switch ? 1 : 0);
    group_.set(error_state_, frame.has_error_state ? 1 : 0);
    group_.set(length_code_, lengthCodeOf(static_cast<std::size_t>(frame.length)));
  }
  if (data_) {
    group_.set(*data_, frame.data);
  } else if (fd_data_) {
    group_.set(*fd_data_, frame.data);
  }
}

std::int64_t startOfLog(std::int64_t first) {
  constexpr std::int64_t least = std::int64_t{1} << 33U;
  return first < least ? 0 : first;
}

std::optional<std::uint8_t> BusGroupKinds::channelOf(std::string_view bus) {
  const auto known = std::find_if(kinds_.begin(), kinds_.end(),
                                  [&](const BusGroupKind& each) { return each.bus == bus; });
  if (known != kinds_.end()) {
    return known->channel;
  }
  std::optional<std::uint8_t> channel = numberIn(bus);
  for (unsigned free = 0; (!channel || channels_.count(*channel) > 0) && free <= UINT8_MAX;
       ++free) {
    channel = static_cast<std::uint8_t>(free);
  }
  return channels_.insert(*channel).second ? channel : std::nullopt;
}

std::optional<std::size_t> BusGroupKinds::indexOf(const BusFrame& frame) {
  if (last_ < kinds_.size() && kinds_[last_].holds(frame)) {
    return last_;
  }
  const auto known = std::find_if(kinds_.begin(), kinds_.end(),
                                  [&](const BusGroupKind& each) { return each.holds(frame); });
  last_ = static_cast<std::size_t>(known - kinds_.begin());
  if (known == kinds_.end()) {
    const auto channel = channelOf(frame.bus);
    if (!channel) {
      return std::nullopt;
    }
    kinds_.push_back({std::string(frame.bus), *channel, frame.kind, frame.is_fd});
  }
  return last_;
}

}  // namespace mdf_tools
