#include <gtest/gtest.h>

#include <array>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::CGBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT8;

namespace {

/// The data section of the block in which every field has a value of its own.
std::string distinctFields(std::initializer_list<int> reserved) {
  return Bytes()
      .u64(0x2122232425262728)
      .u64(0x3132333435363738)
      .u16(0x4146)
      .u16(0x5152)
      .u8s(reserved)
      .u32(0x61626364)
      .u32(0x71727374);
}

CGBLOCK distinctBlock() {
  CGBLOCK block(100, static_cast<CGBLOCK::CG_FLAGS_t>(0x4146), 0x2122232425262728, 200, 300, 400,
                500, 0x3132333435363738, static_cast<CGBLOCK::CG_PATHSEPARATOR_t>(0x5152),
                0x61626364, 0x71727374);
  block.setComment(600);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.cg_reserved, {11, 12, 13, 14});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##CG")
      .u8s({1, 2, 3, 4})
      .u64(104)
      .u64(6)
      .links({100, 200, 300, 400, 500, 600})
      .text(distinctFields({11, 12, 13, 14}));
}

std::string defaultBytes() { return Bytes().header("CG", 104, 6).zeros(48).zeros(32); }

TEST(CGBLOCK, DefaultBlockIsAllNilAndZero) {
  const CGBLOCK block;
  EXPECT_BYTES(written(block), defaultBytes());
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(CGBLOCK, WritesWhatTheConstructorWasGiven) {
  const CGBLOCK block(0, CGBLOCK::bus_event_group, 7, 500, 0, 0, 0, 10,
                      CGBLOCK::CG_PATHSEPARATOR_POINT, 12, 1);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CG", 104, 6)
                                   .links({0, 500, 0, 0, 0, 0})
                                   .u64(7)
                                   .u64(10)
                                   .u16(2)
                                   .u16(46)
                                   .zeros(4)
                                   .u32(12)
                                   .u32(1));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(CGBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(CGBLOCK, WritesExtremeValues) {
  CGBLOCK block(INT64_MAX, static_cast<CGBLOCK::CG_FLAGS_t>(0x1FFFF), UINT64_MAX, INT64_MIN, -1,
                INT64_MAX, INT64_MIN, UINT64_MAX, static_cast<CGBLOCK::CG_PATHSEPARATOR_t>(0xFFFF),
                UINT32_MAX, UINT32_MAX);
  block.setComment(-1);
  fillBytes(block.header.reserved, 255);
  fillBytes(block.cg_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CG")
                                   .u32(UINT32_MAX)
                                   .u64(104)
                                   .u64(6)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX, INT64_MIN, -1})
                                   .text(std::string(32, '\xFF')));
}

TEST(CGBLOCK, WritesTheHeaderAsStoredAndAllLinksOfTheList) {
  CGBLOCK block;
  block.header.length = 9999;
  block.header.link_count = 3;
  block.links = {1, 2, 3, 4, 5, 6, 7};
  EXPECT_BYTES(written(block),
               Bytes().header("CG", 9999, 3).links({1, 2, 3, 4, 5, 6, 7}).zeros(32));
}

TEST(CGBLOCK, SetupLeavesHeaderCommentAndReservedBytes) {
  CGBLOCK block = distinctBlock();
  block.header.length = 1111;
  block.header.link_count = 2222;
  block.setup(1, CGBLOCK::vlsd_channel_group, 2, 3, 4, 5, 6, 7, CGBLOCK::CG_PATHSEPARATOR_SLASH, 8,
              9);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CG")
                                   .u8s({1, 2, 3, 4})
                                   .u64(1111)
                                   .u64(2222)
                                   .links({1, 3, 4, 5, 6, 600})
                                   .u64(2)
                                   .u64(7)
                                   .u16(1)
                                   .u16(47)
                                   .u8s({11, 12, 13, 14})
                                   .u32(8)
                                   .u32(9));
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
            "[DEBUG] ==================== CGBLOCK ===================\n"
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
            "size of invalid bytes = 1903326068\n"
            "[DEBUG] ==================== End of CGBLOCK ===================\n");
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

TEST(CGBLOCK, ReaderAppendsTheLinksAfterTheNilOnes) {
  const auto block = readBack<CGBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 104U);
  EXPECT_EQ(block.header.link_count, 6U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0, 0, 100, 200, 300, 400, 500, 600}));
  EXPECT_EQ(block.getNextCgblock(), 0);
  EXPECT_EQ(block.getComment(), 0);
  EXPECT_EQ(block.cg_record_id, 0x2122232425262728U);
  EXPECT_EQ(block.cg_cycle_count, 0x3132333435363738U);
  EXPECT_EQ(block.cg_flags, 0x4146);
  EXPECT_EQ(block.cg_path_separator, 0x5152);
  EXPECT_EQ(block.cg_data_bytes, 0x61626364U);
  EXPECT_EQ(block.cg_inval_bytes, 0x71727374U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.cg_reserved), (std::array<UINT8, 4>{}));
}

}  // namespace
