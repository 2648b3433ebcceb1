#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::DLBLOCK;
using mdf_v4_10::DZBLOCK;
using mdf_v4_10::HLBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT8;

namespace {

using Links = std::vector<LINK>;

HLBLOCK distinctBlock() {
  HLBLOCK block(300, true, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.hl_flags = 0xABCD;
  setBytes(block.hl_reserved, {11, 12, 13, 14, 15});
  return block;
}

/// The block as the format means it, with a link count of `link_count`.
std::string distinctBytes(std::uint64_t link_count) {
  return Bytes()
      .text("##HL")
      .u8s({1, 2, 3, 4})
      .u64(40)
      .u64(link_count)
      .i64(300)
      .u16(0xABCD)
      .u8(1)
      .u8s({11, 12, 13, 14, 15});
}

TEST(HLBLOCK, WritesItsLinkWithALinkCountOfZero) {
  EXPECT_BYTES(written(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               Bytes().header("HL", 40, 0).i64(4096).u16(1).u8(0).zeros(5));
}

TEST(HLBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(HLBLOCK(0, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               Bytes().header("HL", 40, 0).zeros(16));
  EXPECT_BYTES(written(HLBLOCK(-2, false, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE)),
               Bytes().header("HL", 40, 0).i64(-2).u16(0).u8(1).zeros(5));
}

TEST(HLBLOCK, ConstructorLeavesEverythingElseZero) {
  const HLBLOCK block(7, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(linksOf(block), (Links{7}));
  EXPECT_EQ(block.hl_flags, 1);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));
}

TEST(HLBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes(0)); }

TEST(HLBLOCK, WritesExtremeValues) {
  HLBLOCK block(INT64_MIN, true, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(0x1FF));
  block.hl_flags = 0xFFFF;
  fillBytes(block.hl_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("HL", 40, 0)
                                   .i64(INT64_MIN)
                                   .u16(0xFFFF)
                                   .u8(255)
                                   .u8s({255, 255, 255, 255, 255}));
}

TEST(HLBLOCK, LengthAndLinkCountInTheFileAreNotTheStoredOnes) {
  HLBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 1;
  EXPECT_BYTES(written(block), distinctBytes(0));
  EXPECT_EQ(block.header.length, 999U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(block.getSize(), 40U);
}

TEST(HLBLOCK, WritesEveryStoredLink) {
  HLBLOCK block = distinctBlock();
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##HL")
                                   .u8s({1, 2, 3, 4})
                                   .u64(40)
                                   .u64(0)
                                   .links({5, 6, 7})
                                   .u16(0xABCD)
                                   .u8(1)
                                   .u8s({11, 12, 13, 14, 15}));
  EXPECT_EQ(block.getSize(), 40U);
}

TEST(HLBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = 300\n"
            "equal length = 1\n"
            "zip type = 1\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, DumpOfExtremeValuesShowsTheConstantSize) {
  HLBLOCK block(INT64_MIN, false, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(255));
  block.header.length = 9999;
  EXPECT_EQ(shownValues(block), "40 -9223372036854775808 0 255");
}

TEST(HLBLOCK, DumpWithoutLinksShowsANilLink) {
  HLBLOCK block(5, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  block.links.clear();
  EXPECT_EQ(shownValues(block), "40 0 1 0");
}

TEST(HLBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlock(), std::hex, std::boolalpha), "28 12c true 1");
}

TEST(HLBLOCK, ZipTypeIsShownAsASignedNumber) {
  EXPECT_EQ(shownValues(distinctBlock(), std::showpos), "40 +300 +1 +1");
}

TEST(HLBLOCK, BlockThatAnnouncesItsLinkIsReadAsItWasMeant) {
  const auto block = readBack<HLBLOCK>(distinctBytes(1));
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(linksOf(block), (Links{300}));
  EXPECT_EQ(block.getFirstDlblock(), 300);
  EXPECT_EQ(block.hl_flags, 0xABCD);
  EXPECT_EQ(block.hl_zip_type, 1);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));

  const auto plain = readBack<HLBLOCK>(Bytes().header("HL", 40, 1).i64(4096).u16(1).zeros(6));
  EXPECT_EQ(linksOf(plain), (Links{4096}));
  EXPECT_EQ(plain.hl_flags, 1);
  EXPECT_EQ(plain.hl_zip_type, 0);
}

TEST(HLBLOCK, BlockThatWasWrittenIsReadBackWithFlagsFromItsLink) {
  const auto block = readBack<HLBLOCK>(written(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)));
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.getFirstDlblock(), 0);
  EXPECT_EQ(block.hl_flags, 4096);
  EXPECT_EQ(block.hl_zip_type, 0);
  EXPECT_FALSE(block.isEqualLengthFlag());
}

TEST(HLBLOCK, LeadsToTheListsAndTheZippedBlocksOfAFile) {
  // The header list at 64, its list at 104, the zipped block at 200 and 4 bytes after it.
  DLBLOCK list(true, 0);
  list.addData(200, 0);
  list.setEqualLength(100);
  const UINT8 zipped[] = {1, 2, 3, 4};
  std::string contents(200, '\0');
  contents.replace(64, 40, Bytes().header("HL", 40, 1).i64(104).u16(1).u8(1).zeros(5).str());
  contents.replace(104, 56, written(list));
  contents += written(DZBLOCK(mdf_v4_10::DTBLOCK::MDF_DT_ID,
                              DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, zipped, sizeof zipped));
  contents += "next";

  const LinkTargetFile file(contents);
  std::ifstream ifs = file.open();
  ifs.seekg(64);
  const HLBLOCK block(ifs);
  EXPECT_EQ(block.seekgFirstDlblock(ifs), 104);
  const DLBLOCK read_list(ifs);
  EXPECT_EQ(linksOf(read_list), (Links{0, 0, 200}));
  EXPECT_EQ(read_list.seekgDataAt(ifs, 1), 200);
  const DZBLOCK read_zipped(ifs);
  EXPECT_EQ(ifs.rdstate(), state_good);
  EXPECT_EQ(read_zipped.getZipType(), block.getZipType());
  EXPECT_EQ(read_zipped.dz_data, (std::vector<UINT8>{'n', 'e', 'x', 't'}));
}

}  // namespace
