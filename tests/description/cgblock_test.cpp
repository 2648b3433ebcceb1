#include <gtest/gtest.h>

#include <array>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

CGBLOCK distinctBlock() {
  CGBLOCK block(100, static_cast<CGBLOCK::CG_FLAGS_t>(0x4146), 0x2122232425262728, 200, 300, 400,
                500, 0x3132333435363738, static_cast<CGBLOCK::CG_PATHSEPARATOR_t>(0x5152),
                0x61626364, 0x71727374);
  block.setComment(600);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.cg_reserved, {11, 12, 13, 14});
  return block;
}

TEST(CGBLOCK, DefaultBlockIsAllNilAndZero) {
  EXPECT_BYTES(written(CGBLOCK()), header("CG", 104, 6) + zeros(80));
}

TEST(CGBLOCK, WritesWhatTheConstructorWasGiven) {
  const CGBLOCK block(0, CGBLOCK::bus_event_group, 7, 500, 0, 0, 0, 10,
                      CGBLOCK::CG_PATHSEPARATOR_POINT, 12, 1);
  EXPECT_BYTES(written(block), header("CG", 104, 6) + links(0, 500, 0, 0, 0, 0) + u64(7, 10) +
                                   u16(2, 46) + zeros(4) + u32(12, 1));
}

TEST(CGBLOCK, WritesEveryFieldTheHeaderAsStoredAndAllLinksOfTheList) {
  CGBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 3;
  block.links.push_back(700);
  EXPECT_BYTES(written(block),
               header("CG", 9999, 3, {1, 2, 3, 4}) + links(100, 200, 300, 400, 500, 600, 700) +
                   u64(0x2122232425262728, 0x3132333435363738) + u16(0x4146, 0x5152) +
                   u8(11, 12, 13, 14) + u32(0x61626364, 0x71727374));
}

TEST(CGBLOCK, SetupLeavesHeaderCommentAndReservedBytes) {
  CGBLOCK block = distinctBlock();
  block.header.length = 1111;
  block.header.link_count = 2222;
  block.setup(1, CGBLOCK::vlsd_channel_group, 2, 3, 4, 5, 6, 7, CGBLOCK::CG_PATHSEPARATOR_SLASH, 8,
              9);
  EXPECT_BYTES(written(block), header("CG", 1111, 2222, {1, 2, 3, 4}) + links(1, 3, 4, 5, 6, 600) +
                                   u64(2, 7) + u16(1, 47) + u8(11, 12, 13, 14) + u32(8, 9));
}

TEST(CGBLOCK, SetupWorksOnFiveLinks) {
  CGBLOCK block;
  block.links.resize(5);
  block.setup(1, CGBLOCK::no_flag, 0, 2, 3, 4, 5, 0, CGBLOCK::CG_PATHSEPARATOR_NONE, 0, 0);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 4, 5}));
}

TEST(CGBLOCK, CycleCountIsCountedUp) {
  CGBLOCK block;
  block.setCycleCount(10);
  block.incCycleCount();
  EXPECT_EQ(block.getCycleCount(), 11U);
  block.setCycleCount(UINT64_MAX);
  block.incCycleCount();
  EXPECT_EQ(block.getCycleCount(), 0U);
}

TEST(CGBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            inBanners("CGBLOCK",
                      "block size = 104\n"
                      "next channel group block = 100\n"
                      "first channel block = 200\n"
                      "acq name tx block = 300\n"
                      "acq source si block = 400\n"
                      "first sr block = 500\n"
                      "comment block = 600\n"
                      "record id = 2387509390608836392\n"
                      "cycle cnt = 3544952156018063160\n"
                      "flags : vlsd(0), busEvent(1), plainBusEventChannel(1)\n"
                      "path separator = 20818\n"
                      "size of data records = 1633837924\n"
                      "size of invalid bytes = 1903326068\n"));
}

TEST(CGBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  CGBLOCK block;
  block.header.length = 9999;
  block.links = {-1, INT64_MIN};
  block.cg_record_id = UINT64_MAX;
  block.cg_flags = 5;
  block.cg_path_separator = 46;
  EXPECT_EQ(shownValues(block),
            "104 -1 -9223372036854775808 0 0 0 0 18446744073709551615 0 1 0 1 46 0 0");
}

TEST(CGBLOCK, DumpFollowsTheFormatOfTheStream) {
  CGBLOCK block(16, CGBLOCK::bus_event_group, 17, 18, 19, 20, 21, 22,
                CGBLOCK::CG_PATHSEPARATOR_POINT, 23, 24);
  EXPECT_EQ(shownValues(block, std::boolalpha, std::hex),
            "68 10 12 13 14 15 0 11 16 false true false 2e 17 18");
}

}  // namespace
