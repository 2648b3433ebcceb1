#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <type_traits>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

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

TEST(IDBLOCK, Constants) {
  EXPECT_EQ(IDBLOCK::IDBLOCK_SIZE, 64U);
  EXPECT_STREQ(IDBLOCK::MDF_ID_FILE_STRING, "MDF     ");
  EXPECT_STREQ(IDBLOCK::MDF_ID_VERS_STRING, "4.10    ");
  EXPECT_EQ(IDBLOCK::MDF_ID_VERS_NO, 410);
  EXPECT_EQ(IDBLOCK::MDF_ID_FILE, 8U);
  EXPECT_EQ(IDBLOCK::MDF_ID_VERS, 8U);
  EXPECT_EQ(IDBLOCK::MDF_ID_PROG, 8U);
  EXPECT_EQ(IDBLOCK::MDF_ID_ORDER_INTEL, 0);
  EXPECT_EQ(IDBLOCK::MDF_ID_ID, 0x4449);
}

TEST(IDBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::idblock_fields, 0),
            "0 8 id_file\n"
            "8 8 id_vers\n"
            "16 8 id_prog\n"
            "24 4 id_reserved1\n"
            "28 2 id_ver\n"
            "30 34 id_reserved2\n");
}

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

TEST(IDBLOCK, NothingBehindATerminatorIsTaken) {
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

TEST(IDBLOCK, Accessors) {
  const IDBLOCK block = distinctBlock();
  EXPECT_EQ(block.getKenn(), "abcdefgh");
  EXPECT_EQ(block.getVers(), "ijklmnop");
  EXPECT_EQ(block.getProg(), "qrstuvwx");
  EXPECT_EQ(block.getVersionNumber(), 0x8102);
  EXPECT_TRUE((std::is_same_v<decltype(block.getVersionNumber()), std::uint16_t>));
}

TEST(IDBLOCK, TextGettersReturnAllEightCharacters) {
  EXPECT_EQ(IDBLOCK("TEST").getKenn(), "MDF     ");
  EXPECT_EQ(IDBLOCK("TEST").getVers(), "4.10    ");
  EXPECT_EQ(IDBLOCK("TEST").getProg(), "TEST    ");
  EXPECT_EQ(IDBLOCK("TEST").getVersionNumber(), 410);
  EXPECT_EQ(IDBLOCK("TEST").getSize(), 64U);
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
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== IDBLOCK ===================\n"
            "file identifier = " +
                std::string("M\0F\0\0\0\0\0", 8) +
                "\nformat identifier = 4.10    \n"
                "programm identfier = abcdefgh\n"
                "version number = 65535\n"
                "[DEBUG] ==================== End of IDBLOCK ===================\n");
}

TEST(IDBLOCK, DumpOfABlockThatWasRead) {
  EXPECT_EQ(dumped(readBack<IDBLOCK>(distinctBytes())),
            "[DEBUG] ==================== IDBLOCK ===================\n"
            "file identifier = abcdefgh\n"
            "format identifier = ijklmnop\n"
            "programm identfier = qrstuvwx\n"
            "version number = 33026\n"
            "[DEBUG] ==================== End of IDBLOCK ===================\n");
}

TEST(IDBLOCK, ReadsItsOwnBytes) {
  const auto block = readBack<IDBLOCK>(testprogBytes());
  EXPECT_EQ(block.getKenn(), "MDF     ");
  EXPECT_EQ(block.getVers(), "4.10    ");
  EXPECT_EQ(block.getProg(), "TESTPROG");
  EXPECT_EQ(block.getVersionNumber(), 410);
  EXPECT_BYTES(written(block), testprogBytes());
  expectIdHeader(block);
}

TEST(IDBLOCK, ReaderTakesEverythingButTheFirstReservedBytes) {
  const auto block = readBack<IDBLOCK>(distinctBytes());
  EXPECT_BYTES(written(block), distinctBytesWith({0, 0, 0, 0}));
  expectIdHeader(block);
}

TEST(IDBLOCK, OtherFileIdentifierIsReadAsItStands) {
  std::string bytes = testprogBytes();
  bytes.replace(0, 8, "XYZ     ");
  const auto block = readBack<IDBLOCK>(bytes);
  EXPECT_EQ(block.getKenn(), "XYZ     ");
  EXPECT_BYTES(written(block), bytes);
}

TEST(IDBLOCK, ReaderLeavesTheStreamBehindTheBlock) {
  std::istringstream is("front" + testprogBytes() + "behind");
  is.ignore(5);
  const IDBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(is.tellg(), 5 + 64);
  EXPECT_BYTES(written(block), testprogBytes());
}

TEST(IDBLOCK, CutStreamBecomesBad) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const IDBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().zeros(64));
    expectIdHeader(block);
  });
}

TEST(IDBLOCK, FailedStreamIsNotRead) {
  for (const auto state : failed_states) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const IDBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().zeros(64));
    expectIdHeader(block);
  }
}

TEST(IDBLOCK, DumpOfAFailedRead) {
  std::istringstream is("short");
  const std::string zeros(8, '\0');
  EXPECT_EQ(dumped(IDBLOCK(is)),
            "[DEBUG] ==================== IDBLOCK ===================\n"
            "file identifier = " +
                zeros + "\nformat identifier = " + zeros + "\nprogramm identfier = " + zeros +
                "\nversion number = 0\n"
                "[DEBUG] ==================== End of IDBLOCK ===================\n");
}

}  // namespace
