#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

std::string testprogBytes(const std::string& program = "TESTPROG") {
  return std::string("MDF     4.10    ") + program + zeros(4) + u8(0x9A, 0x01) + zeros(34);
}

IDBLOCK distinctBlock() {
  IDBLOCK block("qrstuvwx");
  setBytes(block.id_file, {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'});
  setBytes(block.id_vers, {'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p'});
  setBytes(block.id_reserved1, {1, 2, 3, 4});
  block.id_ver = 0x8102;
  std::copy_n("thirty-four bytes that are not 0!!", 34, block.id_reserved2);
  return block;
}

TEST(IDBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(IDBLOCK("TESTPROG")), testprogBytes());
  EXPECT_BYTES(written(IDBLOCK("TESTPROG").header), header("ID", 64, 0));
}

TEST(IDBLOCK, LongProgramIdentifierIsCut) {
  EXPECT_BYTES(written(IDBLOCK("TESTPROG9")), testprogBytes());
  const std::array<char, 8> without_terminator{'T', 'E', 'S', 'T', 'P', 'R', 'O', 'G'};
  EXPECT_BYTES(written(IDBLOCK(without_terminator.data())), testprogBytes());
}

TEST(IDBLOCK, ShortProgramIdentifierIsPaddedWithBlanks) {
  EXPECT_BYTES(written(IDBLOCK("TEST")), testprogBytes("TEST    "));
  EXPECT_BYTES(written(IDBLOCK("TESTPRO")), testprogBytes("TESTPRO "));
  EXPECT_BYTES(written(IDBLOCK("")), testprogBytes("        "));
}

TEST(IDBLOCK, WritesEveryFieldButNeitherHeaderNorLinks) {
  IDBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 2;
  block.links = {1, 2};
  EXPECT_BYTES(written(block), "abcdefghijklmnopqrstuvwx" + u8(1, 2, 3, 4, 0x02, 0x81) +
                                   "thirty-four bytes that are not 0!!");
  EXPECT_EQ(block.getSize(), 64U);
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
  EXPECT_EQ(dumped(IDBLOCK("TESTPROG")), inBanners("IDBLOCK",
                                                   "file identifier = MDF     \n"
                                                   "format identifier = 4.10    \n"
                                                   "programm identfier = TESTPROG\n"
                                                   "version number = 410\n"));
}

TEST(IDBLOCK, DumpShowsEmbeddedZeroBytes) {
  IDBLOCK block("abcdefgh");
  setBytes(block.id_file, {'M', '\0', 'F', '\0', '\0', '\0', '\0', '\0'});
  block.id_ver = UINT16_MAX;
  EXPECT_NE(dumped(block).find(" = " + std::string("M\0F\0\0\0\0\0\n", 9)), std::string::npos);
  EXPECT_EQ(shownValues(block), "4.10 65535");
}

}  // namespace
