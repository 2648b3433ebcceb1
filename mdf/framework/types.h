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

}  // namespace mdf_v4_10

#endif  // MDF_FRAMEWORK_TYPES_H_
