#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::LINK;
using mdf_v4_10::RDBLOCK;
using mdf_v4_10::REAL;
using mdf_v4_10::SRBLOCK;
using mdf_v4_10::UINT8;

namespace {

using Links = std::vector<LINK>;

SRBLOCK distinctBlock() {
  SRBLOCK block(1000, 0.25, SRBLOCK::SR_SYNCTYPE_DISTANCE_METER, 200, 100);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.sr_flags = 0xAB;
  setBytes(block.sr_reserved, {11, 12, 13, 14, 15, 16});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##SR")
      .u8s({1, 2, 3, 4})
      .u64(64)
      .u64(2)
      .links({100, 200})
      .u64(1000)
      .f64(0.25)
      .u8(3)
      .u8(0xAB)
      .u8s({11, 12, 13, 14, 15, 16});
}

TEST(SRBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(SRBLOCK(100, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 512, 0)),
               Bytes().header("SR", 64, 2).links({0, 512}).u64(100).f64(0.5).u8(1).u8(0).zeros(6));
}

TEST(SRBLOCK, ConstructorTakesTheDataLinkBeforeTheNextLink) {
  const SRBLOCK block(0, 0, SRBLOCK::SR_SYNCTYPE_INDEX_RECORDINDEX, 20, 10);
  EXPECT_EQ(linksOf(block), (Links{10, 20}));
}

TEST(SRBLOCK, ConstructorLeavesEverythingElseZero) {
  const SRBLOCK block(1, 2, SRBLOCK::SR_SYNCTYPE_ANGLE_RADIANS, 3, 4);
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 2U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.sr_flags, 0);
  EXPECT_EQ(asArray(block.sr_reserved), (std::array<UINT8, 6>{}));
}

TEST(SRBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(SRBLOCK, WritesExtremeValues) {
  SRBLOCK block(UINT64_MAX, -std::numeric_limits<REAL>::infinity(),
                static_cast<SRBLOCK::MDF_SR_SYNCTYPE_t>(0x1FF), INT64_MAX, INT64_MIN);
  block.sr_flags = 255;
  fillBytes(block.sr_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("SR", 64, 2)
                                   .links({INT64_MIN, INT64_MAX})
                                   .u64(UINT64_MAX)
                                   .u8s({0, 0, 0, 0, 0, 0, 0xF0, 0xFF})
                                   .u8s({255, 255, 255, 255, 255, 255, 255, 255}));
}

TEST(SRBLOCK, WritesTheIntervalBitForBit) {
  const auto interval_bytes = [](REAL interval) {
    return written(SRBLOCK(0, interval, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 0, 0)).substr(48, 8);
  };
  EXPECT_BYTES(interval_bytes(1.0), Bytes().u8s({0, 0, 0, 0, 0, 0, 0xF0, 0x3F}));
  EXPECT_BYTES(interval_bytes(-0.0), Bytes().u8s({0, 0, 0, 0, 0, 0, 0, 0x80}));
  EXPECT_BYTES(interval_bytes(std::numeric_limits<REAL>::denorm_min()),
               Bytes().u8s({1, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_BYTES(interval_bytes(std::numeric_limits<REAL>::max()),
               Bytes().u8s({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xEF, 0x7F}));
  EXPECT_BYTES(interval_bytes(std::numeric_limits<REAL>::quiet_NaN()),
               Bytes().u8s({0, 0, 0, 0, 0, 0, 0xF8, 0x7F}));
}

TEST(SRBLOCK, WritesTheHeaderAsItIsStored) {
  SRBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 7;
  block.links.push_back(300);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##SR")
                                   .u8s({1, 2, 3, 4})
                                   .u64(999)
                                   .u64(7)
                                   .links({100, 200, 300})
                                   .u64(1000)
                                   .f64(0.25)
                                   .u8(3)
                                   .u8(0xAB)
                                   .u8s({11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(block.getSize(), 64U);
}

TEST(SRBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 64\n"
            "next sr block = 100\n"
            "data block = 200\n"
            "cycle count = 1000\n"
            "interval = 0.25\n"
            "sync type = 3\n"
            "invalidationByteFlag = 1\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, DumpOfExtremeValuesShowsTheConstantSizeAndZeroForMissingLinks) {
  SRBLOCK block(UINT64_MAX, 12345678.9, static_cast<SRBLOCK::MDF_SR_SYNCTYPE_t>(255), 5, INT64_MIN);
  block.header.length = 9999;
  block.links.resize(1);
  block.sr_flags = 0xFE;
  EXPECT_EQ(shownValues(block), "64 -9223372036854775808 0 18446744073709551615 1.23457e+07 255 0");
}

TEST(SRBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlock(), std::hex, std::boolalpha, std::fixed),
            "40 64 c8 3e8 0.250000 3 true");
}

TEST(SRBLOCK, SyncTypeIsShownAsASignedNumber) {
  EXPECT_EQ(shownValues(distinctBlock(), std::showpos), "64 +100 +200 1000 +0.25 +3 +1");
}

TEST(SRBLOCK, ReaderAppendsTheLinksAfterTheNilOnes) {
  const auto block = readBack<SRBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 2U);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 100, 200}));
  EXPECT_EQ(block.getNextSrblock(), 0);
  EXPECT_EQ(block.getDatablock(), 0);
  EXPECT_EQ(block.sr_cycle_count, 1000U);
  EXPECT_EQ(block.sr_interval, 0.25);
  EXPECT_EQ(block.sr_sync_type, 3);
  EXPECT_EQ(block.sr_flags, 0xAB);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.sr_reserved), (std::array<UINT8, 6>{}));
}

TEST(SRBLOCK, ChainInAFileIsWalkedAlongTheLinksAfterTheNilOnes) {
  // Sample reductions at 64, 128 and 192, their data at 256, 300 and 350.
  const UINT8 data[] = {'a', 'b', 'c'};
  std::string contents(400, '\0');
  const auto place = [&contents](std::size_t offset, const std::string& bytes) {
    contents.replace(offset, bytes.size(), bytes);
  };
  place(64, written(SRBLOCK(1, 1, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 256, 128)));
  place(128, written(SRBLOCK(1, 10, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 300, 192)));
  place(192, written(SRBLOCK(1, 100, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 350, 0)));
  place(256, written(RDBLOCK(data, 1)));
  place(300, written(RDBLOCK(data + 1, 1)));
  place(350, written(RDBLOCK(data + 2, 1)));

  const LinkTargetFile file(contents);
  std::ifstream ifs = file.open();
  std::string walked;
  std::vector<REAL> intervals;
  for (LINK next = 64; next != 0;) {
    ifs.seekg(next);
    const SRBLOCK block(ifs);
    ASSERT_EQ(ifs.rdstate(), state_good);
    ASSERT_EQ(block.links.size(), 4U);
    intervals.push_back(block.getInterval());
    ifs.seekg(block.links[3]);
    const std::vector<UINT8> content = RDBLOCK(ifs).getData();
    walked.append(content.begin(), content.end());
    next = block.links[2];
  }
  EXPECT_EQ(walked, "abc");
  EXPECT_EQ(intervals, (std::vector<REAL>{1, 10, 100}));
}

}  // namespace
