#include "recording/trigger.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "recording/quantity.h"

using namespace mdf_tools;

namespace {

const std::vector<SignalGroup> groups = {
    {"other", {uint64Signal("n", "")}},
    {"group", {float32Signal("a", "V"), uint64Signal("b [>=]", ""), float64Signal("c", "")}, true}};

/// '1' for each value with which the condition becomes true. They are those of all channels.
std::string firings(const std::string& condition, const std::vector<double>& values) {
  Trigger trigger(parseCondition(condition), groups);
  std::string text;
  for (const double value : values) {
    const auto bits = {bitsOf(static_cast<float>(value)),
                       std::isnan(value) ? 0 : static_cast<mdf_v4_10::UINT64>(std::abs(value)),
                       bitsOf(value)};
    EXPECT_FALSE(trigger.fires({0, 0, {100}}));
    text += trigger.fires({1, 0, bits, {}, {false, false, value == 0}}) ? '1' : '0';
  }
  return text;
}

TEST(Trigger, FiresWhenAConditionBecomesTrue) {
  const std::vector<double> values = {1, 2, 3, 3, 2, 1};
  EXPECT_EQ(firings("a > 2", values), "001000");
  EXPECT_EQ(firings("a >= 2", values), "010000");
  EXPECT_EQ(firings("b [>=] < 2", values), "100001");
  EXPECT_EQ(firings(" b [>=]<=2 ", values), "100010");
  EXPECT_EQ(firings("c == 2e0", values), "010010");
  EXPECT_EQ(firings("c!=2", values), "101001");
  EXPECT_EQ(firings("c > -1.5", {-1, -2, -1}), "101");
}

TEST(Trigger, MissingValueIsNeitherTrueNorFalse) {
  EXPECT_EQ(firings("c > 1", {2, 0, NAN, 2, 1, NAN, 0, 3}), "10000001");
  EXPECT_EQ(firings("c != 1", {NAN, 1, 0, 2}), "0001");
}

TEST(Trigger, ComparesNumbersOf32BitsAsTheyAreStored) {
  EXPECT_EQ(firings("a > 0.1", {0.1, 0.2}), "01");
  EXPECT_EQ(firings("a == 0.1", {0.1, 0.2}), "10");
}

TEST(Trigger, RefusesWhatIsNoCondition) {
  for (const std::string text :
       {"", "a", ">", "> 1", "a >", "a 1", "a = 1", "a ! 1", "a > x", "a > 1 V", "a > 1,5",
        "a > nan", "a > inf", "a > 0x1", "a > b", "1 < a"}) {
    try {
      parseCondition(text);
      ADD_FAILURE() << text;
    } catch (const BadOption& error) {
      EXPECT_EQ(error.what(), '"' + text +
                                  "\" is no condition; write a channel, one of > >= < <= == != and "
                                  "a number, such as \"cpu_total > 90\"");
    }
  }
}

}  // namespace
