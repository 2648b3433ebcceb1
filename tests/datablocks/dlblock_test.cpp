#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <type_traits>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::DLBLOCK;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT32;
using mdf_v4_10::UINT64;
using mdf_v4_10::UINT8;

namespace {

using Pairs = std::vector<std::pair<LINK, UINT64>>;
using Links = std::vector<LINK>;

DLBLOCK distinctBlock() {
  DLBLOCK block(false, 100);
  block.addData(200, 0);
  block.addData(300, 1000);
  block.addData(400, 2000);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.dl_flags = 0xAA;
  setBytes(block.dl_reserved, {11, 12, 13});
  block.dl_equal_length = 500;
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##DL")
      .u8s({1, 2, 3, 4})
      .u64(88)
      .u64(4)
      .links({100, 200, 300, 400})
      .u8(0xAA)
      .u8s({11, 12, 13})
      .u32(3)
      .u64(0)
      .u64(1000)
      .u64(2000);
}

DLBLOCK distinctBlockOfEqualLength() {
  DLBLOCK block = distinctBlock();
  block.setEqualLengthFlag(true);
  return block;
}

std::string distinctBytesOfEqualLength() {
  return Bytes()
      .text("##DL")
      .u8s({1, 2, 3, 4})
      .u64(72)
      .u64(4)
      .links({100, 200, 300, 400})
      .u8(0xAB)
      .u8s({11, 12, 13})
      .u32(3)
      .u64(500);
}

/// A list with `count` pairs: the links 1001, 1002, ... and the offsets 0, 7, 14, ...
DLBLOCK listOf(std::size_t count, bool equal_length) {
  DLBLOCK block(equal_length, 900);
  block.setEqualLength(7);
  for (std::size_t i = 0; i < count; ++i) {
    block.addData(static_cast<LINK>(1001 + i), 7 * i);
  }
  return block;
}

std::string listBytes(std::size_t count, bool equal_length) {
  Bytes bytes;
  bytes.header("DL", equal_length ? 48 + 8 * count : 40 + 16 * count, count + 1).i64(900);
  for (std::size_t i = 0; i < count; ++i) {
    bytes.u64(1001 + i);
  }
  bytes.u8(equal_length ? 1 : 0).zeros(3).u32(static_cast<std::uint32_t>(count));
  if (equal_length) {
    return bytes.u64(7);
  }
  for (std::size_t i = 0; i < count; ++i) {
    bytes.u64(7 * i);
  }
  return bytes;
}

std::string withLength(std::string bytes, std::uint64_t length) {
  return bytes.replace(8, 8, Bytes().u64(length).str());
}

std::string withLinkCount(std::string bytes, std::uint64_t link_count) {
  return bytes.replace(16, 8, Bytes().u64(link_count).str());
}

/// Expects that nothing but the header's length and link count was taken.
void expectNothingTaken(const DLBLOCK& block, std::uint64_t length, std::uint64_t link_count) {
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  EXPECT_EQ(linksOf(block), (Links{0}));
  EXPECT_EQ(block.dl_flags, 0);
  EXPECT_EQ(block.dl_equal_length, 0U);
  EXPECT_EQ(block.dl_data, Pairs{});
}

void expectUnreadable(const std::string& bytes, std::uint64_t length, std::uint64_t link_count) {
  std::istringstream is(bytes);
  const DLBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_bad);
  expectNothingTaken(block, length, link_count);
}

TEST(DLBLOCK, Constants) {
  EXPECT_EQ(DLBLOCK::DLBLOCK_CONSTANT_SIZE, 40U);
  EXPECT_EQ(DLBLOCK::MDF_DL_ID, 0x4C44);
  static_assert(std::is_same_v<decltype(DLBLOCK::DLBLOCK_CONSTANT_SIZE), const std::size_t>);
  static_assert(std::is_same_v<decltype(DLBLOCK::MDF_DL_ID), const std::uint16_t>);
  static_assert(!std::is_polymorphic_v<DLBLOCK>);
}

