#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <type_traits>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::CCBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::REAL;

namespace {

using Links = std::vector<LINK>;
using Values = std::vector<REAL>;

constexpr std::array<CCBLOCK::MDF_CC_TYPE_t, 11> all_types = {
    CCBLOCK::CC_CONVTYPE_EQUAL,
    CCBLOCK::CC_CONVTYPE_LINEAR,
    CCBLOCK::CC_CONVTYPE_RATIONAL,
    CCBLOCK::CC_CONVTYPE_ALGEBRAIC,
    CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL,
    CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL,
    CCBLOCK::CC_CONVTYPE_VRANGE2VTAB,
    CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB,
    CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB,
    CCBLOCK::CC_CONVTYPE_TEXT2VTAB,
    CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB};

/// Bit patterns of doubles that arithmetic or a detour over text would not keep: negative zero, the
/// smallest denormal, a large negative denormal, both infinities, the largest number, quiet NaNs of
/// both signs with a payload, and a signalling NaN.
constexpr std::array<std::uint64_t, 9> odd_reals = {
    0x8000000000000000, 0x0000000000000001, 0x800FFFFFFFFFFFFF,
    0x7FF0000000000000, 0xFFF0000000000000, 0x7FEFFFFFFFFFFFFF,
    0x7FF8000000ABCDEF, 0xFFF8123456789ABC, 0x7FF4000000000001};

REAL realOf(std::uint64_t bits) {
  REAL value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

std::uint64_t bitsOf(REAL value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

std::vector<std::uint64_t> bitsOf(const Values& values) {
  std::vector<std::uint64_t> bits;
  for (const REAL value : values) {
    bits.push_back(bitsOf(value));
  }
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

Bytes distinctDataSection() {
  return Bytes()
      .u8s({8, 3})
      .u16(0xA5C6)
      .u16(3)
      .u16(4)
      .f64(-1.5)
      .f64(2.25)
      .f64(0.5)
      .f64(10)
      .f64(1e100)
      .f64(-0.125);
}

std::string distinctBytes() {
  return Bytes()
      .text("##CC")
      .u8s({1, 2, 3, 4})
      .u64(136)
      .u64(7)
      .links({100, 200, 300, 400, 500, 600, 700})
      .text(distinctDataSection());
}

/// The data section of a block for writing: no flag, no precision, no range.
std::string plainDataSection(std::uint8_t type, std::uint16_t ref_count, std::uint16_t val_count) {
  return Bytes().u8(type).u8(255).u16(0).u16(ref_count).u16(val_count).zeros(16);
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

// ---- Building and writing

TEST(CCBLOCK, NewBlockOfAnyTypeWritesEightyBytes) {
  for (const auto type : all_types) {
    SCOPED_TRACE(type);
    const CCBLOCK block(type);
    EXPECT_BYTES(written(block),
                 Bytes()
                     .header("CC", 80, 4)
                     .zeros(32)
                     .text(plainDataSection(static_cast<std::uint8_t>(type), 0, 0)));
    EXPECT_EQ(block.getConversionType(), type);
    EXPECT_EQ(block.header.length, 80U);
    EXPECT_EQ(block.header.link_count, 4U);
    EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0}));
    EXPECT_EQ(block.getPadding(), 0);
    EXPECT_TRUE(block.cc_refs.empty());
    EXPECT_TRUE(block.cc_vals.empty());
  }
}

TEST(CCBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(CCBLOCK, WritesExtremeValues) {
  CCBLOCK block(static_cast<CCBLOCK::MDF_CC_TYPE_t>(0x1FF));
  block.setNameTxblock(INT64_MAX);
  block.setUnitblock(INT64_MIN);
  block.setCommentblock(-1);
  block.setInverseCcblock(INT64_MAX);
  block.setPrecision(0);
  block.cc_flags = 0xFFFF;
  block.setPhysicalValueRangeMin(realOf(odd_reals[8]));
  block.setPhysicalValueRangeMax(realOf(odd_reals[1]));
  block.cc_refs = {INT64_MIN, -1, 0, INT64_MAX};
  fillBytes(block.header.reserved, 255);
  Bytes values;
  for (const std::uint64_t bits : odd_reals) {
    block.addValue(realOf(bits));
    values.u64(bits);
  }
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CC")
                                   .u8s({255, 255, 255, 255})
                                   .u64(80 + 4 * 8 + 9 * 8)
                                   .u64(8)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX})
                                   .links({INT64_MIN, -1, 0, INT64_MAX})
                                   .u8s({255, 0})
                                   .u16(0xFFFF)
                                   .u16(4)
                                   .u16(9)
                                   .u64(odd_reals[8])
                                   .u64(odd_reals[1])
                                   .text(values));
}

