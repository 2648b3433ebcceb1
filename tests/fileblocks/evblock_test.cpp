#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::EVBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT16;
using mdf_v4_10::UINT32;
using mdf_v4_10::UINT8;

namespace {

constexpr std::uint64_t above_32_bits = std::uint64_t{1} << 32U;

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

/// A file's block with the links 1, 2, 3 and so on, as many as the link count says, and these
/// counts.
std::string bytesWithLinks(unsigned link_count, UINT32 scope_count, UINT16 attachment_count) {
  Bytes bytes;
  bytes.header("EV", 56 + 8 * link_count, link_count);
  for (unsigned i = 1; i <= link_count; ++i) {
    bytes.i64(i);
  }
  return bytes.u8s({6, 1, 2, 4, 1})
      .u8s({21, 22, 23})
      .u32(scope_count)
      .u16(attachment_count)
      .u16(9)
      .i64(77)
      .f64(0.5);
}

/// The numbers from first to last.
std::vector<LINK> numbers(LINK first, LINK last) {
  std::vector<LINK> list;
  for (LINK number = first; number <= last; ++number) {
    list.push_back(number);
  }
  return list;
}

TEST(EVBLOCK, Constants) {
  EXPECT_EQ(EVBLOCK::EVBLOCK_CONSTANT_SIZE, 96U);
  EXPECT_EQ(EVBLOCK::MDF_EV_ID, 0x5645);
}

TEST(EVBLOCK, EnumerationValues) {
  EXPECT_EQ(EVBLOCK::EV_TYPE_RECORDING, 0);
  EXPECT_EQ(EVBLOCK::EV_TYPE_RECORDING_INTERRUPT, 1);
  EXPECT_EQ(EVBLOCK::EV_TYPE_ACQUISITION_INTERRUPT, 2);
  EXPECT_EQ(EVBLOCK::EV_TYPE_START_RECORDING_TRIGGER, 3);
  EXPECT_EQ(EVBLOCK::EV_TYPE_STOP_RECORDING_TRIGGER, 4);
  EXPECT_EQ(EVBLOCK::EV_TYPE_TRIGGER, 5);
  EXPECT_EQ(EVBLOCK::EV_TYPE_MARKER, 6);
  EXPECT_EQ(EVBLOCK::EV_SYNCTYPE_SECONDS, 1);
  EXPECT_EQ(EVBLOCK::EV_SYNCTYPE_RADIANS, 2);
  EXPECT_EQ(EVBLOCK::EV_SYNCTYPE_METERS, 3);
  EXPECT_EQ(EVBLOCK::EV_SYNCTYPE_RECORD_INDEX, 4);
  EXPECT_EQ(EVBLOCK::EV_RANGETYPE_POINT, 0);
  EXPECT_EQ(EVBLOCK::EV_RANGETYPE_BEGIN, 1);
  EXPECT_EQ(EVBLOCK::EV_RANGETYPE_END, 2);
  EXPECT_EQ(EVBLOCK::EV_CAUSETYPE_OTHER, 0);
  EXPECT_EQ(EVBLOCK::EV_CAUSETYPE_ERROR, 1);
  EXPECT_EQ(EVBLOCK::EV_CAUSETYPE_TOOL, 2);
  EXPECT_EQ(EVBLOCK::EV_CAUSETYPE_SCRIPT, 3);
  EXPECT_EQ(EVBLOCK::EV_CAUSETYPE_USER, 4);
  EXPECT_EQ(EVBLOCK::post_processing, 1);
  EXPECT_EQ(EVBLOCK::ev_ev_next, 0);
  EXPECT_EQ(EVBLOCK::ev_ev_parent, 1);
  EXPECT_EQ(EVBLOCK::ev_ev_range, 2);
  EXPECT_EQ(EVBLOCK::ev_tx_name, 3);
  EXPECT_EQ(EVBLOCK::ev_md_comment, 4);
}

TEST(EVBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::evblock_fields, 64),
            "64 1 ev_type\n"
            "65 1 ev_sync_type\n"
            "66 1 ev_range_type\n"
            "67 1 ev_cause\n"
            "68 1 ev_flags\n"
            "69 3 ev_reserved\n"
            "72 4 ev_scope_count\n"
            "76 2 ev_attachment_count\n"
            "78 2 ev_creator_index\n"
            "80 8 ev_sync_base_value\n"
            "88 8 ev_sync_factor\n");
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

