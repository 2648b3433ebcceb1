#ifndef MDF_READER_COLUMNS_NUMBER_LOADER_H_
#define MDF_READER_COLUMNS_NUMBER_LOADER_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "../data/record_span.h"
#include "../values/raw_type.h"
#include "column_data.h"

namespace mdf_reader {

/// The type of a column that holds such values as they are. Integers of more than 64 bits and reals
/// of unusual widths are bytes.
ColumnType columnTypeOf(const RawType& type);

/// Loads the numbers of a channel from records. How they are stored is looked at once.
class NumberLoader {
 public:
  /// @param type one whose column has numbers.
  /// @param wanted the type of numbers to make of them: that of the column, a wider one, or double.
  NumberLoader(const RawType& type, ColumnType wanted);

  /// Loads the number at a place of each record.
  /// @param to room for as many numbers of the wanted type.
  void load(const RecordSpan& records, std::size_t begin, void* to) const {
    load_(*this, records, begin, to);
  }

 private:
  friend struct Loading;
  using Load = void (*)(const NumberLoader&, const RecordSpan&, std::size_t begin, void* to);
  using Gather = void (*)(const NumberLoader&, const RecordSpan&, std::size_t begin,
                          std::uint64_t* bits);

  Load load_;
  Gather gather_;
  std::size_t bytes_ = 0;  ///< that the number lies in
  unsigned shift_ = 0;     ///< bits below the number
  unsigned unused_ = 0;    ///< bits above it in 64
};

/// The number in some bytes: fewer than the type has are the first of them, the others are 0.
template <class Number>
Number numberIn(const RawType& type, std::string_view bytes) {
  constexpr std::size_t most_bytes = 9;
  char padded[most_bytes] = {};
  const auto size = static_cast<std::size_t>(type.bytes());
  const bool pads_in_front = type.isBigEndian() && bytes.size() < size;
  bytes.copy(padded + (pads_in_front ? size - bytes.size() : 0), size);
  Number number;
  NumberLoader(type, typeOf<Number>()).load(oneRecord({padded, size}, 0), 0, &number);
  return number;
}

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_NUMBER_LOADER_H_
