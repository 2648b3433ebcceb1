#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>

#include "memory_samples.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"
#include "viewing/viewed_file.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace {

constexpr auto number = mdf_reader::ColumnType::float64;
constexpr auto text = mdf_reader::ColumnType::text;

void expectSame(const std::vector<double>& found, const std::vector<double>& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    ASSERT_TRUE(found[i] == expected[i] || (std::isnan(found[i]) && std::isnan(expected[i]))) << i;
  }
}

void expectSame(const Axis& found, const Axis& expected) {
  EXPECT_EQ(found.records(), expected.records());
  EXPECT_EQ(found.outOfOrder(), expected.outOfOrder());
  EXPECT_EQ(found.first(), expected.first());
  ASSERT_EQ(found.buckets(), expected.buckets());
  for (std::size_t i = 0; i < found.buckets(); ++i) {
    EXPECT_EQ(found.begin(i), expected.begin(i)) << i;
    EXPECT_EQ(found.end(i), expected.end(i)) << i;
  }
}

/// At every level: stretches of buckets that begin and end anywhere.
void expectSame(const Pyramid& found, const Pyramid& expected) {
  ASSERT_EQ(found.buckets(), expected.buckets());
  for (std::size_t begin = 0; begin < found.buckets(); begin += begin < 20 ? 1 : 7) {
    EXPECT_EQ(found.bucket(begin), expected.bucket(begin)) << begin;
    EXPECT_EQ(found.of(begin, found.buckets()), expected.of(begin, found.buckets())) << begin;
  }
}

void expectSame(Series& found, Series& expected) {
  expectSame(found.axis(), expected.axis());
  expectSame(found.outline().pyramid(), expected.outline().pyramid());
  const double last = expected.axis().last();
  EXPECT_EQ(found.bands().runs(-infinity, infinity, 1),
            expected.bands().runs(-infinity, infinity, 1));
  EXPECT_EQ(found.bands().runs(0, last, 1000000), expected.bands().runs(0, last, 1000000));
  for (const double part : {1.0, 0.5, 0.01}) {
    const Trace trace = found.trace({last * (1 - part), last, 100});
    const Trace wanted = expected.trace({last * (1 - part), last, 100});
    EXPECT_EQ(trace.x, wanted.x);
    expectSame(trace.y, wanted.y);
  }
}

/// Whether a series of the first samples goes on to all; it is then as if all had been read at
/// once.
bool goesOn(const MemorySamples& all, std::size_t first, bool has_texts) {
  MemorySamples samples = all.first(first);
  const auto source = has_texts ? samples.texts() : samples.source();
  Series series(source, has_texts ? text : number);
  samples = all;
  if (!series.goOn()) {
    return false;
  }
  // Eighteen buckets were compared at most, and the last one is read again.
  EXPECT_LE(samples.read, 19 * Pyramid::bucket_size + all.times.size() - first);
  Series at_once(source, has_texts ? text : number);
  expectSame(series, at_once);
  return true;
}

class GrowingSeries : public testing::TestWithParam<Times> {};

}  // namespace

