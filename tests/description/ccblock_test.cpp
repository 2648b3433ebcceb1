#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <type_traits>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

using Links = std::vector<LINK>;
using Values = std::vector<REAL>;

/// Bit patterns of doubles that arithmetic or a detour over text would not keep: negative zero, the
/// smallest denormal, a large negative denormal, both infinities, the largest number, quiet NaNs of
/// both signs with a payload, and a signalling NaN.
constexpr std::array<std::uint64_t, 9> odd_reals = {
    0x8000000000000000, 0x0000000000000001, 0x800FFFFFFFFFFFFF,
    0x7FF0000000000000, 0xFFF0000000000000, 0x7FEFFFFFFFFFFFFF,
    0x7FF8000000ABCDEF, 0xFFF8123456789ABC, 0x7FF4000000000001};

std::uint64_t bitsOf(REAL value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

CCBLOCK distinctBlock() {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB);
  block.setNameTxblock(100);
  block.setUnitblock(200);
  block.setCommentblock(300);
  block.setInverseCcblock(400);
  block.setPrecision(3);
  block.cc_flags = 0xA5C6;
  block.setPhysicalValueRangeMin(-1.5);
  block.setPhysicalValueRangeMax(2.25);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.cc_refs = {500, 600, 700};
  block.cc_vals = {0.5, 10, 1e100, -0.125};
  return block;
}

std::string distinctBytes() {
  return header("CC", 136, 7, {1, 2, 3, 4}) + links(100, 200, 300, 400, 500, 600, 700) + u8(8, 3) +
         u16(0xA5C6, 3, 4) + f64(-1.5, 2.25, 0.5, 10, 1e100, -0.125);
}

/// The data section of a block for writing: no flag, no precision, no range.
std::string plainDataSection(int type, int ref_count, int val_count) {
  return u8(type, 255) + u16(0, ref_count, val_count) + zeros(16);
}

template <class Block, class = void>
struct HasPublicLinkCount : std::false_type {};
template <class Block>
struct HasPublicLinkCount<Block, std::void_t<decltype(std::declval<const Block&>().getLinkCount())>>
    : std::true_type {};

TEST(CCBLOCK, LinkCountIsPrivate) {
  EXPECT_FALSE(HasPublicLinkCount<CCBLOCK>::value);
  EXPECT_TRUE(HasPublicLinkCount<mdf_v4_10::HeaderSection>::value);
}

TEST(CCBLOCK, NewBlockOfAnyTypeWritesEightyBytes) {
  for (int type = 0; type <= 10; ++type) {
    const CCBLOCK block(static_cast<CCBLOCK::MDF_CC_TYPE_t>(type));
    EXPECT_BYTES(written(block), header("CC", 80, 4) + zeros(32) + plainDataSection(type, 0, 0));
    EXPECT_BYTES(written(block.header), header("CC", 80, 4));
  }
}

TEST(CCBLOCK, WritesEveryFieldWithALengthAndCountsThatFollowFromTheLists) {
  CCBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_BYTES(written(block.header), header("CC", 9999, 77, {1, 2, 3, 4}));
  EXPECT_EQ(block.getSize(), 136U);
}

TEST(CCBLOCK, LinkCountInTheFileIgnoresTheSizeOfTheLinkSection) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_ALGEBRAIC);
  block.addReference(500);
  block.links = {1, 2};
  EXPECT_BYTES(written(block), header("CC", 88, 5) + links(1, 2, 500) + plainDataSection(3, 1, 0));
  block.links = {1, 2, 3, 4, 5, 6};
  EXPECT_BYTES(written(block),
               header("CC", 88, 5) + links(1, 2, 3, 4, 5, 6, 500) + plainDataSection(3, 1, 0));
}

