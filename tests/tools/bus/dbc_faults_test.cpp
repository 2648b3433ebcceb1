// What is wrong in a DBC: where, and what is read all the same.

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

#include "reader/bus/dbc_reader.h"
#include "tools/bus/described.h"

using namespace mdf_tests;

namespace {

struct Case {
  const char* text;
  const char* faults;
};

std::ostream& operator<<(std::ostream& os, const Case& each) { return os << each.text; }

constexpr const char before[] =
    "BO_ 1 A: 8 X\n"
    " SG_ S : 0|8@1+ (1,0) [0|0] \"\" X\n";
constexpr const char after[] = "\nBO_ 2 B: 0 X\n";
constexpr const char read[] =
    "A 1 8 bytes from X\n"
    "  S 0|8 little unsigned *1+0\n"
    "B 2 0 bytes from X\n";

/// The third line has a fault and is not used; what stands around it is.
class DbcFault : public testing::TestWithParam<Case> {};

TEST_P(DbcFault, LeavesOutItsLine) {
  EXPECT_EQ(described(std::string(before) + GetParam().text + after),
            std::string(read) + GetParam().faults);
}

INSTANTIATE_TEST_SUITE_P(
    Statements, DbcFault,
    testing::Values(
        Case{"nonsense 1", "3:1: expected a statement, found 'nonsense'\n"},
        Case{"\"text\"", "3:1: expected a statement, found the text \"text\"\n"},
        Case{"VERSION 1", "3:9: expected a version in quotation marks, found '1'\n"},
        Case{"VERSION \"1", "3:9: expected a quotation mark at the end of the text, found none\n"},
        Case{"NS_ x", "3:5: expected ':', found 'x'\n"},
        Case{"BU_ N", "3:5: expected ':', found 'N'\n"},
        Case{"EV_ x 1", "4:1: expected ';', found 'BO_'\n"},
        Case{"CM_ text;", "3:5: expected a comment in quotation marks, found 'text'\n"},
        Case{"CM_ \"text\"", "4:1: expected ';', found 'BO_'\n"},
        Case{"CM_", "4:1: expected a comment in quotation marks, found 'BO_'\n"},
        Case{"CM_ BU_ 7 \"\";", "3:9: expected a node's name, found '7'\n"},
        Case{"CM_ EV_ 7 \"\";", "3:9: expected a variable's name, found '7'\n"},
        Case{"CM_ BO_ 7 \"a\nBO_ 9 C: 8 X\n\";",
             "3:9: expected the identifier of a message, found '7'\n"},
        Case{"CM_ SG_ 1 T \"a\";", "3:11: expected a signal of the message, found 'T'\n"},
        Case{"BA_DEF_ BO_ Name INT;", "3:13: expected an attribute's name, found 'Name'\n"},
        Case{"BA_DEF_ \"Name\" 0 1;", "3:16: expected an attribute's type, found '0'\n"},
        Case{"BA_DEF_ \"Name\" ENUM \"a\",1;", "3:25: expected ';', found '1'\n"},
        Case{"BA_DEF_DEF_ \"Name\";", "3:19: expected an attribute's value, found ';'\n"},
        Case{"BA_ \"Name\" BO_ 7 5;", "3:16: expected the identifier of a message, found '7'\n"},
        Case{"BA_ \"Name\" SG_ 1 T 5;", "3:18: expected a signal of the message, found 'T'\n"},
        Case{"BA_ \"GenMsgCycleTime\" BO_ 1 \"a\";",
             "3:29: expected a time in milliseconds, found the text \"a\"\n"},
        Case{"BA_ \"VFrameFormat\" BO_ 1 16;",
             "3:26: expected the number of a kind of frames below 16, found '16'\n"},
        Case{"BA_ \"SystemMessageLongSymbol\" BO_ 1 \"a b\";",
             "3:37: expected a name, found the text \"a b\"\n"},
        Case{"VAL_ 7 S 1 \"a\" ;", "3:6: expected the identifier of a message, found '7'\n"},
        Case{"VAL_ 1 T 1 \"a\" ;", "3:8: expected a signal of the message, found 'T'\n"},
        Case{"VAL_ 1 S T ;", "3:10: expected the name of a value table, found 'T'\n"},
        Case{"VAL_ 1 S 1.5 \"a\" ;", "3:10: expected a whole number, found '1.5'\n"},
        Case{"VAL_ 1 S 1e19 \"a\" ;", "3:10: expected a whole number, found '1e19'\n"},
        Case{"VAL_ 1 S 1 a ;", "3:12: expected a text for the value, found 'a'\n"},
        Case{"VAL_TABLE_ 1 \"a\" ;", "3:12: expected a value table's name, found '1'\n"},
        Case{"SIG_VALTYPE_ 1 T : 1;", "3:16: expected a signal of the message, found 'T'\n"},
        Case{"SIG_VALTYPE_ 1 S : 3;",
             "3:20: expected '0', '1' or '2' as the kind of number, found '3'\n"},
        Case{"SG_MUL_VAL_ 7 S S 0-0;", "3:13: expected the identifier of a message, found '7'\n"},
        Case{"SG_MUL_VAL_ 1 S T 0-0;", "3:17: expected a signal of the message, found 'T'\n"},
        Case{"SG_MUL_VAL_ 1 S S 0-0;", "3:17: expected a signal that is a switch, found 'S'\n"},
        Case{"SG_MUL_VAL_ 1 S S 0 0;", "3:21: expected '-', found '0'\n"},
        Case{"SG_MUL_VAL_ 1 S S 2-1;",
             "3:21: expected a value that is not below the one in front of it, found '1'\n"}));

INSTANTIATE_TEST_SUITE_P(
    Messages, DbcFault,
    testing::Values(
        Case{"BO_ C: 8 X", "3:5: expected a message's identifier, found 'C'\n"},
        Case{"BO_ -1 C: 8 X", "3:5: expected a message's identifier, found '-1'\n"},
        Case{"BO_ 3", "4:1: expected a message's name, found 'BO_'\n"},
        Case{"BO_ 3 C 8 X\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" X\nCM_ BO_ 3 \"\";",
             "3:9: expected ':', found '8'\n"},
        Case{"BO_ 3 C: x", "3:10: expected a length in bytes, found 'x'\n"},
        Case{"BO_ 3 C: 65 X\n SG_ S : 0|8@1+ (1,0) [0|0] \"\" X\nVAL_ 3 S 0 \"\" ;",
             "3:10: expected a length of at most 64 bytes, found '65'\n"},
        Case{"BO_ 1 C: 8 X\n SG_ T : 0|8@1+ (1,0) [0|0] \"\" X",
             "3:5: expected an identifier that no other message has, found '1'\n"},
        Case{"BO_ 2048 C: 8 X",
             "3:5: expected an identifier of 11 bits, or of 29 with the highest of 32 set, found "
             "'2048'\n"},
        Case{"BO_ 2684354560 C: 8 X",
             "3:5: expected an identifier of 11 bits, or of 29 with the highest of 32 set, found "
             "'2684354560'\n"},
        Case{"BO_ 18446744073709551616 C: 8 X",
             "3:5: expected a message's identifier, found '18446744073709551616'\n"}));

INSTANTIATE_TEST_SUITE_P(
    Signals, DbcFault,
    testing::Values(
        Case{" SG_ S : 8|8@1+ (1,0) [0|0] \"\" X",
             "3:6: expected a name that no other signal of the message has, found 'S'\n"},
        Case{" SG_ 7 : 8|8@1+ (1,0) [0|0] \"\" X", "3:6: expected a signal's name, found '7'\n"},
        Case{" SG_ T x : 8|8@1+ (1,0) [0|0] \"\" X",
             "3:8: expected 'M', 'm' with a number, or ':', found 'x'\n"},
        Case{" SG_ T m : 8|8@1+ (1,0) [0|0] \"\" X",
             "3:8: expected 'M', 'm' with a number, or ':', found 'm'\n"},
        Case{" SG_ T mM : 8|8@1+ (1,0) [0|0] \"\" X",
             "3:8: expected 'M', 'm' with a number, or ':', found 'mM'\n"},
        Case{" SG_ T 8|8@1+ (1,0) [0|0] \"\" X", "3:8: expected ':', found '8'\n"},
        Case{" SG_ T : x|8@1+ (1,0) [0|0] \"\" X", "3:10: expected a start bit, found 'x'\n"},
        Case{" SG_ T : 8,8@1+ (1,0) [0|0] \"\" X", "3:11: expected '|', found ','\n"},
        Case{" SG_ T : 8|x@1+ (1,0) [0|0] \"\" X", "3:12: expected a number of bits, found 'x'\n"},
        Case{" SG_ T : 8|8@2+ (1,0) [0|0] \"\" X",
             "3:14: expected '0' or '1' as the order of bytes, found '2'\n"},
        Case{" SG_ T : 8|8@1 (1,0) [0|0] \"\" X", "3:16: expected '+' or '-', found '('\n"},
        Case{" SG_ T : 8|8@1+ (x,0) [0|0] \"\" X", "3:18: expected a factor, found 'x'\n"},
        Case{" SG_ T : 8|8@1+ (1e999,0) [0|0] \"\" X", "3:18: expected a factor, found '1e999'\n"},
        Case{" SG_ T : 8|8@1+ (1,) [0|0] \"\" X", "3:20: expected an offset, found ')'\n"},
        Case{" SG_ T : 8|8@1+ (1,0) [|0] \"\" X", "3:24: expected a least value, found '|'\n"},
        Case{" SG_ T : 8|8@1+ (1,0) [0|] \"\" X", "3:26: expected a greatest value, found ']'\n"},
        Case{" SG_ T : 8|8@1+ (1,0) [0|0] km/h\" X\nCM_ SG_ 1 T \"\";",
             "3:29: expected a unit in quotation marks, found 'km'\n"},
        Case{" SG_ T : 8|8@1+ (1,0) [0|0] \"km/h X",
             "3:29: expected a quotation mark at the end of the text, found none\n"},
        Case{" SG_ T : 8|0@1+ (1,0) [0|0] \"\" X\nVAL_ 1 T 0 \"\" ;",
             "3:12: expected 1 to 64 bits, found '0'\n"},
        Case{" SG_ T : 0|65@1+ (1,0) [0|0] \"\" X", "3:12: expected 1 to 64 bits, found '65'\n"},
        Case{" SG_ T : 60|5@1+ (1,0) [0|0] \"\" X",
             "3:10: expected a start bit with which the signal ends within 8 bytes, found '60'\n"},
        Case{" SG_ T : 58|4@0+ (1,0) [0|0] \"\" X",
             "3:10: expected a start bit with which the signal ends within 8 bytes, found '58'\n"},
        Case{" SG_ T : 18446744073709551615|1@1+ (1,0) [0|0] \"\" X",
             "3:10: expected a start bit with which the signal ends within 8 bytes, found "
             "'18446744073709551615'\n"},
        Case{" SG_ T m1 : 8|8@1+ (1,0) [0|0] \"\" X",
             "3:6: expected a switch for the multiplexed signal, found none\n"},
        Case{" SG_ T : 8|8@1+ (1,0) [0|0] \"\" X\nSIG_VALTYPE_ 1 T : 1;\nCM_ SG_ 1 T \"\";",
             "4:16: expected a signal of 32 bits, found 'T'\n"},
        Case{" SG_ T : 8|32@1+ (1,0) [0|0] \"\" X\nSIG_VALTYPE_ 1 T : 2;",
             "4:16: expected a signal of 64 bits, found 'T'\n"},
        Case{" SG_ T M : 8|32@1+ (1,0) [0|0] \"\" X\n SG_ U m1 : 8|8@1+ (1,0) [0|0] \"\" X\n"
             "SG_MUL_VAL_ 1 U T 1-1;\nSIG_VALTYPE_ 1 T : 1;",
             "4:6: expected a switch that is understood, found one that is left out\n"
             "6:16: expected a signal that is no switch, found 'T'\n"},
        Case{" SG_ T m0M : 8|8@1+ (1,0) [0|0] \"\" X\n SG_ U m1M : 8|8@1+ (1,0) [0|0] \"\" X\n"
             "SG_MUL_VAL_ 1 U T 1-1;\nSG_MUL_VAL_ 1 T U 0-0;",
             "3:6: expected switches that end at one that is always there, found a circle\n"
             "4:6: expected switches that end at one that is always there, found a circle\n"}));

TEST(DbcFaults, SignalsWithoutAMessage) {
  EXPECT_EQ(described("SG_ S : 0|8@1+ (1,0) [0|0] \"\" X\nSG_ T : 0|8@1+ (1,0) [0|0] \"\" X\n"),
            "1:5: expected a message in front of signals, found 'S'\n");
  EXPECT_EQ(faultsOf("BO_ 1 A: 8 X\nBS_:\nSG_ S"),
            "3:5: expected a message in front of signals, found 'S'\n"
            "3:6: expected ':', found the end of the file\n");
}

TEST(DbcFaults, SeveralSwitches) {
  EXPECT_EQ(described("BO_ 1 A: 8 X\nSG_ S M : 0|8@1+ (1,0) [0|0] \"\" X\n"
                      "SG_ T M : 8|8@1+ (1,0) [0|0] \"\" X\n"
                      "SG_ U m1 : 16|8@1+ (1,0) [0|0] \"\" X\n"),
            "A 1 8 bytes from X\n"
            "  S 0|8 little unsigned *1+0 switch\n"
            "  T 8|8 little unsigned *1+0 switch\n"
            "4:5: expected one switch for the multiplexed signal, found several\n");
}

TEST(DbcFaults, ALongNameThatAnotherSignalHas) {
  EXPECT_EQ(described("BO_ 1 A: 8 X\nSG_ S : 0|8@1+ (1,0) [0|0] \"\" X\n"
                      "SG_ T : 8|8@1+ (1,0) [0|0] \"\" X\n"
                      "BA_ \"SystemSignalLongSymbol\" SG_ 1 S \"T\";\n"),
            "A 1 8 bytes from X\n"
            "  S 0|8 little unsigned *1+0\n"
            "  T 8|8 little unsigned *1+0\n"
            "4:38: expected a name that no other signal of the message has, found the text "
            "\"T\"\n");
}

TEST(DbcFaults, WhatWasFoundIsShownOnOneShortLine) {
  EXPECT_EQ(faultsOf(std::string("\x1B", 1)), "1:1: expected a statement, found '\\x1b'\n");
  EXPECT_EQ(faultsOf(std::string(1000, 'a')),
            "1:1: expected a statement, found '" + std::string(37, 'a') + "...'\n");
  EXPECT_EQ(faultsOf("\"a\nb\""), "1:1: expected a statement, found the text \"a\\x0ab\"\n");
}

TEST(DbcFaults, OfAGreatManyTheRestIsCounted) {
  std::string text;
  for (int i = 0; i < 250; ++i) {
    text += "BU_ x\n";
  }
  std::size_t count = 0;
  mdf_reader::TextFault last;
  mdf_reader::readDbc(text, [&](const mdf_reader::TextFault& fault) {
    ++count;
    last = fault;
  });
  EXPECT_EQ(count, 101U);
  EXPECT_EQ(last.line, 101U);
  EXPECT_EQ(last.sentence, "expected at most 100 faults, found 250");
}

std::string repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) {
    all += text;
  }
  return all;
}

