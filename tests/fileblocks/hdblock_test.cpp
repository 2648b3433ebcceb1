#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

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

/// What a block that was read from the bytes above writes: reserved bytes are not taken.
std::string distinctBytesReadBack() {
  return Bytes().header("HD", 104, 6).links({100, 200, 300, 400, 500, 600}).text(distinctFields(0));
}

/// What a block writes that holds nothing but this length and link count.
std::string bytesWithoutLinks(std::uint64_t length, std::uint64_t link_count) {
  return Bytes().header("HD", length, link_count).zeros(32);
}

TEST(HDBLOCK, Constants) {
  EXPECT_EQ(HDBLOCK::HDBLOCK_SIZE, 104U);
  EXPECT_EQ(HDBLOCK::MDF_HD_ID, 0x4448);
}

TEST(HDBLOCK, EnumerationValues) {
  EXPECT_EQ(HDBLOCK::hd_dg_first, 0);
  EXPECT_EQ(HDBLOCK::hd_fh_first, 1);
  EXPECT_EQ(HDBLOCK::hd_ch_first, 2);
  EXPECT_EQ(HDBLOCK::hd_at_first, 3);
  EXPECT_EQ(HDBLOCK::hd_ev_first, 4);
  EXPECT_EQ(HDBLOCK::hd_md_comment, 5);
  EXPECT_EQ(HDBLOCK::HD_BLOCK_LINKS_NUM, 6);
  EXPECT_EQ(HDBLOCK::TIME_LOCAL_PC, 0);
  EXPECT_EQ(HDBLOCK::TIME_EXT_SOURCE, 10);
  EXPECT_EQ(HDBLOCK::TIME_EXT_ABSOLUTE_SYNC, 16);
}

TEST(HDBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::hdblock_fields, 72),
            "72 8 hd_start_time_ns\n"
            "80 2 hd_tz_offset_min\n"
            "82 2 hd_dst_offset_min\n"
            "84 1 hd_time_flags\n"
            "85 1 hd_time_class\n"
            "86 1 hd_flags\n"
            "87 1 hd_reserved\n"
            "88 8 hd_start_angle_rad\n"
            "96 8 hd_start_distance_m\n");
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

TEST(HDBLOCK, ConstructorLeavesPaddingZero) { EXPECT_EQ(distinctBlock().getPadding(), 0); }

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

TEST(HDBLOCK, LinkAccessors) {
  HDBLOCK block(2, 1, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  EXPECT_EQ(block.getDGFirstblock(), 1);
  EXPECT_EQ(block.getFHFirstblock(), 2);
  block.setDGFirstblock(11);
  block.setFHFirstblock(12);
  block.setCHFirstblock(13);
  block.setATFirstblock(14);
  block.setEVFirstblock(15);
  block.setMDCommentblock(-16);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12, 13, 14, 15, -16}));
  EXPECT_EQ(block.getDGFirstblock(), 11);
  EXPECT_EQ(block.getFHFirstblock(), 12);
  EXPECT_EQ(block.getCHFirstblock(), 13);
  EXPECT_EQ(block.getATFirstblock(), 14);
  EXPECT_EQ(block.getEVFirstblock(), 15);
  EXPECT_EQ(block.getMDCommentblock(), -16);
}

TEST(HDBLOCK, Getters) {
  const HDBLOCK block = distinctBlock();
  EXPECT_EQ(block.getStartTime(), 0x0102030405060708U);
  EXPECT_EQ(block.getTimeStamp(), 0x0102030405060708U);
  EXPECT_EQ(block.getUtcOffset(), -60);
  EXPECT_EQ(block.getTimeQuality(), HDBLOCK::TIME_EXT_ABSOLUTE_SYNC);
  EXPECT_EQ(block.getSize(), 104U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "hd_comment.xsd");
  EXPECT_TRUE((std::is_same_v<decltype(block.getUtcOffset()), std::int16_t>));
}

using Follow = LINK (HDBLOCK::*)(std::ifstream&) const;

/// In the order of the links.
const std::vector<Follow> follow_operations{
    &HDBLOCK::seekgFirstDGBlock, &HDBLOCK::seekgFirstFHBlock, &HDBLOCK::seekgFirstCHBlock,
    &HDBLOCK::seekgFirstATBlock, &HDBLOCK::seekgFirstEVBlock, &HDBLOCK::seekgMDCommentBlock};

void expectLeadTo(const HDBLOCK& block, const std::vector<LINK>& links) {
  const LinkTargetFile file;
  for (std::size_t i = 0; i < follow_operations.size(); ++i) {
    SCOPED_TRACE(i);
    file.expectFollows([&](std::ifstream& ifs) { return (block.*follow_operations[i])(ifs); },
                       links[i]);
  }
}

TEST(HDBLOCK, FollowsItsLinks) { expectLeadTo(distinctBlock(), {100, 200, 300, 400, 500, 600}); }

TEST(HDBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  expectLeadTo(HDBLOCK(0, 0, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0), {0, 0, 0, 0, 0, 0});
}

const std::string distinct_dump =
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
    "[DEBUG] ==================== End of HDBLOCK ===================\n";

