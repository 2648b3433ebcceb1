#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::EVBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT16;

namespace {

EVBLOCK marker() {
  return {EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_POINT,
          EVBLOCK::EV_CAUSETYPE_USER};
}

EVBLOCK distinctBlock() {
  EVBLOCK block(EVBLOCK::EV_TYPE_TRIGGER, EVBLOCK::EV_SYNCTYPE_RECORD_INDEX,
                EVBLOCK::EV_RANGETYPE_END, EVBLOCK::EV_CAUSETYPE_SCRIPT);
  block.setNextEVBlock(100);
  block.setParentEVBlock(200);
  block.setEVRangeBlock(300);
  block.setTXNameBlock(400);
  block.setMDBlock(500);
  block.addScope(601);
  block.addScope(602);
  block.addAttachment(701);
  block.addAttachment(702);
  block.addAttachment(703);
  block.setPostProcessedFlag(true);
  block.setCreatorIndex(0x0102);
  block.setSyncBaseValue(-1000);
  block.setSyncBaseFactor(0.25);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.ev_reserved, {11, 12, 13});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##EV")
      .u8s({1, 2, 3, 4})
      .u64(136)
      .u64(10)
      .links({100, 200, 300, 400, 500})
      .links({601, 602})
      .links({701, 702, 703})
      .u8s({5, 4, 2, 3, 1})
      .u8s({11, 12, 13})
      .u32(2)
      .u16(3)
      .u16(0x0102)
      .i64(-1000)
      .f64(0.25);
}

/// The numbers from first to last.
std::vector<LINK> numbers(LINK first, LINK last) {
  std::vector<LINK> list;
  for (LINK number = first; number <= last; ++number) {
    list.push_back(number);
  }
  return list;
}

TEST(EVBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(marker()), Bytes()
                                      .header("EV", 96, 5)
                                      .zeros(40)
                                      .u8s({6, 1, 0, 4, 0})
                                      .zeros(3)
                                      .u32(0)
                                      .u16(0)
                                      .u16(0)
                                      .i64(0)
                                      .f64(0.0));
}

TEST(EVBLOCK, NewBlockHasFiveNilLinksAndEmptyLists) {
  const EVBLOCK block = marker();
  EXPECT_EQ(block.header.length, 96U);
  EXPECT_EQ(block.header.link_count, 5U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0}));
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.ev_scope, std::vector<LINK>{});
  EXPECT_EQ(block.ev_at_reference, std::vector<LINK>{});
  EXPECT_EQ(block.getSize(), 96U);
}

TEST(EVBLOCK, ConstructorTakesTheLowEightBitsOfTheTypes) {
  const EVBLOCK block(static_cast<EVBLOCK::MDF_EV_TYPE_t>(0x1F1),
                      static_cast<EVBLOCK::MDF_EV_SYNCTYPE_t>(0x2F2),
                      static_cast<EVBLOCK::MDF_EV_RANGETYPE_t>(0x3F3),
                      static_cast<EVBLOCK::MDF_EV_CAUSETYPE_t>(0x4F4));
  EXPECT_EQ(block.ev_type, 0xF1);
  EXPECT_EQ(block.ev_sync_type, 0xF2);
  EXPECT_EQ(block.ev_range_type, 0xF3);
  EXPECT_EQ(block.ev_cause, 0xF4);
}

TEST(EVBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(EVBLOCK, WritesScopeAndAttachmentsAfterTheFixedLinks) {
  EVBLOCK block = marker();
  block.addScope(100);
  block.addScope(200);
  block.addAttachment(300);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("EV", 120, 8)
                                   .zeros(40)
                                   .links({100, 200, 300})
                                   .u8s({6, 1, 0, 4, 0})
                                   .zeros(3)
                                   .u32(2)
                                   .u16(1)
                                   .u16(0)
                                   .i64(0)
                                   .f64(0.0));
}

TEST(EVBLOCK, WritesExtremeValues) {
  EVBLOCK block(
      static_cast<EVBLOCK::MDF_EV_TYPE_t>(255), static_cast<EVBLOCK::MDF_EV_SYNCTYPE_t>(255),
      static_cast<EVBLOCK::MDF_EV_RANGETYPE_t>(255), static_cast<EVBLOCK::MDF_EV_CAUSETYPE_t>(255));
  block.setNextEVBlock(INT64_MAX);
  block.setParentEVBlock(INT64_MIN);
  block.setEVRangeBlock(-1);
  block.setTXNameBlock(INT64_MIN);
  block.setMDBlock(INT64_MAX);
  block.addScope(INT64_MIN);
  block.addAttachment(INT64_MAX);
  block.ev_flags = 255;
  fillBytes(block.ev_reserved, 255);
  block.setCreatorIndex(0xFFFF);
  block.setSyncBaseValue(INT64_MIN);
  block.setSyncBaseFactor(-std::numeric_limits<double>::infinity());
  EXPECT_BYTES(written(block), Bytes()
                                   .header("EV", 112, 7)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MIN, INT64_MAX})
                                   .links({INT64_MIN, INT64_MAX})
                                   .u64(UINT64_MAX)
                                   .u32(1)
                                   .u16(1)
                                   .u16(0xFFFF)
                                   .i64(INT64_MIN)
                                   .u64(0xFFF0000000000000));
}

TEST(EVBLOCK, WriterDoesNotUseTheStoredLengthAndLinkCount) {
  EVBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 8888;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.header.link_count, 8888U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200, 300, 400, 500}));
  EXPECT_EQ(block.getSize(), 136U);
}

