#include "column_facts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "mdf_writer/mdf_writer.h"
#include "reader/bytes/printable.h"

namespace mdf_tools {

namespace {

using Kind = ScannedNumber::Kind;

/// A type, and the magnitudes of the least and the greatest integer that it holds.
struct TypeRow {
  std::string_view name;
  ValueType type;
  IntegerRange range;
};

/// In the order in which they are chosen, signed ones after the unsigned ones.
constexpr std::array<TypeRow, 11> types = {{
    {"uint8", ValueType::uint8, {0, UINT8_MAX}},
    {"uint16", ValueType::uint16, {0, UINT16_MAX}},
    {"uint32", ValueType::uint32, {0, UINT32_MAX}},
    {"uint64", ValueType::uint64, {0, UINT64_MAX}},
    {"int8", ValueType::int8, {std::uint64_t{1} << 7U, INT8_MAX}},
    {"int16", ValueType::int16, {std::uint64_t{1} << 15U, INT16_MAX}},
    {"int32", ValueType::int32, {std::uint64_t{1} << 31U, INT32_MAX}},
    {"int64", ValueType::int64, {std::uint64_t{1} << 63U, INT64_MAX}},
    {"float32", ValueType::float32, {}},
    {"float64", ValueType::float64, {}},
    {"text", ValueType::text, {}},
}};

}  // namespace

std::optional<ValueType> valueTypeOf(std::string_view name) {
  const auto* const found = std::find_if(types.begin(), types.end(),
                                         [&](const TypeRow& row) { return row.name == name; });
  return found == types.end() ? std::nullopt : std::optional(found->type);
}

ValueType ColumnFacts::type() const {
  if (stated) {
    return *stated;
  }
  if (has_text) {
    return ValueType::text;
  }
  const auto* const found = std::find_if(types.begin(), types.end(), [&](const TypeRow& row) {
    return below_zero <= row.range.below_zero && greatest <= row.range.greatest;
  });
  const bool is_integer = has_integer && !has_real && found != types.end();
  return is_integer ? found->type : ValueType::float64;
}

IntegerRange rangeOf(ValueType type) { return types[static_cast<std::size_t>(type)].range; }

bool canHold(ValueType type, const Cell& cell) {
  switch (type) {
    case ValueType::text:
      return cell.number.kind != Kind::none || mdf_writer::isUtf8(cell.text);
    case ValueType::float64:
      return cell.number.kind != Kind::none;
    case ValueType::float32: {
      constexpr double most = std::numeric_limits<float>::max();
      const double real = cell.real();
      return cell.number.kind != Kind::none && !(std::isfinite(real) && std::abs(real) > most);
    }
    default:
      return rangeOf(type).has(cell.number);
  }
}

std::string faultOf(ValueType type, const Cell& cell) {
  const bool is_text = type == ValueType::text;
  return "expected " +
         (is_text ? "text in UTF-8 without control characters"
                  : std::string(types[static_cast<std::size_t>(type)].name)) +
         ", found " + shownText(cell.text);
}

std::string shownText(std::string_view text) {
  constexpr std::size_t most = 60;
  return '"' + mdf_reader::printable(text, mdf_reader::Harmless::utf8, most) + '"';
}

}  // namespace mdf_tools
