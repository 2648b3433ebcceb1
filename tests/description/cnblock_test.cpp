#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

constexpr UINT32 x_axis = 4096;
constexpr UINT32 distinct_flags = 0xA1B2C3E4;  // without the default X axis

/// `count` links of different values, counted up from `first`.
std::vector<LINK> linksFrom(LINK first, std::size_t count) {
  std::vector<LINK> links(count);
  for (LINK& link : links) {
    link = first++;
  }
  return links;
}

/// The data section of a block of which only the three types were set.
std::string freshFields(UINT8 type, UINT8 sync_type, UINT8 data_type, UINT16 attachment_count = 0) {
  return u8(type, sync_type, data_type, 0) + zeros(16) + u8(255, 0) + u16(attachment_count) +
         zeros(48);
}

CNBLOCK freshBlock() {
  return CNBLOCK(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
                 CNBLOCK::CN_DATATYPE_UINT_LE, 0, 0, 0);
}

CNBLOCK withAttachments(CNBLOCK block, const std::vector<LINK>& attachments) {
  for (const LINK attachment : attachments) {
    block.addAttachement(attachment);
  }
  return block;
}

/// A block with two attachments and a default X axis.
CNBLOCK distinctBlock() {
  CNBLOCK block = withAttachments(freshBlock(), {901, 902});
  block.setup(static_cast<CNBLOCK::MDF_CN_CHANNELTYPE_t>(5), CNBLOCK::CN_SYNCTYPE_INDEX,
              CNBLOCK::CN_DATATYPE_CANOPEN_DATE, 100, 300, 200, 600, 400, 500, 700, 800, 7,
              0x11121314, 0x21222324, false, false, false, false, false, false, false, false, false,
              false, false, false, false, 9, -1.5, 0.1, 1e100, 1234567, -0.25, 1e-7);
  block.cn_flags = distinct_flags;
  block.cn_inval_bit_pos = 0x31323334;
  block.cn_reserved = 10;
  block.setupDefaultXAxis(1001, 1002, 1003);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  return block;
}

std::string distinctBytes() {
  return header("CN", 200, 13, {1, 2, 3, 4}) + links(100, 200, 300, 400, 500, 600, 700, 800) +
         links(901, 902) + links(1001, 1002, 1003) + u8(5, 4, 13, 7) +
         u32(0x11121314, 0x21222324, distinct_flags | x_axis, 0x31323334) + u8(9, 10) + u16(2) +
         f64(-1.5, 0.1, 1e100, 1234567, -0.25, 1e-7);
}

/// Calls setup() with the given flags and with zero for everything else.
void setupFlags(CNBLOCK& block, UINT32 flags) {
  const auto has = [flags](UINT32 bit) { return (flags & bit) != 0; };
  block.setup(CNBLOCK::CN_CHANNELTYPE_FIXEDLENGTH, CNBLOCK::CN_SYNCTYPE_NONE,
              CNBLOCK::CN_DATATYPE_UINT_LE, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, has(1), has(2), has(4),
              has(8), has(16), has(32), has(64), has(128), has(256), has(512), has(1024), has(2048),
              has(4096), 0, 0, 0, 0, 0, 0, 0);
}

TEST(CNBLOCK, WritesWhatTheConstructorWasGiven) {
  const CNBLOCK block(CNBLOCK::CN_CHANNELTYPE_VIRTUAL_DATACHANNEL, CNBLOCK::CN_SYNCTYPE_DISTANCE,
                      CNBLOCK::CN_DATATYPE_CANOPEN_TIME, 100, 200, 300);
  EXPECT_BYTES(written(block),
               header("CN", 160, 8) + links(100, 0, 200, 0, 0, 300, 0, 0) + freshFields(6, 3, 14));
}

TEST(CNBLOCK, ConstructorSetsHeaderAndDefaults) {
  const CNBLOCK block = freshBlock();
  EXPECT_BYTES(written(block.header), header("CN", 160, 8));
  EXPECT_EQ(block.getAttachementCount(), 0);
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 0);
  EXPECT_EQ(block.getDefaultXAxiscgblock(), 0);
  EXPECT_EQ(block.getDefaultXAxiscnblock(), 0);
}

TEST(CNBLOCK, WritesADefaultXAxis) {
  CNBLOCK block = freshBlock();
  block.setupDefaultXAxis(1, 2, 3);
  EXPECT_EQ(block.getSize(), 184U);
  EXPECT_BYTES(written(block), header("CN", 184, 11) + zeros(64) + links(1, 2, 3) + zeros(12) +
                                   u32(4096) + zeros(4) + u8(255, 0, 0, 0) + zeros(48));
}