TEST(CCBLOCK, LengthAndCountsInTheFileFollowTheLists) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_ALGEBRAIC);
  block.header.length = 9999;
  block.header.link_count = 77;
  block.cc_refs = {500, 600};
  block.cc_vals = {1, 2, 3};
  EXPECT_EQ(block.getSize(), 120U);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 120, 6)
                                   .links({0, 0, 0, 0, 500, 600})
                                   .text(plainDataSection(3, 2, 3))
                                   .f64(1)
                                   .f64(2)
                                   .f64(3));
  block.removeReferenceAtIndex(0);
  EXPECT_EQ(block.getSize(), 112U);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 112, 5)
                                   .links({0, 0, 0, 0, 600})
                                   .text(plainDataSection(3, 1, 3))
                                   .f64(1)
                                   .f64(2)
                                   .f64(3));
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.header.link_count, 77U);
}

TEST(CCBLOCK, LinkCountInTheFileIgnoresTheSizeOfTheLinkSection) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_ALGEBRAIC);
  block.addReference(500);
  block.links = {1, 2};
  EXPECT_BYTES(written(block),
               Bytes().header("CC", 88, 5).links({1, 2, 500}).text(plainDataSection(3, 1, 0)));
  block.links = {1, 2, 3, 4, 5, 6};
  EXPECT_BYTES(
      written(block),
      Bytes().header("CC", 88, 5).links({1, 2, 3, 4, 5, 6, 500}).text(plainDataSection(3, 1, 0)));
}

TEST(CCBLOCK, WritingLeavesTheBlockAsItIs) {
  const CCBLOCK block = distinctBlock();
  const std::string before = dumped(block);
  written(block);
  EXPECT_EQ(dumped(block), before);
  EXPECT_EQ(linksOf(block), (Links{100, 200, 300, 400}));
  EXPECT_EQ(block.header.length, 80U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(block.cc_refs.size(), 3U);
  EXPECT_EQ(block.cc_vals.size(), 4U);
}

TEST(CCBLOCK, CountsOfLongListsAreCutToSixteenBitsButAllEntriesAreWritten) {
  constexpr std::size_t ref_count = 65536 + 2;
  constexpr std::size_t val_count = 65536 + 3;
  constexpr std::uint64_t length = 80 + 8 * (ref_count + val_count);
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_TEXT2VTAB);
  Bytes references;
  Bytes values;
  for (std::size_t i = 0; i < ref_count; ++i) {
    block.addReference(static_cast<LINK>(1000 + i));
    references.i64(static_cast<LINK>(1000 + i));
  }
  for (std::size_t i = 0; i < val_count; ++i) {
    block.addValue(static_cast<REAL>(i) / 4);
    values.f64(static_cast<REAL>(i) / 4);
  }
  EXPECT_EQ(block.getSize(), length);
  const std::string expected = Bytes()
                                   .header("CC", length, 4 + ref_count)
                                   .zeros(32)
                                   .text(references)
                                   .text(plainDataSection(9, 2, 3))
                                   .text(values);
  EXPECT_TRUE(written(block) == expected);

  const auto back = readBack<CCBLOCK>(expected);
  EXPECT_EQ(back.cc_refs, (Links{1000, 1001}));
  EXPECT_EQ(back.cc_vals, (Values{0, 0.25, 0.5}));
}

