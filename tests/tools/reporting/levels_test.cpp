#include "reporting/levels.h"

#include <gtest/gtest.h>

#include "reporting/number_levels.h"
#include "reporting/text_levels.h"

namespace mdf_tests {

using namespace mdf_tools;
using namespace std::string_literals;

namespace {

/// Detail that takes some bytes, and half of them down to a limit.
class Halved : public Levels {
 public:
  explicit Halved(std::size_t bytes) : bytes_(bytes) {}
  std::size_t size() const override { return bytes_; }
  bool canCoarsen() const override { return bytes_ >= 20; }
  void coarsen() override { bytes_ /= 2; }
  std::vector<PackedNumbers> pack() const override { return {}; }

 private:
  std::size_t bytes_;
};

std::size_t sizeOf(const Levels& levels) { return levels.size(); }

/// So many samples from 0 on, at the times 0, 1, 2...: even ones are their number, odd ones gaps.
void addRamp(NumberLevels& levels, std::size_t begin, std::size_t end) {
  std::vector<double> times;
  std::vector<double> numbers;
  for (std::size_t i = begin; i < end; ++i) {
    times.push_back(static_cast<double>(i));
    numbers.push_back(i % 2 == 0 ? static_cast<double>(i) : Extent::none);
  }
  levels.add(times, {numbers});
}

std::string typesOf(const std::vector<PackedNumbers>& packed) {
  std::string types;
  for (const PackedNumbers& numbers : packed) {
    types.append(numbers.type).append(" ").append(std::to_string(numbers.count)).append(" ");
  }
  return types;
}

/// The numbers of the type "i2".
std::vector<int> integersOf(const PackedNumbers& packed) {
  std::vector<int> numbers;
  for (std::size_t i = 0; i + 1 < packed.bytes.size(); i += 2) {
    const auto low = static_cast<unsigned char>(packed.bytes[i]);
    numbers.push_back(low + 256 * static_cast<signed char>(packed.bytes[i + 1]));
  }
  return numbers;
}

}  // namespace

TEST(FitLevels, WhatTakesMostIsHalvedFirst) {
  Halved small(30);
  Halved large(400);
  std::vector<std::size_t> sizes{30, 400};
  EXPECT_TRUE(fitLevels({&small, &large}, sizes, sizeOf, 200));
  EXPECT_EQ(sizes, (std::vector<std::size_t>{30, 100}));
  EXPECT_TRUE(fitLevels({&small, &large}, sizes, sizeOf, 130));
  EXPECT_EQ(sizes, (std::vector<std::size_t>{30, 100}));
  EXPECT_FALSE(fitLevels({&small, &large}, sizes, sizeOf, 26));
  EXPECT_EQ(sizes, (std::vector<std::size_t>{15, 12}));
}

TEST(NumberLevels, SamplesAreWholeAtFirst) {
  NumberLevels levels(1);
  addRamp(levels, 0, 3);
  EXPECT_EQ(levels.width(), 1U);
  EXPECT_FALSE(levels.canCoarsen());
  const auto packed = levels.pack();
  ASSERT_EQ(packed.size(), 2U);
  EXPECT_EQ(packed[0].bytes, "\x00\x01\x02"s);
  EXPECT_EQ(packed[1].bytes, "\x00\x00\x00\x00\x00\x00\xC0\x7F\x00\x00\x00\x40"s);
}

TEST(NumberLevels, GroupsOfEightTellTheSameAsTheirSamples) {
  NumberLevels levels(1);
  addRamp(levels, 0, 2050);
  ASSERT_TRUE(levels.canCoarsen());
  levels.coarsen();
  EXPECT_EQ(levels.width(), 8U);
  const auto packed = levels.pack();
  // Times, and minimum, maximum, first, last, mean, squares, values and gaps.
  EXPECT_EQ(typesOf(packed),
            "i2 257 i2 257 i2 257 i2 257 i2 257 i2 257 i2 257 i1 257 i1 257 i1 257 ");
  const std::vector<std::vector<int>> second_and_last{{8, 2048}, {15, 2049}, {8, 2048}, {14, 2048},
                                                      {8, 2048}, {14, 2048}, {11, 2048}};
  for (std::size_t i = 0; i < second_and_last.size(); ++i) {
    const std::vector<int> numbers = integersOf(packed[i]);
    EXPECT_EQ((std::vector<int>{numbers[1], numbers.back()}), second_and_last[i]) << i;
  }
  // 8, 10, 12 and 14 are 3, 1, 1 and 3 from their mean.
  EXPECT_EQ(packed[7].bytes[1], 20);
  EXPECT_EQ(packed[8].bytes.substr(255), "\x04\x01");
  EXPECT_EQ(packed[9].bytes.substr(255), "\x04\x01");
}

TEST(NumberLevels, LaterSamplesGoOnWithTheLastGroup) {
  NumberLevels at_once(1);
  addRamp(at_once, 0, 5000);
  at_once.coarsen();
  at_once.coarsen();
  NumberLevels later(1);
  addRamp(later, 0, 2050);
  later.coarsen();
  addRamp(later, 2050, 2061);
  addRamp(later, 2061, 4100);
  later.coarsen();
  addRamp(later, 4100, 5000);
  EXPECT_EQ(later.width(), 16U);
  EXPECT_EQ(later.records(), 5000U);
  const auto expected = at_once.pack();
  const auto found = later.pack();
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(found[i].bytes, expected[i].bytes) << i;
  }
}