TEST(DLBLOCK, EnumerationValues) {
  EXPECT_EQ(DLBLOCK::MDF_DL_BLOCK_LINKS{DLBLOCK::dl_dl_next}, 0);
  EXPECT_EQ(DLBLOCK::DL_FLAGS_t{DLBLOCK::equal_length}, 1);
}

TEST(DLBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::dlblock_fields, 32),
            "32 1 dl_flags\n"
            "33 3 dl_reserved\n"
            "36 4 dl_count\n");
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::dlblock_equal_length_fields, 40), "40 8 dl_equal_length\n");
}

TEST(DLBLOCK, EmptyListIsFortyBytes) {
  EXPECT_BYTES(written(DLBLOCK(false, 0)), Bytes().header("DL", 40, 1).i64(0).zeros(4).u32(0));
}

TEST(DLBLOCK, EmptyListOfEqualLengthIsFortyEightBytes) {
  EXPECT_BYTES(written(DLBLOCK(true, 4096)),
               Bytes().header("DL", 48, 1).i64(4096).u8(1).zeros(3).u32(0).u64(0));
}

TEST(DLBLOCK, ConstructorLeavesEverythingElseZero) {
  const DLBLOCK block(true, 77);
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(linksOf(block), (Links{77}));
  EXPECT_EQ(block.dl_flags, 1);
  EXPECT_EQ(asArray(block.dl_reserved), (std::array<UINT8, 3>{}));
  EXPECT_EQ(block.dl_equal_length, 0U);
  EXPECT_EQ(block.dl_data, Pairs{});
  EXPECT_EQ(DLBLOCK(false, 77).dl_flags, 0);
}

TEST(DLBLOCK, WritesEveryFieldAndTheOffsets) {
  EXPECT_BYTES(written(distinctBlock()), distinctBytes());
}

TEST(DLBLOCK, WritesEveryFieldAndTheEqualLength) {
  EXPECT_BYTES(written(distinctBlockOfEqualLength()), distinctBytesOfEqualLength());
}

TEST(DLBLOCK, WritesExtremeValues) {
  DLBLOCK block(true, INT64_MIN);
  block.addData(INT64_MAX, UINT64_MAX);
  block.addData(-1, UINT64_MAX);
  block.setEqualLength(UINT64_MAX);
  block.dl_flags = 0xFF;
  fillBytes(block.dl_reserved, 0xFF);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("DL", 64, 3)
                                   .links({INT64_MIN, INT64_MAX, -1})
                                   .u8s({255, 255, 255, 255})
                                   .u32(2)
                                   .u64(UINT64_MAX));
  block.setEqualLengthFlag(false);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("DL", 72, 3)
                                   .links({INT64_MIN, INT64_MAX, -1})
                                   .u8s({254, 255, 255, 255})
                                   .u32(2)
                                   .u64(UINT64_MAX)
                                   .u64(UINT64_MAX));
}

TEST(DLBLOCK, LengthLinkCountAndEntryCountFollowFromThePairs) {
  for (const std::size_t count : {0U, 1U, 3U, 70000U}) {
    for (const bool equal_length : {false, true}) {
      SCOPED_TRACE(testing::Message() << count << " pairs, equal length " << equal_length);
      DLBLOCK block = listOf(count, equal_length);
      block.header.length = 12345;
      block.header.link_count = 678;
      const std::string expected = listBytes(count, equal_length);
      EXPECT_TRUE(written(block) == expected);
      EXPECT_EQ(block.getSize(), expected.size());
      EXPECT_EQ(block.getDataLength(), count);
    }
  }
}

TEST(DLBLOCK, AddingRemovingAndWritingLeaveTheStoredHeaderAlone) {
  DLBLOCK block = distinctBlock();
  block.removeDataAtIndex(1);
  written(block);
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(linksOf(block), (Links{100}));
}

TEST(DLBLOCK, NilLinkIsNotAdded) {
  DLBLOCK block(false, 0);
  block.addData(0, 100);
  EXPECT_EQ(block.dl_data, Pairs{});
  block.addData(5, 0);
  block.addData(0, 100);
  block.addData(-6, 1);
  EXPECT_EQ(block.dl_data, (Pairs{{5, 0}, {-6, 1}}));
}

