#include <gtest/gtest.h>

#include <sstream>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::DGBLOCK;
using mdf_v4_10::LINK;

namespace {

DGBLOCK distinctBlock() {
  DGBLOCK block(100, 200, 300, DGBLOCK::DG_UINT32_LE);
  block.setComment(400);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.dg_reserved, {11, 12, 13, 14, 15, 16, 17});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##DG")
      .u8s({1, 2, 3, 4})
      .u64(64)
      .u64(4)
      .links({100, 200, 300, 400})
      .u8(3)
      .u8s({11, 12, 13, 14, 15, 16, 17});
}

TEST(DGBLOCK, Constants) {
  EXPECT_EQ(DGBLOCK::DGBLOCK_SIZE, 64U);
  EXPECT_EQ(DGBLOCK::MDF_DG_ID, 0x4744);
}

TEST(DGBLOCK, EnumerationValues) {
  EXPECT_EQ(DGBLOCK::DG_WITHOUT, 0);
  EXPECT_EQ(DGBLOCK::DG_UINT8, 1);
  EXPECT_EQ(DGBLOCK::DG_UINT16_LE, 2);
  EXPECT_EQ(DGBLOCK::DG_UINT32_LE, 3);
  EXPECT_EQ(DGBLOCK::DG_UINT64_LE, 4);
  EXPECT_EQ(DGBLOCK::dg_dg_next, 0);
  EXPECT_EQ(DGBLOCK::dg_cg_first, 1);
  EXPECT_EQ(DGBLOCK::dg_data, 2);
  EXPECT_EQ(DGBLOCK::dg_md_comment, 3);
  EXPECT_EQ(DGBLOCK::DG_BLOCK_LINKS_NUM, 4);
}

TEST(DGBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::dgblock_fields, 56),
            "56 1 dg_rec_id_size\n"
            "57 7 dg_reserved\n");
}

TEST(DGBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(DGBLOCK(100, 200, 300, DGBLOCK::DG_UINT16_LE)),
               Bytes().header("DG", 64, 4).links({100, 200, 300, 0}).u8(2).zeros(7));
}

TEST(DGBLOCK, ConstructorLeavesPaddingZero) {
  EXPECT_EQ(DGBLOCK(100, 200, 300, DGBLOCK::DG_UINT16_LE).getPadding(), 0);
}

TEST(DGBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(DGBLOCK, WritesExtremeValues) {
  DGBLOCK block(INT64_MAX, INT64_MIN, -1, static_cast<DGBLOCK::MDF_DG_REC_ID_SIZE_t>(0x1FF));
  block.setComment(INT64_MAX);
  fillBytes(block.dg_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("DG", 64, 4)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX})
                                   .u8s({255, 255, 255, 255, 255, 255, 255, 255}));
}

TEST(DGBLOCK, SixtyFourBitRecordIdIsTheCodeFour) {
  EXPECT_BYTES(written(DGBLOCK(0, 0, 0, DGBLOCK::DG_UINT64_LE)),
               Bytes().header("DG", 64, 4).zeros(32).u8(4).zeros(7));
}

TEST(DGBLOCK, Accessors) {
  DGBLOCK block(1, 2, 3, DGBLOCK::DG_UINT8);
  EXPECT_EQ(block.getNextDgblock(), 1);
  EXPECT_EQ(block.getFirstCgblock(), 2);
  EXPECT_EQ(block.getDatablock(), 3);
  EXPECT_EQ(block.getComment(), 0);
  EXPECT_EQ(block.getRecordIdSize(), DGBLOCK::DG_UINT8);
  block.setNextDgblock(11);
  block.setFirstCgblock(12);
  block.setDatablock(13);
  block.setComment(14);
  block.setRecordIdSize(DGBLOCK::DG_UINT64_LE);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12, 13, 14}));
  EXPECT_EQ(block.dg_rec_id_size, 4);
  EXPECT_EQ(block.getNextDgblock(), 11);
  EXPECT_EQ(block.getFirstCgblock(), 12);
  EXPECT_EQ(block.getDatablock(), 13);
  EXPECT_EQ(block.getComment(), 14);
  EXPECT_EQ(block.getRecordIdSize(), DGBLOCK::DG_UINT64_LE);
  EXPECT_EQ(block.getSize(), 64U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "dg_comment.xsd");
}