/// Each would take very long if each line looked at all others.
TEST(DbcFaults, HostileTextsAreReadInTimeThatGrowsWithThem) {
  constexpr int many = 30000;
  std::string messages;
  std::string signals = "BO_ 1 A: 64 X\nSG_ a0 M : 0|8@1+ (1,0) [0|0] \"\"\n";
  std::string switches;
  for (int i = 1; i < many; ++i) {
    const std::string number = std::to_string(i);
    messages += "BO_ " + std::to_string(2147483648 + i) + " A: 8 X\n";
    signals += "SG_ a" + number + " m0M : 0|8@1+ (1,0) [0|0] \"\"\n";
    switches += "SG_MUL_VAL_ 1 a" + number + " a" + std::to_string(i - 1) + " 0-0;\n";
  }
  EXPECT_EQ(faultsOf(messages), "");
  EXPECT_EQ(faultsOf(signals + switches), "");
  EXPECT_NE(faultsOf(repeated("EV_ \\\" \nVERSION \\\"\n", many)), "");
  EXPECT_NE(faultsOf(repeated("CM_ \"\\\"\n", many)), "");
  EXPECT_NE(faultsOf(repeated("\"", many)), "");
  EXPECT_NE(faultsOf(repeated("BO_ ", many)), "");
}

TEST(DbcFaults, ATableIsNotCopiedWithoutEnd) {
  std::string text = "VAL_TABLE_ T 0 \"" + std::string(std::size_t{1} << 20U, 'x') + "\" ;\n";
  text += "BO_ 1 A: 8 X\nSG_ S : 0|8@1+ (1,0) [0|0] \"\"\n" + repeated("VAL_ 1 S T ;\n", 64);
  EXPECT_EQ(faultsOf(text),
            "67:10: expected at most 64 MiB of value tables for all signals, found 'T'\n");
}

}  // namespace
