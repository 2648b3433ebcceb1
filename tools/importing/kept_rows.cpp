#include "kept_rows.h"

#include <cstdint>
#include <cstring>

namespace mdf_tools {

namespace {

/// A cell begins with a byte: how many decimals its digits have, or what else it is; then its sign,
/// and whether eight bytes follow in place of four.
enum Code : unsigned { most_decimals = 18, integer, real, text, missing };
constexpr unsigned code_bits = 5;
constexpr unsigned negative = 1U << code_bits;
constexpr unsigned wide = negative << 1U;

template <class T>
char* put(char* at, T value) {
  std::memcpy(at, &value, sizeof value);
  return at + sizeof value;
}

template <class T>
const char* get(const char* at, T& value) {
  std::memcpy(&value, at, sizeof value);
  return at + sizeof value;
}

char* put(char* at, unsigned tag, std::uint64_t value) {
  const auto narrow = static_cast<std::uint32_t>(value);
  const bool is_wide = narrow != value;
  at = put(at, static_cast<unsigned char>(tag | (is_wide ? wide : 0)));
  return is_wide ? put(at, value) : put(at, narrow);
}

char* putNumber(char* at, const Cell& cell, bool with_digits) {
  const ScannedNumber& number = cell.number;
  const unsigned sign = number.is_negative ? negative : 0;
  if (number.kind == ScannedNumber::Kind::integer) {
    return put(at, integer | sign, number.magnitude);
  }
  if (with_digits && number.is_plain && number.magnitude <= most_exact) {
    return put(at, static_cast<unsigned>(number.decimals) | sign, number.magnitude);
  }
  const double value = cell.real();
  return put(put(at, static_cast<unsigned char>(real | wide)), value);
}

const char* getValue(const char* at, unsigned tag, std::uint64_t& value) {
  if ((tag & wide) != 0) {
    return get(at, value);
  }
  std::uint32_t narrow = 0;
  at = get(at, narrow);
  value = narrow;
  return at;
}

ScannedNumber numberOf(unsigned tag, std::uint64_t value) {
  const unsigned code = tag & (negative - 1);
  ScannedNumber number;
  number.kind = code == integer ? ScannedNumber::Kind::integer : ScannedNumber::Kind::real;
  number.is_negative = (tag & negative) != 0;
  number.is_plain = code != real;
  number.has_real = code == real;
  number.decimals = code <= most_decimals ? static_cast<std::int16_t>(code) : std::int16_t{0};
  number.magnitude = value;
  return number;
}

}  // namespace

bool KeptRows::add(const std::vector<Cell>& cells, std::size_t with_digits) {
  std::size_t most = cells.size() * (1 + sizeof(std::uint64_t));
  for (const Cell& cell : cells) {
    most += cell.text.size();
  }
  if (most > most_bytes_ - size_) {
    return false;
  }
  char* at = bytes_.get() + size_;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const Cell& cell = cells[i];
    if (cell.number.kind != ScannedNumber::Kind::none) {
      at = putNumber(at, cell, i == with_digits);
    } else if (cell.kind == Cell::Kind::missing) {
      at = put(at, static_cast<unsigned char>(missing));
    } else {
      at = put(at, text, cell.text.size());
      std::memcpy(at, cell.text.data(), cell.text.size());
      at += cell.text.size();
    }
  }
  size_ = static_cast<std::size_t>(at - bytes_.get());
  return true;
}

std::size_t KeptRows::take(std::size_t offset, std::vector<Cell>& cells) const {
  const char* at = bytes_.get() + offset;
  for (Cell& cell : cells) {
    unsigned char tag = 0;
    at = get(at, tag);
    cell = {};
    const unsigned code = tag & (negative - 1);
    if (code == missing) {
      continue;
    }
    cell.kind = Cell::Kind::plain;
    std::uint64_t value = 0;
    at = getValue(at, tag, value);
    if (code == text) {
      cell.text = {at, static_cast<std::size_t>(value)};
      at += cell.text.size();
    } else {
      cell.number = numberOf(tag, value);
    }
  }
  return static_cast<std::size_t>(at - bytes_.get());
}

}  // namespace mdf_tools
