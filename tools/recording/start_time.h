#ifndef MDF_TOOLS_RECORDING_START_TIME_H_
#define MDF_TOOLS_RECORDING_START_TIME_H_

#include <chrono>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// When a recording started, as header and file history blocks say it.
struct StartTime {
  mdf_v4_10::UINT64 nanoseconds;  ///< since 1970-01-01 UTC
  mdf_v4_10::INT16 zone_minutes;  ///< offset of the machine's time zone without daylight saving
  bool daylight_saving;           ///< an hour on top of the offset
};

StartTime startTime(std::chrono::system_clock::time_point time);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_START_TIME_H_