TEST(EVBLOCK, WritesScopeAndAttachmentsBehindTheFixedLinks) {
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

TEST(EVBLOCK, ListOperationsDoNotUpdateTheHeader) {
  const EVBLOCK block = distinctBlock();
  EXPECT_EQ(block.header.length, 96U);
  EXPECT_EQ(block.header.link_count, 5U);
}

TEST(EVBLOCK, Accessors) {
  EVBLOCK block = marker();
  block.setNextEVBlock(11);
  block.setParentEVBlock(12);
  block.setEVRangeBlock(13);
  block.setTXNameBlock(14);
  block.setMDBlock(15);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12, 13, 14, 15}));
  EXPECT_EQ(block.getNextEVBlock(), 11);
  EXPECT_EQ(block.getParentEVBlock(), 12);
  EXPECT_EQ(block.getEVRangeBlock(), 13);
  EXPECT_EQ(block.getTXNameBlock(), 14);
  EXPECT_EQ(block.getMDBlock(), 15);
  EXPECT_EQ(block.getType(), EVBLOCK::EV_TYPE_MARKER);
  EXPECT_EQ(block.getSyncType(), EVBLOCK::EV_SYNCTYPE_SECONDS);
  EXPECT_EQ(block.getRangeType(), EVBLOCK::EV_RANGETYPE_POINT);
  EXPECT_EQ(block.getCause(), EVBLOCK::EV_CAUSETYPE_USER);
  block.setType(EVBLOCK::EV_TYPE_STOP_RECORDING_TRIGGER);
  block.setSyncType(EVBLOCK::EV_SYNCTYPE_METERS);
  block.setRangeType(EVBLOCK::EV_RANGETYPE_END);
  block.setCause(EVBLOCK::EV_CAUSETYPE_ERROR);
  block.setCreatorIndex(16);
  block.setSyncBaseValue(-17);
  block.setSyncBaseFactor(1.5);
  EXPECT_EQ(block.getType(), EVBLOCK::EV_TYPE_STOP_RECORDING_TRIGGER);
  EXPECT_EQ(block.ev_type, 4);
  EXPECT_EQ(block.getSyncType(), EVBLOCK::EV_SYNCTYPE_METERS);
  EXPECT_EQ(block.ev_sync_type, 3);
  EXPECT_EQ(block.getRangeType(), EVBLOCK::EV_RANGETYPE_END);
  EXPECT_EQ(block.ev_range_type, 2);
  EXPECT_EQ(block.getCause(), EVBLOCK::EV_CAUSETYPE_ERROR);
  EXPECT_EQ(block.ev_cause, 1);
  EXPECT_EQ(block.getCreatorIndex(), 16);
  EXPECT_EQ(block.ev_creator_index, 16);
  EXPECT_EQ(block.getSyncBaseValue(), -17);
  EXPECT_EQ(block.ev_sync_base_value, -17);
  EXPECT_EQ(block.getSyncBaseFactor(), 1.5);
  EXPECT_EQ(block.ev_sync_factor, 1.5);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "ev_comment.xsd");
}

TEST(EVBLOCK, PostProcessedFlagIsSetAndClearedAlone) {
  EVBLOCK block = marker();
  EXPECT_FALSE(block.isPostProcessed());
  block.setPostProcessedFlag(true);
  EXPECT_EQ(block.ev_flags, 1);
  EXPECT_TRUE(block.isPostProcessed());
  block.setPostProcessedFlag(false);
  EXPECT_EQ(block.ev_flags, 0);
  EXPECT_FALSE(block.isPostProcessed());
  block.ev_flags = 0xFE;
  EXPECT_FALSE(block.isPostProcessed());
  block.setPostProcessedFlag(true);
  EXPECT_EQ(block.ev_flags, 0xFF);
  block.setPostProcessedFlag(false);
  EXPECT_EQ(block.ev_flags, 0xFE);
}

