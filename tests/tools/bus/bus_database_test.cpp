#include "reader/bus/bus_database.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

using namespace mdf_reader;

namespace {

/// The first byte, one past the last, and the lowest bit.
using Position = std::array<std::uint32_t, 3>;

Position positionOf(std::uint32_t start_bit, std::uint32_t bits, bool is_big_endian) {
  BusSignal signal;
  signal.start_bit = start_bit;
  signal.bits = bits;
  signal.is_big_endian = is_big_endian;
  return {firstByteOf(signal), endByteOf(signal), lowestBitOf(signal)};
}

TEST(BusSignal, PositionsOfLittleEndianOnes) {
  EXPECT_EQ(positionOf(0, 1, false), (Position{0, 1, 0}));
  EXPECT_EQ(positionOf(7, 1, false), (Position{0, 1, 7}));
  EXPECT_EQ(positionOf(7, 2, false), (Position{0, 2, 7}));
  EXPECT_EQ(positionOf(8, 8, false), (Position{1, 2, 0}));
  EXPECT_EQ(positionOf(12, 12, false), (Position{1, 3, 4}));
  EXPECT_EQ(positionOf(0, 64, false), (Position{0, 8, 0}));
  EXPECT_EQ(positionOf(3, 64, false), (Position{0, 9, 3}));
  EXPECT_EQ(positionOf(448, 64, false), (Position{56, 64, 0}));
  EXPECT_EQ(positionOf(511, 1, false), (Position{63, 64, 7}));
}

TEST(BusSignal, PositionsOfBigEndianOnes) {
  EXPECT_EQ(positionOf(0, 1, true), (Position{0, 1, 0}));
  EXPECT_EQ(positionOf(7, 1, true), (Position{0, 1, 7}));
  EXPECT_EQ(positionOf(7, 8, true), (Position{0, 1, 0}));
  EXPECT_EQ(positionOf(0, 2, true), (Position{0, 2, 7}));
  EXPECT_EQ(positionOf(7, 12, true), (Position{0, 2, 4}));   // 7 to 0, 15 to 12
  EXPECT_EQ(positionOf(11, 12, true), (Position{1, 3, 0}));  // 11 to 8, 23 to 16
  EXPECT_EQ(positionOf(18, 10, true), (Position{2, 4, 1}));  // 18 to 16, 31 to 25
  EXPECT_EQ(positionOf(7, 64, true), (Position{0, 8, 0}));
  EXPECT_EQ(positionOf(3, 64, true), (Position{0, 9, 4}));  // 3 to 0, seven bytes, 71 to 68
  EXPECT_EQ(positionOf(504, 1, true), (Position{63, 64, 0}));
}

}  // namespace