TEST(DLBLOCK, DataAtIndex) {
  const DLBLOCK block = distinctBlock();
  LINK link = -1;
  UINT64 offset = 99;
  EXPECT_TRUE(block.getDataAtIndex(0, link, offset));
  EXPECT_EQ(link, 200);
  EXPECT_EQ(offset, 0U);
  EXPECT_TRUE(block.getDataAtIndex(2, link, offset));
  EXPECT_EQ(link, 400);
  EXPECT_EQ(offset, 2000U);
}

TEST(DLBLOCK, DataAtIndexBehindTheLastLeavesItsArgumentsUntouched) {
  const DLBLOCK block = distinctBlock();
  LINK link = -1;
  UINT64 offset = 99;
  for (const UINT32 index : {UINT32{3}, UINT32{4}, UINT32_MAX}) {
    EXPECT_FALSE(block.getDataAtIndex(index, link, offset));
  }
  EXPECT_FALSE(DLBLOCK(false, 1).getDataAtIndex(0, link, offset));
  EXPECT_EQ(link, -1);
  EXPECT_EQ(offset, 99U);
}

TEST(DLBLOCK, RemovingMovesTheLaterPairsForward) {
  DLBLOCK block = distinctBlock();
  block.removeDataAtIndex(0);
  EXPECT_EQ(block.dl_data, (Pairs{{300, 1000}, {400, 2000}}));
  block.removeDataAtIndex(1);
  EXPECT_EQ(block.dl_data, (Pairs{{300, 1000}}));
  block.removeDataAtIndex(0);
  EXPECT_EQ(block.dl_data, Pairs{});
  block.removeDataAtIndex(0);
  EXPECT_EQ(block.dl_data, Pairs{});
}

TEST(DLBLOCK, RemovingBehindTheLastChangesNothing) {
  DLBLOCK block = distinctBlock();
  for (const UINT32 index : {UINT32{3}, UINT32{4}, UINT32_MAX}) {
    block.removeDataAtIndex(index);
  }
  EXPECT_EQ(block.dl_data, (Pairs{{200, 0}, {300, 1000}, {400, 2000}}));
}

TEST(DLBLOCK, RemovingAPairTakesSixteenBytesOrEightWithEqualLength) {
  DLBLOCK block = distinctBlock();
  EXPECT_EQ(block.getSize(), 88U);
  block.removeDataAtIndex(0);
  EXPECT_EQ(block.getSize(), 72U);
  DLBLOCK equal = distinctBlockOfEqualLength();
  EXPECT_EQ(equal.getSize(), 72U);
  equal.removeDataAtIndex(0);
  EXPECT_EQ(equal.getSize(), 64U);
}

TEST(DLBLOCK, FollowsTheListedBlocks) {
  const LinkTargetFile file;
  const DLBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, 0); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, 1); }, 300);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, 2); }, 400);
}

TEST(DLBLOCK, FollowingBehindTheLastListedBlockLeavesTheStreamAlone) {
  const LinkTargetFile file;
  const DLBLOCK block = distinctBlock();
  for (const UINT32 index : {UINT32{3}, UINT32{4}, UINT32_MAX}) {
    file.expectStays([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, index); });
  }
  const DLBLOCK empty(false, 100);
  file.expectStays([&](std::ifstream& ifs) { return empty.seekgDataAt(ifs, 0); });
}

TEST(DLBLOCK, FollowsTheNextList) {
  const LinkTargetFile file;
  const DLBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDlblock(ifs); }, 100);
}

TEST(DLBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  DLBLOCK block(false, 0);
  block.dl_data.emplace_back(0, 8);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDlblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, 0); }, 0);
  block.links.clear();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDlblock(ifs); }, 0);
}

