#include "reader/values/lookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace mdf_reader;

namespace {

const double not_a_number = std::numeric_limits<double>::quiet_NaN();

TEST(KeyTable, FindsTheFirstOfEqualKeys) {
  const KeyTable table({5, 1, not_a_number, 5, 3});
  EXPECT_EQ(table.find(1), 1U);
  EXPECT_EQ(table.find(5), 0U);
  EXPECT_EQ(table.find(4), 5U);
  EXPECT_EQ(table.find(not_a_number), 5U);
}

TEST(RangeTable, UpperLimitBelongsToIntegersAlone) {
  const RangeTable table({{0, 10}, {10, 20}, {30, 30}});
  EXPECT_EQ(table.find(0, false), 0U);
  EXPECT_EQ(table.find(9.5, false), 0U);
  EXPECT_EQ(table.find(10, false), 1U);
  EXPECT_EQ(table.find(10, true), 0U);
  EXPECT_EQ(table.find(20, false), 3U);
  EXPECT_EQ(table.find(20, true), 1U);
  EXPECT_EQ(table.find(30, false), 2U);
  EXPECT_EQ(table.find(25, true), 3U);
  EXPECT_EQ(table.find(-1, true), 3U);
  EXPECT_EQ(table.find(31, true), 3U);
  EXPECT_EQ(table.find(not_a_number, false), 3U);
}

TEST(RangeTable, FirstOfOverlappingRanges) {
  const RangeTable table({{5, 8}, {0, 10}, {7, 20}});
  EXPECT_EQ(table.find(6, true), 0U);
  EXPECT_EQ(table.find(9, true), 1U);
  EXPECT_EQ(table.find(15, true), 2U);
  EXPECT_EQ(table.find(21, true), 3U);
}

TEST(RangeTable, EmptyTable) { EXPECT_EQ(RangeTable({}).find(1, true), 0U); }

TEST(PointTable, ValuesOnTheLineBetweenPoints) {
  const PointTable table({10, 100, 0, 0, 20, 0});
  EXPECT_EQ(table.between(-5), 0);
  EXPECT_EQ(table.between(5), 50);
  EXPECT_EQ(table.between(10), 100);
  EXPECT_EQ(table.between(15), 50);
  EXPECT_EQ(table.between(99), 0);
}

TEST(PointTable, ValueOfTheNearestPoint) {
  const PointTable table({10, 1, 20, 2, 40, 4});
  EXPECT_EQ(table.nearest(-5), 1);
  EXPECT_EQ(table.nearest(14), 1);
  EXPECT_EQ(table.nearest(15), 1);
  EXPECT_EQ(table.nearest(15.5), 2);
  EXPECT_EQ(table.nearest(40), 4);
  EXPECT_EQ(table.nearest(50), 4);
}

TEST(PointTable, PointsThatAreNoNumbersAreLeftOut) {
  EXPECT_TRUE(PointTable({not_a_number, 1}).isEmpty());
  EXPECT_TRUE(PointTable({1}).isEmpty());
}

}  // namespace