TEST(HDBLOCK, Dump) { EXPECT_EQ(dumped(distinctBlock()), distinct_dump); }

TEST(HDBLOCK, DumpOfExtremeValues) {
  HDBLOCK block(INT64_MIN, -1, UINT64_MAX, INT16_MIN,
                static_cast<HDBLOCK::MDF_HD_TIME_QUALITY_t>(255), 0, 0);
  block.hd_dst_offset_min = -1;
  block.hd_time_flags = block.hd_flags = 255;
  block.hd_start_angle_rad = -DBL_MAX;
  block.hd_start_distance_m = 1.0 / 3;
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== HDBLOCK ===================\n"
            "block size = 104\n"
            "first data group block (pointer) = -1\n"
            "first file history block (pointer) = -9223372036854775808\n"
            "first channel hierarchy block (pointer) = 0\n"
            "first attachement block (pointer) = 0\n"
            "first event block (pointer) = 0\n"
            "file comment (pointer) = 0\n"
            "start time = 18446744073709551615\n"
            "UTC time offset = -32768\n"
            "DST time offset = -1\n"
            "time flags = 255\n"
            "time quality class = 255\n"
            "flags = 255\n"
            "start angle = -1.79769e+308\n"
            "start distance = 0.333333\n"
            "[DEBUG] ==================== End of HDBLOCK ===================\n");
}

TEST(HDBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  HDBLOCK block(0, -1, 0, 0, HDBLOCK::TIME_LOCAL_PC, 0, 0);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== HDBLOCK ===================\n"
            "block size = 104\n"
            "first data group block (pointer) = -1\n"
            "first file history block (pointer) = 0\n"
            "first channel hierarchy block (pointer) = 0\n"
            "first attachement block (pointer) = 0\n"
            "first event block (pointer) = 0\n"
            "file comment (pointer) = 0\n"
            "start time = 0\n"
            "UTC time offset = 0\n"
            "DST time offset = 0\n"
            "time flags = 2\n"
            "time quality class = 0\n"
            "flags = 0\n"
            "start angle = 0\n"
            "start distance = 0\n"
            "[DEBUG] ==================== End of HDBLOCK ===================\n");
  EXPECT_EQ(block.getMDCommentblock(), 0);
}

TEST(HDBLOCK, DumpOfABlockThatWasReadShowsTheConstantSize) {
  std::string bytes = distinctBytes();
  bytes.replace(8, 8, Bytes().u64(9999));
  EXPECT_EQ(dumped(readBack<HDBLOCK>(bytes)), distinct_dump);
}

TEST(HDBLOCK, ReaderTakesEverythingButReservedBytes) {
  const auto block = readBack<HDBLOCK>(distinctBytes());
  EXPECT_BYTES(written(block), distinctBytesReadBack());
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200, 300, 400, 500, 600}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(HDBLOCK, ReaderTakesExtremeValues) {
  const std::string fields =
      std::string(15, '\xFF') + '\0' + Bytes().u64(0x7FEFFFFFFFFFFFFF).u64(1).str();
  const std::string bytes =
      Bytes().header("HD", UINT64_MAX, 6).links({INT64_MIN, INT64_MAX, -1, 1, 0, -2}).text(fields);
  EXPECT_BYTES(written(readBack<HDBLOCK>(bytes)), bytes);
}

TEST(HDBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<HDBLOCK>(bytes)), distinctBytesReadBack());
}

TEST(HDBLOCK, CutStreamKeepsItsOwnState) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const HDBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_BYTES(written(block), bytesWithoutLinks(0, 0));
  });
}

TEST(HDBLOCK, FailedStreamIsNotRead) {
  for (const auto state : failed_states) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const HDBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    EXPECT_BYTES(written(block), bytesWithoutLinks(0, 0));
  }
}

TEST(HDBLOCK, AccessorsServeABlockWhoseReadFailed) {
  std::istringstream is;
  HDBLOCK block(is);
  EXPECT_EQ(block.getDGFirstblock(), 0);
  EXPECT_EQ(block.getMDCommentblock(), 0);
  expectLeadTo(block, {0, 0, 0, 0, 0, 0});
  block.setFHFirstblock(5);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 5}));
}

TEST(HDBLOCK, FieldsFollowTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 6; ++link_count) {
    SCOPED_TRACE(link_count);
    const std::string links = distinctBytes().substr(24, std::size_t{8} * link_count);
    std::string bytes = Bytes().header("HD", 77, link_count).text(links).text(distinctFields(24));
    bytes.resize(104, '\x55');
    EXPECT_BYTES(written(readBack<HDBLOCK>(bytes)),
                 Bytes().header("HD", 77, link_count).text(links).text(distinctFields(0)));
  }
}

TEST(HDBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count : lyingLinkCounts(7)) {
    SCOPED_TRACE(link_count);
    std::string bytes = distinctBytes();
    bytes.replace(16, 8, Bytes().u64(link_count));
    std::istringstream is(bytes);
    const HDBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), bytesWithoutLinks(104, link_count));
  }
}

}  // namespace
