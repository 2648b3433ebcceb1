#include "pictures/decimator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

using namespace mdf_tools;

namespace {

/// What a curve of so many columns keeps, point for point.
std::vector<Point> kept(const Decimator& decimator) { return decimator.points(); }

double lowest(const std::vector<Point>& points) {
  return std::accumulate(points.begin(), points.end(), HUGE_VAL,
                         [](double low, const Point& point) { return std::fmin(low, point.y); });
}

double highest(const std::vector<Point>& points) {
  return std::accumulate(points.begin(), points.end(), -HUGE_VAL,
                         [](double high, const Point& point) { return std::fmax(high, point.y); });
}

TEST(Decimator, FewPointsStayAsTheyAre) {
  Decimator decimator(100);
  decimator.add(2, 5);
  decimator.add(1, 6);
  const std::vector<Point> points = kept(decimator);
  ASSERT_EQ(points.size(), 2U);
  EXPECT_EQ(points[0].x, 2);
  EXPECT_EQ(points[1].y, 6);
}

TEST(Decimator, GapsStayBetweenPoints) {
  Decimator decimator(100);
  const double none = std::numeric_limits<double>::quiet_NaN();
  decimator.add(0, none);  // nothing to separate yet
  decimator.add(1, 1);
  decimator.add(2, none);
  decimator.add(3, none);
  decimator.add(4, 4);
  const std::vector<Point> points = kept(decimator);
  ASSERT_EQ(points.size(), 3U);
  EXPECT_TRUE(std::isnan(points[1].y));
}

TEST(Decimator, ManyPointsAreBoundedAndKeepTheirPeaks) {
  Decimator decimator(50);
  for (int i = 0; i < 100000; ++i) {
    decimator.add(i, i == 77777 ? 1000 : i == 33333 ? -1000 : std::sin(i));
  }
  const std::vector<Point> points = kept(decimator);
  EXPECT_LE(points.size(), 200U);
  EXPECT_GE(points.size(), 75U);  // at least half of the columns have something to show
  EXPECT_EQ(highest(points), 1000);
  EXPECT_EQ(lowest(points), -1000);
  EXPECT_EQ(points.front().x, 0);
  EXPECT_EQ(points.back().x, 99999);
  EXPECT_TRUE(std::is_sorted(points.begin(), points.end(),
                             [](const Point& a, const Point& b) { return a.x < b.x; }));
}

template <class Number>
void expectSameAsOneByOne(const std::vector<double>& x, const std::vector<Number>& y) {
  for (const std::size_t at_once : {1U, 127U, 128U, 129U, 1000U, 50000U}) {
    Decimator together(20);
    Decimator one_by_one(20);
    for (std::size_t begin = 0; begin < x.size(); begin += at_once) {
      const std::size_t count = std::min(at_once, x.size() - begin);
      together.add(Abscissa(&x[begin], count), &y[begin]);
      for (std::size_t i = begin; i < begin + count; ++i) {
        one_by_one.add(x[i], static_cast<double>(y[i]));
      }
    }
    const std::vector<Point> actual = kept(together);
    const std::vector<Point> expected = kept(one_by_one);
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
      EXPECT_EQ(actual[i].x, expected[i].x) << i;
      EXPECT_TRUE(actual[i].y == expected[i].y || std::isnan(expected[i].y)) << i;
    }
  }
}

TEST(Decimator, PointsTogetherAreKeptAsOneByOne) {
  std::vector<double> x;
  std::vector<double> reals;
  std::vector<float> floats;
  std::vector<std::uint16_t> small;
  std::vector<std::int64_t> large;
  for (int i = 0; i < 50000; ++i) {
    x.push_back(i % 7001 == 5 ? -i : i);
    const double y = std::sin(0.001 * i * i);
    reals.push_back(i % 997 == 3 ? std::numeric_limits<double>::quiet_NaN() : y);
    floats.push_back(i % 3001 == 3 ? std::numeric_limits<float>::infinity()
                                   : static_cast<float>(y));
    small.push_back(static_cast<std::uint16_t>(30000 + 30000 * y));
    large.push_back(std::numeric_limits<std::int64_t>::max() - i % 77);  // the same as doubles
  }
  x[30000] = std::numeric_limits<double>::quiet_NaN();
  reals[40000] = -1e301;
  expectSameAsOneByOne(x, reals);
  expectSameAsOneByOne(x, floats);
  expectSameAsOneByOne(x, small);
  expectSameAsOneByOne(x, large);
}

TEST(Decimator, CurveThatGoesToTheLeft) {
  Decimator decimator(50);
  for (int i = 0; i < 10000; ++i) {
    decimator.add(-i, i);
  }
  const std::vector<Point> points = kept(decimator);
  EXPECT_LE(points.size(), 200U);
  EXPECT_EQ(highest(points), 9999);
  EXPECT_EQ(lowest(points), 0);
}

TEST(Decimator, AllAtOnePlace) {
  Decimator decimator(10);
  for (int i = 0; i < 1000; ++i) {
    decimator.add(5, i);
  }
  const std::vector<Point> points = kept(decimator);
  EXPECT_LE(points.size(), 4U);
  EXPECT_EQ(highest(points), 999);
  EXPECT_EQ(lowest(points), 0);
}

TEST(Decimator, ExtremeNumbers) {
  Decimator decimator(10);
  const double infinity = std::numeric_limits<double>::infinity();
  const double largest = std::numeric_limits<double>::max();
  for (const double x : {0.0, 1e-300, -1e299, 1e299, infinity, -infinity, largest, -largest}) {
    for (int i = 0; i < 20; ++i) {
      decimator.add(x, i);
      decimator.add(x, largest);
    }
  }
  const std::vector<Point> points = kept(decimator);
  EXPECT_LE(points.size(), 50U);
  EXPECT_EQ(highest(points), 19);
}

TEST(Decimator, GapsOfManyPoints) {
  Decimator decimator(10);
  for (int i = 0; i < 1000; ++i) {
    decimator.add(i, i < 400 || i >= 600 ? i : std::nan(""));
  }
  const std::vector<Point> points = kept(decimator);
  const auto gaps = std::count_if(points.begin(), points.end(),
                                  [](const Point& point) { return std::isnan(point.y); });
  EXPECT_EQ(gaps, 1);
}

}  // namespace
