#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::LINK;

namespace {

HDBLOCK distinctBlock() {
  HDBLOCK block(200, 100, 0x0102030405060708, -60, HDBLOCK::TIME_EXT_ABSOLUTE_SYNC, 0, 0);
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

/// The data section of the block above; only the reserved byte is up to the caller.
std::string distinctFields(int reserved) {
  return Bytes()
      .u8s({8, 7, 6, 5, 4, 3, 2, 1})
      .u8s({0xC4, 0xFF})
      .u8s({0x12, 0x11})
      .u8s({21, 16, 23, reserved})
      .u8s({0, 0, 0, 0, 0, 0, 0xF8, 0x3F})
      .u8s({0, 0, 0, 0, 0, 0, 0x04, 0xC0});
}

std::string distinctBytes() {
  return Bytes()
      .text("##HD")
      .u8s({1, 2, 3, 4})
      .u64(104)
      .u64(6)
      .links({100, 200, 300, 400, 500, 600})
      .text(distinctFields(24));
}

TEST(HDBLOCK, WritesTheDataGroupFirstAndIgnoresAngleAndDistance) {
  EXPECT_BYTES(written(HDBLOCK(100, 200, 0, 60, HDBLOCK::TIME_LOCAL_PC, 1.5, 2.5)),
               Bytes()
                   .header("HD", 104, 6)
                   .links({200, 100, 0, 0, 0, 0})
                   .u64(0)
                   .u8s({60, 0})
                   .u8s({0, 0})
                   .u8s({2, 0, 0, 0})
                   .zeros(16));
}

TEST(HDBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(HDBLOCK(-1, INT64_MAX, UINT64_MAX, INT16_MIN, HDBLOCK::TIME_EXT_SOURCE,
                               -DBL_MAX, DBL_MAX)),
               Bytes()
                   .header("HD", 104, 6)
                   .links({INT64_MAX, -1, 0, 0, 0, 0})
                   .u64(UINT64_MAX)
                   .u8s({0x00, 0x80})
                   .u8s({0, 0})
                   .u8s({2, 10, 0, 0})
                   .zeros(16));
}

TEST(HDBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(HDBLOCK, WritesExtremeValues) {
  HDBLOCK block(INT64_MIN, INT64_MAX, UINT64_MAX, INT16_MIN,
                static_cast<HDBLOCK::MDF_HD_TIME_QUALITY_t>(0x1FF), 0, 0);
  block.hd_dst_offset_min = INT16_MAX;
  block.hd_time_flags = block.hd_flags = block.hd_reserved = 255;
  block.hd_start_angle_rad = -DBL_MAX;
  block.hd_start_distance_m = HUGE_VAL;
  EXPECT_BYTES(written(block), Bytes()
                                   .header("HD", 104, 6)
                                   .links({INT64_MAX, INT64_MIN, 0, 0, 0, 0})
                                   .u64(UINT64_MAX)
                                   .u8s({0x00, 0x80})
                                   .u8s({0xFF, 0x7F})
                                   .u8s({255, 255, 255, 255})
                                   .u64(0xFFEFFFFFFFFFFFFF)
                                   .u64(0x7FF0000000000000));
}

TEST(HDBLOCK, HeaderAndLinksAreWrittenAsTheyAreStored) {
  HDBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##HD")
                                   .u8s({1, 2, 3, 4})
                                   .u64(9999)
                                   .u64(77)
                                   .links({5, 6, 7})
                                   .text(distinctFields(24)));
}

TEST(HDBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== HDBLOCK ===================\n"
            "block size = 104\n"
            "first data group block (pointer) = 100\n"
            "first file history block (pointer) = 200\n"
            "first channel hierarchy block (pointer) = 300\n"
            "first attachement block (pointer) = 400\n"
            "first event block (pointer) = 500\n"
            "file comment (pointer) = 600\n"
            "start time = 72623859790382856\n"
            "UTC time offset = -60\n"
            "DST time offset = 4370\n"
            "time flags = 21\n"
            "time quality class = 16\n"
            "flags = 23\n"
            "start angle = 1.5\n"
            "start distance = -2.5\n"
            "[DEBUG] ==================== End of HDBLOCK ===================\n");
}

TEST(HDBLOCK, DumpOfExtremeValues) {
  HDBLOCK block(INT64_MIN, -1, UINT64_MAX, INT16_MIN,
                static_cast<HDBLOCK::MDF_HD_TIME_QUALITY_t>(255), 0, 0);
  block.hd_dst_offset_min = -1;
  block.hd_time_flags = block.hd_flags = 255;
  block.hd_start_angle_rad = -DBL_MAX;
  block.hd_start_distance_m = 1.0 / 3;
  EXPECT_EQ(shownValues(block),
            "104 -1 -9223372036854775808 0 0 0 0 18446744073709551615 -32768 -1 255 255 255 "
            "-1.79769e+308 0.333333");
}

TEST(HDBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  HDBLOCK block(0, -1, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "104 -1 0 0 0 0 0 0 0 0 2 0 0 0 0");
  EXPECT_EQ(block.getMDCommentblock(), 0);
}

}  // namespace
