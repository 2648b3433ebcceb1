#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

DGBLOCK distinctBlock() {
  DGBLOCK block(100, 200, 300, DGBLOCK::DG_UINT32_LE);
  block.setComment(400);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.dg_reserved, {11, 12, 13, 14, 15, 16, 17});
  return block;
}

std::string distinctBytes() {
  return header("DG", 64, 4, {1, 2, 3, 4}) + links(100, 200, 300, 400) + u8(3) +
         u8(11, 12, 13, 14, 15, 16, 17);
}

TEST(DGBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(DGBLOCK(100, 200, 300, DGBLOCK::DG_UINT16_LE)),
               header("DG", 64, 4) + links(100, 200, 300, 0) + u8(2) + zeros(7));
}

TEST(DGBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(DGBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("DGBLOCK",
                                               "block size = 64\n"
                                               "next data group block = 100\n"
                                               "first channel group block = 200\n"
                                               "data block = 300\n"
                                               "comment block = 400\n"
                                               "record ID size = 3\n"));
}

TEST(DGBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  DGBLOCK block(-1, 0, 0, DGBLOCK::DG_WITHOUT);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "64 -1 0 0 0 0");
  EXPECT_EQ(block.getComment(), 0);
}

}  // namespace
