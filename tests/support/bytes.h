#ifndef MDF_TESTS_SUPPORT_BYTES_H_
#define MDF_TESTS_SUPPORT_BYTES_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>

namespace mdf_tests {

/// Expected bytes, written down by hand from the layout. It spells numbers out byte by byte and
/// shares nothing with the library.
class Bytes {
 public:
  Bytes& text(const std::string& characters) {
    bytes_ += characters;
    return *this;
  }
  Bytes& u8(std::uint8_t value) { return number(value, 1); }
  Bytes& u16(std::uint16_t value) { return number(value, 2); }
  Bytes& u32(std::uint32_t value) { return number(value, 4); }
  Bytes& u64(std::uint64_t value) { return number(value, 8); }
  Bytes& i16(std::int16_t value) { return number(static_cast<std::uint16_t>(value), 2); }
  Bytes& i64(std::int64_t value) { return number(static_cast<std::uint64_t>(value), 8); }
  Bytes& f32(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return number(bits, 4);
  }
  Bytes& f64(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return number(bits, 8);
  }
  Bytes& u8s(std::initializer_list<int> values) {
    for (const int value : values) {
      u8(static_cast<std::uint8_t>(value));
    }
    return *this;
  }
  Bytes& links(std::initializer_list<std::int64_t> values) {
    for (const std::int64_t value : values) {
      i64(value);
    }
    return *this;
  }
  Bytes& zeros(std::size_t count) {
    bytes_.append(count, '\0');
    return *this;
  }
  /// The 24-byte header: "##", the type's letters, four zero bytes, length and link count.
  Bytes& header(const std::string& letters, std::uint64_t length, std::uint64_t link_count) {
    return text("##" + letters).zeros(4).u64(length).u64(link_count);
  }

  const std::string& str() const { return bytes_; }
  operator const std::string&() const { return bytes_; }

 private:
  Bytes& number(std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
      bytes_ += static_cast<char>((value >> (8 * i)) & 0xFFU);
    }
    return *this;
  }

  std::string bytes_;
};

// The same as pieces to join: `header("DT", 29, 0) + u8(1, 2) + u16(3) + "xy"`.

/// A header with these bytes, or zeros, in front of its length.
inline std::string header(const std::string& letters, std::uint64_t length,
                          std::uint64_t link_count, std::initializer_list<int> reserved = {}) {
  return Bytes()
      .text("##" + letters)
      .u8s(reserved)
      .zeros(4 - reserved.size())
      .u64(length)
      .u64(link_count);
}
inline std::string zeros(std::size_t count) { return std::string(count, '\0'); }
template <class... Values>
std::string u8(Values... values) {
  return Bytes().u8s({static_cast<int>(values)...});
}
template <class... Values>
std::string u16(Values... values) {
  return (Bytes().u16(static_cast<std::uint16_t>(values)).str() + ...);
}
template <class... Values>
std::string u32(Values... values) {
  return (Bytes().u32(static_cast<std::uint32_t>(values)).str() + ...);
}
template <class... Values>
std::string u64(Values... values) {
  return (Bytes().u64(static_cast<std::uint64_t>(values)).str() + ...);
}
template <class... Values>
std::string f64(Values... values) {
  return (Bytes().f64(static_cast<double>(values)).str() + ...);
}
template <class... Values>
std::string links(Values... values) {
  return u64(values...);
}
/// Every link of a list.
template <class Links>
std::string listed(const Links& list) {
  Bytes bytes;
  for (const auto link : list) {
    bytes.u64(static_cast<std::uint64_t>(link));
  }
  return bytes;
}

/// Gives the bytes of a block other values.
template <class Byte, std::size_t Count>
void setBytes(Byte (&bytes)[Count], const std::array<Byte, Count>& values) {
  std::copy(values.begin(), values.end(), bytes);
}

template <class Byte, std::size_t Count>
void fillBytes(Byte (&bytes)[Count], int value) {
  std::fill_n(bytes, Count, static_cast<Byte>(value));
}

/// The bytes of a block as a value, which can be compared.
template <class Byte, std::size_t Count>
std::array<Byte, Count> asArray(const Byte (&bytes)[Count]) {
  std::array<Byte, Count> array;
  std::copy_n(bytes, Count, array.begin());
  return array;
}

/// Whether the bytes are the same; if not, what stands around the first difference.
testing::AssertionResult sameBytes(const char* actual_text, const char* expected_text,
                                   const std::string& actual, const std::string& expected);

}  // namespace mdf_tests

/// Compares whole byte strings.
#define EXPECT_BYTES(actual, expected) \
  EXPECT_PRED_FORMAT2(mdf_tests::sameBytes, std::string(actual), std::string(expected))

#endif  // MDF_TESTS_SUPPORT_BYTES_H_
