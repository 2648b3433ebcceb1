#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

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

TEST(DLBLOCK, DataAtIndexAfterTheLastLeavesItsArgumentsUntouched) {
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

TEST(DLBLOCK, RemovingAfterTheLastChangesNothing) {
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

TEST(DLBLOCK, FollowingAfterTheLastListedBlockLeavesTheStreamAlone) {
  const LinkTargetFile file;
  const DLBLOCK block = distinctBlock();
  for (const UINT32 index : {UINT32{3}, UINT32{4}, UINT32_MAX}) {
    file.expectStays([&](std::ifstream& ifs) { return block.seekgDataAt(ifs, index); });
  }
  const DLBLOCK empty(false, 100);
  file.expectStays([&](std::ifstream& ifs) { return empty.seekgDataAt(ifs, 0); });
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
  EXPECT_EQ(shownValues(distinctBlockOfEqualLength()), "72 100 1 500 200 0 300 1000 400 2000");
}

TEST(DLBLOCK, DumpOfExtremeValues) {
  DLBLOCK block(true, INT64_MIN);
  block.setEqualLength(UINT64_MAX);
  block.addData(-1, UINT64_MAX);
  EXPECT_EQ(shownValues(block),
            "56 -9223372036854775808 1 18446744073709551615 -1 18446744073709551615");
}

TEST(DLBLOCK, DumpOfAnEmptyListWithoutLinksShowsANilNextList) {
  DLBLOCK block(false, 5);
  block.links.clear();
  EXPECT_EQ(shownValues(block), "40 0 0 0");
}

TEST(DLBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlockOfEqualLength(), std::hex, std::boolalpha),
            "48 64 true 1f4 c8 0 12c 3e8 190 7d0");
}

TEST(DLBLOCK, DumpLeavesTheFormatOfTheStreamAlone) {
  std::ostringstream os;
  distinctBlock().print(os);
  EXPECT_EQ(os.flags(), std::ostringstream().flags());
}

TEST(DLBLOCK, ReaderAppendsTheLinksAfterTheNilOne) {
  const auto block = readBack<DLBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 88U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (Links{0, 100, 200, 300, 400}));
  EXPECT_EQ(block.getNextDlblock(), 0);
  EXPECT_EQ(block.dl_flags, 0xAA);
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

TEST(DLBLOCK, ChainInAFileIsWalkedAlongTheLinksAfterTheNilOne) {
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

}  // namespace
