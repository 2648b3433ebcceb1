#include "start_time.h"

#include <ctime>

namespace mdf_tools {

StartTime startTime(std::chrono::system_clock::time_point time) {
  using std::chrono::duration_cast;
  const auto since_1970 = duration_cast<std::chrono::nanoseconds>(time.time_since_epoch());
  StartTime start{static_cast<mdf_v4_10::UINT64>(since_1970.count()), 0, false};

  const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
  std::tm local{};
  if (localtime_r(&seconds, &local) != nullptr) {
    start.daylight_saving = local.tm_isdst > 0;
    const long minutes = local.tm_gmtoff / 60 - (start.daylight_saving ? 60 : 0);
    start.zone_minutes = static_cast<mdf_v4_10::INT16>(minutes);
  }
  return start;
}

}  // namespace mdf_tools
