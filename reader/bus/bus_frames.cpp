#include "bus_frames.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace mdf_reader {

namespace {

Query queryOf(std::optional<double> from, std::optional<double> to) {
  Query query;
  query.channels = {FrameTable::channel_pattern};
  query.numbers = true;
  query.from = from;
  query.to = to;
  return query;
}

std::string labelOf(const ChannelGroup& group) {
  const std::string number = "channel group " + std::to_string(group.index);
  return group.shownName().empty() ? number : number + " \"" + printable(group.shownName()) + '"';
}

std::string counted(std::uint64_t count, const std::string& one, const std::string& several) {
  return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

}  // namespace

BusFrames::BusFrames(InputFile& file, std::optional<double> from, std::optional<double> to,
                     const FindingSink& report, const NoteSink& note)
    : from_(from),
      to_(to),
      note_(note),
      query_(queryOf(from, to)),
      tables_(file, query_, report, note_) {
  noteOtherEvents(addGroups());
}

/// Returns the offsets of the channel groups whose columns are called as those of frames are.
std::set<std::uint64_t> BusFrames::addGroups() {
  std::set<std::uint64_t> known;
  for (std::unique_ptr<Table>& table : tables_.all(nullptr)) {
    auto frames = std::make_unique<FrameTable>(std::move(table));
    if (frames->holdsFrames()) {
      known.insert(frames->group().offset);
    }
    if (frames->isUsable()) {
      groups_.push_back(std::move(frames));
    } else if (frames->holdsFrames()) {
      note_(labelOf(frames->group()) +
            " has frames without times or without identifiers, which are left out");
    }
  }
  return known;
}

/// Groups that say that they hold events of a bus, of kinds that this list has not.
void BusFrames::noteOtherEvents(const std::set<std::uint64_t>& known) {
  for (const DataGroup& data_group : tables_.dataGroups()) {
    for (const ChannelGroup& group : data_group.groups) {
      const bool is_bus_event = (group.flags & ChannelGroup::is_bus_event) != 0;
      if (is_bus_event && !group.holdsVariableLength() && known.count(group.offset) == 0) {
        note_(labelOf(group) + " has events of a bus that are no frames of CAN or LIN, " +
              "which are left out");
      }
    }
  }
}

bool BusFrames::isInRange(const BusFrame& frame) const {
  return (!from_ || frame.time >= *from_) && (!to_ || frame.time <= *to_);
}

/// Where times are the same, frames are in the order of the log that they came from, else groups in
/// the order of the file.
bool BusFrames::isLater(std::size_t left, std::size_t right) const {
  const BusFrame& one = groups_[left]->frame();
  const BusFrame& other = groups_[right]->frame();
  if (one.time != other.time) {
    return one.time > other.time;
  }
  if (one.number && other.number && *one.number != *other.number) {
    constexpr unsigned half = 0x8000;
    return static_cast<std::uint16_t>(*one.number - *other.number) < half;
  }
  return left > right;
}

/// Goes on to a group's next frame; false after its last one.
bool BusFrames::goOn(std::size_t group) {
  while (groups_[group]->next()) {
    if (isInRange(groups_[group]->frame())) {
      return true;
    }
  }
  return false;
}

/// Puts a group at its place by its next frame, if it has one.
void BusFrames::push(std::size_t group) {
  if (goOn(group)) {
    heap_.push_back(group);
    std::push_heap(heap_.begin(), heap_.end(),
                   [this](std::size_t left, std::size_t right) { return isLater(left, right); });
  }
}

const BusFrame* BusFrames::next() {
  if (!has_begun_) {
    has_begun_ = true;
    for (std::size_t group = 0; group < groups_.size(); ++group) {
      push(group);
    }
  } else if (last_ && heap_.empty() && goOn(*last_)) {
    return &groups_[*last_]->frame();
  } else if (last_ && !heap_.empty()) {
    push(*last_);
  }
  last_.reset();
  if (heap_.empty()) {
    noteLeftOut();
    return nullptr;
  }
  std::pop_heap(heap_.begin(), heap_.end(),
                [this](std::size_t left, std::size_t right) { return isLater(left, right); });
  last_ = heap_.back();
  heap_.pop_back();
  return &groups_[*last_]->frame();
}

void BusFrames::noteLeftOut() {
  for (const auto& each : groups_) {
    if (each->leftOut() > 0) {
      note_(labelOf(each->group()) + ": " + counted(each->leftOut(), "record", "records") +
            " without a valid time or identifier " + (each->leftOut() == 1 ? "is" : "are") +
            " left out");
    }
    if (each->backwards() > 0) {
      note_(labelOf(each->group()) + ": " + counted(each->backwards(), "frame is", "frames are") +
            " before the one before; they stay in the order of the file");
    }
    if (each->shortened() > 0) {
      note_(labelOf(each->group()) + ": " + counted(each->shortened(), "frame has", "frames have") +
            " fewer bytes of data than stated");
    }
  }
}

}  // namespace mdf_reader
