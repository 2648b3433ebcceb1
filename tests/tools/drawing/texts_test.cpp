// How texts of a file get onto a line and into a picture.

#include <gtest/gtest.h>

#include <string>

#include "pictures/block_family.h"
#include "pictures/dot_text.h"
#include "reader/bytes/printable.h"

using mdf_tools::BlockFamily;
using mdf_tools::dotString;
using mdf_tools::familyOf;
using mdf_tools::wrapped;

namespace {

std::string oneLine(const std::string& text, std::size_t most) {
  return mdf_reader::printable(text, mdf_reader::Harmless::utf8, most);
}

TEST(Printable, KeepsCharactersInUtf8) {
  const std::string text =
      "km/h \xc2\xb5 \xe2\x82\xac \xed\x9f\xbf \xf0\x9f\x9a\x97 \xf4\x8f\xbf\xbd~";
  EXPECT_EQ(oneLine(text, 100), text);
  EXPECT_EQ(oneLine("", 100), "");
}

TEST(Printable, EscapesBytesThatAreNoCharacters) {
  EXPECT_EQ(oneLine("\x80 \xc1\xbf \xc2", 100), "\\x80 \\xc1\\xbf \\xc2");
  EXPECT_EQ(oneLine("\xe0\x9f\xbf", 100), "\\xe0\\x9f\\xbf");           // longer than needed
  EXPECT_EQ(oneLine("\xed\xa0\x80", 100), "\\xed\\xa0\\x80");           // a surrogate
  EXPECT_EQ(oneLine("\xf4\x90\x80\x80", 100), "\\xf4\\x90\\x80\\x80");  // beyond the last one
  EXPECT_EQ(oneLine("\xe2\x82", 100), "\\xe2\\x82");
  EXPECT_EQ(oneLine("\xe2\x82\xc2\xb5", 100), "\\xe2\\x82\xc2\xb5");
  EXPECT_EQ(oneLine("\xff\xfe", 100), "\\xff\\xfe");
}

TEST(Printable, EscapesWhatControlsATerminal) {
  EXPECT_EQ(oneLine(std::string("a\0b", 3), 100), "a\\x00b");
  EXPECT_EQ(oneLine("\n\t\x1b\x7f", 100), "\\x0a\\x09\\x1b\\x7f");
  EXPECT_EQ(oneLine("\xc2\x80\xc2\x9f\xc2\xa0", 100), "\\xc2\\x80\\xc2\\x9f\xc2\xa0");
  EXPECT_EQ(oneLine("\xe2\x80\xa8\xe2\x80\xae\xe2\x81\xa6", 100),
            "\\xe2\\x80\\xa8\\xe2\\x80\\xae\\xe2\\x81\\xa6");
  EXPECT_EQ(oneLine("\xef\xbf\xbe\xef\xbf\xbf\xef\xbf\xbd", 100),
            "\\xef\\xbf\\xbe\\xef\\xbf\\xbf\xef\xbf\xbd");
}

TEST(Printable, CutsAtCharacters) {
  EXPECT_EQ(oneLine("abcdef", 6), "abcdef");
  EXPECT_EQ(oneLine("abcdefg", 6), "abc...");
  EXPECT_EQ(oneLine("\xc2\xb5\xc2\xb5\xc2\xb5\xc2\xb5\xc2\xb5", 4), "\xc2\xb5...");
  EXPECT_EQ(oneLine("\x01\x02\x03\x04\x05", 4), "\\x01...");
  EXPECT_EQ(oneLine("abcd", 3), "...");
}

TEST(DotText, QuotesEveryCharacter) {
  EXPECT_EQ(dotString(""), "\"\"");
  EXPECT_EQ(dotString("a \"b\" \\N <c> {d|e} &amp; \xc2\xb5"),
            "\"a \\\"b\\\" \\\\N <c> {d|e} &amp;amp; \xc2\xb5\"");
  EXPECT_EQ(dotString("one\ntwo"), "\"one\\ntwo\"");
  EXPECT_EQ(dotString("one\ntwo", mdf_tools::DotLines::left), "\"one\\ltwo\\l\"");
  EXPECT_EQ(dotString("one", mdf_tools::DotLines::right), "\"one\\r\"");
}

TEST(DotText, LongLinesAreBroken) {
  EXPECT_EQ(wrapped("", 5), "");
  EXPECT_EQ(wrapped("abcde", 5), "abcde");
  EXPECT_EQ(wrapped("abcdef", 5), "abcde\nf");
  EXPECT_EQ(wrapped("one two three", 8), "one two\nthree");
  EXPECT_EQ(wrapped("one two three", 7), "one two\nthree");
  EXPECT_EQ(wrapped("\xc2\xb5\xc2\xb5\xc2\xb5", 2), "\xc2\xb5\xc2\xb5\n\xc2\xb5");
}

TEST(BlockFamily, OfEachType) {
  EXPECT_EQ(familyOf("ID"), BlockFamily::file);
  EXPECT_EQ(familyOf("CH"), BlockFamily::file);
  EXPECT_EQ(familyOf("SR"), BlockFamily::group);
  EXPECT_EQ(familyOf("CA"), BlockFamily::channel);
  EXPECT_EQ(familyOf("CC"), BlockFamily::conversion);
  EXPECT_EQ(familyOf("MD"), BlockFamily::text);
  EXPECT_EQ(familyOf("LD"), BlockFamily::data);
  EXPECT_EQ(familyOf("D "), BlockFamily::other);
  EXPECT_EQ(familyOf("T "), BlockFamily::other);
  EXPECT_EQ(familyOf(""), BlockFamily::other);
  EXPECT_EQ(mdf_tools::colourOf(BlockFamily::conversion), "#fdbb6e");
}

}  // namespace
