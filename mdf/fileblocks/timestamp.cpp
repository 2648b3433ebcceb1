#include "timestamp.h"

#include <cstdint>
#include <limits>

namespace mdf_v4_10::detail {

void storeCalendarTime(const std::tm& calendar_time, UINT64& stamp, INT16& dst_offset_min) {
  using Seconds = std::numeric_limits<std::int32_t>;
  std::tm normalised = calendar_time;
  std::time_t seconds = std::mktime(&normalised);
  if (seconds < Seconds::min() || seconds > Seconds::max()) {
    // A 32-bit mktime fails here and leaves the calendar time as it was.
    seconds = -1;
    normalised = calendar_time;
  }
  stamp = static_cast<UINT64>(static_cast<INT64>(seconds));
  dst_offset_min = dstOffset(normalised.tm_isdst != 0);
}

void loadCalendarTime(UINT64 stamp, INT16 dst_offset_min, std::tm& calendar_time) {
  const std::time_t seconds = static_cast<std::int32_t>(static_cast<UINT32>(stamp));
  // Every 32-bit count of seconds has a calendar time.
  calendar_time = *std::localtime(&seconds);
  if (dst_offset_min != 0) {
    calendar_time.tm_isdst = 1;
  }
}

}  // namespace mdf_v4_10::detail
