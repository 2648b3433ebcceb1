#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

FHBLOCK distinctBlock() {
  FHBLOCK block(200, 0x8102030405060708, -60, 100);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.fh_dst_offset_min = 0x1112;
  block.fh_time_flags = 21;
  setBytes(block.fh_reserved, {22, 23, 24});
  return block;
}

TEST(FHBLOCK, WritesTheNextBlockBeforeTheComment) {
  EXPECT_BYTES(written(FHBLOCK(300, 5, -60, 0)), header("FH", 56, 2) + links(0, 300) + u64(5) +
                                                     u8(0xC4, 0xFF) + u8(0, 0) + u8(2, 0, 0, 0));
}

TEST(FHBLOCK, WritesEveryFieldAndTheHeaderAndTheLinksAsTheyAreStored) {
  FHBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), header("FH", 9999, 77, {1, 2, 3, 4}) + links(5, 6, 7) +
                                   u8(8, 7, 6, 5, 4, 3, 2, 0x81, 0xC4, 0xFF, 0x12, 0x11) +
                                   u8(21, 22, 23, 24));
}

TEST(FHBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("FHBLOCK",
                                               "block size = 56\n"
                                               "next file history block (pointer) = 100\n"
                                               "file comment (pointer) = 200\n"
                                               "time = 9295995896645158664\n"
                                               "UTC time offset = -60\n"
                                               "DST time offset = 4370\n"
                                               "time flags = 21\n"));
}

TEST(FHBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  FHBLOCK block(300, 5, 0, -1);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "56 -1 0 5 0 0 2");
  EXPECT_EQ(block.getMDBlock(), 0);
}

}  // namespace
