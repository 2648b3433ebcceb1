#ifndef MDF_READER_MEASUREMENT_ROW_H_
#define MDF_READER_MEASUREMENT_ROW_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "../model/description.h"
#include "../values/value.h"

namespace mdf_reader {

class Table;
struct Sample;

/// A record of a channel group, with the values of its chosen channels: the master channel's first,
/// where there is one. It lasts as long as the visit.
class Row {
 public:
  Row(Table& table, const Sample& sample) : table_(table), sample_(sample) {}

  const ChannelGroup& group() const;
  /// The record's number in its group, from 0 on.
  std::uint64_t number() const;
  /// How many values there are.
  std::size_t size() const;

  /// The name of a column, and its unit, "" for none.
  const std::string& name(std::size_t column) const;
  const std::string& unit(std::size_t column) const;

  /// The physical value, or the raw one if that was chosen. Without one where the record says that
  /// it is invalid, or the file lacks it.
  Value value(std::size_t column) const;
  /// The value as a number, NaN where it is none.
  double real(std::size_t column) const;
  /// The value as it is printed: the shortest digits that read back to the same number, text as it
  /// is, two hexadecimal digits for each byte; "" for none.
  std::string text(std::size_t column) const;

 private:
  Table& table_;
  const Sample& sample_;
};

}  // namespace mdf_reader

#endif  // MDF_READER_MEASUREMENT_ROW_H_