TEST(DLBLOCK, Accessors) {
  DLBLOCK block(false, 1);
  EXPECT_EQ(block.getNextDlblock(), 1);
  EXPECT_EQ(block.getEqualLength(), 0U);
  EXPECT_EQ(block.getDataLength(), 0U);
  EXPECT_FALSE(block.isEqualLengthFlag());
  block.setNextDlblock(11);
  block.setEqualLength(UINT64_MAX);
  block.addData(2, 3);
  EXPECT_EQ(linksOf(block), (Links{11}));
  EXPECT_EQ(block.getNextDlblock(), 11);
  EXPECT_EQ(block.dl_equal_length, UINT64_MAX);
  EXPECT_EQ(block.getEqualLength(), UINT64_MAX);
  EXPECT_FALSE(block.isEqualLengthFlag());
  EXPECT_EQ(block.getDataLength(), 1U);
  block.links.clear();
  EXPECT_EQ(block.getNextDlblock(), 0);
  block.setNextDlblock(12);
  EXPECT_EQ(linksOf(block), (Links{12}));
}

TEST(DLBLOCK, EqualLengthFlagIsTheLowestBitAlone) {
  for (unsigned bit = 0; bit < 8; ++bit) {
    SCOPED_TRACE(bit);
    DLBLOCK block(false, 0);
    block.dl_flags = static_cast<UINT8>(1U << bit);
    EXPECT_EQ(block.isEqualLengthFlag(), bit == 0);
    block.setEqualLengthFlag(true);
    EXPECT_EQ(block.dl_flags, (1U << bit) | 1U);
    block.setEqualLengthFlag(true);
    EXPECT_EQ(block.dl_flags, (1U << bit) | 1U);
    block.setEqualLengthFlag(false);
    EXPECT_EQ(block.dl_flags, (1U << bit) & ~1U);
  }
}

TEST(DLBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 88\n"
            "next DL block = 100\n"
            "equal length flag = 0\n"
            "equal length value = 500\n"
            "data + offset pairs:\n"
            "data ptr = 200, offset = 0\n"
            "data ptr = 300, offset = 1000\n"
            "data ptr = 400, offset = 2000\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, DumpOfEqualLength) {
  EXPECT_EQ(dumped(distinctBlockOfEqualLength()),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 72\n"
            "next DL block = 100\n"
            "equal length flag = 1\n"
            "equal length value = 500\n"
            "data + offset pairs:\n"
            "data ptr = 200, offset = 0\n"
            "data ptr = 300, offset = 1000\n"
            "data ptr = 400, offset = 2000\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, DumpOfExtremeValues) {
  DLBLOCK block(true, INT64_MIN);
  block.setEqualLength(UINT64_MAX);
  block.addData(-1, UINT64_MAX);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 56\n"
            "next DL block = -9223372036854775808\n"
            "equal length flag = 1\n"
            "equal length value = 18446744073709551615\n"
            "data + offset pairs:\n"
            "data ptr = -1, offset = 18446744073709551615\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, DumpOfAnEmptyListWithoutLinksShowsANilNextList) {
  DLBLOCK block(false, 5);
  block.links.clear();
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 40\n"
            "next DL block = 0\n"
            "equal length flag = 0\n"
            "equal length value = 0\n"
            "data + offset pairs:\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, DumpFollowsTheFormatOfTheStream) {
  std::ostringstream os;
  os << std::hex << std::boolalpha;
  distinctBlockOfEqualLength().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 48\n"
            "next DL block = 64\n"
            "equal length flag = true\n"
            "equal length value = 1f4\n"
            "data + offset pairs:\n"
            "data ptr = c8, offset = 0\n"
            "data ptr = 12c, offset = 3e8\n"
            "data ptr = 190, offset = 7d0\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, DumpLeavesTheFormatOfTheStreamAlone) {
  std::ostringstream os;
  distinctBlock().print(os);
  EXPECT_EQ(os.flags(), std::ostringstream().flags());
}

TEST(DLBLOCK, ReaderAppendsTheLinksBehindTheNilOne) {
  const auto block = readBack<DLBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 88U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (Links{0, 100, 200, 300, 400}));
  EXPECT_EQ(block.getNextDlblock(), 0);
  EXPECT_EQ(block.dl_flags, 0xAA);
}