TEST(EVBLOCK, FollowsItsLinks) {
  const LinkTargetFile file;
  const EVBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextEVBlock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgParentEVBlock(ifs); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgEVRangeBlock(ifs); }, 300);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXNameBlock(ifs); }, 400);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgMDBlock(ifs); }, 500);
}

TEST(EVBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  EVBLOCK block = marker();
  block.addScope(0);
  block.addAttachment(0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextEVBlock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgParentEVBlock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgEVRangeBlock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXNameBlock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgMDBlock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, 0); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 0); }, 0);
}

TEST(EVBLOCK, AddsToItsListsAtTheEnd) {
  const EVBLOCK block = distinctBlock();
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{601, 602}));
  EXPECT_EQ(block.getScopeCount(), 2U);
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{701, 702, 703}));
  EXPECT_EQ(block.getAttachmentCount(), 3);
  EXPECT_EQ(block.getSize(), 136U);
}

TEST(EVBLOCK, GivesTheScopeAtAnIndex) {
  const EVBLOCK block = distinctBlock();
  EXPECT_EQ(block.getScopeAt(0), 601);
  EXPECT_EQ(block.getScopeAt(1), 602);
  EXPECT_EQ(block.getScopeAt(3), 0);
  EXPECT_EQ(block.getScopeAt(UINT32_MAX), 0);
}

TEST(EVBLOCK, GivesTheAttachmentAtAnIndex) {
  const EVBLOCK block = distinctBlock();
  EXPECT_EQ(block.getAttachmentAt(0), 701);
  EXPECT_EQ(block.getAttachmentAt(2), 703);
  EXPECT_EQ(block.getAttachmentAt(4), 0);
  EXPECT_EQ(block.getAttachmentAt(UINT16_MAX), 0);
}

TEST(EVBLOCK, FollowsTheScopeAtAnIndex) {
  const LinkTargetFile file;
  const EVBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, 0); }, 601);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, 1); }, 602);
  file.expectStays([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, 3); });
  file.expectStays([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, UINT32_MAX); });
}

TEST(EVBLOCK, FollowsTheAttachmentAtAnIndex) {
  const LinkTargetFile file;
  const EVBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 0); }, 701);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 2); }, 703);
  file.expectStays([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 4); });
  file.expectStays([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, UINT16_MAX); });
}

TEST(EVBLOCK, IndexEqualToTheCountGivesZeroWithoutMoveOrRemoval) {
  const LinkTargetFile file;
  EVBLOCK block = distinctBlock();
  EXPECT_EQ(block.getScopeAt(2), 0);
  file.expectStays([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, 2); });
  block.removeScopeAt(2);
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{601, 602}));
  EXPECT_EQ(block.getAttachmentAt(3), 0);
  file.expectStays([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 3); });
  block.removeAttachmentAt(3);
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{701, 702, 703}));
}

TEST(EVBLOCK, EmptyListsGiveZeroWithoutMoveOrRemoval) {
  const LinkTargetFile file;
  EVBLOCK block = marker();
  for (const UINT16 index : {UINT16{0}, UINT16{1}, UINT16{UINT16_MAX}}) {
    SCOPED_TRACE(index);
    EXPECT_EQ(block.getScopeAt(index), 0);
    EXPECT_EQ(block.getAttachmentAt(index), 0);
    file.expectStays([&](std::ifstream& ifs) { return block.seekgScopeAt(ifs, index); });
    file.expectStays([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, index); });
    block.removeScopeAt(index);
    block.removeAttachmentAt(index);
    EXPECT_EQ(block.getScopeCount(), 0U);
    EXPECT_EQ(block.getAttachmentCount(), 0);
  }
}

