#include "checking/text_check.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tools/support/checked.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;
using mdf_tools::Utf8Check;

namespace {

/// All bytes at once or one by one make no difference.
bool isUtf8(std::string_view bytes) {
  Utf8Check whole;
  whole.take(bytes);
  Utf8Check pieces;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    pieces.take(bytes.substr(i, 1));
  }
  EXPECT_EQ(whole.isFine(), pieces.isFine());
  return whole.isFine();
}

TEST(Utf8Check, FirstAndLastCharactersOfEachLength) {
  for (const char* const fine : {"", "\x01\x7F", "\xC2\x80\xDF\xBF", "\xE0\xA0\x80\xEF\xBF\xBF",
                                 "\xED\x9F\xBF\xEE\x80\x80", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isUtf8(fine)) << fine;
  }
}

TEST(Utf8Check, LongerFormsThanNeededSurrogatesAndNumbersThatAreTooLarge) {
  for (const char* const wrong :
       {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF"}) {
    EXPECT_FALSE(isUtf8(wrong)) << wrong;
  }
}

TEST(Utf8Check, CharactersThatAreCutOrHaveNoBeginning) {
  for (const std::string_view character : {"\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x9A\x97"}) {
    for (std::size_t size = 1; size < character.size(); ++size) {
      EXPECT_FALSE(isUtf8(character.substr(0, size)));
      EXPECT_FALSE(isUtf8(std::string(character.substr(0, size)) + "a"));
      EXPECT_FALSE(isUtf8(character.substr(size)));
    }
  }
}

TEST(TextCheck, CharacterOverTheBorderOfTwoPieces) {
  for (const std::size_t before : {4093U, 4094U, 4095U, 4096U}) {
    SmallFile file;
    file.setComment(file.text(std::string(before, 'x') + "\xE2\x82\xAC" + std::string(5000, 'y')));
    EXPECT_EQ(problemsIn(file.bytes()), "") << before;
  }
}

TEST(TextCheck, CommentsOfEachKind) {
  struct Case {
    std::string letters;
    std::string contents;
    std::string codes;
  };
  const std::vector<Case> cases = {
      {"TX", std::string("abc\0\xFF", 5), ""},  // what is after the zero does not count
      {"TX", std::string(8192, 'x'), "text-not-terminated 1\n"},
      {"MD", std::string("<\xFF>\0", 4), "text-not-utf8 1\n"},
      {"MD", std::string("a comment\0", 10), "xml-not-well-formed 1\n"},
  };
  for (const Case& each : cases) {
    SmallFile file;
    file.setComment(file.add(each.letters, {}, each.contents));
    EXPECT_EQ(checkedCodes(file.bytes()), each.codes);
  }
}

TEST(TextCheck, SharedTextIsCheckedOnce) {
  SmallFile file;
  const auto text = file.text("\xFF");
  file.setComment(text);
  file.link(SmallFile::speed, 6, text);
  file.link(SmallFile::time, 6, text);
  EXPECT_EQ(checkedCodes(file.bytes()), "text-not-utf8 1\n");
}

}  // namespace
