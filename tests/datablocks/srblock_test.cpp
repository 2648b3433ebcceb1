#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <sstream>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

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

/// What is written of a block whose fields and links were not taken.
std::string emptyBytes() { return Bytes().header("SR", 64, 2).zeros(40); }

std::string withLinkCount(std::string bytes, std::uint64_t link_count) {
  return bytes.replace(16, 8, Bytes().u64(link_count).str());
}

TEST(SRBLOCK, Constants) {
  EXPECT_EQ(SRBLOCK::SRBLOCK_SIZE, 64U);
  EXPECT_EQ(SRBLOCK::MDF_SR_ID, 0x5253);
  static_assert(std::is_same_v<decltype(SRBLOCK::SRBLOCK_SIZE), const std::size_t>);
  static_assert(std::is_same_v<decltype(SRBLOCK::MDF_SR_ID), const std::uint16_t>);
  static_assert(!std::is_polymorphic_v<SRBLOCK>);
}

TEST(SRBLOCK, EnumerationValues) {
  EXPECT_EQ(SRBLOCK::MDF_SR_SYNCTYPE_t{SRBLOCK::SR_SYNCTYPE_TIME_SECONDS}, 1);
  EXPECT_EQ(SRBLOCK::SR_SYNCTYPE_ANGLE_RADIANS, 2);
  EXPECT_EQ(SRBLOCK::SR_SYNCTYPE_DISTANCE_METER, 3);
  EXPECT_EQ(SRBLOCK::SR_SYNCTYPE_INDEX_RECORDINDEX, 4);
  EXPECT_EQ(SRBLOCK::SR_FLAGS_t{SRBLOCK::invalidation_bytes}, 1);
}

TEST(SRBLOCK, LinkIndexesCarryTheNameOfTheSourceInformationBlocks) {
  EXPECT_EQ(SRBLOCK::MDF_SI_BLOCK_LINKS{SRBLOCK::sr_sr_next}, 0);
  EXPECT_EQ(SRBLOCK::MDF_SI_BLOCK_LINKS{SRBLOCK::sr_data}, 1);
  EXPECT_EQ(SRBLOCK::MDF_SI_BLOCK_LINKS{SRBLOCK::SR_BLOCK_LINKS_NUM}, 2);
}

TEST(SRBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::srblock_fields, 40),
            "40 8 sr_cycle_count\n"
            "48 8 sr_interval\n"
            "56 1 sr_sync_type\n"
            "57 1 sr_flags\n"
            "58 6 sr_reserved\n");
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

TEST(SRBLOCK, Accessors) {
  SRBLOCK block(1, 2.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 3, 4);
  EXPECT_EQ(block.getCycleCount(), 1U);
  EXPECT_EQ(block.getInterval(), 2.5);
  EXPECT_EQ(block.getSyncType(), SRBLOCK::SR_SYNCTYPE_TIME_SECONDS);
  EXPECT_EQ(block.getDatablock(), 3);
  EXPECT_EQ(block.getNextSrblock(), 4);
  EXPECT_FALSE(block.isValidationBytesFlag());
  block.setCycleCount(UINT64_MAX);
  block.setInterval(-1e300);
  block.setSyncType(SRBLOCK::SR_SYNCTYPE_INDEX_RECORDINDEX);
  block.setDatablock(13);
  block.setNextSrblock(14);
  block.setValidationBytesFlag(true);
  EXPECT_EQ(block.sr_cycle_count, UINT64_MAX);
  EXPECT_EQ(block.sr_interval, -1e300);
  EXPECT_EQ(block.sr_sync_type, 4);
  EXPECT_EQ(linksOf(block), (Links{14, 13}));
  EXPECT_EQ(block.sr_flags, 1);
  EXPECT_EQ(block.getCycleCount(), UINT64_MAX);
  EXPECT_EQ(block.getInterval(), -1e300);
  EXPECT_EQ(block.getSyncType(), SRBLOCK::SR_SYNCTYPE_INDEX_RECORDINDEX);
  EXPECT_EQ(block.getDatablock(), 13);
  EXPECT_EQ(block.getNextSrblock(), 14);
  EXPECT_TRUE(block.isValidationBytesFlag());
  EXPECT_EQ(block.getSize(), 64U);
  block.sr_sync_type = 200;
  EXPECT_EQ(static_cast<int>(block.getSyncType()), 200);
}

TEST(SRBLOCK, LinksAreStoredAndReturnedWhereThereWereNone) {
  SRBLOCK block = distinctBlock();
  block.links.clear();
  EXPECT_EQ(block.getNextSrblock(), 0);
  EXPECT_EQ(block.getDatablock(), 0);
  block.setDatablock(5);
  EXPECT_EQ(linksOf(block), (Links{0, 5}));
}

