#include "framework/wire.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10::detail;

namespace {

/// The bytes that a number is stored as. They stand at an odd address, between bytes that must
/// stay.
template <class Number>
std::string stored(Number value) {
  alignas(8) std::array<char, 10> bytes;
  bytes.fill('|');
  storeLe(bytes.data() + 1, value);
  EXPECT_EQ(bytes[0], '|');
  EXPECT_EQ(bytes[1 + sizeof value], '|');
  return {bytes.data() + 1, sizeof value};
}

/// The number that the bytes hold, loaded from an odd address.
template <class Number>
Number loaded(const std::string& bytes) {
  EXPECT_EQ(bytes.size(), sizeof(Number));
  const std::string shifted = "|" + bytes;
  return loadLe<Number>(shifted.data() + 1);
}

std::string littleEndian(std::uint64_t bits, std::size_t width) {
  return u64(bits).substr(0, width);
}

template <class Number>
void expectCrosses(Number value, std::uint64_t bits) {
  const std::string bytes = littleEndian(bits, sizeof value);
  EXPECT_BYTES(stored(value), bytes);
  EXPECT_EQ(loaded<Number>(bytes), value);
}

template <class Number>
class WireInteger : public testing::Test {};

using Integers = testing::Types<std::uint8_t, std::uint16_t, std::uint32_t, std::uint64_t,
                                std::int8_t, std::int16_t, std::int32_t, std::int64_t>;
struct IntegerName {
  template <class Integer>
  static std::string GetName(int) {
    return (std::is_signed_v<Integer> ? "Signed" : "Unsigned") +
           std::to_string(8 * sizeof(Integer));
  }
};
TYPED_TEST_SUITE(WireInteger, Integers, IntegerName);

TYPED_TEST(WireInteger, PowersOfTwoAndTheirNeighbours) {
  for (unsigned bit = 0; bit < 8 * sizeof(TypeParam); ++bit) {
    const std::uint64_t power = std::uint64_t{1} << bit;
    for (const std::uint64_t bits : {power - 1, power, power + 1, ~power, 0 - power}) {
      expectCrosses(static_cast<TypeParam>(bits), bits);
    }
  }
}

TEST(Wire, LowByteComesFirst) {
  EXPECT_BYTES(stored(std::uint8_t{0x81}), u8(0x81));
  EXPECT_BYTES(stored(std::uint16_t{0x8102}), u8(0x02, 0x81));
  EXPECT_BYTES(stored(std::uint32_t{0x81020304}), u8(0x04, 0x03, 0x02, 0x81));
  EXPECT_BYTES(stored(std::uint64_t{0x8102030405060708}),
               u8(0x08, 0x07, 0x06, 0x05, 0x04, 0x03, 0x02, 0x81));
  EXPECT_BYTES(stored(std::int16_t{-60}), u8(0xC4, 0xFF));
  EXPECT_BYTES(stored(std::int64_t{-2}), u8(0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF));
}

TEST(Wire, RealPowersOfTwoAndTheirNeighbours) {
  constexpr int bias = 1023;
  for (int exponent = -1022; exponent <= 1023; ++exponent) {
    const std::uint64_t bits = static_cast<std::uint64_t>(exponent + bias) << 52U;
    const double power = std::ldexp(1.0, exponent);
    expectCrosses(power, bits);
    expectCrosses(std::nextafter(power, 0.0), bits - 1);
    expectCrosses(std::nextafter(power, HUGE_VAL), bits + 1);
    expectCrosses(-power, bits | std::uint64_t{1} << 63U);
  }
}

TEST(Wire, RealsBelowTheNormalOnes) {
  for (unsigned bit = 0; bit < 52; ++bit) {
    expectCrosses(std::ldexp(1.0, static_cast<int>(bit) - 1074), std::uint64_t{1} << bit);
  }
}

TEST(Wire, RealsThatAreNoPlainNumbers) {
  using Limits = std::numeric_limits<double>;
  expectCrosses(0.0, 0);
  expectCrosses(1.0, 0x3FF0000000000000);
  expectCrosses(-2.5, 0xC004000000000000);
  expectCrosses(Limits::infinity(), 0x7FF0000000000000);
  expectCrosses(-Limits::infinity(), 0xFFF0000000000000);
  EXPECT_BYTES(stored(-0.0), zeros(7) + u8(0x80));
  EXPECT_TRUE(std::signbit(loaded<double>(zeros(7) + u8(0x80))));
  EXPECT_TRUE(std::isnan(loaded<double>(zeros(6) + u8(0xF8, 0x7F))));
  EXPECT_TRUE(std::isnan(loaded<double>(stored(Limits::quiet_NaN()))));
}

TEST(Wire, OnABigEndianHostTheBytesAreReversed) {
  static_assert(reversedBytes(std::uint8_t{0x81}) == 0x81);
  static_assert(reversedBytes(std::uint16_t{0x8102}) == 0x0281);
  static_assert(reversedBytes(std::uint32_t{0x81020304}) == 0x04030281);
  static_assert(reversedBytes(std::uint64_t{0x8102030405060708}) == 0x0807060504030281);
  const std::uint16_t one = 1;
  char first;
  std::memcpy(&first, &one, 1);
  EXPECT_EQ(host_is_big_endian, first == 0);
}

TEST(Encoder, PutsValuesOneAfterAnother) {
  std::array<char, 12> bytes;
  bytes.fill('|');
  Encoder out(bytes.data());
  out.put(std::uint8_t{1});
  out.put(std::uint32_t{0x02030405});
  const Array<char, 3> characters{'a', '\0', 'c'};
  out.put(characters);
  const Array<std::uint8_t, 1> byte{255};
  out.put(byte);
  out.put(std::int16_t{-2});
  EXPECT_BYTES(std::string(bytes.data(), bytes.size()),
               u8(1) + u8(5, 4, 3, 2) + "a" + u8(0) + "c" + u8(255) + u8(0xFE, 0xFF) + "|");
}

TEST(Decoder, TakesValuesOneAfterAnother) {
  const std::string bytes = u8(1) + u8(5, 4, 3, 2) + "skip" + "a" + u8(0) + "c" + f64(-2.5);
  Decoder in(bytes.data(), bytes.size());
  std::uint8_t first;
  std::uint32_t second;
  Array<char, 3> characters;
  double real;
  in.take(first);
  in.take(second);
  EXPECT_EQ(in.position(), bytes.data() + 5);
  in.skip(4);
  EXPECT_EQ(in.remaining(), 11U);
  in.take(characters);
  in.take(real);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 0x02030405U);
  EXPECT_EQ(asArray(characters), (std::array<char, 3>{'a', '\0', 'c'}));
  EXPECT_EQ(real, -2.5);
  EXPECT_EQ(in.remaining(), 0U);
  EXPECT_EQ(in.position(), bytes.data() + bytes.size());
}

TEST(Decoder, TakesNothingFromNoBytes) { EXPECT_EQ(Decoder(nullptr, 0).remaining(), 0U); }

TEST(Wire, SizeThatTheHostCannotHoldIsTheLargestItHas) {
  constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(hostSize(0), 0U);
  EXPECT_EQ(hostSize(12345), 12345U);
  EXPECT_EQ(hostSize(0xFFFFFFFFU), 0xFFFFFFFFU);
  EXPECT_EQ(hostSize(largest), largest);
  EXPECT_EQ(hostSize(UINT64_MAX), largest);
  if constexpr (sizeof(std::size_t) < sizeof(std::uint64_t)) {
    EXPECT_EQ(hostSize(std::uint64_t{1} << 32U), largest);
  }
}

}  // namespace
