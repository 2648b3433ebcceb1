#ifndef MDF_FILEBLOCKS_TIMESTAMP_H_
#define MDF_FILEBLOCKS_TIMESTAMP_H_

#include <ctime>

#include "../framework/types.h"

/// Calendar time to stored time and back, for the blocks that carry a time stamp. The C library's
/// local-time functions are used and follow the process's time zone; they must not run on several
/// threads at once.
namespace mdf_v4_10::detail {

/// The time flag that says that time-zone and daylight-saving offset are valid; with the local-time
/// flag clear the stamp is UTC.
inline constexpr UINT8 time_offsets_valid = 2;

/// Minutes that daylight saving moves the clock.
constexpr INT16 dstOffset(bool is_dst) { return is_dst ? 60 : 0; }

/// Stores a local calendar time as seconds since 1970-01-01 00:00:00 UTC, whatever unit the fields'
/// names speak of, and whether daylight saving is in force. Stored times are signed 32-bit seconds
/// on every platform; a time that does not fit, or is none, stores -1.
void storeCalendarTime(const std::tm& calendar_time, UINT64& stamp, INT16& dst_offset_min);

/// Reads the low 32 bits of the stamp as such seconds and fills in the local calendar time.
void loadCalendarTime(UINT64 stamp, INT16 dst_offset_min, std::tm& calendar_time);

}  // namespace mdf_v4_10::detail

#endif  // MDF_FILEBLOCKS_TIMESTAMP_H_
