#ifndef MDF_FRAMEWORK_TYPES_H_
#define MDF_FRAMEWORK_TYPES_H_

#include <cstddef>
#include <cstdint>

namespace mdf_v4_10 {

using UINT8 = std::uint8_t;
using UINT16 = std::uint16_t;
using UINT32 = std::uint32_t;
using UINT64 = std::uint64_t;
using INT16 = std::int16_t;
using INT64 = std::int64_t;

/// IEEE 754 double.
using REAL = double;
static_assert(sizeof(REAL) == 8, "REAL is the format's 64-bit floating-point number");

/// Absolute file offset of a block; 0 is the nil link.
using LINK = std::int64_t;

/// Bytes per row for callers who lay out a dump of data bytes in rows.
inline constexpr std::size_t HEXDUMP_DEFAULT_ROWSIZE = 16;

namespace detail {

/// Bytes or characters of a block that are no number. They are plain arrays, which memcpy, memcmp
/// and std::string(id_prog, 8) take as they are; a std::array would have to be asked for its data.
template <class Byte, std::size_t Count>
using Array = Byte[Count];

}  // namespace detail
}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_TYPES_H_
