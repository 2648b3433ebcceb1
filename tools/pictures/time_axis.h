#ifndef MDF_TOOLS_PICTURES_TIME_AXIS_H_
#define MDF_TOOLS_PICTURES_TIME_AXIS_H_

#include <cstddef>
#include <optional>
#include <string>

namespace mdf_reader {
struct Header;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// What the clock at the place of recording shows.
struct WallClock {
  double start = 0;  ///< at the beginning of the measurement, in seconds after that of 1970
  std::string zone;  ///< "UTC+02:00", "UTC", or "local time"
};

/// The clock of a measurement; nothing where it does not say when it was begun.
std::optional<WallClock> wallClockOf(const Header& header);

/// How the ticks of an axis of dates stand.
struct TimeTicks {
  double first = 0;
  double step = 1;     ///< seconds
  std::string format;  ///< as strftime() has it, and "%.3S" for seconds with three decimal places
  std::string dates;   ///< the day of the axis, or its first and its last one
};

/// Ticks at round times of the day.
/// @param from, to seconds after the beginning of 1970.
/// @param most so many ticks at most, or one more.
TimeTicks timeTicks(double from, double to, std::size_t most);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PICTURES_TIME_AXIS_H_
