#include "recording/xml_comment.h"

#include <gtest/gtest.h>

#include <pugixml.hpp>

using namespace mdf_tools;

namespace {

TEST(XmlComment, TextsAreEscaped) {
  EXPECT_EQ(xmlText("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c'");
  EXPECT_EQ(xmlText(""), "");
  EXPECT_EQ(xmlText("&amp;"), "&amp;amp;");
}

TEST(XmlComment, ControlCharactersAreLeftOut) {
  EXPECT_EQ(xmlText(std::string("a\0b\x01\x1F\tc\nd\re\x0B", 11)), "ab\tc\nd\re");
  EXPECT_EQ(xmlText("a\x7F"), "a\x7F");
}

TEST(XmlComment, CharactersOfEveryLengthStay) {
  const std::string text =
      "\xC2\x80 \xC3\xA4 \xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBD "
      "\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF";
  EXPECT_EQ(xmlText(text), text);
}

TEST(XmlComment, BytesThatAreNoCharacterAreLeftOut) {
  EXPECT_EQ(xmlText("a\x80z"), "az") << "a continuation without a start";
  EXPECT_EQ(xmlText("a\xC3z"), "az") << "a start without its continuation";
  EXPECT_EQ(xmlText("a\xC3"), "a") << "a start at the end";
  EXPECT_EQ(xmlText("a\xC3<"), "a&lt;") << "markup in place of a continuation";
  EXPECT_EQ(xmlText("a\xC1\xBFz"), "az") << "a longer form of a short code";
  EXPECT_EQ(xmlText("a\xE0\x9F\xBFz"), "az") << "the same of three bytes";
  EXPECT_EQ(xmlText("a\xF0\x8F\xBF\xBFz"), "az") << "and of four";
  EXPECT_EQ(xmlText("a\xED\xA0\x80z"), "az") << "half of a surrogate pair";
  EXPECT_EQ(xmlText("a\xEF\xBF\xBEz\xEF\xBF\xBF"), "az") << "codes that are no characters";
  EXPECT_EQ(xmlText("a\xF4\x90\x80\x80z"), "az") << "beyond the last code";
  EXPECT_EQ(xmlText("a\xF8\x88\x80\x80\x80z\xFF"), "az") << "bytes of no code";
}

TEST(XmlComment, AnyBytesMakeWellFormedXml) {
  std::string every_byte;
  for (int byte = 0; byte < 256; ++byte) {
    every_byte += static_cast<char>(byte);
  }
  pugi::xml_document document;
  const std::string xml = headerComment(every_byte);
  EXPECT_TRUE(document.load_buffer(xml.data(), xml.size()));
  EXPECT_EQ(std::string(document.first_child().child("TX").text().get()).substr(0, 6),
            "\t\n\n !\"");
}

}  // namespace