TEST_P(GrowingSeries, IsWhatItWouldBeIfReadAtOnce) {
  std::mt19937 random(3);
  const MemorySamples all = randomSamples(random, 40000, GetParam());
  for (const std::size_t first : {128U, 255U, 2049U, 32768U}) {
    for (const std::size_t added : {0U, 1U, 127U, 1300U}) {
      for (const bool has_texts : {false, true}) {
        SCOPED_TRACE(std::to_string(first) + " + " + std::to_string(added));
        EXPECT_TRUE(goesOn(all.first(first + added), first, has_texts));
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Times, GrowingSeries,
                         testing::Values(Times::regular, Times::in_bursts, Times::equal));

TEST(GrowingSeries, TimesMayFallAtTheSeamAndInTheBucketThatIsReadAgain) {
  MemorySamples all;
  for (int i = 0; i < 3000; ++i) {
    const bool falls = (i >= 950 && i < 960) || (i >= 1000 && i < 1300);
    all.times.push_back(falls ? i - 120 : i);
    all.numbers.push_back(i % 10);
  }
  for (const std::size_t first : {900U, 955U, 1000U, 1001U, 1023U}) {
    EXPECT_TRUE(goesOn(all, first, false)) << first;
    EXPECT_TRUE(goesOn(all, first, true)) << first;
  }
}

TEST(GrowingSeries, GrowsMoreThanOnce) {
  std::mt19937 random(5);
  const MemorySamples all = randomSamples(random, 6000, Times::in_bursts);
  MemorySamples samples = all.first(1000);
  Series series(samples.source(), number);
  for (std::size_t count = 1000; count <= 6000; count += 61) {
    samples = all.first(count);
    ASSERT_TRUE(series.goOn()) << count;
  }
  samples = all;
  ASSERT_TRUE(series.goOn());
  Series at_once(samples.source(), number);
  expectSame(series, at_once);
}

TEST(GrowingSeries, IsNotOneWhenSamplesAreNotAsTheyWere) {
  std::mt19937 random(9);
  const MemorySamples all = randomSamples(random, 6000, Times::regular);
  const auto goesOnAfter = [&](const auto& change) {
    MemorySamples samples = all.first(5000);
    Series series(samples.source(), number);
    samples = all;
    change(samples);
    return series.goOn();
  };
  EXPECT_TRUE(goesOnAfter([](MemorySamples& /*samples*/) {}));
  // Of 39 full buckets the first, the 20th and the last 16.
  for (const std::size_t changed : {0U, 127U, 19U * 128, 23U * 128, 39U * 128 - 1}) {
    EXPECT_FALSE(goesOnAfter([=](MemorySamples& some) { some.numbers[changed] = 99999; }));
    EXPECT_FALSE(goesOnAfter([=](MemorySamples& some) { some.times[changed] = gap; }));
  }
  EXPECT_FALSE(goesOnAfter([](MemorySamples& some) { some = some.first(4000); }));
  EXPECT_FALSE(goesOnAfter([](MemorySamples& some) { some = some.first(0); }));
}

TEST(GrowingSeries, IsNotOneWhereRoomWasTakenForRecordsThatCameLater) {
  MemorySamples all;
  for (int i = 0; i < 2000; ++i) {
    all.times.push_back(i < 500 ? i : 0);
    all.numbers.push_back(i < 500 ? 1 : 0);
  }
  EXPECT_FALSE(goesOn(all, 1500, false));
  EXPECT_FALSE(goesOn(all, 100, false)) << "less than a bucket";
}

namespace {

/// A channel of bytes and one of the texts "even" and "odd", each second; the data come last.
std::string recording(std::size_t seconds, std::size_t add) {
  FileBuilder file;
  const std::uint64_t even = file.text("even");
  const std::uint64_t odd = file.text("odd");
  ChannelSpec parity = channelOf("parity", 0, 8, 1);
  parity.conversion = file.addConversion({7, {even, odd, 0}, {0, 1}});
  const std::uint64_t group =
      file.addSortedGroup({seconds, 9}, {timeChannel(), channelOf("level", 0, 8, 8), parity}, 0);
  Bytes records;
  for (std::size_t i = 0; i < seconds; ++i) {
    records.f64(static_cast<double>(i)).u8(static_cast<std::uint8_t>((i + add) % 100));
  }
  constexpr std::size_t data_link = 2;
  file.link(group, data_link, file.addData(records));
  return file.bytes();
}

class GrowingFile : public testing::Test {
 protected:
  /// The number of the file's revision, and what the whole of a channel is like.
  std::string look(std::size_t column) {
    std::string seen = std::to_string(viewed_.refresh()) + ':';
    viewed_.withSeries(0, column, [&](Series& series) {
      const Extent extent = series.extent(-infinity, infinity);
      const auto sum = std::lround(extent.mean * static_cast<double>(extent.values));
      seen += series.isNumeric() ? std::to_string(extent.values) + ' ' + std::to_string(sum)
                                 : std::to_string(series.bands().runs());
    });
    return seen;
  }

  /// Writes in place, a second later.
  void write(const std::string& bytes) {
    const auto before = std::filesystem::last_write_time(file_.path());
    file_.writeAt(0, bytes);
    std::filesystem::last_write_time(file_.path(), before + std::chrono::seconds(1));
  }

  TempFile file_{recording(1000, 0)};
  SeriesStore store_{std::size_t{1} << 26U};
  ViewedFile viewed_{file_.path(), 0, store_};
};

}  // namespace

TEST_F(GrowingFile, IsAddedTo) {
  EXPECT_EQ(look(1), "0:1000 49500");
  EXPECT_EQ(look(2), "0:1000");
  write(recording(1250, 0));
  EXPECT_EQ(look(1), "1:1250 60625");
  write(recording(3000, 0));
  EXPECT_EQ(look(2), "2:3000");
  EXPECT_EQ(look(1), "2:3000 148500");
}

TEST_F(GrowingFile, ThatIsAnotherOneOfTheSameShapeIsReadAnew) {
  EXPECT_EQ(look(1), "0:1000 49500");
  write(recording(1050, 50));
  EXPECT_EQ(look(1), "1:1050 53225") << "longer";
  write(recording(1050, 51));
  EXPECT_EQ(look(1), "2:1050 53175") << "as long";
}

}  // namespace mdf_tests