TEST(CCBLOCK, FullCountsAreNotCut) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_TEXT2VTAB);
  Bytes references;
  Bytes values;
  for (int i = 0; i < 65535; ++i) {
    block.addReference(i + 1);
    references.i64(i + 1);
    block.addValue(-i);
    values.f64(-i);
  }
  const std::string expected = Bytes()
                                   .header("CC", 80 + 2 * 8 * 65535, 4 + 65535)
                                   .zeros(32)
                                   .text(references)
                                   .text(plainDataSection(9, 65535, 65535))
                                   .text(values);
  EXPECT_TRUE(written(block) == expected);

  const auto back = readBack<CCBLOCK>(expected);
  EXPECT_TRUE(back.cc_refs == block.cc_refs);
  EXPECT_TRUE(back.cc_vals == block.cc_vals);
  EXPECT_EQ(back.links.size(), 4U);
}

// ---- Accessors

TEST(CCBLOCK, SettingTheTypeChangesNothingElse) {
  CCBLOCK block = distinctBlock();
  block.setConversionType(CCBLOCK::CC_CONVTYPE_EQUAL);
  EXPECT_EQ(block.getConversionType(), CCBLOCK::CC_CONVTYPE_EQUAL);
  std::string expected = distinctBytes();
  expected[80] = 0;
  EXPECT_BYTES(written(block), expected);
}

// ---- The two lists

// ---- Dump

TEST(CCBLOCK, DumpShowsTheFlagsAsNumbersInAnyFormOfBooleans) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.cc_flags = 7;
  EXPECT_EQ(shownValues(block, std::boolalpha), "80 0 0 0 0 0 1 255 1 1 0 0 0 0");
}

TEST(CCBLOCK, DumpOfANewBlock) {
  EXPECT_EQ(shownValues(CCBLOCK(CCBLOCK::CC_CONVTYPE_LINEAR)), "80 0 0 0 0 1 0 255 0 0 0 0 0 0");
}

TEST(CCBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== CCBLOCK ===================\n"
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
            "Value = -0.125\n"
            "[DEBUG] ==================== End of CCBLOCK ===================\n");
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
  EXPECT_EQ(block.getCommentblock(), 0);
  EXPECT_EQ(block.getInverseCcblock(), 0);
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

// ---- Reading

TEST(CCBLOCK, ReaderKeepsEveryBitOfAReal) {
  Bytes values;
  for (const std::uint64_t bits : odd_reals) {
    values.u64(bits);
  }
  for (const std::uint64_t range : odd_reals) {
    SCOPED_TRACE(range);
    const std::string bytes = Bytes()
                                  .header("CC", 80 + 9 * 8, 4)
                                  .zeros(32)
                                  .u8s({0, 0})
                                  .u16(0)
                                  .u16(0)
                                  .u16(9)
                                  .u64(range)
                                  .u64(~range)
                                  .text(values);
    const auto block = readBack<CCBLOCK>(bytes);
    EXPECT_EQ(bitsOf(block.getPhysicalValueRangeMin()), range);
    EXPECT_EQ(bitsOf(block.getPhysicalValueRangeMax()), ~range);
    EXPECT_EQ(bitsOf(block.cc_vals),
              (std::vector<std::uint64_t>(odd_reals.begin(), odd_reals.end())));
    EXPECT_BYTES(written(block), bytes);
  }
}

TEST(CCBLOCK, BlockThatWasReadCanBeChangedAndWrittenAgain) {
  auto block = readBack<CCBLOCK>(distinctBytes());
  block.setUnitblock(222);
  block.removeReferenceAtIndex(1);
  block.addValue(42);
  block.setPrecisionValidFlag(true);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 136, 6)
                                   .links({100, 222, 300, 400, 500, 700})
                                   .u8s({8, 3})
                                   .u16(0xA5C7)
                                   .u16(2)
                                   .u16(5)
                                   .f64(-1.5)
                                   .f64(2.25)
                                   .f64(0.5)
                                   .f64(10)
                                   .f64(1e100)
                                   .f64(-0.125)
                                   .f64(42));
}

}  // namespace
