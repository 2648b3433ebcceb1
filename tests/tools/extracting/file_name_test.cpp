#include "extracting/file_name.h"

#include <gtest/gtest.h>

#include <string>

using mdf_tools::numbered;
using mdf_tools::safeFileName;
using mdf_tools::safeNamePart;

namespace {

TEST(SafeFileName, IsTheLastPartOfAPath) {
  EXPECT_EQ(safeFileName("log.txt"), "log.txt");
  EXPECT_EQ(safeFileName("/etc/passwd"), "passwd");
  EXPECT_EQ(safeFileName("../../up.txt"), "up.txt");
  EXPECT_EQ(safeFileName("C:\\logs\\can.dbc"), "can.dbc");
  EXPECT_EQ(safeFileName("a/b\\c"), "c");
}

TEST(SafeFileName, NamesThatAreNone) {
  EXPECT_EQ(safeFileName(""), "attachment");
  EXPECT_EQ(safeFileName("."), "attachment");
  EXPECT_EQ(safeFileName(".."), "attachment");
  EXPECT_EQ(safeFileName("folder/"), "attachment");
  EXPECT_EQ(safeFileName(". ."), "attachment");
  EXPECT_EQ(safeFileName("\n"), "attachment");
}

TEST(SafeFileName, ControlCharactersGoOthersStay) {
  EXPECT_EQ(safeFileName("a\x1B[1m\nb\x7F"), "a[1mb");
  EXPECT_EQ(safeFileName("Gr\xC3\xB6\xC3\x9F"
                         "e.csv"),
            "Gr\xC3\xB6\xC3\x9F"
            "e.csv");
  EXPECT_EQ(safeFileName("-rf"), "-rf");
}

TEST(SafeFileName, LongNamesKeepTheirSuffix) {
  const std::string name = safeFileName(std::string(300, 'a') + ".txt");
  EXPECT_EQ(name, std::string(196, 'a') + ".txt");
  EXPECT_EQ(safeFileName(std::string(200, 'a')), std::string(200, 'a'));
  EXPECT_EQ(safeFileName(std::string(201, 'a')), std::string(200, 'a'));
  const std::string wide = std::string(199, 'a') + "\xC3\xB6";
  EXPECT_EQ(safeFileName(wide), std::string(199, 'a')) << "characters are not cut in two";
}

TEST(SafeNamePart, KeepsTheWholeNameInOneFolder) {
  EXPECT_EQ(safeNamePart("engine speed"), "engine speed");
  EXPECT_EQ(safeNamePart("../../etc/passwd"), ".._.._etc_passwd");
  EXPECT_EQ(safeNamePart("C:\\CAN *?\"<>|"), "C__CAN ______");
  EXPECT_EQ(safeNamePart("Gr\xC3\xB6\xC3\x9F"
                         "e\xFF\x1B\n"),
            "Gr\xC3\xB6\xC3\x9F"
            "e_xff_x1b_x0a");
  EXPECT_EQ(safeNamePart(""), "");
}

TEST(SafeNamePart, IsCutBetweenCharacters) {
  std::string name;
  std::string kept;
  for (int i = 0; i < 50; ++i) {
    name += "\xF0\x9F\x9A\x97";
    kept += i < 37 ? "\xF0\x9F\x9A\x97" : "";
  }
  EXPECT_EQ(safeNamePart(name), kept + "...");
  EXPECT_EQ(safeNamePart(std::string(40, 'a')), std::string(40, 'a'));
}

TEST(Numbered, InFrontOfTheSuffix) {
  EXPECT_EQ(numbered("log.txt", 2), "log (2).txt");
  EXPECT_EQ(numbered("log", 3), "log (3)");
  EXPECT_EQ(numbered(".hidden", 2), ".hidden (2)");
}

}  // namespace
