#include "plan.h"

#include <time.h>  // localtime_r

#include <chrono>
#include <utility>

#include "texts.h"

namespace mdf_writer {

Moment now() {
  using std::chrono::duration_cast;
  const auto time = std::chrono::system_clock::now();
  const auto since_1970 = duration_cast<std::chrono::nanoseconds>(time.time_since_epoch());
  Moment moment;
  moment.nanoseconds = static_cast<std::uint64_t>(since_1970.count());
  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm local{};
  if (localtime_r(&seconds, &local) != nullptr) {
    moment.is_daylight_saving = local.tm_isdst > 0;
    const long minutes = local.tm_gmtoff / 60 - (moment.is_daylight_saving ? 60 : 0);
    moment.zone_minutes = static_cast<std::int16_t>(minutes);
  }
  return moment;
}

Group& Plan::addGroup(std::string name, Group::Order order) {
  Group& group = groups_.emplace_back(std::move(name), order);
  group.index_ = groups_.size() - 1;
  group.plan_ = this;
  return group;
}

std::string Plan::fault() const {
  for (const Group& group : groups_) {
    std::string fault = group.fault();
    if (!fault.empty()) {
      return fault;
    }
  }
  for (const Attachment& attachment : attachments) {
    std::string fault = attachment.fault();
    if (!fault.empty()) {
      return fault;
    }
  }
  return faultOf(hierarchy);
}

std::string Plan::faultOf(const std::vector<HierarchyEntry>& entries) const {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const bool is_last = i + 1 == entries.size();
    std::string fault = faultOf(entries[i], is_last ? nullptr : &entries[i + 1]);
    if (fault.empty()) {
      fault = faultOf(entries[i].entries);
    }
    if (!fault.empty()) {
      return fault;
    }
  }
  return "";
}

/// The block knows what may stand where: it takes a link only if that may be.
std::string Plan::faultOf(const HierarchyEntry& entry, const HierarchyEntry* next) const {
  using mdf_v4_10::CHBLOCK;
  constexpr mdf_v4_10::LINK any = 8;
  CHBLOCK block(entry.type);
  block.setTXNameBlock(any);
  block.setFirstCHBlock(any);
  if (!isUtf8(entry.name) || !isUtf8(entry.comment) ||
      (block.getTXNameBlock() == 0) != entry.name.empty()) {
    return "an entry of the hierarchy lacks its name, has one that it may not have, or a text that "
           "is not UTF-8";
  }
  const std::string who = "entry \"" + entry.name + "\" of the hierarchy ";
  if (block.getFirstCHBlock() == 0 && !entry.entries.empty()) {
    return who + "may have none below it";
  }
  if (entry.type == CHBLOCK::CH_TYPE_FUNCTION && !entry.channels.empty()) {
    return who + "is a function, which has channels in the entries below it";
  }
  if (next != nullptr) {
    block.setNextCHBlock(any, next->type);
    if (block.getNextCHBlock() == 0) {
      return who + "may not stand before one of the next one's type";
    }
  }
  for (const ChannelRef& channel : entry.channels) {
    if (channel.group == nullptr || channel.group->plan_ != this) {
      return who + "has a channel of another plan";
    }
  }
  return "";
}

}  // namespace mdf_writer
