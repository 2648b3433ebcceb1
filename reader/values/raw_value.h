#ifndef MDF_READER_VALUES_RAW_VALUE_H_
#define MDF_READER_VALUES_RAW_VALUE_H_

#include <cstdint>
#include <string_view>

#include "../model/description.h"
#include "value.h"

namespace mdf_reader {

/// How a channel's values are stored. The two complex types came with version 4.2.
struct RawType {
  enum Complex : unsigned { complex_le = 15, complex_be = 16 };

  unsigned data_type = 0;  ///< a Channel::DataType, or one of the above
  unsigned bit_offset = 0;
  std::uint64_t bit_count = 0;

  /// Bytes that hold a value.
  std::uint64_t bytes() const { return (bit_offset + bit_count + 7) / 8; }

  /// Whether values are integers, reals or complex numbers.
  bool isNumber() const {
    return data_type <= Channel::real_be || data_type == complex_le || data_type == complex_be;
  }
  bool isKnown() const { return data_type <= complex_be; }
};

/// The value in the bytes that RawType::bytes() speaks of. Integers of more than 64 bits and reals
/// of unusual widths come as bytes.
Value rawValue(const RawType& type, std::string_view bytes);

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_RAW_VALUE_H_
