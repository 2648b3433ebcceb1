#include "reader/bytes/inflate.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/support/data_blocks.h"

using namespace mdf_tests;
using mdf_reader::inflate;
using mdf_reader::Inflated;
using mdf_reader::Inflating;

namespace {

void expectInflated(const Inflated& actual, Inflating state, const std::string& bytes) {
  EXPECT_EQ(actual.state, state);
  EXPECT_EQ(actual.bytes, bytes);
}

TEST(Inflate, WhatIsStated) { expectInflated(inflate(zippedAbc(), 3), Inflating::fine, "abc"); }

TEST(Inflate, MoreOrLessThanStated) {
  expectInflated(inflate(zippedAbc(), 2), Inflating::too_long, "");
  expectInflated(inflate(zippedAbc(), 0), Inflating::too_long, "");
  expectInflated(inflate(zippedAbc(), 4), Inflating::too_short, "abc");
}

TEST(Inflate, DamagedStreams) {
  std::string wrong_sum = zippedAbc();
  wrong_sum.back() = 0;
  expectInflated(inflate(wrong_sum, 3), Inflating::broken, "");
  for (std::size_t size = 0; size < zippedAbc().size(); ++size) {
    EXPECT_EQ(inflate(zippedAbc().substr(0, size), 3).state, Inflating::broken) << size;
  }
}

TEST(Inflate, AStatedSizeThatCannotBeCostsNothing) {
  expectInflated(inflate(zippedAbc(), UINT64_MAX), Inflating::too_short, "abc");
}

std::string transposedBack(const std::string& bytes, std::uint64_t columns) {
  std::string rows = "what was there before";
  mdf_reader::transposeBack(bytes, columns, rows);
  return rows;
}

TEST(TransposedBack, ColumnsBecomeRows) {
  EXPECT_EQ(transposedBack("adgbehcfi", 3), "abcdefghi");
  EXPECT_EQ(transposedBack("adbecf", 3), "abcdef");
  EXPECT_EQ(transposedBack("acbd", 2), "abcd");
}

TEST(TransposedBack, BytesAfterTheLastRowStay) {
  EXPECT_EQ(transposedBack("adbecfXY", 3), "abcdefXY");
  EXPECT_EQ(transposedBack("abcX", 3), "abcX");
  EXPECT_EQ(transposedBack("XY", 3), "XY");
}

TEST(TransposedBack, NothingToDo) {
  EXPECT_EQ(transposedBack("", 3), "");
  EXPECT_EQ(transposedBack("abc", 0), "abc");
  EXPECT_EQ(transposedBack("abc", 1), "abc");
  EXPECT_EQ(transposedBack("abc", UINT64_MAX), "abc");
}

}  // namespace
