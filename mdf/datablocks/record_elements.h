#ifndef MDF_DATABLOCKS_RECORD_ELEMENTS_H_
#define MDF_DATABLOCKS_RECORD_ELEMENTS_H_

#include <cstdint>
#include <iosfwd>

#include "../framework/export.h"

/// Elements for composing the bytes of records before they are put into a data block. They are no
/// blocks of the format. Each writes its bytes packed and little-endian.
namespace mdf_v4_10 {

/// An 8-bit record id and a 32-bit time stamp: 5 bytes.
class MDF_EXPORT IDTSDATABLOCK {
 public:
  IDTSDATABLOCK(std::uint8_t _id, std::uint32_t _timestamp) : id(_id), timestamp(_timestamp) {}

  std::uint8_t id;
  std::uint32_t timestamp;
};

/// A 16-bit record id and a 64-bit time stamp: 10 bytes.
class MDF_EXPORT IDTSDATABLOCK64 {
 public:
  IDTSDATABLOCK64(std::uint16_t _id, std::uint64_t _timestamp) : id(_id), timestamp(_timestamp) {}

  std::uint16_t id;
  std::uint64_t timestamp;
};

/// The `valsize` low bytes of a value; at most 8 are written.
class MDF_EXPORT VALUEDATABLOCK {
 public:
  VALUEDATABLOCK(std::uint64_t _value, std::uint32_t _valsize) : value(_value), valsize(_valsize) {}

  std::uint64_t value;
  std::uint32_t valsize;
};

MDF_EXPORT std::ostream& operator<<(std::ostream& os, const IDTSDATABLOCK& element);
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const IDTSDATABLOCK64& element);
MDF_EXPORT std::ostream& operator<<(std::ostream& os, const VALUEDATABLOCK& element);

}  // namespace mdf_v4_10

#endif  // MDF_DATABLOCKS_RECORD_ELEMENTS_H_
