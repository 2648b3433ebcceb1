#include "printing/text_table.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using mdf_tools::onOneLine;
using mdf_tools::shownWidth;
using mdf_tools::TextTable;

namespace {

std::string printed(TextTable table) {
  std::ostringstream os;
  table.print(os);
  return os.str();
}

TextTable fruits() {
  TextTable table({{"name"}, {"count", TextTable::Align::right}, {"note"}});
  table.add({"pear", "10", ""}, "line of pears");
  table.add({"fig", "9", "ripe"}, "line of figs");
  table.add({"Apfel", "100", "gr\xC3\xBCn"}, "line of apples");
  return table;
}

TEST(TextTable, AlignsColumnsAndEndsLinesWithoutBlanks) {
  EXPECT_EQ(printed(fruits()),
            "name   count  note\n"
            "pear      10\n"
            "fig        9  ripe\n"
            "Apfel    100  gr\xC3\xBCn\n");
}

TEST(TextTable, WidthsCountCharacters) {
  TextTable table({{"a"}, {"b"}});
  table.add({"\xC3\xB6\xC3\xB6", "x"});
  table.add({"ooo", "y"});
  EXPECT_EQ(printed(table),
            "a    b\n"
            "\xC3\xB6\xC3\xB6   x\n"
            "ooo  y\n");
}

TEST(TextTable, EmptyCellsKeepTheirPlace) {
  TextTable table({{"a"}, {"b", TextTable::Align::right}, {"c"}});
  table.add({"", "", "x"});
  table.add({"", "1", ""});
  EXPECT_EQ(printed(table),
            "a  b  c\n"
            "      x\n"
            "   1\n");
}

TEST(TextTable, SortsByTextAndByNumber) {
  TextTable table = fruits();
  table.sortBy("name");
  EXPECT_EQ(printed(table).find("Apfel"), 19U);
  table.sortBy("count");
  std::ostringstream os;
  table.printRests(os);
  EXPECT_EQ(os.str(), "line of figs\nline of pears\nline of apples\n");
  EXPECT_TRUE(table.isEmpty());
}

TEST(TextTable, AColumnThatIsNotThereSortsNothing) {
  TextTable table = fruits();
  table.sortBy("none");
  table.sortBy("");
  std::ostringstream os;
  table.printRests(os);
  EXPECT_EQ(os.str(), "line of pears\nline of figs\nline of apples\n");
}

TEST(TextTable, PrintsPieceByPiece) {
  TextTable table({{"a"}, {"b"}});
  std::ostringstream os;
  table.add({"1", "2"});
  EXPECT_EQ(table.size(), 1U);
  table.print(os);
  EXPECT_EQ(table.size(), 0U);
  table.add({"long", "3"});
  table.print(os);
  table.add({"4", "5"});
  table.print(os);
  EXPECT_EQ(os.str(),
            "a  b\n"
            "1  2\n"
            "long  3\n"
            "4     5\n");
}

TEST(TextTable, WithoutRowsItIsItsTitles) {
  EXPECT_EQ(printed(TextTable({{"a"}, {"b"}})), "a  b\n");
  EXPECT_TRUE(TextTable({{"a"}}).isEmpty());
  EXPECT_FALSE(fruits().isEmpty());
}

TEST(TextTable, CellsStayOnTheirLine) {
  TextTable table({{"a"}});
  table.add({"x\ny\x1B[1m"});
  EXPECT_EQ(printed(table), "a\nx y [1m\n");
}

TEST(ShownWidth, CountsCharacters) {
  EXPECT_EQ(shownWidth(""), 0U);
  EXPECT_EQ(shownWidth("abc"), 3U);
  EXPECT_EQ(shownWidth("\xE2\x82\xAC\xC3\xB6"), 2U);
}

TEST(OnOneLine, CutsBetweenCharacters) {
  EXPECT_EQ(onOneLine("a\tb"), "a b");
  EXPECT_EQ(onOneLine("abcdef", 6), "abcdef");
  EXPECT_EQ(onOneLine("abcdefg", 6), "abc...");
  EXPECT_EQ(onOneLine("\xC3\xB6\xC3\xB6\xC3\xB6\xC3\xB6\xC3\xB6", 4), "\xC3\xB6...");
}

}  // namespace
