#ifndef MDF_TOOLS_IMPORTING_COLUMN_FACTS_H_
#define MDF_TOOLS_IMPORTING_COLUMN_FACTS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "number_scan.h"
#include "table_source.h"

namespace mdf_tools {

enum class ValueType {
  uint8,
  uint16,
  uint32,
  uint64,
  int8,
  int16,
  int32,
  int64,
  float32,
  float64,
  text
};

/// "float32"; nothing for other words.
std::optional<ValueType> valueTypeOf(std::string_view name);

/// What a column's cells are, as far as they were looked at, and the type that holds all of them.
struct ColumnFacts {
  std::optional<ValueType> stated;
  bool has_missing = false;
  bool has_text = false;
  bool has_real = false;
  bool has_integer = false;
  std::uint64_t greatest = 0;    ///< of the integers that are not negative
  std::uint64_t below_zero = 0;  ///< the magnitude of the least one
  std::size_t longest = 0;       ///< bytes of the longest text, of numbers, too

  void add(const Cell& cell) {
    using Kind = ScannedNumber::Kind;
    longest = std::max(longest, cell.text.size());
    if (cell.kind == Cell::Kind::missing) {
      has_missing = true;
    } else if (cell.number.kind == Kind::integer) {
      has_integer = true;
      std::uint64_t& most = cell.number.is_negative ? below_zero : greatest;
      most = std::max(most, cell.number.magnitude);
    } else {
      (cell.number.kind == Kind::real ? has_real : has_text) = true;
    }
  }

  ValueType type() const;
};

/// The integers that a type of integers holds.
struct IntegerRange {
  std::uint64_t below_zero = 0;  ///< magnitude of the least
  std::uint64_t greatest = 0;

  bool has(const ScannedNumber& number) const {
    return number.kind == ScannedNumber::Kind::integer &&
           number.magnitude <= (number.is_negative ? below_zero : greatest);
  }
};

IntegerRange rangeOf(ValueType type);

/// Whether a column of a type can have a cell, which is not missing.
bool canHold(ValueType type, const Cell& cell);

/// "expected float32, found "abc"".
std::string faultOf(ValueType type, const Cell& cell);

/// A cell's text for people: in quotes, and not longer than a line.
std::string shownText(std::string_view text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_COLUMN_FACTS_H_