TEST(DLBLOCK, ReaderPassesOverReservedBytes) {
  const auto block = readBack<DLBLOCK>(distinctBytes());
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.dl_reserved), (std::array<UINT8, 3>{}));
}

TEST(DLBLOCK, ReaderPairsOffsetsFromTheNextListOnAndLosesTheLastDataLink) {
  const auto block = readBack<DLBLOCK>(distinctBytes());
  EXPECT_EQ(block.dl_data, (Pairs{{100, 0}, {200, 1000}, {300, 2000}}));
  EXPECT_EQ(block.dl_equal_length, 0U);
  EXPECT_EQ(block.getDataLength(), 3U);
}

TEST(DLBLOCK, ReaderPairsEveryLinkWithTheEqualLengthOnePairMoreThanTheCount) {
  const auto block = readBack<DLBLOCK>(distinctBytesOfEqualLength());
  EXPECT_EQ(linksOf(block), (Links{0, 100, 200, 300, 400}));
  EXPECT_EQ(block.dl_data, (Pairs{{100, 500}, {200, 500}, {300, 500}, {400, 500}}));
  EXPECT_EQ(block.dl_equal_length, 500U);
  EXPECT_EQ(block.dl_flags, 0xAB);
}

TEST(DLBLOCK, EntryCountIsNotUsedWithEqualLength) {
  for (const std::uint32_t count : {0U, 1U, 3U, 70000U, UINT32_MAX}) {
    SCOPED_TRACE(count);
    const auto block = readBack<DLBLOCK>(
        Bytes().header("DL", 64, 3).links({1, 2, 3}).u8(1).zeros(3).u32(count).u64(9));
    EXPECT_EQ(block.dl_data, (Pairs{{1, 9}, {2, 9}, {3, 9}}));
  }
}

TEST(DLBLOCK, ReaderKeepsPairsWithNilLinks) {
  const auto block =
      readBack<DLBLOCK>(Bytes().header("DL", 64, 3).links({0, 0, 5}).u8(1).zeros(3).u32(2).u64(9));
  EXPECT_EQ(block.dl_data, (Pairs{{0, 9}, {0, 9}, {5, 9}}));
  const auto with_offsets = readBack<DLBLOCK>(
      Bytes().header("DL", 72, 3).links({0, 0, 5}).zeros(4).u32(2).u64(9).u64(10));
  EXPECT_EQ(with_offsets.dl_data, (Pairs{{0, 9}, {0, 10}}));
}

TEST(DLBLOCK, FirstPairOfAListReadBackLeadsToTheNextList) {
  const LinkTargetFile file;
  const auto block = readBack<DLBLOCK>(written(distinctBlock()));
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, 0); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextDlblock(ifs); }, 0);
}

TEST(DLBLOCK, DumpOfABlockThatWasReadShowsANilNextList) {
  EXPECT_EQ(dumped(readBack<DLBLOCK>(distinctBytes())),
            "[DEBUG] ==================== DLBLOCK ===================\n"
            "block size = 88\n"
            "next DL block = 0\n"
            "equal length flag = 0\n"
            "equal length value = 0\n"
            "data + offset pairs:\n"
            "data ptr = 100, offset = 0\n"
            "data ptr = 200, offset = 1000\n"
            "data ptr = 300, offset = 2000\n"
            "[DEBUG] ==================== End of DLBLOCK ===================\n");
}

TEST(DLBLOCK, WritingABlockThatWasReadWritesMoreLinksThanItsLinkCount) {
  EXPECT_BYTES(written(readBack<DLBLOCK>(distinctBytes())), Bytes()
                                                                .header("DL", 88, 4)
                                                                .links({0, 100, 200, 300, 400})
                                                                .links({100, 200, 300})
                                                                .u8(0xAA)
                                                                .zeros(3)
                                                                .u32(3)
                                                                .u64(0)
                                                                .u64(1000)
                                                                .u64(2000));
}

