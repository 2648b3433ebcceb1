#include "reader/bus/dbc_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "tools/bus/described.h"
#include "tools/bus/sample_dbc.h"

using namespace mdf_tests;

namespace {

/// A message with these signals, and what follows it.
std::string message(const std::string& signals, const std::string& statements = "") {
  return "BO_ 1 A: 8 X\n" + signals + statements;
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
    text.replace(at, what.size(), with);
  }
  return text;
}

constexpr const char described_engine[] = R"(A car's
engine
EngineData 64 8 bytes from Engine every 0.02 s "What the "engine" sends"
  SpeedOfTheEngine 0|16 little unsigned *0.25+0 [0, 16000] rpm "Of the crankshaft"
  Temperature 23|8 big signed *1+-40 [-40, 215] degC -1=invalid 0=zero
  Running 24|1 little unsigned *1+0 1=on 0=off
  Ratio 32|32 little float *1+0 [-1.5, 15]
Modes 18fef100 extended j1939 8 bytes
  Mode 0|4 little unsigned *1+0 [0, 15] switch
  Torque 8|12 little signed *0.5+0 Nm if Mode 0-0 4-7
  Page 8|8 little unsigned *1+0 switch if Mode 1-1
  Detail 16|8 little unsigned *1+0 if Page 2-2
WideMessage c8 fd 64 bytes from Gateway
  Energy 448|64 little double *1+0 J
)";

TEST(DbcReader, EachStatement) { EXPECT_EQ(described(engine_dbc), described_engine); }

TEST(DbcReader, LinesMayEndInEachWay) {
  EXPECT_EQ(described(replaced(engine_dbc, "\n", "\r\n")), described_engine);
  EXPECT_EQ(described(replaced(engine_dbc, "\n", "\r")), described_engine);
  EXPECT_EQ(faultsOf("VERSION\r\n\r\r7"), faultsOf("VERSION\n\n\n7"));
  EXPECT_EQ(faultsOf("\r\n\rx"), "3:1: expected a statement, found 'x'\n");
}

TEST(DbcReader, TextsAreUtf8OrElseWindows1252) {
  const std::string expected =
      "A 1 8 bytes from X\n  S 0|8 little unsigned *1+0 \xC2\xB0"
      "C 1=\xE2\x82\xAC\n";
  const std::string statements = "VAL_ 1 S 1 \"%\" ;\n";
  const std::string utf8 = message(
      "SG_ S : 0|8@1+ (1,0) [0|0] \"\xC2\xB0"
      "C\" X\n",
      replaced(statements, "%", "\xE2\x82\xAC"));
  EXPECT_EQ(described(utf8), expected);
  EXPECT_EQ(described("\xEF\xBB\xBF" + utf8), expected);
  EXPECT_EQ(described(message("SG_ S : 0|8@1+ (1,0) [0|0] \"\xB0"
                              "C\" X\n",
                              replaced(statements, "%", "\x80"))),
            expected);
}

TEST(DbcReader, TextsHaveNoCharactersThatXmlHasNot) {
  const std::string text = "a\x01\x0F\tc\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD";
  EXPECT_EQ(
      described(message("SG_ S : 0|8@1+ (1,0) [0|0] \"" + text + "\" X\n")),
      "A 1 8 bytes from X\n  S 0|8 little unsigned *1+0 a\uFFFD\uFFFD\tc\uFFFD\uFFFD\uFFFD\n");
}

TEST(DbcReader, ColumnsCountBytesAfterAByteOrderMark) {
  EXPECT_EQ(faultsOf("\xEF\xBB\xBFVERSION \"\xC3\xA4\" x"),
            "1:14: expected a statement, found 'x'\n");
}

TEST(DbcReader, WithoutAnythingThereIsNothing) {
  EXPECT_EQ(described(""), "");
  EXPECT_EQ(described(" \r\n\t;"), "");
}

TEST(DbcReader, NumbersInEachForm) {
  EXPECT_EQ(described(message("SG_ S : 0|64@1+ (1.,+.5) [-1E-1|1e+2] \"\"\n",
                              "VAL_ 1 S 18446744073709551615 \"a\" 1.0 \"b\" -2e1 \"c\" ;")),
            "A 1 8 bytes from X\n"
            "  S 0|64 little unsigned *1+0.5 [-0.1, 100] -1=a 1=b -20=c\n");
}

TEST(DbcReader, ASwitchIsNotNamedWhereThereIsOne) {
  EXPECT_EQ(described(message("SG_ D m18446744073709551615 : 8|8@0+ (1,0) [0|0] \"\" X\n"
                              "SG_ S M : 0|8@1+ (1,0) [0|0] \"\" X\n")),
            "A 1 8 bytes from X\n"
            "  D 8|8 big unsigned *1+0 if S 18446744073709551615-18446744073709551615\n"
            "  S 0|8 little unsigned *1+0 switch\n");
}

TEST(DbcReader, SignalsMayOverlapAndFillTheMessage) {
  EXPECT_EQ(described(message("SG_ A : 0|64@1+ (1,0) [0|0] \"\" X\n"
                              "SG_ B : 7|64@0- (1,0) [0|0] \"\" X\n")),
            "A 1 8 bytes from X\n"
            "  A 0|64 little unsigned *1+0\n"
            "  B 7|64 big signed *1+0\n");
}

TEST(DbcReader, KindsOfFramesByNumberWithoutADefinition) {
  EXPECT_EQ(described("BO_ 2147483649 A: 8 X\nBO_ 2147483650 B: 8 X\nBO_ 3 C: 9 X\nBO_ 4 D: 8 X\n"
                      "BA_ \"VFrameFormat\" BO_ 2147483649 3;\n"
                      "BA_ \"VFrameFormat\" BO_ 2147483650 15;\n"
                      "BA_ \"VFrameFormat\" BO_ 4 3;\n"),
            "A 1 extended j1939 8 bytes from X\n"
            "B 2 extended fd 8 bytes from X\n"
            "C 3 fd 9 bytes from X\n"
            "D 4 8 bytes from X\n");
}

TEST(DbcReader, WhatAMessageDoesNotSayIsTheDefault) {
  EXPECT_EQ(described("BO_ 2147483649 A: 20 X\nBO_ 2 B: 8 X\nBO_ 2147483651 C: 8 X\n"
                      "BA_DEF_DEF_ \"GenMsgCycleTime\" 100;\n"
                      "BA_ \"ProtocolType\" \"J1939\";\n"
                      "BA_ \"GenMsgCycleTime\" BO_ 2 0;\n"
                      "BA_ \"VFrameFormat\" BO_ 2147483651 \"ExtendedCAN\";\n"),
            "A 1 extended j1939 20 bytes from X every 0.1 s\n"
            "B 2 8 bytes from X\n"
            "C 3 extended 8 bytes from X every 0.1 s\n");
}

}  // namespace
