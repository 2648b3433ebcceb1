#ifndef MDF_READER_COLUMNS_COLUMN_DATA_H_
#define MDF_READER_COLUMNS_COLUMN_DATA_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace mdf_reader {

/// What the values of a column are.
enum class ColumnType {
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
  text,  ///< UTF-8 without zero bytes
  bytes,
};

constexpr bool isInteger(ColumnType type) { return type <= ColumnType::int64; }
constexpr bool isNumber(ColumnType type) { return type <= ColumnType::float64; }

/// Bytes of a number of this type.
std::size_t widthOf(ColumnType type);

/// The ColumnType of a C++ type of numbers.
template <class T>
constexpr ColumnType typeOf() {
  static_assert(std::is_arithmetic_v<T>);
  if constexpr (std::is_floating_point_v<T>) {
    return sizeof(T) == 4 ? ColumnType::float32 : ColumnType::float64;
  } else {
    constexpr int power = sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3;
    return static_cast<ColumnType>(power + (std::is_signed_v<T> ? 4 : 0));
  }
}

/// Calls a function with a zero of the C++ type that numbers of a column have.
template <class Function>
decltype(auto) withNumberType(ColumnType type, const Function& function) {
  switch (type) {
    case ColumnType::uint8:
      return function(std::uint8_t{});
    case ColumnType::uint16:
      return function(std::uint16_t{});
    case ColumnType::uint32:
      return function(std::uint32_t{});
    case ColumnType::uint64:
      return function(std::uint64_t{});
    case ColumnType::int8:
      return function(std::int8_t{});
    case ColumnType::int16:
      return function(std::int16_t{});
    case ColumnType::int32:
      return function(std::int32_t{});
    case ColumnType::int64:
      return function(std::int64_t{});
    case ColumnType::float32:
      return function(float{});
    default:
      return function(double{});
  }
}

/// Bytes that grow without being set first, so that whoever adds some writes them once.
class Buffer {
 public:
  const char* data() const { return bytes_.get(); }
  char* data() { return bytes_.get(); }
  std::size_t size() const { return size_; }
  void clear() { size_ = 0; }
  /// Makes room for so many bytes.
  void reserve(std::size_t bytes);

  /// Adds bytes, and says where they are.
  char* extend(std::size_t count) {
    if (count > capacity_ - size_) {
      reserve(std::max(size_ + count, capacity_ + capacity_ / 2));
    }
    char* const added = bytes_.get() + size_;
    size_ += count;
    return added;
  }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

/// The values of a column in a batch, side by side, laid out as Apache Arrow has them. Texts that a
/// conversion gives are few as a rule: they form a table of their own, and rows have codes.
class ColumnData {
 public:
  explicit ColumnData(ColumnType type) : type_(type) {}

  ColumnType type() const { return type_; }
  std::size_t rows() const { return rows_; }

  /// Whether a row has a value: one that is invalid, or that the file lacks, has none.
  bool isValid(std::size_t row) const {
    return null_count_ == 0 || ((unsigned{validity_[row / 8]} >> (row % 8)) & 1U) != 0;
  }
  /// How many rows have no value.
  std::size_t nullCount() const { return null_count_; }

  /// The numbers of a column of this very type, one for each row; 0 where there is no value.
  template <class T>
  const T* values() const {
    return typeOf<T>() == type_ ? reinterpret_cast<const T*>(values_.data()) : nullptr;
  }
  /// A number of any type as the nearest double; NaN where there is none.
  double real(std::size_t row) const;
  /// The same of all rows.
  std::vector<double> reals() const;
  /// A text, or bytes; "" where there is none.
  std::string_view text(std::size_t row) const { return textAt(has_codes_ ? codes_[row] : row); }
  /// Appends the value as it is printed: the shortest digits that read back to the same number,
  /// "nan", "inf", "-inf"; text as it is; two hexadecimal digits for each byte; nothing for none.
  void print(std::size_t row, std::string& text) const;

  /// A bit for each row, from the least significant one on, 0 for no value; null where all have
  /// one.
  const std::uint8_t* validity() const { return null_count_ == 0 ? nullptr : validity_.data(); }
  /// The bytes of all values: numbers, or texts that follow one another.
  const char* bytes() const { return values_.data(); }
  /// Where each text begins among them, and where the last one ends: those of the rows, or those of
  /// the table.
  const std::int64_t* offsets() const { return offsets_.data(); }
  /// Which text of the table each row has; null where each row has a text of its own.
  const std::uint32_t* codes() const { return has_codes_ ? codes_.data() : nullptr; }
  /// How many texts there are, in the table or of rows; some may be equal.
  std::size_t textCount() const { return offsets_.size() - 1; }
  std::string_view textAt(std::size_t code) const {
    const auto begin = static_cast<std::size_t>(offsets_[code]);
    return {values_.data() + begin, static_cast<std::size_t>(offsets_[code + 1]) - begin};
  }
  /// Bytes of memory that the values take, if each row has its own.
  std::size_t size() const {
    return has_codes_ ? coded_bytes_ : values_.size() + offsets_.size() * sizeof(std::int64_t);
  }

  void clear();
  /// Makes room for the numbers of so many rows.
  void reserve(std::size_t rows) {
    if (isNumber(type_)) {
      values_.reserve(rows * widthOf(type_));
    }
  }
  /// Adds rows of numbers, to be set by the caller.
  template <class T>
  T* extend(std::size_t count) {
    addRows(count);
    return reinterpret_cast<T*>(values_.extend(count * sizeof(T)));
  }
  /// The same, of the column's type.
  char* extendBytes(std::size_t count) {
    addRows(count);
    return values_.extend(count * widthOf(type_));
  }
  void add(std::string_view text);
  /// Adds a text to the table, without a row, and returns its code.
  std::uint32_t addText(std::string_view text);
  /// Adds rows of texts in the table.
  void addCodes(const std::uint32_t* codes, std::size_t count);
  /// Adds rows of another column of the same type.
  void append(const ColumnData& other, std::size_t begin, std::size_t count);
  /// Adds rows without a value.
  void addNulls(std::size_t count);
  void setNull(std::size_t row);

 private:
  void addRows(std::size_t count) {
    rows_ += count;
    if (null_count_ > 0) {
      validity_.resize((rows_ + 7) / 8, 0xFF);
    }
  }

  void useCodes();

  ColumnType type_;
  std::size_t rows_ = 0;
  std::size_t null_count_ = 0;
  Buffer values_;
  std::vector<std::int64_t> offsets_{0};
  bool has_codes_ = false;
  std::vector<std::uint32_t> codes_;
  std::size_t coded_bytes_ = 0;
  std::vector<std::uint8_t> validity_;  ///< as long as all are valid, nothing
};

/// Appends a number, or bytes, as ColumnData::print() does.
void printNumber(double number, std::string& text);
void printBytes(std::string_view bytes, std::string& text);

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_COLUMN_DATA_H_