TEST(EVBLOCK, RemovesTheScopeAtAnIndex) {
  struct {
    UINT32 index;
    std::vector<LINK> left;
  } const cases[] = {
      {0, {200, 300}},      {1, {100, 300}},      {2, {100, 200}},
      {3, {100, 200, 300}}, {4, {100, 200, 300}}, {UINT32_MAX, {100, 200, 300}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    EVBLOCK block = marker();
    block.ev_scope = {100, 200, 300};
    block.ev_at_reference = {1, 2, 3};
    block.removeScopeAt(c.index);
    EXPECT_EQ(block.ev_scope, c.left);
    EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{1, 2, 3}));
  }
}

TEST(EVBLOCK, RemovesTheAttachmentAtAnIndex) {
  struct {
    UINT16 index;
    std::vector<LINK> left;
  } const cases[] = {
      {0, {200, 300}},      {1, {100, 300}},      {2, {100, 200}},
      {3, {100, 200, 300}}, {4, {100, 200, 300}}, {UINT16_MAX, {100, 200, 300}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    EVBLOCK block = marker();
    block.ev_scope = {1, 2, 3};
    block.ev_at_reference = {100, 200, 300};
    block.removeAttachmentAt(c.index);
    EXPECT_EQ(block.ev_at_reference, c.left);
    EXPECT_EQ(block.ev_scope, (std::vector<LINK>{1, 2, 3}));
  }
}

TEST(EVBLOCK, RemovingWhatIsNotThereFromASingleEntryChangesNothing) {
  EVBLOCK block = marker();
  block.addAttachment(300);
  block.removeAttachmentAt(4);
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{300}));
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

TEST(EVBLOCK, AttachmentsUpToTheLargestIndexAreReachedWhateverTheCountSays) {
  const LinkTargetFile file;
  EVBLOCK block = withAttachments(65537);
  block.ev_at_reference[65535] = 4000;
  EXPECT_EQ(block.getAttachmentAt(2), 3);
  EXPECT_EQ(block.getAttachmentAt(65535), 4000);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgAttachmentAt(ifs, 65535); }, 4000);
  block.removeAttachmentAt(65535);
  EXPECT_EQ(block.ev_at_reference.size(), 65536U);
  EXPECT_EQ(block.getAttachmentAt(65535), 65537);
}

TEST(EVBLOCK, DumpListsEveryOneOfMoreThan65535Attachments) {
  const EVBLOCK block = withAttachments(65537);
  std::string lines;
  for (unsigned i = 1; i <= 65537; ++i) {
    lines += "attachement pointer = " + std::to_string(i) + "\n";
  }
  const std::string dump = dumped(block);
  EXPECT_NE(dump.find("attachement cnt = 65537\n" + lines +
                      "[DEBUG] ==================== End of EVBLOCK ===================\n"),
            std::string::npos);
}

TEST(EVBLOCK, MoreThan65535AttachmentsAreReadBackModulo65536) {
  const auto block = readBack<EVBLOCK>(written(withAttachments(65537)));
  EXPECT_EQ(block.header.length, 96U + 8 * 65538);
  EXPECT_EQ(block.header.link_count, 65543U);
  // The first of the file's links is the next event.
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{0}));
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{0}));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0}));
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
  EXPECT_EQ(dumped(marker()),
            "[DEBUG] ==================== EVBLOCK ===================\n"
            "block size = 96\n"
            "next event block (pointer) = 0\n"
            "parent event (pointer) = 0\n"
            "event range (pointer) = 0\n"
            "event name tx (pointer) = 0\n"
            "comment md (pointer) = 0\n"
            "flags = postProcessed(0)\n"
            "type = 6\n"
            "syncType = 1\n"
            "rangeType = 0\n"
            "cause = 4\n"
            "creator index = 0\n"
            "syncbaseValue = 0\n"
            "syncbaseFactor = 0\n"
            "scope cnt = 0\n"
            "attachement cnt = 0\n"
            "[DEBUG] ==================== End of EVBLOCK ===================\n");
}