TEST(CNBLOCK, WritesEveryFieldWithALengthAndLinkCountOfItsOwn) {
  CNBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 3;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_BYTES(written(block.header), header("CN", 9999, 3, {1, 2, 3, 4}));
}

TEST(CNBLOCK, WritesEveryEntryOfTheLinkSection) {
  for (const std::size_t count : {0U, 7U, 9U}) {
    SCOPED_TRACE(count);
    CNBLOCK block = withAttachments(freshBlock(), {50});
    const auto link_section = linksFrom(1, count);
    block.links = link_section;
    EXPECT_BYTES(written(block),
                 header("CN", 168, 9) + listed(link_section) + links(50) + freshFields(0, 0, 0, 1));
  }
}

TEST(CNBLOCK, AttachmentCountInTheFileIsCutToSixteenBits) {
  for (const std::size_t count : {65535U, 65536U, 65538U}) {
    SCOPED_TRACE(count);
    const auto attachments = linksFrom(1000, count);
    const CNBLOCK block = withAttachments(freshBlock(), attachments);
    const auto in_file = static_cast<UINT16>(count % 65536);
    EXPECT_EQ(block.getAttachementCount(), in_file);
    EXPECT_EQ(block.getSize(), 160 + 8 * count);
    EXPECT_BYTES(written(block), header("CN", 160 + 8 * count, 8 + count) + zeros(64) +
                                     listed(attachments) + freshFields(0, 0, 0, in_file));
  }
}

TEST(CNBLOCK, SetupStoresEachArgumentInItsPlace) {
  CNBLOCK block = freshBlock();
  block.setup(CNBLOCK::CN_CHANNELTYPE_MASTER, CNBLOCK::CN_SYNCTYPE_INDEX,
              CNBLOCK::CN_DATATYPE_STRING_UTF16_BE, 100, 200, 300, 400, 500, 600, 700, 800, 5,
              0x11121314, 0x21222324, true, false, false, true, true, false, true, false, false,
              true, false, true, false, 7, 1.5, 2.5, 3.5, 4.5, 5.5, 6.5);
  EXPECT_BYTES(written(block), header("CN", 160, 8) +
                                   links(100, 300, 200, 500, 600, 400, 700, 800) + u8(2, 4, 9, 5) +
                                   u32(0x11121314, 0x21222324, 0b0'1010'0101'1001, 0) +
                                   u8(7, 0, 0, 0) + f64(1.5, 2.5, 3.5, 4.5, 5.5, 6.5));
}

TEST(CNBLOCK, SetupSetsAndClearsEachFlagAndKeepsTheHigherBits) {
  for (const UINT32 higher_bits : {0U, 0xFFFFE000U}) {
    for (UINT32 flag = 1; flag <= x_axis; flag *= 2) {
      for (const UINT32 flags : {flag, 0x1FFFU & ~flag}) {
        for (const UINT32 before : {0U, 0x1FFFU}) {
          CNBLOCK block = freshBlock();
          block.cn_flags = higher_bits | before;
          setupFlags(block, flags);
          EXPECT_EQ(block.cn_flags, higher_bits | flags);
        }
      }
    }
  }
}

TEST(CNBLOCK, SetupLeavesHeaderReservedByteAttachmentsAndXAxis) {
  CNBLOCK block = distinctBlock();
  block.header.length = 1111;
  block.header.link_count = 2222;
  setupFlags(block, x_axis);
  EXPECT_BYTES(written(block.header), header("CN", 1111, 2222, {1, 2, 3, 4}));
  EXPECT_BYTES(written(block), header("CN", 200, 13, {1, 2, 3, 4}) + zeros(64) +
                                   links(901, 902, 1001, 1002, 1003) + zeros(12) +
                                   u32((distinct_flags & 0xFFFFE000) | x_axis) + zeros(4) +
                                   u8(0, 10, 2, 0) + zeros(48));
}

TEST(CNBLOCK, SetupWithoutXAxisHidesTheXAxis) {
  CNBLOCK block = freshBlock();
  block.setupDefaultXAxis(1, 2, 3);
  setupFlags(block, 0);
  EXPECT_FALSE(block.isDefaultXAxis());
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 1);
  EXPECT_EQ(block.getSize(), 160U);
  EXPECT_BYTES(written(block), header("CN", 160, 8) + zeros(64) + zeros(72));
}