TEST(DLBLOCK, WritingABlockOfEqualLengthThatWasReadWritesMoreLinksThanItsLinkCount) {
  EXPECT_BYTES(written(readBack<DLBLOCK>(distinctBytesOfEqualLength())),
               Bytes()
                   .header("DL", 80, 5)
                   .links({0, 100, 200, 300, 400})
                   .links({100, 200, 300, 400})
                   .u8(0xAB)
                   .zeros(3)
                   .u32(4)
                   .u64(500));
}

TEST(DLBLOCK, ReadsListsOfAnyLength) {
  for (const std::size_t count : {0U, 1U, 3U, 70000U}) {
    SCOPED_TRACE(count);
    const auto with_offsets = readBack<DLBLOCK>(listBytes(count, false));
    ASSERT_EQ(with_offsets.links.size(), count + 2);
    ASSERT_EQ(with_offsets.dl_data.size(), count);
    const auto equal = readBack<DLBLOCK>(listBytes(count, true));
    ASSERT_EQ(equal.dl_data.size(), count + 1);
    EXPECT_EQ(equal.dl_data[0], (std::pair<LINK, UINT64>{900, 7}));
    for (std::size_t i = 0; i < count; ++i) {
      const auto link = static_cast<LINK>(1001 + i);
      ASSERT_EQ(with_offsets.links[i + 2], link);
      ASSERT_EQ(with_offsets.dl_data[i], (std::pair<LINK, UINT64>{i == 0 ? 900 : link - 1, 7 * i}));
      ASSERT_EQ(equal.dl_data[i + 1], (std::pair<LINK, UINT64>{link, 7}));
    }
  }
}

TEST(DLBLOCK, ReadsFromTheMiddleOfAStream) {
  std::istringstream is("before" + distinctBytes() + distinctBytesOfEqualLength() + "after");
  is.seekg(6);
  EXPECT_EQ(DLBLOCK(is).dl_data.size(), 3U);
  EXPECT_EQ(is.tellg(), 6 + 88);
  EXPECT_EQ(DLBLOCK(is).dl_data.size(), 4U);
  EXPECT_EQ(is.tellg(), 6 + 88 + 72);
  EXPECT_EQ(is.rdstate(), state_good);
}

TEST(DLBLOCK, BytesBehindTheListArePassedOver) {
  const auto block = readBack<DLBLOCK>(withLength(distinctBytes() + "0123456789", 98));
  EXPECT_EQ(block.header.length, 98U);
  EXPECT_EQ(block.dl_data, (Pairs{{100, 0}, {200, 1000}, {300, 2000}}));
  const auto equal = readBack<DLBLOCK>(withLength(distinctBytesOfEqualLength() + "012", 75));
  EXPECT_EQ(equal.dl_data, (Pairs{{100, 500}, {200, 500}, {300, 500}, {400, 500}}));
}

TEST(DLBLOCK, CutStreamKeepsTheStateOfTheRead) {
  for (const std::string& bytes : {distinctBytes(), distinctBytesOfEqualLength()}) {
    forEachPrefix(bytes, [&](std::istream& is, std::size_t length) {
      const DLBLOCK block(is);
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      if (length < 24) {
        expectNothingTaken(block, 40, 1);
      } else {
        expectNothingTaken(block, bytes.size(), 4);
      }
    });
  }
}

TEST(DLBLOCK, LongListInACutStreamIsNotTaken) {
  const std::string bytes = listBytes(70000, false);
  for (const std::size_t length :
       {std::size_t{24}, std::size_t{24 + 65535}, std::size_t{24 + 65536}, std::size_t{24 + 65537},
        bytes.size() - 1}) {
    SCOPED_TRACE(length);
    std::istringstream is(bytes.substr(0, length));
    const DLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectNothingTaken(block, bytes.size(), 70001);
  }
}

TEST(DLBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const DLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    expectNothingTaken(block, 40, 1);
    is.clear();
    EXPECT_EQ(is.tellg(), 0);
  }
}

