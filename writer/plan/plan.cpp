#include "plan.h"

#include <time.h>  // localtime_r

#include <chrono>
#include <utility>

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
  return "";
}

}  // namespace mdf_writer
