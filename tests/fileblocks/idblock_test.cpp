#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::IDBLOCK;
using mdf_v4_10::UINT8;

namespace {

std::string testprogBytes(const std::string& program = "TESTPROG") {
  return Bytes().text("MDF     4.10    ").text(program).zeros(4).u8s({0x9A, 0x01}).zeros(34);
}

/// The last two reserved sections: one that a reader passes over, one that it takes.
Bytes distinctBytesWith(std::initializer_list<int> reserved1) {
  Bytes bytes;
  bytes.text("abcdefghijklmnopqrstuvwx").u8s(reserved1).u8s({0x02, 0x81});
  for (int i = 0; i < 34; ++i) {
    bytes.u8(static_cast<std::uint8_t>(100 + i));
  }
  return bytes;
}

std::string distinctBytes() { return distinctBytesWith({1, 2, 3, 4}); }

IDBLOCK distinctBlock() {
  IDBLOCK block("qrstuvwx");
  setBytes(block.id_file, {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'});
  setBytes(block.id_vers, {'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p'});
  setBytes(block.id_reserved1, {1, 2, 3, 4});
  block.id_ver = 0x8102;
  for (std::size_t i = 0; i < sizeof block.id_reserved2; ++i) {
    block.id_reserved2[i] = static_cast<UINT8>(100 + i);
  }
  return block;
}

void expectIdHeader(const IDBLOCK& block) {
  EXPECT_BYTES(written(block.header), Bytes().header("ID", 64, 0));
  EXPECT_TRUE(block.links.empty());
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(IDBLOCK, SizeIsThatOfTheIdentification) { EXPECT_EQ(IDBLOCK("TEST").getSize(), 64U); }

TEST(IDBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(IDBLOCK("TESTPROG")), testprogBytes());
  expectIdHeader(IDBLOCK("TESTPROG"));
}

TEST(IDBLOCK, LongProgramIdentifierIsCut) {
  EXPECT_BYTES(written(IDBLOCK("TESTPROG9")), testprogBytes());
  EXPECT_BYTES(written(IDBLOCK("TESTPROGRAMME OF SOME LENGTH")), testprogBytes());
}

TEST(IDBLOCK, ShortProgramIdentifierIsPaddedWithBlanks) {
  EXPECT_BYTES(written(IDBLOCK("TEST")), testprogBytes("TEST    "));
  EXPECT_BYTES(written(IDBLOCK("TESTPRO")), testprogBytes("TESTPRO "));
  EXPECT_BYTES(written(IDBLOCK("")), testprogBytes("        "));
}

TEST(IDBLOCK, ProgramIdentifierNeedsNoTerminator) {
  const std::array<char, 8> program{'T', 'E', 'S', 'T', 'P', 'R', 'O', 'G'};
  EXPECT_BYTES(written(IDBLOCK(program.data())), testprogBytes());
}

TEST(IDBLOCK, NothingAfterATerminatorIsTaken) {
  EXPECT_BYTES(written(IDBLOCK("AB\0DEFGH")), testprogBytes("AB      "));
}

TEST(IDBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(IDBLOCK, WritesExtremeValues) {
  IDBLOCK block("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF");
  fillBytes(block.id_file, '\xFF');
  fillBytes(block.id_vers, '\xFF');
  fillBytes(block.id_reserved1, 255);
  block.id_ver = UINT16_MAX;
  fillBytes(block.id_reserved2, 255);
  EXPECT_BYTES(written(block), std::string(64, '\xFF'));
}

TEST(IDBLOCK, NeitherHeaderNorLinksAreWritten) {
  IDBLOCK block("TESTPROG");
  block.header.length = 9999;
  block.header.link_count = 2;
  block.links = {1, 2};
  EXPECT_BYTES(written(block), testprogBytes());
}

TEST(IDBLOCK, TextGettersReturnAllEightCharacters) {
  EXPECT_EQ(IDBLOCK("TEST").getKenn(), "MDF     ");
  EXPECT_EQ(IDBLOCK("TEST").getVers(), "4.10    ");
  EXPECT_EQ(IDBLOCK("TEST").getProg(), "TEST    ");
  EXPECT_EQ(IDBLOCK("TEST").getVersionNumber(), 410);
  std::istringstream empty;
  EXPECT_EQ(IDBLOCK(empty).getProg(), std::string(8, '\0'));
}

TEST(IDBLOCK, Dump) {
  EXPECT_EQ(dumped(IDBLOCK("TESTPROG")),
            "[DEBUG] ==================== IDBLOCK ===================\n"
            "file identifier = MDF     \n"
            "format identifier = 4.10    \n"
            "programm identfier = TESTPROG\n"
            "version number = 410\n"
            "[DEBUG] ==================== End of IDBLOCK ===================\n");
}

TEST(IDBLOCK, DumpShowsEmbeddedZeroBytes) {
  IDBLOCK block("abcdefgh");
  setBytes(block.id_file, {'M', '\0', 'F', '\0', '\0', '\0', '\0', '\0'});
  block.id_ver = UINT16_MAX;
  EXPECT_NE(dumped(block).find(" = " + std::string("M\0F\0\0\0\0\0\n", 9)), std::string::npos);
  EXPECT_EQ(shownValues(block), "4.10 65535");
}

}  // namespace