TEST(EVBLOCK, DumpShowsTheFlagAsTheStreamShowsBooleans) {
  for (const bool set : {false, true}) {
    EVBLOCK block = marker();
    block.setPostProcessedFlag(set);
    block.setSyncBaseFactor(1e-9);
    std::ostringstream os;
    os << std::boolalpha;
    block.print(os);
    EXPECT_EQ(os.str(),
              std::string("[DEBUG] ==================== EVBLOCK ===================\n"
                          "block size = 96\n"
                          "next event block (pointer) = 0\n"
                          "parent event (pointer) = 0\n"
                          "event range (pointer) = 0\n"
                          "event name tx (pointer) = 0\n"
                          "comment md (pointer) = 0\n") +
                  (set ? "flags = postProcessed(true)\n" : "flags = postProcessed(false)\n") +
                  "type = 6\n"
                  "syncType = 1\n"
                  "rangeType = 0\n"
                  "cause = 4\n"
                  "creator index = 0\n"
                  "syncbaseValue = 0\n"
                  "syncbaseFactor = 1e-09\n"
                  "scope cnt = 0\n"
                  "attachement cnt = 0\n"
                  "[DEBUG] ==================== End of EVBLOCK ===================\n");
  }
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
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== EVBLOCK ===================\n"
            "block size = 112\n"
            "next event block (pointer) = -1\n"
            "parent event (pointer) = -9223372036854775808\n"
            "event range (pointer) = 0\n"
            "event name tx (pointer) = 0\n"
            "comment md (pointer) = 0\n"
            "flags = postProcessed(0)\n"
            "type = 255\n"
            "syncType = 254\n"
            "rangeType = 253\n"
            "cause = 252\n"
            "creator index = 65535\n"
            "syncbaseValue = -9223372036854775808\n"
            "syncbaseFactor = 1.23457e+08\n"
            "scope cnt = 1\n"
            "scope pointer = 9223372036854775807\n"
            "attachement cnt = 1\n"
            "attachement pointer = -2\n"
            "[DEBUG] ==================== End of EVBLOCK ===================\n");
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

TEST(EVBLOCK, WrittenBlockReadsBackWithItsFixedLinksInItsLists) {
  EVBLOCK event = marker();
  event.setNextEVBlock(11);
  event.setParentEVBlock(12);
  event.setEVRangeBlock(13);
  event.addScope(100);
  event.addScope(200);
  event.addAttachment(300);
  const auto block = readBack<EVBLOCK>(written(event));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0}));
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{11, 12}));
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{13}));
}

TEST(EVBLOCK, ReservedBytesAreNotTaken) {
  const auto block = readBack<EVBLOCK>(distinctBytes());
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.ev_reserved), (std::array<UINT8, 3>{}));
}

TEST(EVBLOCK, WritingABlockThatWasReadWritesTheListsItHasNow) {
  EXPECT_BYTES(written(readBack<EVBLOCK>(distinctBytes())), Bytes()
                                                                .header("EV", 136, 10)
                                                                .links({0, 0, 0, 0, 0})
                                                                .links({100, 200})
                                                                .links({300, 400, 500})
                                                                .u8s({5, 4, 2, 3, 1})
                                                                .zeros(3)
                                                                .u32(2)
                                                                .u16(3)
                                                                .u16(0x0102)
                                                                .i64(-1000)
                                                                .f64(0.25));
}

TEST(EVBLOCK, WritingABlockThatWasReadWithoutListsLosesItsFixedLinks) {
  EXPECT_BYTES(written(readBack<EVBLOCK>(bytesWithLinks(5, 0, 0))), Bytes()
                                                                        .header("EV", 96, 5)
                                                                        .zeros(40)
                                                                        .u8s({6, 1, 2, 4, 1})
                                                                        .zeros(3)
                                                                        .u32(0)
                                                                        .u16(0)
                                                                        .u16(9)
                                                                        .i64(77)
                                                                        .f64(0.5));
}

