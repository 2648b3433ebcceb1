#ifndef MDF_TOOLS_BUS_LOGGED_FRAME_H_
#define MDF_TOOLS_BUS_LOGGED_FRAME_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "reader/bus/bus_frame.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The last second since 1970 that a frame may come in, before the year 2261: 64 bits of
/// nanoseconds hold little more.
inline constexpr std::int64_t last_log_second = 9'183'110'399;

/// A frame as a log has it. Its texts belong to what it was read by.
struct LoggedFrame {
  std::int64_t nanoseconds = 0;  ///< since 1970
  BusFrame frame;                ///< without a time
};

/// Why a line or a packet is no frame. Those after it may be.
struct UnfitFrame {
  std::size_t column;  ///< of a line, from 1 on; 0 for no line
  std::string sentence;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_BUS_LOGGED_FRAME_H_