TEST(CNBLOCK, DefaultXAxisIsStoredAndFollowed) {
  const LinkTargetFile file;
  for (const LINK first : {0, 1001}) {
    CNBLOCK block = freshBlock();
    block.cn_flags = 3;
    block.setupDefaultXAxis(first, first * 2, first * 3);
    EXPECT_EQ(block.cn_flags, 3 | x_axis);
    EXPECT_BYTES(written(block.header), header("CN", 160, 8));
    EXPECT_EQ(block.getDefaultXAxisdgblock(), first);
    EXPECT_EQ(block.getDefaultXAxiscgblock(), first * 2);
    EXPECT_EQ(block.getDefaultXAxiscnblock(), first * 3);
    const auto follow = [&](LINK (CNBLOCK::*seek)(std::ifstream&) const, LINK link) {
      file.expectFollows([&](std::ifstream& ifs) { return (block.*seek)(ifs); }, link);
    };
    follow(&CNBLOCK::seekgDefaultXAxisdgblock, first);
    follow(&CNBLOCK::seekgDefaultXAxiscgblock, first * 2);
    follow(&CNBLOCK::seekgDefaultXAxiscnblock, first * 3);
  }
}

TEST(CNBLOCK, Dump) {
  EXPECT_EQ(
      dumped(distinctBlock()),
      inBanners(
          "CNBLOCK",
          "block size = 200\n"
          "next channel block = 100\n"
          "composition block = 200\n"
          "name tx block = 300\n"
          "source si block = 400\n"
          "channel conversion block = 500\n"
          "data block = 600\n"
          "unit block = 700\n"
          "comment block = 800\n"
          "channel type = 5\n"
          "sync type = 4\n"
          "data type = 13\n"
          "bit offset = 7\n"
          "byte offset = 286397204\n"
          "bit count = 555885348\n"
          "flags: invalid(0), invalidationBit(0), precisionValid(1), valueRangeValid(0), "
          "limitRangeValid(0)\n"
          "flags 2: extendedLimitRangeValid(1), discreteValue(1), calibration(1), calculated(1), "
          "virtual(1)\n"
          "flags 3: busEvent(0), monotonous(0), defaultXAxis(1\n"
          "invalid bit pos = 825373492\n"
          "precision = 9\n"
          "value range min = -1.5 max = 0.1\n"
          "limit min = 1e+100 max = 1.23457e+06\n"
          "limit extended range min = -0.25 max = 1e-07\n"
          "attachements : 2\n"
          "attachement:901\n"
          "attachement:902\n"
          "defaultXAxis DG : 1001\n"
          "defaultXAxis CG : 1002\n"
          "defaultXAxis CN : 1003\n"));
}

TEST(CNBLOCK, DumpShowsZeroForMissingLinksAndNoUnusedXAxis) {
  CNBLOCK block = freshBlock();
  block.header.length = 9999;
  block.links = {-1};
  block.cn_default_x_dgblock = 4711;
  EXPECT_EQ(shownValues(block),
            "160 -1 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 255 0 0 0 0 0 0 0");
}

TEST(CNBLOCK, DumpShowsEachFlagInItsPlace) {
  for (std::size_t bit = 0; bit < 13; ++bit) {
    SCOPED_TRACE(bit);
    CNBLOCK block = freshBlock();
    block.cn_flags = 1U << bit;
    const bool has_x_axis = block.isDefaultXAxis();
    std::string expected = has_x_axis ? "184" : "160";
    for (std::size_t i = 0; i < 14; ++i) {
      expected += " 0";
    }
    for (std::size_t i = 0; i < 13; ++i) {
      expected += i == bit ? " 1" : " 0";
    }
    EXPECT_EQ(shownValues(block), expected + " 0 255 0 0 0 0 0 0 0" + (has_x_axis ? " 0 0 0" : ""));
  }
}

TEST(CNBLOCK, DumpOfALongListShowsAllOfIt) {
  const auto attachments = linksFrom(1000, 65538);
  std::string expected = " 65538";
  for (const LINK link : attachments) {
    expected += " " + std::to_string(link);
  }
  const std::string values = shownValues(withAttachments(freshBlock(), attachments));
  ASSERT_GT(values.size(), expected.size());
  EXPECT_TRUE(values.substr(values.size() - expected.size()) == expected);
}

TEST(CNBLOCK, DumpFollowsTheFormatOfTheStream) {
  CNBLOCK block = withAttachments(freshBlock(), {30});
  block.cn_flags = 4096 | 1;
  block.setupDefaultXAxis(16, 17, 18);
  EXPECT_EQ(shownValues(block, std::boolalpha, std::hex, std::fixed),
            "c0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 true false false false false false false false false "
            "false false false true 0 ff 0.000000 0.000000 0.000000 0.000000 0.000000 0.000000 "
            "1 1e 10 11 12");
}

}  // namespace
