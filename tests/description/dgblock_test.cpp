#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

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

TEST(DGBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(DGBLOCK(100, 200, 300, DGBLOCK::DG_UINT16_LE)),
               Bytes().header("DG", 64, 4).links({100, 200, 300, 0}).u8(2).zeros(7));
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
  EXPECT_EQ(shownValues(block), "64 -1 0 0 0 0");
  EXPECT_EQ(block.getComment(), 0);
}

TEST(DGBLOCK, ReaderAppendsTheLinksAfterTheNilOnes) {
  const auto block = readBack<DGBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 100, 200, 300, 400}));
  EXPECT_EQ(block.getNextDgblock(), 0);
  EXPECT_EQ(block.dg_rec_id_size, 3);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<mdf_v4_10::UINT8, 4>{}));
  EXPECT_EQ(asArray(block.dg_reserved), (std::array<mdf_v4_10::UINT8, 7>{}));
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

}  // namespace
