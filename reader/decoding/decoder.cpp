#include "decoder.h"

#include <algorithm>
#include <set>

namespace mdf_reader {

namespace {

bool isDecodable(const BusFrame& frame) { return frame.kind == BusFrame::Kind::data; }

/// Messages that there are on several buses: the names of their groups have the bus in them.
std::set<const BusMessage*> onSeveralBuses(const std::vector<IdFrames>& ids) {
  std::map<const BusMessage*, std::string_view> buses;
  std::set<const BusMessage*> several;
  for (const IdFrames& each : ids) {
    if (buses.try_emplace(each.found.message, each.bus).first->second != each.bus) {
      several.insert(each.found.message);
    }
  }
  return several;
}

}  // namespace

/// The number of a bus and the identifier.
std::uint64_t Decoder::keyOf(const BusFrame& frame) {
  if (frame.bus != last_bus_.first || buses_.empty()) {
    auto bus = buses_.find(frame.bus);
    if (bus == buses_.end()) {
      if (buses_.size() >= most_ids) {
        return UINT64_MAX;
      }
      bus = buses_.emplace(frame.bus, buses_.size()).first;
    }
    last_bus_ = {bus->first, bus->second};
  }
  constexpr unsigned bits_of_id = 30;
  return (last_bus_.second << bits_of_id) | (frame.is_extended ? std::uint64_t{1} << 29U : 0) |
         frame.id;
}

std::uint32_t Decoder::indexOf(std::uint64_t key) {
  constexpr std::uint64_t spread = 0x9E3779B97F4A7C15;
  Known& known = recent_[static_cast<std::size_t>((key * spread) >> 52U)];
  if (known.key != key) {
    const auto found = indices_.find(key);
    if (found == indices_.end()) {
      return none;
    }
    known = {key, found->second};
  }
  return known.index;
}

std::uint32_t Decoder::add(const BusFrame& frame, std::uint64_t key) {
  if (key == UINT64_MAX || ids_.size() >= most_ids) {
    return none;
  }
  const auto index = static_cast<std::uint32_t>(ids_.size());
  indices_[key] = index;
  ids_.push_back({last_bus_.first, frame.id, frame.is_extended, 0, frame.data.size(),
                  lookup_.find(frame.bus, frame.id, frame.is_extended)});
  return index;
}

std::uint32_t Decoder::count(const BusFrame& frame) {
  if (!isDecodable(frame)) {
    ++other_frames_;
    return none;
  }
  const std::uint64_t key = keyOf(frame);
  std::uint32_t index = indexOf(key);
  index = index == none ? add(frame, key) : index;
  if (index == none) {
    ++more_frames_;
    return none;
  }
  IdFrames& id = ids_[index];
  ++id.frames;
  id.least_bytes = std::min(id.least_bytes, frame.data.size());
  return id.found.message == nullptr ? none : index;
}

void Decoder::plan(mdf_writer::Plan& plan) {
  const std::set<const BusMessage*> several = onSeveralBuses(ids_);
  std::vector<MessageFrames> messages;
  std::map<std::pair<const BusMessage*, std::string_view>, std::size_t> places;
  for (const IdFrames& id : ids_) {
    const BusMessage* const message = id.found.message;
    if (message == nullptr) {
      continue;
    }
    const auto [place, is_new] = places.try_emplace({message, id.bus}, messages.size());
    if (is_new) {
      const std::string bus(id.bus);
      messages.push_back({message,
                          several.count(message) > 0 ? message->name + ' ' + bus : message->name,
                          bus, id.least_bytes, id.found.is_j1939});
    }
    MessageFrames& frames = messages[place->second];
    frames.least_bytes = std::min(frames.least_bytes, id.least_bytes);
  }
  for (const MessageFrames& frames : messages) {
    groups_.push_back(std::make_unique<MessageGroup>(plan, frames));
  }
  for (const IdFrames& id : ids_) {
    const auto place = places.find({id.found.message, id.bus});
    groups_of_ids_.push_back(place == places.end() ? nullptr : groups_[place->second].get());
  }
}

std::uint32_t Decoder::find(const BusFrame& frame) {
  const std::uint32_t index = isDecodable(frame) ? indexOf(keyOf(frame)) : none;
  return index == none || ids_[index].found.message == nullptr ? none : index;
}

bool Decoder::record(std::uint32_t id, std::string_view data, double time,
                     mdf_writer::Recording& recording) {
  MessageGroup& group = *groups_of_ids_[id];
  return recording.appendBytes(group.group(), group.record(ids_[id].id, data, time));
}

}  // namespace mdf_reader
