#ifndef MDF_TOOLS_IMPORTING_ISO_TIME_H_
#define MDF_TOOLS_IMPORTING_ISO_TIME_H_

#include <cstdint>
#include <optional>
#include <string_view>

namespace mdf_tools {

/// A moment as ISO 8601 writes it.
struct IsoTime {
  std::int64_t nanoseconds = 0;  ///< since 1970, in UTC
  int zone_minutes = 0;          ///< of the zone that it states; without one it is taken as UTC
};

/// Reads "2024-05-17T13:45:12.345+02:00", with a blank in place of the T, up to nine decimals after
/// a point or a comma, and Z, an offset or nothing at its end. Years from 1970 to 2261.
std::optional<IsoTime> readIsoTime(std::string_view text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_ISO_TIME_H_
