#include "reader/blocks/codes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace mdf_reader;

namespace {

TEST(Codes, EachHasATitleAMeaningAndAdvice) {
  for (const CodeText& code : allCodes()) {
    for (const std::string_view text : {code.title, code.meaning, code.advice}) {
      ASSERT_FALSE(text.empty()) << code.word;
      EXPECT_NE(text.back(), '\n') << code.word;
    }
    EXPECT_NE(code.title.back(), '.') << code.word;
    EXPECT_EQ(code.meaning.back(), '.') << code.word;
    EXPECT_EQ(code.advice.back(), '.') << code.word;
  }
}

TEST(Codes, EachIsFoundByItsNumberAndItsWord) {
  std::set<std::string_view> words;
  for (const CodeText& code : allCodes()) {
    EXPECT_EQ(&textOf(code.code), &code) << code.word;
    EXPECT_EQ(findCode(code.word), &code) << code.word;
    EXPECT_TRUE(words.insert(code.word).second) << code.word;
  }
  EXPECT_EQ(findCode("no-such-code"), nullptr);
  EXPECT_EQ(findCode(""), nullptr);
}

TEST(Codes, SeveritiesHaveWords) {
  EXPECT_EQ(severityWord(Severity::note), "note");
  EXPECT_EQ(severityWord(Severity::warning), "warning");
  EXPECT_EQ(severityWord(Severity::error), "error");
}

}  // namespace
