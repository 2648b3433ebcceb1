#include "recording/quantity.h"

#include <gtest/gtest.h>

using namespace mdf_tools;

namespace {

template <class Parse>
std::string complaint(Parse parse, const std::string& text) {
  try {
    return "accepted as " + shortNumber(parse(text));
  } catch (const BadQuantity& error) {
    return error.what();
  }
}

TEST(Quantity, DurationsAreSecondsWhateverTheirUnit) {
  EXPECT_EQ(parseDuration("10"), 10);
  EXPECT_EQ(parseDuration("10s"), 10);
  EXPECT_EQ(parseDuration("10 s"), 10);
  EXPECT_EQ(parseDuration("250ms"), 0.25);
  EXPECT_EQ(parseDuration("1.5min"), 90);
  EXPECT_EQ(parseDuration("0.5h"), 1800);
  EXPECT_EQ(parseDuration(".5"), 0.5);
  EXPECT_EQ(parseDuration("2."), 2);
  EXPECT_EQ(parseDuration("0"), 0);
  EXPECT_EQ(parseDuration("0ms"), 0);
  EXPECT_EQ(parseDuration("87660h"), 315576000);
}

TEST(Quantity, RatesAreHertzWhateverTheirUnit) {
  EXPECT_EQ(parseRate("100"), 100);
  EXPECT_EQ(parseRate("100Hz"), 100);
  EXPECT_EQ(parseRate("0.5Hz"), 0.5);
  EXPECT_EQ(parseRate("2 kHz"), 2000);
  EXPECT_EQ(parseRate("100kHz"), 100000);
  EXPECT_EQ(parseRate("0.00001"), 0.00001);
}

TEST(Quantity, WhatIsNoDurationIsRefusedWithOneSentence) {
  for (const std::string text : {"", " ", "s", "ten", "10x", "10 ", "10  s", "10sec", "1e3", "0x10",
                                 "nan", "inf", "--1", "+1", "1,5", "10S", "1h30min", "."}) {
    EXPECT_EQ(complaint(parseDuration, text),
              '"' + text +
                  "\" is not a duration; write a number and ms, s, min or h, such as 10s or 1.5h");
  }
}

TEST(Quantity, WhatIsNoRateIsRefusedWithOneSentence) {
  for (const std::string text : {"", "Hz", "fast", "100s", "100HZ", "1MHz", "nan", "inf", "1e3"}) {
    EXPECT_EQ(
        complaint(parseRate, text),
        '"' + text + "\" is not a rate; write a number and Hz or kHz, such as 100Hz or 0.5Hz");
  }
}

TEST(Quantity, DurationsOutOfRangeAreRefused) {
  for (const std::string text : {"-1", "-1ms", "87661h", "99999999999999999999"}) {
    EXPECT_EQ(complaint(parseDuration, text),
              '"' + text + "\" is out of range; a duration is 0, for no end, to 10 years");
  }
}

TEST(Quantity, RatesOutOfRangeAreRefused) {
  for (const std::string text : {"0", "0kHz", "-1", "-100Hz", "0.000009", "100.1kHz", "100001"}) {
    EXPECT_EQ(complaint(parseRate, text),
              '"' + text + "\" is out of range; a rate is 0.00001Hz to 100kHz");
  }
}

TEST(Quantity, ShortNumbersHaveNoMoreDigitsThanTheyNeed) {
  EXPECT_EQ(shortNumber(100000), "100000");
  EXPECT_EQ(shortNumber(0.5), "0.5");
  EXPECT_EQ(shortNumber(0.00001), "0.00001");
}

}  // namespace
