#include "reader/columns/master_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <vector>

using mdf_reader::MasterSearch;

namespace {

constexpr std::uint64_t count = 1000000;

/// The values of a master channel, and which of them were asked for.
struct Asked {
  std::function<double(std::uint64_t)> value;
  std::set<std::uint64_t> numbers{};

  MasterSearch search(std::uint64_t begin, std::uint64_t end) {
    return MasterSearch(begin, end, [this](std::uint64_t number) {
      numbers.insert(number);
      return value(number);
    });
  }

  /// Parts of 100 records that were looked into.
  std::size_t places() const {
    std::set<std::uint64_t> places;
    for (const std::uint64_t number : numbers) {
      places.insert(number / 100);
    }
    return places.size();
  }
};

double even(std::uint64_t number) { return 0.001 * static_cast<double>(number); }
double jittering(std::uint64_t number) {
  return even(number) + 0.0004 * std::sin(static_cast<double>(number));
}
double pausing(std::uint64_t number) { return even(number) + (number < 700000 ? 0 : 86400); }
double slowing(std::uint64_t number) { return std::sqrt(static_cast<double>(number)); }
double stepping(std::uint64_t number) { return std::floor(even(number) / 10); }
double exploding(std::uint64_t number) { return std::exp(even(number) / 2); }

/// The first number in a range with a value for which something holds, as it does for all that are
/// greater, by bisection.
template <class Holds>
std::uint64_t bisected(const Asked& asked, std::uint64_t begin, std::uint64_t end,
                       const Holds& holds) {
  while (begin < end) {
    const std::uint64_t middle = begin + (end - begin) / 2;
    if (holds(asked.value(middle))) {
      end = middle;
    } else {
      begin = middle + 1;
    }
  }
  return begin;
}

void expectFound(const std::function<double(std::uint64_t)>& value, std::uint64_t begin,
                 std::uint64_t end, double limit) {
  Asked asked{value};
  MasterSearch search = asked.search(begin, end);
  EXPECT_EQ(search.firstFrom(limit),
            bisected(asked, begin, end, [=](double each) { return each >= limit; }))
      << limit;
  EXPECT_EQ(search.firstAfter(limit),
            bisected(asked, begin, end, [=](double each) { return each > limit; }))
      << limit;
  EXPECT_TRUE(search.isGrowing());
  EXPECT_LE(asked.numbers.size(), 80U) << limit;
}

TEST(MasterSearch, ValuesThatGrowInAnyWay) {
  for (const auto& value : {even, jittering, pausing, slowing, stepping, exploding}) {
    for (const std::uint64_t number : {0U, 1U, 17U, 400000U, 699999U, 700000U, 999998U, 999999U}) {
      expectFound(value, 0, count, value(number));
      expectFound(value, 0, count, std::nextafter(value(number), 1e300));
    }
    expectFound(value, 0, count, -1);
    expectFound(value, 0, count, 1e300);
    expectFound(value, 0, count, std::numeric_limits<double>::infinity());
    expectFound(value, 123, 124, value(123));
    expectFound(value, 123, 125, value(124));
  }
}

TEST(MasterSearch, EvenValuesAreFoundAtOnce) {
  for (const auto& value : {even, jittering}) {
    Asked asked{value};
    MasterSearch search = asked.search(0, count);
    EXPECT_EQ(search.firstFrom(500.0005), 500001U);
    EXPECT_EQ(search.firstAfter(500.0405), 500041U);
    EXPECT_EQ(asked.places(), 3U);  // the ends, and where they are
  }
}

TEST(MasterSearch, ValuesThatFallAreSeenAsFarAsTheyAreLookedAt) {
  Asked falling{[](std::uint64_t number) { return -even(number); }};
  EXPECT_FALSE(falling.search(0, count).isGrowing());
  Asked missing{[](std::uint64_t /*number*/) { return std::nan(""); }};
  EXPECT_FALSE(missing.search(0, 1).isGrowing());
  Asked restarting{[](std::uint64_t number) { return even(number % 600000); }};
  MasterSearch search = restarting.search(0, count);
  search.look();
  EXPECT_FALSE(search.isGrowing());
}

}  // namespace
