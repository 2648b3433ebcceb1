#ifndef MDF_FRAMEWORK_WIRE_H_
#define MDF_FRAMEWORK_WIRE_H_

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "types.h"

namespace mdf_v4_10::detail {

#if defined(__BYTE_ORDER__) && defined(__ORDER_BIG_ENDIAN__) && \
    (__BYTE_ORDER__ == __ORDER_BIG_ENDIAN__)
inline constexpr bool host_is_big_endian = true;
#else
inline constexpr bool host_is_big_endian = false;
#endif

/// A 64-bit size from a file or a caller as the host's own. One that the host cannot hold becomes
/// the largest there is: it must fail when memory is asked for, not be cut to one that fits.
constexpr std::size_t hostSize(std::uint64_t size) {
  constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();
  return size < largest ? static_cast<std::size_t>(size) : largest;
}

template <std::size_t Width>
using UnsignedOfWidth = std::conditional_t<
    Width == 1, std::uint8_t,
    std::conditional_t<Width == 2, std::uint16_t,
                       std::conditional_t<Width == 4, std::uint32_t, std::uint64_t>>>;

template <class Unsigned>
constexpr Unsigned reversedBytes(Unsigned value) {
  Unsigned reversed = 0;
  for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
    reversed =
        static_cast<Unsigned>((static_cast<std::uint64_t>(reversed) << 8U) | (value & 0xFFU));
    value = static_cast<Unsigned>(static_cast<std::uint64_t>(value) >> 8U);
  }
  return reversed;
}

/// Stores a number little-endian, whatever the host's byte order and alignment.
template <class Number>
void storeLe(char* at, Number value) {
  static_assert(std::is_arithmetic_v<Number>, "only numbers cross the wire by value");
  UnsignedOfWidth<sizeof(Number)> bits;
  std::memcpy(&bits, &value, sizeof bits);
  if constexpr (host_is_big_endian) {
    bits = reversedBytes(bits);
  }
  std::memcpy(at, &bits, sizeof bits);
}

/// Loads a number that was stored little-endian.
template <class Number>
Number loadLe(const char* at) {
  static_assert(std::is_arithmetic_v<Number>, "only numbers cross the wire by value");
  UnsignedOfWidth<sizeof(Number)> bits;
  std::memcpy(&bits, at, sizeof bits);
  if constexpr (host_is_big_endian) {
    bits = reversedBytes(bits);
  }
  Number value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

template <class Number>
void loadLe(const char* at, Number& value) {
  value = loadLe<Number>(at);
}

/// Bytes have no order to change.
template <class Byte, std::size_t Count>
void storeLe(char* at, const Array<Byte, Count>& bytes) {
  static_assert(sizeof(Byte) == 1);
  std::memcpy(at, bytes, Count);
}

template <class Byte, std::size_t Count>
void loadLe(const char* at, Array<Byte, Count>& bytes) {
  static_assert(sizeof(Byte) == 1);
  std::memcpy(bytes, at, Count);
}

/// Loads numbers that were stored one after another. Of none, either pointer may be null.
template <class Number>
void loadEachLe(const char* at, Number* numbers, std::size_t count) {
  if (count == 0) {
    return;
  }
  if constexpr (!host_is_big_endian) {
    std::memcpy(numbers, at, count * sizeof(Number));
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      loadLe(at + i * sizeof(Number), numbers[i]);
    }
  }
}

/// Copies bytes, the number of which is a multiple of 8, and returns where the copy ends. Lists are
/// mostly so short that calling a function for any number of bytes takes longer than the copying.
inline char* copyEights(char* to, const void* from, std::size_t count) {
  const char* const bytes = static_cast<const char*>(from);
  std::size_t done = 0;
  for (; count - done >= 64; done += 64) {
    std::memcpy(to + done, bytes + done, 64);
  }
  if ((count & 32U) != 0) {
    std::memcpy(to + done, bytes + done, 32);
    done += 32;
  }
  if ((count & 16U) != 0) {
    std::memcpy(to + done, bytes + done, 16);
    done += 16;
  }
  if ((count & 8U) != 0) {
    std::memcpy(to + done, bytes + done, 8);
  }
  return to + count;
}

/// Puts values one after another. The caller sees to it that there is room for them.
class Encoder {
 public:
  explicit Encoder(char* at) : at_(at) {}

  /// A number or an array of bytes.
  template <class Value>
  void put(const Value& value) {
    storeLe(at_, value);
    at_ += sizeof(Value);
  }

 private:
  char* at_;
};

/// Takes values one after another, without a check: the caller compares the width of what it takes
/// with remaining() first.
class Decoder {
 public:
  Decoder(const char* bytes, std::size_t count) : at_(bytes), end_(bytes + count) {}

  std::size_t remaining() const { return static_cast<std::size_t>(end_ - at_); }
  const char* position() const { return at_; }
  void skip(std::size_t count) { at_ += count; }

  /// A number or an array of bytes.
  template <class Value>
  void take(Value& value) {
    loadLe(at_, value);
    at_ += sizeof(Value);
  }

 private:
  const char* at_;
  const char* end_;
};

}  // namespace mdf_v4_10::detail

#endif  // MDF_FRAMEWORK_WIRE_H_