TEST(DLBLOCK, FailedStreamIsNotWritten) {
  std::ostringstream os;
  os.setstate(std::ios_base::failbit);
  EXPECT_EQ(&(os << distinctBlock()), &os);
  EXPECT_EQ(os.rdstate() & ~std::ios_base::badbit, std::ios_base::failbit);
  EXPECT_EQ(os.str(), "");
}

TEST(DLBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  const std::string again = written(readBack<DLBLOCK>(bytes));
  EXPECT_BYTES(again, written(readBack<DLBLOCK>(distinctBytes())));
  EXPECT_EQ(again.substr(0, 4), "##DL");
}

TEST(DLBLOCK, LengthThatDoesNotHoldTheFixedFieldsMakesTheStreamBad) {
  for (const std::uint64_t length : {0U, 1U, 23U, 24U, 25U, 31U, 32U, 56U, 63U}) {
    SCOPED_TRACE(length);
    expectUnreadable(withLength(distinctBytes(), length), length, 4);
  }
}

TEST(DLBLOCK, LengthBeyondTheStreamKeepsTheStateOfTheRead) {
  for (const std::uint64_t length :
       {std::uint64_t{89}, std::uint64_t{INT32_MAX}, std::uint64_t{1} << 31U,
        std::uint64_t{UINT32_MAX}, (std::uint64_t{1} << 32U) + 24, (std::uint64_t{1} << 32U) + 88,
        std::uint64_t{1} << 40U, std::uint64_t{INT64_MAX}, std::uint64_t{1} << 63U, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::istringstream is(withLength(distinctBytes(), length));
    const DLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectNothingTaken(block, length, 4);
  }
}

TEST(DLBLOCK, PairsEndWhereTheOffsetsRunOut) {
  for (const std::size_t length : {64U, 71U, 72U, 79U, 80U, 87U}) {
    SCOPED_TRACE(length);
    std::istringstream is(withLength(distinctBytes(), length));
    const DLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(static_cast<std::size_t>(is.tellg()), length);
    EXPECT_EQ(linksOf(block), (Links{0, 100, 200, 300, 400}));
    Pairs expected{{100, 0}, {200, 1000}, {300, 2000}};
    expected.resize((length - 64) / 8);
    EXPECT_EQ(block.dl_data, expected);
  }
}

TEST(DLBLOCK, PairsEndWhereTheLinksRunOut) {
  for (const std::uint32_t count : {2U, 3U, 4U, 5U, UINT32_MAX}) {
    SCOPED_TRACE(count);
    const auto block = readBack<DLBLOCK>(Bytes()
                                             .header("DL", 80, 2)
                                             .links({1, 2})
                                             .zeros(4)
                                             .u32(count)
                                             .u64(10)
                                             .u64(20)
                                             .u64(30)
                                             .u64(40));
    EXPECT_EQ(block.dl_data, (Pairs{{1, 10}, {2, 20}}));
  }
}

TEST(DLBLOCK, PairsEndWithTheEntryCount) {
  for (std::uint32_t count = 0; count <= 4; ++count) {
    SCOPED_TRACE(count);
    std::string bytes = distinctBytes();
    bytes.replace(60, 4, Bytes().u32(count).str());
    Pairs expected{{100, 0}, {200, 1000}, {300, 2000}};
    expected.resize(count < 3 ? count : 3);
    EXPECT_EQ(readBack<DLBLOCK>(bytes).dl_data, expected);
  }
}

TEST(DLBLOCK, ListWithoutLinksHasNoPairs) {
  const auto with_offsets = readBack<DLBLOCK>(Bytes().header("DL", 40, 0).zeros(4).u32(1).u64(10));
  EXPECT_EQ(linksOf(with_offsets), (Links{0}));
  EXPECT_EQ(with_offsets.dl_data, Pairs{});
  const auto equal = readBack<DLBLOCK>(Bytes().header("DL", 40, 0).u8(1).zeros(3).u32(1).u64(10));
  EXPECT_EQ(linksOf(equal), (Links{0}));
  EXPECT_EQ(equal.dl_data, Pairs{});
  EXPECT_EQ(equal.dl_equal_length, 10U);
}

TEST(DLBLOCK, FieldsFollowTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 7; ++link_count) {
    SCOPED_TRACE(link_count);
    std::string bytes = Bytes().header("DL", 88, link_count).zeros(64);
    bytes[24 + 8 * link_count] = 6;
    const auto block = readBack<DLBLOCK>(bytes);
    EXPECT_EQ(block.dl_flags, 6);
    EXPECT_EQ(linksOf(block), Links(1 + link_count, 0));
    EXPECT_EQ(block.header.link_count, link_count);
  }
}

