#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

HDBLOCK distinctBlock() {
  HDBLOCK block(200, 100, 0x8102030405060708, -60, HDBLOCK::TIME_EXT_ABSOLUTE_SYNC, 0, 0);
  block.setCHFirstblock(300);
  block.setATFirstblock(400);
  block.setEVFirstblock(500);
  block.setMDCommentblock(600);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.hd_dst_offset_min = 0x1112;
  block.hd_time_flags = 21;
  block.hd_flags = 23;
  block.hd_reserved = 24;
  block.hd_start_angle_rad = 1.5;
  block.hd_start_distance_m = -2.5;
  return block;
}

TEST(HDBLOCK, WritesTheDataGroupFirstAndIgnoresAngleAndDistance) {
  EXPECT_BYTES(written(HDBLOCK(100, 200, 0, 60, HDBLOCK::TIME_LOCAL_PC, 1.5, 2.5)),
               header("HD", 104, 6) + links(200, 100, 0, 0, 0, 0) + u64(0) + u8(60, 0) + u8(0, 0) +
                   u8(2, 0, 0, 0) + zeros(16));
}

TEST(HDBLOCK, WritesEveryFieldAndTheHeaderAndTheLinksAsTheyAreStored) {
  HDBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links.push_back(700);
  EXPECT_BYTES(written(block), header("HD", 9999, 77, {1, 2, 3, 4}) +
                                   links(100, 200, 300, 400, 500, 600, 700) +
                                   u8(8, 7, 6, 5, 4, 3, 2, 0x81, 0xC4, 0xFF, 0x12, 0x11) +
                                   u8(21, 16, 23, 24) + f64(1.5, -2.5));
}

TEST(HDBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("HDBLOCK",
                                               "block size = 104\n"
                                               "first data group block (pointer) = 100\n"
                                               "first file history block (pointer) = 200\n"
                                               "first channel hierarchy block (pointer) = 300\n"
                                               "first attachement block (pointer) = 400\n"
                                               "first event block (pointer) = 500\n"
                                               "file comment (pointer) = 600\n"
                                               "start time = 9295995896645158664\n"
                                               "UTC time offset = -60\n"
                                               "DST time offset = 4370\n"
                                               "time flags = 21\n"
                                               "time quality class = 16\n"
                                               "flags = 23\n"
                                               "start angle = 1.5\n"
                                               "start distance = -2.5\n"));
}

TEST(HDBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  HDBLOCK block(0, -1, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "104 -1 0 0 0 0 0 0 0 0 2 0 0 0 0");
  EXPECT_EQ(block.getMDCommentblock(), 0);
}

}  // namespace
