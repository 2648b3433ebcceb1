#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

EVBLOCK marker() {
  return {EVBLOCK::EV_TYPE_MARKER, EVBLOCK::EV_SYNCTYPE_SECONDS, EVBLOCK::EV_RANGETYPE_POINT,
          EVBLOCK::EV_CAUSETYPE_USER};
}

EVBLOCK distinctBlock() {
  EVBLOCK block(EVBLOCK::EV_TYPE_TRIGGER, EVBLOCK::EV_SYNCTYPE_RECORD_INDEX,
                EVBLOCK::EV_RANGETYPE_END, EVBLOCK::EV_CAUSETYPE_SCRIPT);
  block.links = {100, 200, 300, 400, 500};
  block.ev_scope = {601, 602};
  block.ev_at_reference = {701, 702, 703};
  block.setPostProcessedFlag(true);
  block.setCreatorIndex(0x0102);
  block.setSyncBaseValue(-1000);
  block.setSyncBaseFactor(0.25);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.ev_reserved, {11, 12, 13});
  return block;
}

std::string distinctBytes() {
  return header("EV", 136, 10, {1, 2, 3, 4}) + links(100, 200, 300, 400, 500) + links(601, 602) +
         links(701, 702, 703) + u8(5, 4, 2, 3, 1) + u8(11, 12, 13) + u32(2) + u16(3, 0x0102) +
         links(-1000) + f64(0.25);
}

TEST(EVBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(marker()), header("EV", 96, 5) + zeros(40) + u8(6, 1, 0, 4, 0) + zeros(3) +
                                      u32(0) + u16(0, 0) + links(0) + f64(0.0));
}

TEST(EVBLOCK, NewBlockCountsFiveLinks) {
  EXPECT_BYTES(written(marker().header), header("EV", 96, 5));
}

TEST(EVBLOCK, WritesEveryFieldWithALengthAndLinkCountOfItsOwn) {
  EVBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 8888;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_BYTES(written(block.header), header("EV", 9999, 8888, {1, 2, 3, 4}));
  EXPECT_EQ(block.getSize(), 136U);
}

/// A block with one scope link and so many attachments, 1, 2, 3 and so on.
EVBLOCK withAttachments(LINK count) {
  EVBLOCK block = marker();
  block.addScope(-1);
  for (LINK link = 1; link <= count; ++link) {
    block.addAttachment(link);
  }
  return block;
}

TEST(EVBLOCK, AttachmentCountIsModulo65536) {
  for (const unsigned count : {65535U, 65536U, 65537U, 70000U}) {
    SCOPED_TRACE(count);
    const EVBLOCK block = withAttachments(count);
    EXPECT_EQ(block.getAttachmentCount(), count % 65536);
    EXPECT_EQ(block.getSize(), 96U + 8 * (1 + count));
    EXPECT_TRUE(written(block) == header("EV", 96 + 8 * (1 + count), 6 + count) + zeros(40) +
                                      links(-1) + listed(block.ev_at_reference) +
                                      u8(6, 1, 0, 4, 0) + zeros(3) + u32(1) + u16(count, 0) +
                                      zeros(16));
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
  EXPECT_EQ(dumped(distinctBlock()), inBanners("EVBLOCK",
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
                                               "attachement pointer = 703\n"));
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
}

}  // namespace