TEST(EVBLOCK, WritesLongLists) {
  EVBLOCK block = marker();
  Bytes expected;
  expected.header("EV", 96 + 8 * 700, 5 + 700).zeros(40);
  for (LINK link = 1; link <= 500; ++link) {
    block.addScope(link);
    expected.i64(link);
  }
  for (LINK link = 1; link <= 200; ++link) {
    block.addAttachment(-link);
    expected.i64(-link);
  }
  expected.u8s({6, 1, 0, 4, 0}).zeros(3).u32(500).u16(200).zeros(18);
  EXPECT_BYTES(written(block), expected);
}

/// A block with one scope link and so many attachments, 1, 2, 3 and so on.
EVBLOCK withAttachments(LINK count) {
  EVBLOCK block = marker();
  block.addScope(-1);
  block.ev_at_reference = numbers(1, count);
  return block;
}

TEST(EVBLOCK, AttachmentCountIsModulo65536) {
  for (const unsigned count : {65535U, 65536U, 65537U, 70000U}) {
    SCOPED_TRACE(count);
    const EVBLOCK block = withAttachments(count);
    EXPECT_EQ(block.getAttachmentCount(), count % 65536);
    EXPECT_EQ(block.getSize(), 96U + 8 * (1 + count));
    Bytes expected;
    expected.header("EV", 96 + 8 * (1 + count), 6 + count).zeros(40).i64(-1);
    for (unsigned i = 1; i <= count; ++i) {
      expected.i64(i);
    }
    expected.u8s({6, 1, 0, 4, 0}).zeros(3).u32(1);
    expected.u16(static_cast<UINT16>(count)).u16(0).i64(0).f64(0.0);
    EXPECT_TRUE(written(block) == expected.str());
  }
}

TEST(EVBLOCK, DumpListsEveryOneOfMoreThan65535Attachments) {
  std::string expected = "524400 0 0 0 0 0 0 6 1 0 4 0 0 0 1 -1 65537";
  for (unsigned i = 1; i <= 65537; ++i) {
    expected += " " + std::to_string(i);
  }
  EXPECT_TRUE(shownValues(withAttachments(65537)) == expected);
}

TEST(EVBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== EVBLOCK ===================\n"
            "block size = 136\n"
            "next event block (pointer) = 100\n"
            "parent event (pointer) = 200\n"
            "event range (pointer) = 300\n"
            "event name tx (pointer) = 400\n"
            "comment md (pointer) = 500\n"
            "flags = postProcessed(1)\n"
            "type = 5\n"
            "syncType = 4\n"
            "rangeType = 2\n"
            "cause = 3\n"
            "creator index = 258\n"
            "syncbaseValue = -1000\n"
            "syncbaseFactor = 0.25\n"
            "scope cnt = 2\n"
            "scope pointer = 601\n"
            "scope pointer = 602\n"
            "attachement cnt = 3\n"
            "attachement pointer = 701\n"
            "attachement pointer = 702\n"
            "attachement pointer = 703\n"
            "[DEBUG] ==================== End of EVBLOCK ===================\n");
}

TEST(EVBLOCK, DumpOfANewBlock) {
  EXPECT_EQ(shownValues(marker()), "96 0 0 0 0 0 0 6 1 0 4 0 0 0 0 0");
}

TEST(EVBLOCK, DumpShowsTheFlagAsTheStreamShowsBooleans) {
  EVBLOCK block = marker();
  block.setSyncBaseFactor(1e-9);
  EXPECT_EQ(shownValues(block, std::boolalpha), "96 0 0 0 0 0 false 6 1 0 4 0 0 1e-09 0 0");
  block.setPostProcessedFlag(true);
  EXPECT_EQ(shownValues(block, std::boolalpha), "96 0 0 0 0 0 true 6 1 0 4 0 0 1e-09 0 0");
}

TEST(EVBLOCK, DumpShowsZeroForMissingLinksAndExtremeValues) {
  EVBLOCK block = marker();
  block.header.length = 9999;
  block.links = {-1, INT64_MIN};
  block.addScope(INT64_MAX);
  block.addAttachment(-2);
  block.ev_type = 255;
  block.ev_sync_type = 254;
  block.ev_range_type = 253;
  block.ev_cause = 252;
  block.ev_flags = 0xFE;
  block.setCreatorIndex(0xFFFF);
  block.setSyncBaseValue(INT64_MIN);
  block.setSyncBaseFactor(123456789.0);
  EXPECT_EQ(shownValues(block),
            "112 -1 -9223372036854775808 0 0 0 0 255 254 253 252 65535 -9223372036854775808 "
            "1.23457e+08 1 9223372036854775807 1 -2");
  EXPECT_EQ(block.getEVRangeBlock(), 0);
  EXPECT_EQ(block.getTXNameBlock(), 0);
  EXPECT_EQ(block.getMDBlock(), 0);
}

TEST(EVBLOCK, ReaderFillsTheListsFromTheFixedLinks) {
  const auto block = readBack<EVBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 136U);
  EXPECT_EQ(block.header.link_count, 10U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0}));
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{100, 200}));
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{300, 400, 500}));
  EXPECT_EQ(block.getType(), EVBLOCK::EV_TYPE_TRIGGER);
  EXPECT_EQ(block.getSyncType(), EVBLOCK::EV_SYNCTYPE_RECORD_INDEX);
  EXPECT_EQ(block.getRangeType(), EVBLOCK::EV_RANGETYPE_END);
  EXPECT_EQ(block.getCause(), EVBLOCK::EV_CAUSETYPE_SCRIPT);
  EXPECT_EQ(block.ev_flags, 1);
  EXPECT_EQ(block.getCreatorIndex(), 0x0102);
  EXPECT_EQ(block.getSyncBaseValue(), -1000);
  EXPECT_EQ(block.getSyncBaseFactor(), 0.25);
  EXPECT_EQ(block.getPadding(), 0);
}

}  // namespace
