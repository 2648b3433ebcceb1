#include "viewing/series.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "memory_samples.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace {

/// What samples between two times are like, found one by one. Those out of order are gaps at the
/// latest time before.
Extent plainExtent(const MemorySamples& samples, double from, double to) {
  Extent extent;
  double latest = -infinity;
  for (std::size_t i = 0; i < samples.times.size(); ++i) {
    const bool is_in_order = samples.times[i] >= latest && samples.times[i] < infinity;
    latest = is_in_order ? samples.times[i] : latest;
    if (latest < from || latest > to) {
      continue;
    }
    const double number = is_in_order ? samples.numbers[i] : gap;
    if (!std::isfinite(number)) {
      ++extent.gaps;
      continue;
    }
    extent.minimum = extent.values == 0 ? number : std::min(extent.minimum, number);
    extent.maximum = extent.values == 0 ? number : std::max(extent.maximum, number);
    extent.first = extent.values == 0 ? number : extent.first;
    extent.last = number;
    ++extent.values;
  }
  return extent;
}

bool areSame(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void expectSame(const Extent& found, const Extent& expected) {
  EXPECT_EQ(found.values, expected.values);
  EXPECT_EQ(found.gaps, expected.gaps);
  EXPECT_TRUE(areSame(found.minimum, expected.minimum)) << found.minimum;
  EXPECT_TRUE(areSame(found.maximum, expected.maximum)) << found.maximum;
  EXPECT_TRUE(areSame(found.first, expected.first)) << found.first;
  EXPECT_TRUE(areSame(found.last, expected.last)) << found.last;
}

class RandomSeries : public testing::TestWithParam<Times> {};

}  // namespace

TEST_P(RandomSeries, ExtentsAreThoseOfThePlainSamples) {
  std::mt19937 random(7);
  for (const std::size_t count : {1U, 127U, 128U, 129U, 5000U, 40000U}) {
    const MemorySamples samples = randomSamples(random, count, GetParam());
    const Series series(samples.source(), mdf_reader::ColumnType::float64);
    const double last = series.axis().last();
    for (int i = 0; i < 40; ++i) {
      const double from = last * (static_cast<double>(random() % 1000) / 900 - 0.05);
      const double to = from + last * static_cast<double>(random() % 1000) / 1000;
      SCOPED_TRACE(std::to_string(count) + ": " + std::to_string(from) + ", " + std::to_string(to));
      expectSame(series.extent(from, to), plainExtent(samples, from, to));
    }
    expectSame(series.extent(-infinity, infinity), plainExtent(samples, -infinity, infinity));
  }
}

TEST_P(RandomSeries, TracesHaveTheExtremesOfEachStretch) {
  std::mt19937 random(11);
  const MemorySamples samples = randomSamples(random, 400000, GetParam());
  Series series(samples.source(), mdf_reader::ColumnType::float64);
  const double last = series.axis().last();
  for (const double part : {1.0, 0.7, 0.2, 0.01}) {
    const Window window{last * (1 - part) / 2, last * (1 + part) / 2, 300};
    const Trace trace = series.trace(window);
    ASSERT_TRUE(std::is_sorted(trace.x.begin(), trace.x.end()));
    // A trace goes a bucket beyond the window at most.
    const Extent all = Extent::of(trace.y.data(), trace.y.size());
    const Extent inside = plainExtent(samples, window.from, window.to);
    const Extent seen = plainExtent(samples, trace.x.front(), trace.x.back());
    EXPECT_LE(all.minimum, inside.minimum);
    EXPECT_GE(all.maximum, inside.maximum);
    EXPECT_GE(all.minimum, seen.minimum);
    EXPECT_LE(all.maximum, seen.maximum);
    EXPECT_LE(trace.x.size(), 5 * window.pixels);
  }
}

INSTANTIATE_TEST_SUITE_P(Times, RandomSeries,
                         testing::Values(Times::regular, Times::in_bursts, Times::equal,
                                         Times::falling));