TEST(EVBLOCK, CountsAreExactAndTheListsEndWithTheLinks) {
  for (unsigned link_count = 0; link_count <= 8; ++link_count) {
    for (UINT32 scope_count = 0; scope_count <= 10; ++scope_count) {
      for (UINT16 attachment_count = 0; attachment_count <= 10; ++attachment_count) {
        SCOPED_TRACE(std::to_string(link_count) + " links, " + std::to_string(scope_count) + ", " +
                     std::to_string(attachment_count));
        const auto block =
            readBack<EVBLOCK>(bytesWithLinks(link_count, scope_count, attachment_count));
        const auto last_scope = std::min(scope_count, link_count);
        const auto last_attachment = std::min(scope_count + attachment_count, link_count);
        EXPECT_EQ(block.ev_scope, numbers(1, last_scope));
        EXPECT_EQ(block.ev_at_reference, numbers(LINK{scope_count} + 1, last_attachment));
        EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0}));
        EXPECT_EQ(block.header.link_count, link_count);
        EXPECT_EQ(block.ev_type, 6);
        EXPECT_EQ(block.ev_sync_factor, 0.5);
      }
    }
  }
}

TEST(EVBLOCK, AttachmentsStartBehindTheScopeCountOfTheFileEvenIfItLies) {
  for (const UINT32 scope_count :
       {UINT32{7}, UINT32{8}, UINT32{0x7FFFFFFF}, UINT32{0x80000000}, UINT32_MAX - 5,
        UINT32_MAX - 4, UINT32_MAX - 3, UINT32_MAX - 1, UINT32_MAX}) {
    SCOPED_TRACE(scope_count);
    const auto block = readBack<EVBLOCK>(bytesWithLinks(7, scope_count, 3));
    EXPECT_EQ(block.ev_scope, numbers(1, 7));
    EXPECT_EQ(block.ev_at_reference, std::vector<LINK>{});
    EXPECT_LE(block.ev_scope.capacity(), 14U);
    EXPECT_EQ(block.ev_at_reference.capacity(), 0U);
  }
}

TEST(EVBLOCK, AttachmentCountThatLiesTakesTheLinksThereAre) {
  const auto block = readBack<EVBLOCK>(bytesWithLinks(7, 2, UINT16_MAX));
  EXPECT_EQ(block.ev_scope, numbers(1, 2));
  EXPECT_EQ(block.ev_at_reference, numbers(3, 7));
  EXPECT_LE(block.ev_at_reference.capacity(), 14U);
}

TEST(EVBLOCK, ReadsLongLists) {
  const auto block = readBack<EVBLOCK>(bytesWithLinks(20000, 15000, 4000));
  EXPECT_EQ(block.ev_scope, numbers(1, 15000));
  EXPECT_EQ(block.ev_at_reference, numbers(15001, 19000));
}

TEST(EVBLOCK, ReadsExtremeValues) {
  const auto block = readBack<EVBLOCK>(Bytes()
                                           .header("EV", 112, 7)
                                           .links({INT64_MAX, INT64_MIN, -1, 0, 0, 0, 0})
                                           .u64(UINT64_MAX)
                                           .u32(2)
                                           .u16(1)
                                           .u16(0xFFFF)
                                           .i64(INT64_MIN)
                                           .u64(0xFFF0000000000000));
  EXPECT_BYTES(written(block), Bytes()
                                   .header("EV", 120, 8)
                                   .zeros(40)
                                   .links({INT64_MAX, INT64_MIN, -1})
                                   .u8s({255, 255, 255, 255, 255, 0, 0, 0})
                                   .u32(2)
                                   .u16(1)
                                   .u16(0xFFFF)
                                   .i64(INT64_MIN)
                                   .u64(0xFFF0000000000000));
}

TEST(EVBLOCK, AnyIdentifierIsRead) {
  std::string bytes = bytesWithLinks(5, 1, 0);
  bytes.replace(0, 8, "XYZ!1234");
  EXPECT_BYTES(written(readBack<EVBLOCK>(bytes)), Bytes()
                                                      .header("EV", 104, 6)
                                                      .zeros(40)
                                                      .i64(1)
                                                      .u8s({6, 1, 2, 4, 1})
                                                      .zeros(3)
                                                      .u32(1)
                                                      .u16(0)
                                                      .u16(9)
                                                      .i64(77)
                                                      .f64(0.5));
}

