#include "reader/model/texts.h"

#include <gtest/gtest.h>

#include <string>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::InputFile;
using mdf_reader::plainText;
using mdf_reader::readText;
using mdf_reader::Texts;

namespace {

std::string textOf(const FileBuilder& builder, std::uint64_t offset) {
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  return readText(file, offset).value_or("(none)");
}

TEST(ReadText, UpToTheFirstZero) {
  FileBuilder file;
  const auto one = file.add("TX", {}, std::string("speed\0\0\0", 8));
  const auto more = file.add("TX", {}, std::string("a\0b\0", 4));
  const auto comment = file.metadata("<x/>");
  const auto empty = file.add("TX", {}, std::string(8, '\0'));
  EXPECT_EQ(textOf(file, one), "speed");
  EXPECT_EQ(textOf(file, more), "a");
  EXPECT_EQ(textOf(file, comment), "<x/>");
  EXPECT_EQ(textOf(file, empty), "");
}

TEST(ReadText, WithoutAZeroItEndsWithTheBlockOrTheFile) {
  FileBuilder file;
  const auto at = file.add("TX", {}, "12345678");
  file.add("TX", {}, "87654321");
  EXPECT_EQ(textOf(file, at), "12345678");
  FileBuilder cut;
  const auto last = cut.add("TX", {}, "12345678");
  cut.write(last + 8, Bytes().u64(1000));
  EXPECT_EQ(textOf(cut, last), "12345678");
}

TEST(ReadText, LongTextsAreReadWhole) {
  const std::string longer = std::string(4096, 'a') + std::string(4096, 'b') + "end";
  FileBuilder file;
  const auto at = file.text(longer);
  EXPECT_EQ(textOf(file, at), longer);
}

TEST(ReadText, OtherBlocksAreNone) {
  FileBuilder file;
  const auto data = file.add("DT", {}, "text");
  const auto lying = file.text("text");
  file.write(lying + 16, Bytes().u64(3));
  EXPECT_EQ(textOf(file, data), "(none)");
  EXPECT_EQ(textOf(file, lying), "(none)");
  EXPECT_EQ(textOf(file, 0), "(none)");
  EXPECT_EQ(textOf(file, 100000), "(none)");
}

TEST(ReadText, LinksInFrontOfATextAreSkipped) {
  FileBuilder file;
  const auto at = file.add("TX", {1, 2}, std::string("text\0", 5));
  EXPECT_EQ(textOf(file, at), "text");
}

TEST(PlainText, TakesTheTextForPeople) {
  EXPECT_EQ(plainText("speed"), "speed");
  EXPECT_EQ(plainText("<CNcomment xmlns=\"x\"><TX>of the &lt;car&gt;</TX><a/></CNcomment>"),
            "of the <car>");
  EXPECT_EQ(plainText("\n <HDcomment>\n<TX/></HDcomment>"), "");
  EXPECT_EQ(plainText("<HDcomment/>"), "");
  EXPECT_EQ(plainText("<broken"), "<broken");
  EXPECT_EQ(plainText(""), "");
  EXPECT_EQ(plainText("  "), "  ");
}

TEST(Texts, KeepWhatTheyHaveRead) {
  FileBuilder builder;
  const auto first = builder.text("first");
  const auto second = builder.metadata("<a><TX>second</TX></a>");
  const TempFile temp(builder.bytes());
  InputFile file(temp.path());
  Texts texts;
  const std::string_view one = texts.at(file, first);
  EXPECT_EQ(texts.at(file, second), "second");
  EXPECT_EQ(texts.at(file, 0), "");
  EXPECT_EQ(texts.at(file, 64), "") << "the header block";
  EXPECT_EQ(texts.at(file, first).data(), one.data());
  EXPECT_EQ(one, "first");
}

}  // namespace
