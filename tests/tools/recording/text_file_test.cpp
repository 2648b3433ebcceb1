#include "recording/text_file.h"

#include <gtest/gtest.h>

#include <utility>

#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

TEST(TextFile, ReadsTheWholeTextAsItIsNow) {
  const ScratchFolder folder;
  folder.write("file", "one\n");
  TextFile file(folder / "file");
  EXPECT_EQ(file.read(), "one\n");
  EXPECT_EQ(file.read(), "one\n");
  folder.write("file", "two\nlines\n");
  EXPECT_EQ(file.read(), "two\nlines\n");
  folder.write("file", "");
  EXPECT_EQ(file.read(), "");
}

TEST(TextFile, ReadsTextsOfAnyLength) {
  const ScratchFolder folder;
  for (const std::size_t length : {4095U, 4096U, 4097U, 8192U, 100000U}) {
    const std::string text(length, 'x');
    folder.write("file", text);
    TextFile file(folder / "file");
    EXPECT_TRUE(file.read() == text) << length;
  }
}

TEST(TextFile, ReadsNothingWhereThereIsNoFile) {
  const ScratchFolder folder;
  EXPECT_EQ(TextFile(folder / "missing").read(), "");
  EXPECT_EQ(TextFile(folder.path()).read(), "") << "a folder is no text";
}

TEST(TextFile, StaysOpenWhenItIsMoved) {
  const ScratchFolder folder;
  folder.write("file", "text");
  TextFile first(folder / "file");
  TextFile second(std::move(first));
  EXPECT_EQ(second.read(), "text");
}

TEST(TextFile, TakesLinesOffTheFront) {
  std::string_view text = "first\n\nlast";
  EXPECT_EQ(takeLine(text), "first");
  EXPECT_EQ(takeLine(text), "");
  EXPECT_EQ(takeLine(text), "last");
  EXPECT_EQ(text, "");
  EXPECT_EQ(takeLine(text), "");
}

TEST(TextFile, TakesWordsOffTheFront) {
  std::string_view line = "  one \ttwo ";
  EXPECT_EQ(takeWord(line), "one");
  EXPECT_EQ(takeWord(line), "two");
  EXPECT_EQ(takeWord(line), "");
  EXPECT_EQ(line, "");
}

TEST(TextFile, TakesUnsignedNumbers) {
  std::string_view line = " 0 18446744073709551615 18446744073709551616 -1 12kB x";
  EXPECT_EQ(takeUnsigned(line), 0U);
  EXPECT_EQ(takeUnsigned(line), 18446744073709551615U);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(takeUnsigned(line), std::nullopt)
        << "too large, negative, with a tail, no number, end";
  }
}

TEST(TextFile, TakesFloatingPointNumbersThatAreFinite) {
  std::string_view line = "0.25 -40 nan inf 1e99 .";
  EXPECT_EQ(takeFloat(line), 0.25F);
  EXPECT_EQ(takeFloat(line), -40.0F);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(takeFloat(line), std::nullopt);
  }
}

}  // namespace