TEST(CCBLOCK, CountsOfLongListsAreCutToSixteenBitsButAllEntriesAreWritten) {
  constexpr std::size_t ref_count = 65536 + 2;
  constexpr std::size_t val_count = 65536 + 3;
  constexpr std::uint64_t length = 80 + 8 * (ref_count + val_count);
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_TEXT2VTAB);
  std::string references;
  std::string values;
  for (std::size_t i = 0; i < ref_count; ++i) {
    block.addReference(static_cast<LINK>(1000 + i));
    references += links(1000 + i);
  }
  for (std::size_t i = 0; i < val_count; ++i) {
    block.addValue(static_cast<REAL>(i) / 4);
    values += f64(static_cast<REAL>(i) / 4);
  }
  EXPECT_EQ(block.getSize(), length);
  const std::string expected = header("CC", length, 4 + ref_count) + zeros(32) + references +
                               plainDataSection(9, 2, 3) + values;
  EXPECT_TRUE(written(block) == expected);

  const auto back = readBack<CCBLOCK>(expected);
  EXPECT_EQ(back.cc_refs, (Links{1000, 1001}));
  EXPECT_EQ(back.cc_vals, (Values{0, 0.25, 0.5}));
}

TEST(CCBLOCK, DumpShowsTheFlagsAsNumbersInAnyFormOfBooleans) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.cc_flags = 7;
  EXPECT_EQ(shownValues(block, std::boolalpha), "80 0 0 0 0 0 1 255 1 1 0 0 0 0");
}

TEST(CCBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("CCBLOCK",
                                               "block size = 136\n"
                                               "name tx block = 100\n"
                                               "unit tx block = 200\n"
                                               "comment block = 300\n"
                                               "inverse cc block = 400\n"
                                               "conversion type = 8\n"
                                               "precision valid = 0\n"
                                               "precision = 3\n"
                                               "status string = 1\n"
                                               "physical value range valid = 1\n"
                                               "minimum physical signal value = -1.5\n"
                                               "maximum physical signal value = 2.25\n"
                                               "ref count = 3\n"
                                               "Ref = 500\n"
                                               "Ref = 600\n"
                                               "Ref = 700\n"
                                               "val count = 4\n"
                                               "Value = 0.5\n"
                                               "Value = 10\n"
                                               "Value = 1e+100\n"
                                               "Value = -0.125\n"));
}

TEST(CCBLOCK, DumpShowsZeroForMissingLinksAndTheComputedSize) {
  CCBLOCK block(static_cast<CCBLOCK::MDF_CC_TYPE_t>(255));
  block.header.length = 9999;
  block.links = {-1, -2};
  block.addReference(INT64_MIN);
  block.addValue(1.0 / 3);
  block.addValue(std::numeric_limits<REAL>::infinity());
  block.setPhysicalValueRangeMin(-std::numeric_limits<REAL>::infinity());
  block.setPhysicalValueRangeMax(1234567);
  EXPECT_EQ(shownValues(block),
            "104 -1 -2 0 0 255 0 255 0 0 -inf 1.23457e+06 1 -9223372036854775808 2 0.333333 inf");
}

TEST(CCBLOCK, DumpShowsTheFlagsOutOfTheOrderOfTheirBits) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.cc_flags = 1;
  EXPECT_EQ(shownValues(block), "80 0 0 0 0 0 1 255 0 0 0 0 0 0");
  block.cc_flags = 2;
  EXPECT_EQ(shownValues(block), "80 0 0 0 0 0 0 255 0 1 0 0 0 0");
  block.cc_flags = 4;
  EXPECT_EQ(shownValues(block), "80 0 0 0 0 0 0 255 1 0 0 0 0 0");
}

TEST(CCBLOCK, ReaderKeepsEveryBitOfAReal) {
  std::string values;
  for (const std::uint64_t bits : odd_reals) {
    values += u64(bits);
  }
  for (const std::uint64_t range : odd_reals) {
    SCOPED_TRACE(range);
    const std::string bytes = header("CC", 80 + 9 * 8, 4) + zeros(32) + u8(0, 0) + u16(0, 0, 9) +
                              u64(range, ~range) + values;
    const auto block = readBack<CCBLOCK>(bytes);
    EXPECT_EQ(bitsOf(block.getPhysicalValueRangeMin()), range);
    EXPECT_EQ(bitsOf(block.getPhysicalValueRangeMax()), ~range);
    EXPECT_BYTES(written(block), bytes);
  }
}

}  // namespace