TEST(EVBLOCK, BytesBehindTheDataSectionAreReadOver) {
  std::string bytes = bytesWithLinks(5, 1, 1) + "leftovers";
  bytes[8] = 105;
  const auto block = readBack<EVBLOCK>(bytes);
  EXPECT_EQ(block.header.length, 105U);
  EXPECT_EQ(block.ev_scope, (std::vector<LINK>{1}));
  EXPECT_EQ(block.ev_at_reference, (std::vector<LINK>{2}));
  EXPECT_EQ(block.ev_sync_factor, 0.5);
}

TEST(EVBLOCK, ReaderStopsAtTheEndOfTheBlock) {
  std::istringstream is(bytesWithLinks(8, 2, 1) + bytesWithLinks(5, 0, 1));
  const EVBLOCK first(is);
  EXPECT_EQ(is.tellg(), 120);
  const EVBLOCK second(is);
  EXPECT_EQ(is.tellg(), 216);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(first.getScopeCount(), 2U);
  EXPECT_EQ(second.getScopeCount(), 0U);
}

TEST(EVBLOCK, LengthCountsModulo32Bits) {
  std::string bytes = bytesWithLinks(5, 2, 1);
  bytes[12] = 7;
  const auto block = readBack<EVBLOCK>(bytes);
  EXPECT_EQ(block.header.length, 7 * above_32_bits + 96);
  EXPECT_EQ(block.ev_scope, numbers(1, 2));
  EXPECT_EQ(block.ev_at_reference, numbers(3, 3));
}

/// Expects that nothing but the header was taken.
void expectHeaderOnly(const EVBLOCK& block, std::uint64_t length, std::uint64_t link_count) {
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  // What is left is five nil links, empty lists and zeros.
  EXPECT_BYTES(written(block), Bytes().header("EV", 96, 5).zeros(72));
}

TEST(EVBLOCK, CutStreamKeepsItsOwnState) {
  for (const unsigned link_count : {5U, 8U, 200U}) {
    forEachPrefix(bytesWithLinks(link_count, 2, 1), [&](std::istream& is, std::size_t length) {
      const EVBLOCK block(is);
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      if (length < 24) {
        expectHeaderOnly(block, 0, 5);
      } else {
        expectHeaderOnly(block, 56 + 8 * link_count, link_count);
      }
    });
  }
}

TEST(EVBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const EVBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    expectHeaderOnly(block, 0, 5);
  }
}

TEST(EVBLOCK, LengthBelowTheHeaderSizeMakesTheStreamBad) {
  for (const std::uint64_t low_bits : {0U, 1U, 8U, 23U}) {
    for (const std::uint64_t length : {low_bits, above_32_bits + low_bits}) {
      SCOPED_TRACE(length);
      std::istringstream is(Bytes().header("EV", length, 4).zeros(100).str());
      const EVBLOCK block(is);
      EXPECT_EQ(is.rdstate(), state_bad);
      expectHeaderOnly(block, length, 4);
    }
  }
}

TEST(EVBLOCK, LengthTooShortForLinksAndFieldsMakesTheStreamBad) {
  for (std::uint64_t length = 24; length < 96; ++length) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header("EV", length, 5).zeros(100).str());
    const EVBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectHeaderOnly(block, length, 5);
  }
}

TEST(EVBLOCK, LengthBeyondTheStreamKeepsTheStreamsOwnState) {
  for (const std::uint64_t length :
       {std::uint64_t{97}, std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000},
        std::uint64_t{0xFFFFFFFF}, std::uint64_t{UINT64_MAX}}) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header("EV", length, 5).zeros(72).str());
    const EVBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectHeaderOnly(block, length, 5);
  }
}

TEST(EVBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{6}, std::uint64_t{1} << 32U, std::uint64_t{1} << 61U,
        (std::uint64_t{1} << 61U) + 5, std::uint64_t{INT64_MAX}, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(Bytes().header("EV", 96, link_count).zeros(72).str());
    const EVBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectHeaderOnly(block, 96, link_count);
  }
}

}  // namespace
