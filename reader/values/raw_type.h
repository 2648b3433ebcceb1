#ifndef MDF_READER_VALUES_RAW_TYPE_H_
#define MDF_READER_VALUES_RAW_TYPE_H_

#include <cstdint>

#include "../model/description.h"

namespace mdf_reader {

/// How a channel's values are stored. The two complex types came with version 4.2.
struct RawType {
  enum Complex : unsigned { complex_le = 15, complex_be = 16 };

  unsigned data_type = 0;  ///< a Channel::DataType, or one of the above
  unsigned bit_offset = 0;
  std::uint64_t bit_count = 0;

  /// Bytes that hold a value.
  std::uint64_t bytes() const { return (bit_offset + bit_count + 7) / 8; }

  bool isKnown() const { return data_type <= complex_be; }
  bool isUnsigned() const { return data_type <= Channel::unsigned_be; }
  bool isSigned() const {
    return data_type == Channel::signed_le || data_type == Channel::signed_be;
  }
  bool isReal() const { return data_type == Channel::real_le || data_type == Channel::real_be; }
  bool isComplex() const { return data_type == complex_le || data_type == complex_be; }
  bool isText() const {
    return data_type >= Channel::string_latin1 && data_type <= Channel::string_utf16_be;
  }
  bool isDate() const {
    return data_type == Channel::canopen_date || data_type == Channel::canopen_time;
  }
  /// Whether values are integers, reals or complex numbers.
  bool isNumber() const { return data_type <= Channel::real_be || isComplex(); }
  bool isBigEndian() const {
    return data_type == Channel::unsigned_be || data_type == Channel::signed_be ||
           data_type == Channel::real_be || data_type == complex_be;
  }
};

}  // namespace mdf_reader

#endif  // MDF_READER_VALUES_RAW_TYPE_H_