TEST(DGBLOCK, FollowsItsLinks) {
  const LinkTargetFile file;
  const DGBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDgblock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgFirstCgblock(ifs); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgData(ifs); }, 300);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgComment(ifs); }, 400);
}

TEST(DGBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  const DGBLOCK block(0, 0, 0, DGBLOCK::DG_WITHOUT);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDgblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgFirstCgblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgData(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgComment(ifs); }, 0);
}

TEST(DGBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== DGBLOCK ===================\n"
            "block size = 64\n"
            "next data group block = 100\n"
            "first channel group block = 200\n"
            "data block = 300\n"
            "comment block = 400\n"
            "record ID size = 3\n"
            "[DEBUG] ==================== End of DGBLOCK ===================\n");
}

TEST(DGBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  DGBLOCK block(-1, 0, 0, DGBLOCK::DG_WITHOUT);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== DGBLOCK ===================\n"
            "block size = 64\n"
            "next data group block = -1\n"
            "first channel group block = 0\n"
            "data block = 0\n"
            "comment block = 0\n"
            "record ID size = 0\n"
            "[DEBUG] ==================== End of DGBLOCK ===================\n");
  EXPECT_EQ(block.getComment(), 0);
}

TEST(DGBLOCK, ReaderAppendsTheLinksBehindTheNilOnes) {
  const auto block = readBack<DGBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 100, 200, 300, 400}));
  EXPECT_EQ(block.getNextDgblock(), 0);
  EXPECT_EQ(block.dg_rec_id_size, 3);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<mdf_v4_10::UINT8, 4>{}));
  EXPECT_EQ(asArray(block.dg_reserved), (std::array<mdf_v4_10::UINT8, 7>{}));
}

TEST(DGBLOCK, DumpOfABlockThatWasReadShowsTheNilLinks) {
  EXPECT_EQ(dumped(readBack<DGBLOCK>(distinctBytes())),
            "[DEBUG] ==================== DGBLOCK ===================\n"
            "block size = 64\n"
            "next data group block = 0\n"
            "first channel group block = 0\n"
            "data block = 0\n"
            "comment block = 0\n"
            "record ID size = 3\n"
            "[DEBUG] ==================== End of DGBLOCK ===================\n");
}

TEST(DGBLOCK, WritingABlockThatWasReadWritesEightLinks) {
  EXPECT_BYTES(written(readBack<DGBLOCK>(distinctBytes())),
               Bytes().header("DG", 64, 4).links({0, 0, 0, 0, 100, 200, 300, 400}).u8(3).zeros(7));
}

TEST(DGBLOCK, CutStreamBecomesBad) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const DGBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().header("DG", 64, 4).zeros(40));
  });
}

TEST(DGBLOCK, FailedStreamIsNotRead) {
  std::istringstream is(distinctBytes());
  is.setstate(std::ios_base::failbit);
  const DGBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_bad);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0}));
}

TEST(DGBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<DGBLOCK>(bytes)),
               Bytes().header("DG", 64, 4).links({0, 0, 0, 0, 100, 200, 300, 400}).u8(3).zeros(7));
}

TEST(DGBLOCK, RecordIdSizeFollowsTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 4; ++link_count) {
    SCOPED_TRACE(link_count);
    std::string bytes = Bytes().header("DG", 77, link_count).zeros(40);
    bytes[24 + 8 * link_count] = 9;
    const auto block = readBack<DGBLOCK>(bytes);
    EXPECT_EQ(block.dg_rec_id_size, 9);
    EXPECT_EQ(block.links.size(), 4 + link_count);
    EXPECT_EQ(block.header.length, 77U);
    EXPECT_EQ(block.header.link_count, link_count);
  }
}

TEST(DGBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count : {std::uint64_t{5}, std::uint64_t{1} << 61U, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(Bytes().header("DG", 64, link_count).zeros(40).str());
    const DGBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_EQ(block.header.length, 64U);
    EXPECT_EQ(block.header.link_count, link_count);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0}));
    EXPECT_EQ(block.dg_rec_id_size, 0);
  }
}

}  // namespace