TEST(Series, FewSamplesAreTheTrace) {
  const MemorySamples samples{{0, 1, 2, 3, 4}, {5, 6, gap, 8, 9}};
  Series series(samples.source(), mdf_reader::ColumnType::float64);
  const Trace trace = series.trace({1.5, 2.5, 100});
  EXPECT_TRUE(trace.is_exact);
  EXPECT_EQ(trace.x, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(trace.y[0], 6);
  EXPECT_TRUE(std::isnan(trace.y[1]));
  EXPECT_EQ(trace.y[2], 8);
}

TEST(Series, SampleAtATimeIsTheLastOneUpToIt) {
  const MemorySamples samples{{0, 1, 1, 0.5, 4}, {5, 6, 7, 8, 9}};
  const Series series(samples.source(), mdf_reader::ColumnType::float64);
  EXPECT_FALSE(series.at(-0.1));
  EXPECT_EQ(series.at(0.5)->value, "5");
  EXPECT_EQ(series.at(3)->value, "7");
  EXPECT_EQ(series.at(3)->time, 1);
  EXPECT_EQ(series.axis().outOfOrder(), 1U);
}

TEST(Series, ChannelWithoutATimeInOrderHasNothingToDraw) {
  const MemorySamples samples{{gap, gap}, {1, 2}};
  Series series(samples.source(), mdf_reader::ColumnType::float64);
  EXPECT_TRUE(series.trace({-10, 10, 100}).x.empty());
  EXPECT_FALSE(series.at(5));
}

TEST(Extent, MeanAndDeviationOfPartsAreThoseOfTheWhole) {
  Extent extent;
  const std::vector<double> numbers = {2, 4, 4, gap, 4, 5, 5, 7, 9};
  extent.append(Extent::of(numbers.data(), 3));
  extent.append(Extent::of(numbers.data() + 3, 1));
  extent.append(Extent::of(numbers.data() + 4, 5));
  EXPECT_EQ(extent.mean, 5);
  EXPECT_NEAR(extent.deviation(), std::sqrt(32.0 / 7), 1e-12);
  EXPECT_EQ(extent.gaps, 1U);
}

TEST(Series, TheSampleBeforeManyThatAreOutOfOrderIsStillThere) {
  MemorySamples samples;
  for (int i = 0; i < 1000; ++i) {
    const bool falls = i >= 300 && i < 900;
    samples.times.push_back(falls ? 1 : i);
    samples.numbers.push_back(i);
  }
  Series series(samples.source(), ColumnType::float64);
  EXPECT_EQ(series.at(299.5)->value, "299");
  EXPECT_EQ(series.at(899)->time, 299);
  EXPECT_EQ(series.at(900)->value, "900");
}

TEST(Bands, TellWhereATextChangesAndWhereTheyAreTooDense) {
  Bands bands;
  const std::uint32_t on = bands.codeOf("on");
  const std::uint32_t off = bands.codeOf("off");
  EXPECT_EQ(bands.codeOf("on"), on);
  bands.add(0, on);
  bands.add(1, on);
  bands.add(2, off);
  bands.add(10, on);
  bands.add(10.1, Bands::no_text);
  bands.add(10.2, off);
  EXPECT_EQ(bands.at(-1), Bands::no_text);
  EXPECT_EQ(bands.at(1.5), on);
  EXPECT_EQ(bands.at(99), off);
  using Runs = std::vector<Bands::Run>;
  EXPECT_EQ(bands.runs(1, 20, 1000),
            (Runs{{0, on}, {2, off}, {10, on}, {10.1, Bands::no_text}, {10.2, off}}));
  EXPECT_EQ(bands.runs(1, 11, 10), (Runs{{0, on}, {2, off}, {10, Bands::several}, {10.2, off}}));
}

}  // namespace mdf_tests