TEST(SRBLOCK, ValidationBytesFlagIsTheLowestBitAlone) {
  for (unsigned bit = 0; bit < 8; ++bit) {
    SCOPED_TRACE(bit);
    SRBLOCK block(0, 0, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 0, 0);
    block.sr_flags = static_cast<UINT8>(1U << bit);
    EXPECT_EQ(block.isValidationBytesFlag(), bit == 0);
    block.setValidationBytesFlag(true);
    EXPECT_EQ(block.sr_flags, (1U << bit) | 1U);
    block.setValidationBytesFlag(true);
    EXPECT_EQ(block.sr_flags, (1U << bit) | 1U);
    block.setValidationBytesFlag(false);
    EXPECT_EQ(block.sr_flags, (1U << bit) & ~1U);
  }
}

TEST(SRBLOCK, ValidationBytesFlagIsByteFiftySevenAndALineOfTheDump) {
  SRBLOCK block(100, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 512, 0);
  block.setValidationBytesFlag(true);
  EXPECT_BYTES(written(block),
               Bytes().header("SR", 64, 2).links({0, 512}).u64(100).f64(0.5).u8(1).u8(1).zeros(6));
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 64\n"
            "next sr block = 0\n"
            "data block = 512\n"
            "cycle count = 100\n"
            "interval = 0.5\n"
            "sync type = 1\n"
            "invalidationByteFlag = 1\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, FollowsItsLinks) {
  const LinkTargetFile file;
  const SRBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextSrblock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDatablock(ifs); }, 200);
}

TEST(SRBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  SRBLOCK block(0, 0, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 0, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextSrblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDatablock(ifs); }, 0);
  block.links.clear();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDatablock(ifs); }, 0);
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
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 64\n"
            "next sr block = -9223372036854775808\n"
            "data block = 0\n"
            "cycle count = 18446744073709551615\n"
            "interval = 1.23457e+07\n"
            "sync type = 255\n"
            "invalidationByteFlag = 0\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, DumpFollowsTheFormatOfTheStream) {
  std::ostringstream os;
  os << std::hex << std::boolalpha << std::fixed;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 40\n"
            "next sr block = 64\n"
            "data block = c8\n"
            "cycle count = 3e8\n"
            "interval = 0.250000\n"
            "sync type = 3\n"
            "invalidationByteFlag = true\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, SyncTypeIsShownAsASignedNumber) {
  std::ostringstream os;
  os << std::showpos;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 64\n"
            "next sr block = +100\n"
            "data block = +200\n"
            "cycle count = 1000\n"
            "interval = +0.25\n"
            "sync type = +3\n"
            "invalidationByteFlag = +1\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, ReaderAppendsTheLinksBehindTheNilOnes) {
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

TEST(SRBLOCK, BlockThatWasWrittenIsReadBackWithItsDataLinkAtIndexThree) {
  const auto block =
      readBack<SRBLOCK>(written(SRBLOCK(100, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 512, 0)));
  EXPECT_EQ(block.getDatablock(), 0);
  ASSERT_EQ(block.links.size(), 4U);
  EXPECT_EQ(block.links[3], 512);
  EXPECT_EQ(block.sr_cycle_count, 100U);
  EXPECT_EQ(block.sr_interval, 0.5);
  EXPECT_EQ(block.sr_sync_type, 1);
  EXPECT_EQ(block.sr_flags, 0);
}

TEST(SRBLOCK, DumpOfABlockThatWasReadShowsTheNilLinks) {
  EXPECT_EQ(dumped(readBack<SRBLOCK>(distinctBytes())),
            "[DEBUG] ==================== SRBLOCK ===================\n"
            "block size = 64\n"
            "next sr block = 0\n"
            "data block = 0\n"
            "cycle count = 1000\n"
            "interval = 0.25\n"
            "sync type = 3\n"
            "invalidationByteFlag = 1\n"
            "[DEBUG] ==================== End of SRBLOCK ===================\n");
}

TEST(SRBLOCK, WritingABlockThatWasReadWritesFourLinksAndALinkCountOfTwo) {
  EXPECT_BYTES(written(readBack<SRBLOCK>(distinctBytes())), Bytes()
                                                                .header("SR", 64, 2)
                                                                .links({0, 0, 100, 200})
                                                                .u64(1000)
                                                                .f64(0.25)
                                                                .u8(3)
                                                                .u8(0xAB)
                                                                .zeros(6));
}