TEST(DLBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{8}, std::uint64_t{9}, std::uint64_t{1} << 32U, (std::uint64_t{1} << 32U) + 4,
        std::uint64_t{1} << 61U, (std::uint64_t{1} << 61U) + 4, std::uint64_t{1} << 63U,
        UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    expectUnreadable(withLinkCount(distinctBytes(), link_count), 88, link_count);
  }
}

TEST(DLBLOCK, EqualLengthThatIsMissingMakesTheStreamBad) {
  for (std::uint64_t length = 64; length < 72; ++length) {
    SCOPED_TRACE(length);
    expectUnreadable(withLength(distinctBytesOfEqualLength(), length), length, 4);
  }
}

TEST(DLBLOCK, ChainInAFileIsWalkedAlongTheLinksBehindTheNilOne) {
  // Lists at 64, 200 and 300, data blocks at 400, 430, 460 and 490.
  const UINT8 data[] = {'a', 'b', 'c', 'd'};
  DLBLOCK first(false, 200);
  first.addData(400, 0);
  first.addData(430, 1);
  DLBLOCK second(true, 300);
  second.addData(460, 0);
  second.setEqualLength(1);
  DLBLOCK third(false, 0);
  third.addData(490, 3);
  std::string contents(600, '\0');
  const auto place = [&contents](std::size_t offset, const std::string& bytes) {
    contents.replace(offset, bytes.size(), bytes);
  };
  place(64, written(first));
  place(200, written(second));
  place(300, written(third));
  for (std::size_t i = 0; i < 4; ++i) {
    place(400 + 30 * i, written(DTBLOCK(data + i, 1)));
  }

  const LinkTargetFile file(contents);
  std::ifstream ifs = file.open();
  std::string walked;
  for (LINK next = 64; next != 0;) {
    ifs.seekg(next);
    const DLBLOCK block(ifs);
    ASSERT_EQ(ifs.rdstate(), state_good);
    ASSERT_GE(block.links.size(), 3U);
    walked += '|';
    for (std::size_t i = 2; i < block.links.size(); ++i) {
      ifs.seekg(block.links[i]);
      const std::vector<UINT8> content = DTBLOCK(ifs).getData();
      walked.append(content.begin(), content.end());
    }
    next = block.links[1];
  }
  EXPECT_EQ(walked, "|ab|c|d");
}

TEST(DLBLOCK, ReadsFromFiles) {
  const LinkTargetFile file("0123456" + distinctBytes());
  std::ifstream ifs = file.open();
  ifs.seekg(7);
  const DLBLOCK block(ifs);
  EXPECT_EQ(ifs.rdstate(), state_good);
  EXPECT_EQ(ifs.tellg(), 7 + 88);
  EXPECT_EQ(block.dl_data, (Pairs{{100, 0}, {200, 1000}, {300, 2000}}));
  const DLBLOCK behind(ifs);
  EXPECT_EQ(ifs.rdstate(), state_eof_fail);
  expectNothingTaken(behind, 40, 1);
}

TEST(DLBLOCK, CopiesAreIndependent) {
  const DLBLOCK block = distinctBlock();
  DLBLOCK copy = block;
  copy.addData(1, 2);
  copy.setNextDlblock(3);
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_EQ(copy.getDataLength(), 4U);
}

}  // namespace
