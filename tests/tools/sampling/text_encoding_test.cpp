#include "reader/values/text_encoding.h"

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"

using namespace mdf_reader;
using mdf_tests::Bytes;

namespace {

const std::string replacement = "\xEF\xBF\xBD";

TEST(TextEncoding, Latin1) {
  EXPECT_EQ(fromLatin1("\xB0"
                       "C"),
            "\xC2\xB0"
            "C");
  EXPECT_EQ(fromLatin1(Bytes().text("a").zeros(1).text("b").str()), "a");
}

TEST(TextEncoding, Windows1252) {
  EXPECT_EQ(fromWindows1252("\xB0"
                            "C \x80 \x9F \x81"),
            "\xC2\xB0"
            "C \xE2\x82\xAC \xC5\xB8 \xC2\x81");
}

TEST(TextEncoding, WhetherBytesAreUtf8) {
  EXPECT_TRUE(isUtf8(""));
  EXPECT_TRUE(isUtf8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x97"));
  EXPECT_FALSE(isUtf8("a\xE2\x82"));
  EXPECT_FALSE(
      isUtf8("\xB0"
             "C"));
}

TEST(TextEncoding, Utf8IsKept) {
  const std::string text = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x97";
  EXPECT_EQ(fromUtf8(text), text);
}

TEST(TextEncoding, BytesThatAreNoUtf8) {
  EXPECT_EQ(fromUtf8("a\xFFz"), "a" + replacement + "z");
  EXPECT_EQ(fromUtf8("\xC3"), replacement);                    // cut
  EXPECT_EQ(fromUtf8("\xC0\x80"), replacement + replacement);  // longer than needed
  EXPECT_EQ(fromUtf8("\xE0\x80\x80"), replacement + replacement + replacement);
  EXPECT_EQ(fromUtf8("\xED\xA0\x80"), replacement + replacement + replacement);  // half a pair
  EXPECT_EQ(fromUtf8("\xF4\x90\x80\x80"),
            replacement + replacement + replacement + replacement);  // beyond the last character
}

TEST(TextEncoding, Utf16) {
  EXPECT_EQ(fromUtf16(Bytes().u16(0x20AC).u16(0).u16(0x41).str(), false), "\xE2\x82\xAC");
  EXPECT_EQ(fromUtf16(Bytes().u8s({0x20, 0xAC}).str(), true), "\xE2\x82\xAC");
  EXPECT_EQ(fromUtf16(Bytes().u16(0x41).u8(0x42).str(), false), "A");  // half a unit
}

TEST(TextEncoding, Utf16Pairs) {
  EXPECT_EQ(fromUtf16(Bytes().u16(0xD83D).u16(0xDE97).str(), false), "\xF0\x9F\x9A\x97");
  EXPECT_EQ(fromUtf16(Bytes().u8s({0xD8, 0x3D, 0xDE, 0x97}).str(), true), "\xF0\x9F\x9A\x97");
  EXPECT_EQ(fromUtf16(Bytes().u16(0xD83D).u16(0x41).str(), false), replacement + "A");
  EXPECT_EQ(fromUtf16(Bytes().u16(0xDE97).u16(0x41).str(), false), replacement + "A");
  EXPECT_EQ(fromUtf16(Bytes().u16(0xD83D).str(), false), replacement);
}

}  // namespace
