#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

using Pairs = std::vector<std::pair<LINK, UINT64>>;

DLBLOCK distinctBlock() {
  DLBLOCK block(false, 100);
  block.addData(200, 0);
  block.addData(300, 1000);
  block.addData(400, UINT64_MAX);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.dl_flags = 0xAA;
  setBytes(block.dl_reserved, {11, 12, 13});
  block.dl_equal_length = 500;
  return block;
}

std::string distinctBytes() {
  return header("DL", 88, 4, {1, 2, 3, 4}) + links(100, 200, 300, 400) + u8(0xAA) + u8(11, 12, 13) +
         u32(3) + u64(0, 1000, UINT64_MAX);
}

DLBLOCK distinctBlockOfEqualLength() {
  DLBLOCK block = distinctBlock();
  block.setEqualLengthFlag(true);
  return block;
}

std::string distinctBytesOfEqualLength() {
  return header("DL", 72, 4, {1, 2, 3, 4}) + links(100, 200, 300, 400) + u8(0xAB) + u8(11, 12, 13) +
         u32(3) + u64(500);
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
  std::string data_links;
  std::string offsets;
  for (std::size_t i = 0; i < count; ++i) {
    data_links += links(1001 + i);
    offsets += u64(7 * i);
  }
  return header("DL", equal_length ? 48 + 8 * count : 40 + 16 * count, count + 1) + links(900) +
         data_links + u8(equal_length, 0, 0, 0) + u32(count) + (equal_length ? u64(7) : offsets);
}

TEST(DLBLOCK, NewBlockIsAnEmptyList) {
  const DLBLOCK block(true, 77);
  EXPECT_BYTES(written(block.header), header("DL", 40, 1));
  EXPECT_BYTES(written(block), header("DL", 48, 1) + links(77) + u8(1) + zeros(7) + u64(0));
  EXPECT_BYTES(written(DLBLOCK(false, 0)), header("DL", 40, 1) + zeros(16));
}

TEST(DLBLOCK, WritesEveryFieldAndTheOffsets) {
  EXPECT_BYTES(written(distinctBlock()), distinctBytes());
}

TEST(DLBLOCK, WritesEveryFieldAndTheEqualLength) {
  EXPECT_BYTES(written(distinctBlockOfEqualLength()), distinctBytesOfEqualLength());
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
      EXPECT_BYTES(written(block.header), header("DL", 12345, 678));
    }
  }
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

TEST(DLBLOCK, PairsAreGotAndFollowedByTheirIndex) {
  const LinkTargetFile file;
  const DLBLOCK block = distinctBlock();
  const Pairs pairs = {{200, 0}, {300, 1000}, {400, UINT64_MAX}};
  for (const UINT32 index : {UINT32{0}, UINT32{1}, UINT32{2}, UINT32{3}, UINT32{4}, UINT32_MAX}) {
    SCOPED_TRACE(index);
    const auto follow = [&](std::ifstream& ifs) { return block.seekgDataAt(ifs, index); };
    std::pair<LINK, UINT64> pair(-1, 99);
    EXPECT_EQ(block.getDataAtIndex(index, pair.first, pair.second), index < 3);
    EXPECT_EQ(pair, index < 3 ? pairs[index] : std::make_pair(LINK{-1}, UINT64{99}));
    index < 3 ? file.expectFollows(follow, pair.first) : file.expectStays(follow);
  }
}

TEST(DLBLOCK, RemovingMovesTheLaterPairsForward) {
  const std::pair<UINT32, Pairs> removals[] = {
      {3, {{200, 0}, {300, 1000}, {400, UINT64_MAX}}},
      {UINT32_MAX, {{200, 0}, {300, 1000}, {400, UINT64_MAX}}},
      {0, {{300, 1000}, {400, UINT64_MAX}}},
      {1, {{300, 1000}}},
      {0, {}},
      {0, {}}};
  DLBLOCK block = distinctBlock();
  for (const auto& [index, left] : removals) {
    block.removeDataAtIndex(index);
    EXPECT_EQ(block.dl_data, left);
    EXPECT_EQ(block.getSize(), 40 + 16 * left.size());
  }
}

TEST(DLBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("DLBLOCK",
                                               "block size = 88\n"
                                               "next DL block = 100\n"
                                               "equal length flag = 0\n"
                                               "equal length value = 500\n"
                                               "data + offset pairs:\n"
                                               "data ptr = 200, offset = 0\n"
                                               "data ptr = 300, offset = 1000\n"
                                               "data ptr = 400, offset = 18446744073709551615\n"));
}

TEST(DLBLOCK, DumpOfEqualLength) {
  EXPECT_EQ(shownValues(distinctBlockOfEqualLength()),
            "72 100 1 500 200 0 300 1000 400 18446744073709551615");
}

TEST(DLBLOCK, DumpOfAnEmptyListWithoutLinksShowsANilNextList) {
  DLBLOCK block(false, 5);
  block.links.clear();
  EXPECT_EQ(shownValues(block), "40 0 0 0");
}

TEST(DLBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlockOfEqualLength(), std::hex, std::boolalpha),
            "48 64 true 1f4 c8 0 12c 3e8 190 ffffffffffffffff");
}

TEST(DLBLOCK, ReaderKeepsPairsWithNilLinks) {
  const auto block =
      readBack<DLBLOCK>(header("DL", 64, 3) + links(0, 0, 5) + u8(1) + zeros(3) + u32(2) + u64(9));
  EXPECT_EQ(block.dl_data, (Pairs{{0, 9}, {0, 9}, {5, 9}}));
  const auto with_offsets =
      readBack<DLBLOCK>(header("DL", 72, 3) + links(0, 0, 5) + zeros(4) + u32(2) + u64(9, 10));
  EXPECT_EQ(with_offsets.dl_data, (Pairs{{0, 9}, {0, 10}}));
}

}  // namespace
