#include "golden_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>

#include "support/bytes.h"

using namespace mdf_tests;

namespace {

const Sections sections = {{"base", "a\nb\nc\nd\ne\nf\n"},
                           {"one", "a\nB\nc\nd\ne\nf\n"},
                           {"other", "|\n \n"},
                           {"two", "a\nb\nx\n\nd\ne\nf\n"},
                           {"short", "a\nb\ne\n"},
                           {"long", "0\na\nb\nc\nd\ne\nf\ng\nh\n"},
                           {"same", "a\nb\nc\nd\ne\nf\n"}};

const std::string written =
    "== base\n== same\na\nb\nc\nd\ne\nf\n"
    "== one like base\n2|B\n"
    "== other\n|\n \n"
    "== two like base\n3|x\n|\n"
    "== short\na\nb\ne\n"
    "== long like base\n0+|0\n6+|g\n|h\n";

TEST(GoldenText, ShowsWhatDiffersFromTheClosestSection) {
  EXPECT_EQ(goldenText(sections), written);
  EXPECT_EQ(
      goldenText({{"base", "a\nb\nc\nd\ne\n"}, {"less", "c\nd\ne\n"}, {"hole", "a\nb\nd\ne\n"}}),
      "== base\na\nb\nc\nd\ne\n== less like base\n1-2 gone\n== hole like base\n3 gone\n");
}

TEST(GoldenText, HasTheTextOfEachSection) {
  Sections read = goldenSections(written);
  Sections expected = sections;
  std::sort(read.begin(), read.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(read, expected);
}

TEST(GoldenText, MistakesAreNoText) {
  for (const std::string change :
       {"1", "1x", "x|", "8|a", "2-9|a", "1|a\n1|b", "7+|a", "1 go", ""}) {
    EXPECT_THROW(goldenSections("== a\n1\n2\n3\n4\n5\n6\n== b like a\n" + change + "\n"),
                 std::logic_error)
        << change;
  }
  EXPECT_THROW(goldenSections("== b like a\n1|x\n"), std::out_of_range);
  EXPECT_THROW(goldenText({{"a", ""}}), std::invalid_argument);
  EXPECT_THROW(goldenText({{"a", "== b\n"}}), std::invalid_argument);
}

TEST(GoldenText, NamesBlocksInsteadOfTheirPlaces) {
  Bytes file = Bytes().zeros(64);
  for (int i = 0; i < 11; ++i) {
    file.header("CN", 24, 0);
  }
  const std::string text = "f.mf4: CN 64 (0x40) CN 88 (0x58) CN 304 (0x130) TX 64 (0x40)\n";
  const std::string short_text = "FILE: CN#1 CN#2 CN#11 TX 64 (0x40)\n";
  EXPECT_EQ(withoutPlaces(text, "f.mf4", file), short_text);
  EXPECT_EQ(withPlaces(short_text, "f.mf4", file), text);
}

}  // namespace