TEST(NumberLevels, FewGroupsAreLeftAlone) {
  NumberLevels levels(1);
  addRamp(levels, 0, 4095);
  levels.coarsen();
  EXPECT_TRUE(levels.canCoarsen());
  levels.coarsen();
  EXPECT_EQ(integersOf(levels.pack()[1]).size(), 256U);
  EXPECT_FALSE(levels.canCoarsen());
}

TEST(TextLevels, ChangesAreKept) {
  TextLevels levels;
  levels.add(0, "on");
  levels.add(1, "on");
  levels.add(2, "off <&>");
  levels.addGap(3);
  levels.add(4, "on");
  const auto packed = levels.pack();
  ASSERT_EQ(packed.size(), 3U);
  EXPECT_EQ(packed[0].bytes, "\x00\x02\x03\x04"s);
  EXPECT_EQ(packed[1].bytes, "\x00\x01\xFF\x00"s);
  EXPECT_EQ(packed[2].type, "text");
  EXPECT_EQ(packed[2].bytes, R"(["on","off <&>"])");
}

TEST(TextLevels, WithoutSamplesThereIsNothing) {
  const TextLevels levels;
  EXPECT_EQ(typesOf(levels.pack()), "same 0 same 0 text 0 ");
}

TEST(TextLevels, OfALongTextTheBeginningIsKept) {
  TextLevels levels;
  levels.add(0, std::string(196, 'x') + "\xC3\xA4" + std::string(10, 'y'));
  levels.add(1, std::string(200, 'z'));
  EXPECT_EQ(levels.pack()[2].bytes,
            "[\"" + std::string(196, 'x') + "…\",\"" + std::string(200, 'z') + "\"]");
}

TEST(TextLevels, ChangesNearToOneAnotherBecomeSeveral) {
  TextLevels levels;
  for (int i = 0; i < 1000; ++i) {
    levels.add(0.001 * i, i % 2 == 0 ? "a" : "b");
  }
  levels.add(1000, "c");
  ASSERT_TRUE(levels.canCoarsen());
  levels.coarsen();
  EXPECT_FALSE(levels.canCoarsen());
  levels.add(2000, "a");
  const auto packed = levels.pack();
  EXPECT_EQ(packed[1].bytes, "\xFE\x00\x01\x02"s);
  EXPECT_EQ(packed[2].bytes, R"(["b","c","a"])");
}

}  // namespace mdf_tests
