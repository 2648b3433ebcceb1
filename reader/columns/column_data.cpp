#include "column_data.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <numeric>

namespace mdf_reader {

namespace {

template <class Number>
void appendDigits(Number number, std::string& text) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.append(digits.data(), static_cast<std::size_t>(end - digits.data()));
}

}  // namespace

std::size_t widthOf(ColumnType type) {
  return withNumberType(type, [](auto zero) { return sizeof zero; });
}

void Buffer::reserve(std::size_t bytes) {
  constexpr std::size_t least = 64;
  if (bytes <= capacity_) {
    return;
  }
  capacity_ = std::max(least, bytes);
  std::unique_ptr<char[]> larger(new char[capacity_]);
  if (size_ > 0) {
    std::memcpy(larger.get(), bytes_.get(), size_);
  }
  bytes_ = std::move(larger);
}

double ColumnData::real(std::size_t row) const {
  if (!isNumber(type_) || !isValid(row)) {
    return std::numeric_limits<double>::quiet_NaN();
  }
  return withNumberType(
      type_, [&](auto zero) { return static_cast<double>(values<decltype(zero)>()[row]); });
}

std::vector<double> ColumnData::reals() const {
  if (!isNumber(type_)) {
    return std::vector<double>(rows_, std::numeric_limits<double>::quiet_NaN());
  }
  std::vector<double> numbers = withNumberType(type_, [&](auto zero) {
    const auto* const first = values<decltype(zero)>();
    return std::vector<double>(first, first + rows_);
  });
  for (std::size_t row = 0; null_count_ > 0 && row < rows_; ++row) {
    if (!isValid(row)) {
      numbers[row] = std::numeric_limits<double>::quiet_NaN();
    }
  }
  return numbers;
}

void ColumnData::print(std::size_t row, std::string& text) const {
  if (!isValid(row)) {
    return;
  }
  if (type_ == ColumnType::text) {
    text += this->text(row);
  } else if (type_ == ColumnType::bytes) {
    printBytes(this->text(row), text);
  } else if (isInteger(type_)) {
    withNumberType(type_, [&](auto zero) { appendDigits(values<decltype(zero)>()[row], text); });
  } else {
    printNumber(real(row), text);
  }
}

void ColumnData::clear() {
  rows_ = 0;
  null_count_ = 0;
  values_.clear();
  offsets_.resize(1);
  has_codes_ = false;
  codes_.clear();
  validity_.clear();
}

void ColumnData::add(std::string_view text) {
  if (has_codes_) {
    const std::uint32_t code = addText(text);
    addCodes(&code, 1);
    return;
  }
  addRows(1);
  std::copy(text.begin(), text.end(), values_.extend(text.size()));
  offsets_.push_back(static_cast<std::int64_t>(values_.size()));
}

std::uint32_t ColumnData::addText(std::string_view text) {
  useCodes();
  const auto code = static_cast<std::uint32_t>(textCount());
  std::copy(text.begin(), text.end(), values_.extend(text.size()));
  offsets_.push_back(static_cast<std::int64_t>(values_.size()));
  return code;
}

void ColumnData::addCodes(const std::uint32_t* codes, std::size_t count) {
  useCodes();
  addRows(count);
  codes_.insert(codes_.end(), codes, codes + count);
  std::int64_t bytes = 0;
  for (std::size_t i = 0; i < count; ++i) {
    bytes += offsets_[codes[i] + 1] - offsets_[codes[i]];
  }
  coded_bytes_ += static_cast<std::size_t>(bytes) + count * sizeof(std::int64_t);
}

/// The texts of rows so far become the first ones of the table.
void ColumnData::useCodes() {
  if (!has_codes_) {
    coded_bytes_ = size();
    has_codes_ = true;
    codes_.resize(rows_);
    std::iota(codes_.begin(), codes_.end(), 0);
  }
}

void ColumnData::append(const ColumnData& other, std::size_t begin, std::size_t count) {
  const std::size_t first = rows_;
  if (isNumber(type_)) {
    const std::size_t width = widthOf(type_);
    std::copy_n(other.values_.data() + begin * width, count * width, extendBytes(count));
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (!isNumber(type_)) {
      add(other.text(begin + i));
    }
    if (!other.isValid(begin + i)) {
      setNull(first + i);
    }
  }
}

void ColumnData::addNulls(std::size_t count) {
  const std::size_t begin = rows_;
  if (isNumber(type_)) {
    addRows(count);
    const std::size_t bytes = count * widthOf(type_);
    std::fill_n(values_.extend(bytes), bytes, '\0');
  } else if (has_codes_) {
    const std::vector<std::uint32_t> codes(count, addText(""));
    addCodes(codes.data(), count);
  } else {
    addRows(count);
    offsets_.resize(rows_ + 1, offsets_.back());
  }
  for (std::size_t row = begin; row < rows_; ++row) {
    setNull(row);
  }
}

void ColumnData::setNull(std::size_t row) {
  if (!isValid(row)) {
    return;
  }
  ++null_count_;
  validity_.resize((rows_ + 7) / 8, 0xFF);
  validity_[row / 8] &= static_cast<std::uint8_t>(~(1U << (row % 8)));
  if (isNumber(type_)) {
    const std::size_t width = widthOf(type_);
    std::fill_n(values_.data() + row * width, width, '\0');
  }
}

void printNumber(double number, std::string& text) {
  if (std::isnan(number)) {
    text += "nan";  // whatever its sign
  } else {
    appendDigits(number, text);
  }
}

void printBytes(std::string_view bytes, std::string& text) {
  static constexpr std::string_view digits = "0123456789abcdef";
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
}

}  // namespace mdf_reader
