#include "checking/codes.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using mdf_tools::allCodes;
using mdf_tools::CodeText;
using mdf_tools::findCode;
using mdf_tools::Severity;
using mdf_tools::severityWord;
using mdf_tools::textOf;

namespace {

/// What docs/check.md says of a code.
std::string section(const CodeText& code) {
  return "### `" + std::string(code.word) + "`\n\n" + std::string(severityWord(code.severity)) +
         ": " + std::string(code.meaning) + "\n";
}

TEST(Codes, DocumentationHasTheTextOfEachCodeAndNoOther) {
  std::string sections;
  for (const CodeText& code : allCodes()) {
    sections += "\n" + section(code);
  }
  const std::string page = bytesOf(MDF_CHECK_PAGE);
  const std::string heading = "\n## Codes\n";
  const std::size_t begin = page.find(heading);
  ASSERT_NE(begin, std::string::npos);
  EXPECT_EQ(page.substr(begin + heading.size()), sections);
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