TEST(SRBLOCK, CutStreamKeepsTheStateOfTheRead) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const SRBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_BYTES(written(block), emptyBytes());
  });
}

TEST(SRBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const SRBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    EXPECT_BYTES(written(block), emptyBytes());
    is.clear();
    EXPECT_EQ(is.tellg(), 0);
  }
}

TEST(SRBLOCK, FailedStreamIsNotWritten) {
  std::ostringstream os;
  os.setstate(std::ios_base::failbit);
  EXPECT_EQ(&(os << distinctBlock()), &os);
  EXPECT_EQ(os.rdstate() & ~std::ios_base::badbit, std::ios_base::failbit);
  EXPECT_EQ(os.str(), "");
}

TEST(SRBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<SRBLOCK>(bytes)), written(readBack<SRBLOCK>(distinctBytes())));
}

TEST(SRBLOCK, SixtyFourBytesAreReadWhateverTheLengthSays) {
  for (const std::uint64_t length :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{23}, std::uint64_t{24}, std::uint64_t{25},
        std::uint64_t{63}, std::uint64_t{65}, std::uint64_t{UINT32_MAX},
        (std::uint64_t{1} << 32U) + 24, std::uint64_t{1} << 63U, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::string bytes = distinctBytes();
    bytes.replace(8, 8, Bytes().u64(length).str());
    std::istringstream is(bytes + "behind");
    const SRBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 64);
    EXPECT_BYTES(written(block), Bytes()
                                     .header("SR", length, 2)
                                     .links({0, 0, 100, 200})
                                     .u64(1000)
                                     .f64(0.25)
                                     .u8(3)
                                     .u8(0xAB)
                                     .zeros(6));
  }
}

TEST(SRBLOCK, FieldsFollowTheLastLinkRead) {
  const auto without_links = readBack<SRBLOCK>(withLinkCount(distinctBytes(), 0));
  EXPECT_EQ(linksOf(without_links), (Links{0, 0}));
  EXPECT_EQ(without_links.header.link_count, 0U);
  EXPECT_EQ(without_links.sr_cycle_count, 100U);
  EXPECT_EQ(without_links.sr_interval, 200 * std::numeric_limits<REAL>::denorm_min());
  EXPECT_EQ(without_links.sr_sync_type, 0xE8);
  EXPECT_EQ(without_links.sr_flags, 3);

  const auto with_one = readBack<SRBLOCK>(withLinkCount(distinctBytes(), 1));
  EXPECT_EQ(linksOf(with_one), (Links{0, 0, 100}));
  EXPECT_EQ(with_one.header.link_count, 1U);
  EXPECT_EQ(with_one.sr_cycle_count, 200U);
  EXPECT_EQ(with_one.sr_interval, 1000 * std::numeric_limits<REAL>::denorm_min());
  EXPECT_EQ(with_one.sr_sync_type, 0);
  EXPECT_EQ(with_one.sr_flags, 0);
}

TEST(SRBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{3}, std::uint64_t{5}, std::uint64_t{1} << 32U, (std::uint64_t{1} << 32U) + 2,
        std::uint64_t{1} << 61U, (std::uint64_t{1} << 61U) + 2, std::uint64_t{1} << 63U,
        UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(withLinkCount(distinctBytes(), link_count));
    const SRBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), withLinkCount(emptyBytes(), link_count));
  }
}

TEST(SRBLOCK, ReadsEveryIntervalBitForBit) {
  for (const REAL interval : {-0.0, std::numeric_limits<REAL>::denorm_min(),
                              std::numeric_limits<REAL>::infinity(), 0.1}) {
    const auto block =
        readBack<SRBLOCK>(Bytes().header("SR", 64, 2).zeros(24).f64(interval).zeros(8));
    EXPECT_EQ(block.sr_interval, interval);
    EXPECT_EQ(std::signbit(block.sr_interval), std::signbit(interval));
  }
  const auto block =
      readBack<SRBLOCK>(Bytes().header("SR", 64, 2).zeros(24).f64(std::nan("")).zeros(8));
  EXPECT_TRUE(std::isnan(block.sr_interval));
}

TEST(SRBLOCK, ChainInAFileIsWalkedAlongTheLinksBehindTheNilOnes) {
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

TEST(SRBLOCK, CopiesAreIndependent) {
  const SRBLOCK block = distinctBlock();
  SRBLOCK copy = block;
  copy.setDatablock(1);
  copy.setCycleCount(2);
  EXPECT_BYTES(written(block), distinctBytes());
}

}  // namespace
