#ifndef MDF_WRITER_PLAN_CHANNEL_PLAN_H_
#define MDF_WRITER_PLAN_CHANNEL_PLAN_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "../../mdf/mdf_v4_10.h"
#include "conversion.h"

namespace mdf_writer {

/// Where values come from. One without name and path is not stated.
struct Source {
  std::string name;  ///< such as that of a control unit
  std::string path;  ///< such as the bus it is on
  std::string comment;
  mdf_v4_10::SIBLOCK::MDF_SI_SOURCETYPE_t type = mdf_v4_10::SIBLOCK::SI_SOURCETYPE_OTHER;
  mdf_v4_10::SIBLOCK::MDF_SI_BUSTYPE_t bus = mdf_v4_10::SIBLOCK::SI_BUSTYPE_NONE;
  bool is_simulated = false;

  bool isUtf8() const;
};

/// The smallest and the largest of some values.
struct Range {
  double least;
  double greatest;
};

/// What a file says of a channel besides its name, its type and its place.
struct ChannelNotes {
  std::string unit;
  std::string comment;
  Source source;
  std::optional<Range> range;             ///< stored values that occur
  std::optional<Range> limits;            ///< physical values that are normal
  std::optional<Range> extended_limits;   ///< physical values that are possible
  std::optional<std::uint8_t> precision;  ///< decimal places to show
  bool is_discrete = false;               ///< nothing lies between two values
};

/// Everything that a file says of a channel.
struct ChannelPlan : ChannelNotes {
  using DataType = mdf_v4_10::CNBLOCK::MDF_CN_DATATYPES_t;
  using Master = mdf_v4_10::CNBLOCK::MDF_CN_SYNCTYPE_t;

  std::string name;
  DataType type = mdf_v4_10::CNBLOCK::CN_DATATYPE_UINT_LE;
  std::uint32_t byte_offset = 0;          ///< in the record
  std::uint8_t bit_offset = 0;            ///< in its first byte, 0 to 7
  std::uint32_t bits = 0;                 ///< of one value
  std::vector<std::uint32_t> dimensions;  ///< of an array, the outermost first; else empty
  bool has_variable_length = false;  ///< the record holds 64 bits of offset; the value is apart
  Master master = mdf_v4_10::CNBLOCK::CN_SYNCTYPE_NONE;  ///< what it is the master of, if anything
  std::optional<std::uint32_t> invalidation_bit;         ///< which one says that a value is invalid
  std::optional<std::uint32_t> first_member;  ///< of a structure: the channels from here to it
  bool is_bus_event = false;                  ///< its values are events of a bus, such as frames
  Conversion conversion;

  /// Elements of an array; 1 where it is none.
  std::uint64_t elements() const;

  /// Bits in each record, of all elements.
  std::uint64_t recordBits() const { return elements() * bits; }

  /// Whether the number of the record is the value, which takes no bits.
  bool isVirtual() const;

  bool isText() const;
  bool isFloat() const;
  bool isInteger() const;

  /// What is wrong with it by itself, as a sentence that begins with "channel"; empty for nothing.
  std::string fault() const;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_PLAN_CHANNEL_PLAN_H_
