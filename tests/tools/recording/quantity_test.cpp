#include "recording/quantity.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using namespace mdf_tools;

namespace {

template <class Parse>
std::string complaint(Parse parse, const std::string& text) {
  try {
    parse(text);
    return "accepted";
  } catch (const BadOption& error) {
    return error.what();
  }
}

TEST(Quantity, DurationsAreSecondsWhateverTheirUnit) {
  const std::vector<std::pair<std::string, double>> durations = {
      {"10", 10},  {"10s", 10}, {"10 s", 10}, {"250ms", 0.25}, {"1.5min", 90},       {"0.5h", 1800},
      {".5", 0.5}, {"2.", 2},   {"0", 0},     {"0ms", 0},      {"87660h", 315576000}};
  for (const auto& [text, seconds] : durations) {
    EXPECT_EQ(parseDuration(text), seconds) << text;
  }
}

TEST(Quantity, RatesAreHertzWhateverTheirUnit) {
  const std::vector<std::pair<std::string, double>> rates = {
      {"100", 100},    {"100Hz", 100},     {"0.5Hz", 0.5},
      {"2 kHz", 2000}, {"100kHz", 100000}, {"0.00001", 0.00001}};
  for (const auto& [text, hertz] : rates) {
    EXPECT_EQ(parseRate(text), hertz) << text;
  }
}

/// Expects that each text is refused with itself and this sentence.
template <class Parse>
void expectRefused(Parse parse, const std::vector<std::string>& texts,
                   const std::string& sentence) {
  for (const std::string& text : texts) {
    EXPECT_EQ(complaint(parse, text), '"' + text + sentence);
  }
}

TEST(Quantity, WhatIsNoneOrOutOfRangeIsRefusedWithOneSentence) {
  expectRefused(parseDuration,
                {"", " ", "s", "ten", "10x", "10 ", "10  s", "10sec", "1e3", "0x10", "nan", "inf",
                 "--1", "+1", "1,5", "10S", "1h30min", "."},
                "\" is not a duration; write a number and ms, s, min or h, such as 10s or 1.5h");
  expectRefused(parseRate, {"", "Hz", "fast", "100s", "100HZ", "1MHz", "nan", "inf", "1e3"},
                "\" is not a rate; write a number and Hz or kHz, such as 100Hz or 0.5Hz");
  expectRefused(parseDuration, {"-1", "-1ms", "87661h", "99999999999999999999"},
                "\" is out of range; a duration is 0, for no end, to 10 years");
  expectRefused(parseRate, {"0", "0kHz", "-1", "-100Hz", "0.000009", "100.1kHz", "100001"},
                "\" is out of range; a rate is 0.00001Hz to 100kHz");
}

TEST(Quantity, LimitsOfFilesAreSizesOrTimes) {
  const auto limit = [](const std::string& text) {
    const FileLimit parsed = parseFileLimit(text);
    return std::to_string(parsed.bytes) + " B, " + std::to_string(parsed.nanoseconds) + " ns";
  };
  EXPECT_EQ(limit("1GB"), "1000000000 B, 0 ns");
  EXPECT_EQ(limit("100 kB"), "100000 B, 0 ns");
  EXPECT_EQ(limit("1.5MB"), "1500000 B, 0 ns");
  EXPECT_EQ(limit("10min"), "0 B, 600000000000 ns");
  EXPECT_EQ(limit("1s"), "0 B, 1000000000 ns");
  expectRefused(
      parseFileLimit, {"", "10", "1.5", "MB", "1mb", "1B", "ten", "1s "},
      "\" is neither a size nor a time; write a number and kB, MB, GB, TB, s, min or h, such "
      "as 1GB or 10min");
  expectRefused(parseFileLimit, {"99kB", "-1GB", "1000001TB", "999ms", "0s", "100000h"},
                "\" is out of range; a file has 100kB to 1000000TB, or 1s to 10 years");
}

TEST(Quantity, ShortNumbersHaveNoMoreDigitsThanTheyNeed) {
  EXPECT_EQ(shortNumber(100000), "100000");
  EXPECT_EQ(shortNumber(0.5), "0.5");
  EXPECT_EQ(shortNumber(0.00001), "0.00001");
}

}  // namespace
