#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <sstream>
#include <type_traits>
#include <utility>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::CCBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::REAL;
using mdf_v4_10::UINT16;
using mdf_v4_10::UINT8;

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

/// Everything behind the header is as in a block for writing that has no links yet.
void expectNothingTaken(const CCBLOCK& block) {
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.cc_type, 0);
  EXPECT_EQ(block.cc_precision, 255);
  EXPECT_EQ(block.cc_flags, 0);
  EXPECT_EQ(bitsOf(block.cc_phy_range_min), 0U);
  EXPECT_EQ(bitsOf(block.cc_phy_range_max), 0U);
  EXPECT_EQ(block.cc_refs, Links{});
  EXPECT_EQ(block.cc_vals, Values{});
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(block.getPadding(), 0);
}

/// Reads `bytes` and expects a bad stream and a block of which only the header was taken.
void expectUnreadable(const std::string& bytes, std::uint64_t length, std::uint64_t link_count) {
  std::istringstream is(bytes);
  const CCBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_bad);
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  expectNothingTaken(block);
}

template <class Block, class = void>
struct HasPublicLinkCount : std::false_type {};
template <class Block>
struct HasPublicLinkCount<Block, std::void_t<decltype(std::declval<const Block&>().getLinkCount())>>
    : std::true_type {};

TEST(CCBLOCK, Constants) {
  EXPECT_EQ(CCBLOCK::CCBLOCK_CONSTANT_SIZE, 80U);
  EXPECT_EQ(CCBLOCK::MDF_CC_ID, 17219);
}

TEST(CCBLOCK, EnumerationValues) {
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_EQUAL, 0);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_LINEAR, 1);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_RATIONAL, 2);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_ALGEBRAIC, 3);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_V2VTAB_INTERPOL, 4);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_V2VTAB_NOINTERPOL, 5);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_VRANGE2VTAB, 6);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_V2TEXT_SCALETAB, 7);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_VRANGE2TEXT_SCALETAB, 8);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_TEXT2VTAB, 9);
  EXPECT_EQ(CCBLOCK::CC_CONVTYPE_TEXT2TEXTTAB, 10);
  EXPECT_EQ(CCBLOCK::cc_tx_name, 0);
  EXPECT_EQ(CCBLOCK::cc_md_unit, 1);
  EXPECT_EQ(CCBLOCK::cc_md_comment, 2);
  EXPECT_EQ(CCBLOCK::cc_cc_inverse, 3);
  EXPECT_EQ(CCBLOCK::precision_valid, 1);
  EXPECT_EQ(CCBLOCK::phys_value_range_valid, 2);
  EXPECT_EQ(CCBLOCK::status_string, 4);
}

TEST(CCBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::ccblock_fields, 56),
            "56 1 cc_type\n"
            "57 1 cc_precision\n"
            "58 2 cc_flags\n"
            "60 2 cc_ref_count\n"
            "62 2 cc_val_count\n"
            "64 8 cc_phy_range_min\n"
            "72 8 cc_phy_range_max\n");
}

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

TEST(CCBLOCK, Accessors) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_LINEAR);
  EXPECT_EQ(block.getConversionType(), CCBLOCK::CC_CONVTYPE_LINEAR);
  EXPECT_EQ(block.getPrecision(), 255);
  EXPECT_EQ(block.getNameTxblock(), 0);
  block.setNameTxblock(11);
  block.setUnitblock(12);
  block.setCommentblock(13);
  block.setInverseCcblock(14);
  block.setPrecision(7);
  block.setPhysicalValueRangeMin(-3.5);
  block.setPhysicalValueRangeMax(4.5);
  EXPECT_EQ(linksOf(block), (Links{11, 12, 13, 14}));
  EXPECT_EQ(block.getNameTxblock(), 11);
  EXPECT_EQ(block.getUnitblock(), 12);
  EXPECT_EQ(block.getCommentblock(), 13);
  EXPECT_EQ(block.getInverseCcblock(), 14);
  EXPECT_EQ(block.cc_precision, 7);
  EXPECT_EQ(block.getPrecision(), 7);
  EXPECT_EQ(block.cc_phy_range_min, -3.5);
  EXPECT_EQ(block.cc_phy_range_max, 4.5);
  EXPECT_EQ(block.getPhysicalValueRangeMin(), -3.5);
  EXPECT_EQ(block.getPhysicalValueRangeMax(), 4.5);
  EXPECT_EQ(block.cc_flags, 0);
  EXPECT_EQ(block.getSize(), 80U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "cc_comment.xsd");
  EXPECT_EQ(block.getValidUnitXMLSchemaName(), "cc_unit.xsd");
}

TEST(CCBLOCK, SettingTheTypeChangesNothingElse) {
  CCBLOCK block = distinctBlock();
  block.setConversionType(CCBLOCK::CC_CONVTYPE_EQUAL);
  EXPECT_EQ(block.getConversionType(), CCBLOCK::CC_CONVTYPE_EQUAL);
  std::string expected = distinctBytes();
  expected[80] = 0;
  EXPECT_BYTES(written(block), expected);
}

TEST(CCBLOCK, FlagSettersTouchOnlyTheirOwnBit) {
  struct Flag {
    unsigned bit;
    void (CCBLOCK::*set)(bool);
    bool (CCBLOCK::*is)() const;
  };
  const std::array<Flag, 3> flags = {
      {{1, &CCBLOCK::setPrecisionValidFlag, &CCBLOCK::isPrecisionValid},
       {2, &CCBLOCK::setPhysicalValueRangeValidFlag, &CCBLOCK::isPhysicalValueRangeValid},
       {4, &CCBLOCK::setStatusStringFlag, &CCBLOCK::isStatusString}}};
  for (const Flag& flag : flags) {
    SCOPED_TRACE(flag.bit);
    CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
    for (const unsigned others : {0U, 0xFFFFU & ~flag.bit}) {
      for (const unsigned own : {0U, flag.bit}) {
        block.cc_flags = static_cast<UINT16>(others | own);
        EXPECT_EQ((block.*flag.is)(), own != 0);
        (block.*flag.set)(true);
        EXPECT_EQ(block.cc_flags, others | flag.bit);
        EXPECT_TRUE((block.*flag.is)());
        block.cc_flags = static_cast<UINT16>(others | own);
        (block.*flag.set)(false);
        EXPECT_EQ(block.cc_flags, others);
        EXPECT_FALSE((block.*flag.is)());
      }
    }
  }
}

TEST(CCBLOCK, FollowsItsFixedLinks) {
  const LinkTargetFile file;
  const CCBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNameTxblock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgUnitblock(ifs); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgCommentblock(ifs); }, 300);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgInverseCcblock(ifs); }, 400);
}

TEST(CCBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_ALGEBRAIC);
  block.addReference(0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNameTxblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgUnitblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgCommentblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgInverseCcblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgReferenceAt(ifs, 0); }, 0);
}

// ---- The two lists

TEST(CCBLOCK, FollowsAReferenceByIndex) {
  const LinkTargetFile file;
  const CCBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgReferenceAt(ifs, 0); }, 500);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgReferenceAt(ifs, 2); }, 700);
}

TEST(CCBLOCK, FollowingAReferenceOutOfRangeStaysWhereItIs) {
  const LinkTargetFile file;
  const CCBLOCK block = distinctBlock();
  for (const UINT16 index : {UINT16{3}, UINT16{4}, UINT16{65535}}) {
    SCOPED_TRACE(index);
    file.expectStays([&](std::ifstream& ifs) { return block.seekgReferenceAt(ifs, index); });
  }
  const CCBLOCK empty(CCBLOCK::CC_CONVTYPE_EQUAL);
  file.expectStays([&](std::ifstream& ifs) { return empty.seekgReferenceAt(ifs, 0); });
}

TEST(CCBLOCK, GetsAReferenceByIndex) {
  const CCBLOCK block = distinctBlock();
  LINK link = -7;
  EXPECT_TRUE(block.getReferenceAtIndex(0, link));
  EXPECT_EQ(link, 500);
  EXPECT_TRUE(block.getReferenceAtIndex(2, link));
  EXPECT_EQ(link, 700);
}

TEST(CCBLOCK, GettingAReferenceOutOfRangeLeavesTheOutputUntouched) {
  const CCBLOCK block = distinctBlock();
  LINK link = -7;
  for (const UINT16 index : {UINT16{3}, UINT16{4}, UINT16{65535}}) {
    SCOPED_TRACE(index);
    EXPECT_FALSE(block.getReferenceAtIndex(index, link));
    EXPECT_EQ(link, -7);
  }
  EXPECT_FALSE(CCBLOCK(CCBLOCK::CC_CONVTYPE_EQUAL).getReferenceAtIndex(0, link));
  EXPECT_EQ(link, -7);
}

TEST(CCBLOCK, GetsAValueByIndex) {
  CCBLOCK block = distinctBlock();
  block.addValue(realOf(odd_reals[6]));
  REAL value = -7;
  EXPECT_TRUE(block.getValueAtIndex(0, value));
  EXPECT_EQ(value, 0.5);
  EXPECT_TRUE(block.getValueAtIndex(3, value));
  EXPECT_EQ(value, -0.125);
  EXPECT_TRUE(block.getValueAtIndex(4, value));
  EXPECT_EQ(bitsOf(value), odd_reals[6]);
}

TEST(CCBLOCK, GettingAValueOutOfRangeLeavesTheOutputUntouched) {
  const CCBLOCK block = distinctBlock();
  REAL value = -7;
  for (const UINT16 index : {UINT16{4}, UINT16{5}, UINT16{65535}}) {
    SCOPED_TRACE(index);
    EXPECT_FALSE(block.getValueAtIndex(index, value));
    EXPECT_EQ(value, -7);
  }
  EXPECT_FALSE(CCBLOCK(CCBLOCK::CC_CONVTYPE_EQUAL).getValueAtIndex(0, value));
  EXPECT_EQ(value, -7);
}

/// The block is distinctBlock() but for its two lists.
void expectOnlyTheListsChanged(CCBLOCK block, const Links& references, const Values& values) {
  EXPECT_EQ(block.cc_refs, references);
  EXPECT_EQ(block.cc_vals, values);
  EXPECT_EQ(block.header.length, 80U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(block.getSize(), 80 + 8 * references.size() + 8 * values.size());
  block.cc_refs = {500, 600, 700};
  block.cc_vals = {0.5, 10, 1e100, -0.125};
  EXPECT_BYTES(written(block), distinctBytes());
}

TEST(CCBLOCK, AddedEntriesStandAtTheEndOfTheirList) {
  CCBLOCK block = distinctBlock();
  block.addReference(800);
  expectOnlyTheListsChanged(block, {500, 600, 700, 800}, {0.5, 10, 1e100, -0.125});
  block.addReference(0);
  block.addReference(800);
  expectOnlyTheListsChanged(block, {500, 600, 700, 800, 0, 800}, {0.5, 10, 1e100, -0.125});
  block.addValue(42);
  block.addValue(42);
  expectOnlyTheListsChanged(block, {500, 600, 700, 800, 0, 800}, {0.5, 10, 1e100, -0.125, 42, 42});
}

TEST(CCBLOCK, RemovesAReferenceByIndex) {
  CCBLOCK block = distinctBlock();
  block.removeReferenceAtIndex(0);
  expectOnlyTheListsChanged(block, {600, 700}, {0.5, 10, 1e100, -0.125});
  block.removeReferenceAtIndex(1);
  expectOnlyTheListsChanged(block, {600}, {0.5, 10, 1e100, -0.125});
  block.removeReferenceAtIndex(0);
  expectOnlyTheListsChanged(block, {}, {0.5, 10, 1e100, -0.125});
  block.removeReferenceAtIndex(0);
  expectOnlyTheListsChanged(block, {}, {0.5, 10, 1e100, -0.125});
}

TEST(CCBLOCK, RemovesAValueByIndex) {
  CCBLOCK block = distinctBlock();
  block.removeValueAtIndex(0);
  expectOnlyTheListsChanged(block, {500, 600, 700}, {10, 1e100, -0.125});
  block.removeValueAtIndex(2);
  expectOnlyTheListsChanged(block, {500, 600, 700}, {10, 1e100});
  block.removeValueAtIndex(0);
  block.removeValueAtIndex(0);
  expectOnlyTheListsChanged(block, {500, 600, 700}, {});
  block.removeValueAtIndex(0);
  expectOnlyTheListsChanged(block, {500, 600, 700}, {});
}

TEST(CCBLOCK, RemovingOutOfRangeDoesNothing) {
  CCBLOCK block = distinctBlock();
  for (const UINT16 index : {UINT16{3}, UINT16{4}, UINT16{65535}}) {
    SCOPED_TRACE(index);
    block.removeReferenceAtIndex(index);
    expectOnlyTheListsChanged(block, {500, 600, 700}, {0.5, 10, 1e100, -0.125});
  }
  for (const UINT16 index : {UINT16{4}, UINT16{5}, UINT16{65535}}) {
    SCOPED_TRACE(index);
    block.removeValueAtIndex(index);
    expectOnlyTheListsChanged(block, {500, 600, 700}, {0.5, 10, 1e100, -0.125});
  }
}

TEST(CCBLOCK, IndexesReachTheFirst65536Entries) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_TEXT2VTAB);
  block.cc_refs.assign(65537, 1);
  block.cc_vals.assign(65537, 1);
  block.cc_refs[65535] = 2048;
  block.cc_refs[65536] = 3072;
  block.cc_vals[65535] = 2048.5;
  block.cc_vals[65536] = 3072.5;
  LINK link = 0;
  REAL value = 0;
  EXPECT_TRUE(block.getReferenceAtIndex(65535, link));
  EXPECT_EQ(link, 2048);
  EXPECT_TRUE(block.getValueAtIndex(65535, value));
  EXPECT_EQ(value, 2048.5);
  const LinkTargetFile file;
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgReferenceAt(ifs, 65535); }, 2048);
  block.removeReferenceAtIndex(65535);
  block.removeValueAtIndex(65535);
  EXPECT_EQ(block.cc_refs.size(), 65536U);
  EXPECT_EQ(block.cc_refs.back(), 3072);
  EXPECT_EQ(block.cc_vals.size(), 65536U);
  EXPECT_EQ(block.cc_vals.back(), 3072.5);
}

// ---- Dump

TEST(CCBLOCK, DumpShowsTheFlagsAsNumbersInAnyFormOfBooleans) {
  CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
  block.setStatusStringFlag(true);
  std::ostringstream os;
  os << std::boolalpha;
  block.print(os);
  EXPECT_EQ(os.str(), dumped(block));
  EXPECT_NE(os.str().find("\nstatus string = 1\n"), std::string::npos);
}

TEST(CCBLOCK, DumpOfANewBlock) {
  EXPECT_EQ(dumped(CCBLOCK(CCBLOCK::CC_CONVTYPE_LINEAR)),
            "[DEBUG] ==================== CCBLOCK ===================\n"
            "block size = 80\n"
            "name tx block = 0\n"
            "unit tx block = 0\n"
            "comment block = 0\n"
            "inverse cc block = 0\n"
            "conversion type = 1\n"
            "precision valid = 0\n"
            "precision = 255\n"
            "status string = 0\n"
            "physical value range valid = 0\n"
            "minimum physical signal value = 0\n"
            "maximum physical signal value = 0\n"
            "ref count = 0\n"
            "val count = 0\n"
            "[DEBUG] ==================== End of CCBLOCK ===================\n");
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
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== CCBLOCK ===================\n"
            "block size = 104\n"
            "name tx block = -1\n"
            "unit tx block = -2\n"
            "comment block = 0\n"
            "inverse cc block = 0\n"
            "conversion type = 255\n"
            "precision valid = 0\n"
            "precision = 255\n"
            "status string = 0\n"
            "physical value range valid = 0\n"
            "minimum physical signal value = -inf\n"
            "maximum physical signal value = 1.23457e+06\n"
            "ref count = 1\n"
            "Ref = -9223372036854775808\n"
            "val count = 2\n"
            "Value = 0.333333\n"
            "Value = inf\n"
            "[DEBUG] ==================== End of CCBLOCK ===================\n");
  EXPECT_EQ(block.getCommentblock(), 0);
  EXPECT_EQ(block.getInverseCcblock(), 0);
}

TEST(CCBLOCK, DumpShowsTheFlagsOutOfTheOrderOfTheirBits) {
  struct Flag {
    UINT16 bit;
    const char* lines;
  };
  const std::array<Flag, 3> flags = {{{1,
                                       "precision valid = 1\n"
                                       "precision = 255\n"
                                       "status string = 0\n"
                                       "physical value range valid = 0\n"},
                                      {2,
                                       "precision valid = 0\n"
                                       "precision = 255\n"
                                       "status string = 0\n"
                                       "physical value range valid = 1\n"},
                                      {4,
                                       "precision valid = 0\n"
                                       "precision = 255\n"
                                       "status string = 1\n"
                                       "physical value range valid = 0\n"}}};
  for (const Flag& flag : flags) {
    SCOPED_TRACE(flag.bit);
    CCBLOCK block(CCBLOCK::CC_CONVTYPE_EQUAL);
    block.cc_flags = flag.bit;
    EXPECT_EQ(dumped(block), std::string("[DEBUG] ==================== CCBLOCK "
                                         "===================\n"
                                         "block size = 80\n"
                                         "name tx block = 0\n"
                                         "unit tx block = 0\n"
                                         "comment block = 0\n"
                                         "inverse cc block = 0\n"
                                         "conversion type = 0\n") +
                                 flag.lines +
                                 "minimum physical signal value = 0\n"
                                 "maximum physical signal value = 0\n"
                                 "ref count = 0\n"
                                 "val count = 0\n"
                                 "[DEBUG] ==================== End of CCBLOCK "
                                 "===================\n");
  }
}

// ---- Reading

TEST(CCBLOCK, ReaderGivesBackWhatWasWritten) {
  const auto block = readBack<CCBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 136U);
  EXPECT_EQ(block.header.link_count, 7U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(linksOf(block), (Links{100, 200, 300, 400}));
  EXPECT_EQ(block.cc_type, 8);
  EXPECT_EQ(block.cc_precision, 3);
  EXPECT_EQ(block.cc_flags, 0xA5C6);
  EXPECT_EQ(block.cc_phy_range_min, -1.5);
  EXPECT_EQ(block.cc_phy_range_max, 2.25);
  EXPECT_EQ(block.cc_refs, (Links{500, 600, 700}));
  EXPECT_EQ(block.cc_vals, (Values{0.5, 10, 1e100, -0.125}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(CCBLOCK, WritingABlockThatWasReadWritesItAgain) {
  EXPECT_BYTES(written(readBack<CCBLOCK>(distinctBytes())),
               Bytes()
                   .header("CC", 136, 7)
                   .links({100, 200, 300, 400, 500, 600, 700})
                   .text(distinctDataSection()));
}

TEST(CCBLOCK, DumpOfABlockThatWasReadShowsIt) {
  EXPECT_EQ(dumped(readBack<CCBLOCK>(distinctBytes())), dumped(distinctBlock()));
}

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

TEST(CCBLOCK, ReaderTakesTheRangeWhateverTheFlagsSay) {
  for (const UINT16 flags : {UINT16{0}, UINT16{2}, UINT16{0xFFFF}}) {
    SCOPED_TRACE(flags);
    const auto block = readBack<CCBLOCK>(
        Bytes().header("CC", 80, 4).zeros(32).u8s({1, 2}).u16(flags).zeros(4).f64(-8).f64(9));
    EXPECT_EQ(block.cc_flags, flags);
    EXPECT_EQ(block.cc_phy_range_min, -8);
    EXPECT_EQ(block.cc_phy_range_max, 9);
  }
}

TEST(CCBLOCK, LinksBeyondTheReferenceCountAreDropped) {
  const auto block = readBack<CCBLOCK>(
      Bytes().header("CC", 104, 7).links({1, 2, 3, 4, 5, 6, 7}).text(plainDataSection(7, 2, 0)));
  EXPECT_EQ(block.header.length, 104U);
  EXPECT_EQ(block.header.link_count, 7U);
  EXPECT_EQ(linksOf(block), (Links{1, 2, 3, 4}));
  EXPECT_EQ(block.cc_refs, (Links{5, 6}));
  EXPECT_EQ(block.getSize(), 96U);
  EXPECT_BYTES(
      written(block),
      Bytes().header("CC", 96, 6).links({1, 2, 3, 4, 5, 6}).text(plainDataSection(7, 2, 0)));
}

TEST(CCBLOCK, ReferencesAreTheLinksFromIndexFourOnUpToTheReferenceCount) {
  const Links file_links = {11, 12, 13, 14, 15, 0, 17};
  for (std::size_t link_count = 0; link_count <= file_links.size(); ++link_count) {
    for (const std::size_t ref_count : {0U, 1U, 2U, 3U, 4U, 65535U}) {
      SCOPED_TRACE(std::to_string(link_count) + " links, " + std::to_string(ref_count) +
                   " counted");
      Bytes bytes;
      bytes.header("CC", 48 + 8 * link_count, link_count);
      for (std::size_t i = 0; i < link_count; ++i) {
        bytes.i64(file_links[i]);
      }
      bytes.text(plainDataSection(10, static_cast<UINT16>(ref_count), 0));

      Links fixed(file_links.begin(), file_links.begin() + static_cast<int>(link_count));
      fixed.resize(4);
      Links references;
      for (std::size_t i = 4; i < link_count && references.size() < ref_count; ++i) {
        references.push_back(file_links[i]);
      }
      const auto block = readBack<CCBLOCK>(bytes);
      EXPECT_EQ(linksOf(block), fixed);
      EXPECT_EQ(block.cc_refs, references);
      EXPECT_EQ(block.cc_type, 10);
      EXPECT_EQ(block.header.length, 48 + 8 * link_count);
      EXPECT_EQ(block.header.link_count, link_count);
    }
  }
}

TEST(CCBLOCK, MissingFixedLinksAreNil) {
  const auto block = readBack<CCBLOCK>(
      Bytes().header("CC", 72, 2).links({1, 2}).text(plainDataSection(1, 3, 1)).f64(42));
  EXPECT_EQ(linksOf(block), (Links{1, 2, 0, 0}));
  EXPECT_EQ(block.cc_refs, Links{});
  EXPECT_EQ(block.cc_vals, (Values{42}));
  EXPECT_EQ(block.header.length, 72U);
  EXPECT_EQ(block.header.link_count, 2U);
  EXPECT_BYTES(
      written(block),
      Bytes().header("CC", 88, 4).links({1, 2, 0, 0}).text(plainDataSection(1, 0, 1)).f64(42));
}

TEST(CCBLOCK, ValuesBeyondTheBodyAreMissing) {
  for (const unsigned extra : {0U, 1U, 7U}) {
    SCOPED_TRACE(extra);
    const auto block = readBack<CCBLOCK>(Bytes()
                                             .header("CC", 96 + extra, 4)
                                             .links({1, 2, 3, 4})
                                             .text(plainDataSection(2, 0, 6))
                                             .f64(1.5)
                                             .f64(2.5)
                                             .zeros(extra));
    EXPECT_EQ(block.cc_vals, (Values{1.5, 2.5}));
    EXPECT_EQ(block.header.length, 96U + extra);
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CC", 96, 4)
                                     .links({1, 2, 3, 4})
                                     .text(plainDataSection(2, 0, 2))
                                     .f64(1.5)
                                     .f64(2.5));
  }
}

TEST(CCBLOCK, ValuesAreBoundedByTheBodyNotByTheStream) {
  std::istringstream is(Bytes()
                            .header("CC", 88, 4)
                            .links({1, 2, 3, 4})
                            .text(plainDataSection(2, 0, 65535))
                            .f64(1.5)
                            .f64(2.5)
                            .str());
  const CCBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 88);
  EXPECT_EQ(block.cc_vals, (Values{1.5}));
}

TEST(CCBLOCK, BytesBehindTheCountedValuesAreIgnored) {
  const auto block = readBack<CCBLOCK>(Bytes()
                                           .header("CC", 96, 4)
                                           .links({1, 2, 3, 4})
                                           .text(plainDataSection(2, 0, 1))
                                           .f64(1.5)
                                           .f64(2.5));
  EXPECT_EQ(block.cc_vals, (Values{1.5}));
  EXPECT_EQ(block.getSize(), 88U);
}

TEST(CCBLOCK, ReaderStartsAtTheStreamsPositionAndStopsBehindTheBlock) {
  std::istringstream is("abc" + distinctBytes() + "xyz");
  is.seekg(3);
  const CCBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 3 + 136);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CC", 136, 7)
                                   .links({100, 200, 300, 400, 500, 600, 700})
                                   .text(distinctDataSection()));
}

TEST(CCBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<CCBLOCK>(bytes)), Bytes()
                                                      .header("CC", 136, 7)
                                                      .links({100, 200, 300, 400, 500, 600, 700})
                                                      .text(distinctDataSection()));
}

TEST(CCBLOCK, CutStreamKeepsItsEndOfFileAndFailBits) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t length) {
    const CCBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_EQ(block.header.length, length < 24 ? 0U : 136U);
    EXPECT_EQ(block.header.link_count, length < 24 ? 0U : 7U);
    expectNothingTaken(block);
  });
}

TEST(CCBLOCK, CutStreamOfALongBlockKeepsItsEndOfFileAndFailBits) {
  const std::string bytes =
      Bytes().header("CC", 240080, 4).zeros(32).text(plainDataSection(2, 0, 30000)).zeros(240000);
  for (const std::size_t length : {24U, 25U, 79U, 80U, 65559U, 65560U, 65561U, 240079U}) {
    SCOPED_TRACE(length);
    std::istringstream is(bytes.substr(0, length));
    const CCBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_EQ(block.header.length, 240080U);
    EXPECT_EQ(block.header.link_count, 4U);
    expectNothingTaken(block);
  }
  EXPECT_TRUE(readBack<CCBLOCK>(bytes).cc_vals == Values(30000, 0));
}

TEST(CCBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::eofbit, std::ios_base::badbit}) {
    SCOPED_TRACE(state);
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const CCBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    EXPECT_EQ(block.header.length, 0U);
    EXPECT_EQ(block.header.link_count, 0U);
    expectNothingTaken(block);
  }
}

TEST(CCBLOCK, BlockOfAFailedReadWritesNoLinks) {
  std::istringstream is;
  const CCBLOCK block(is);
  EXPECT_BYTES(written(block), Bytes().header("CC", 80, 4).text(plainDataSection(0, 0, 0)));
}

TEST(CCBLOCK, LengthBelowTheHeaderMakesTheStreamBad) {
  constexpr std::uint64_t upper_half = std::uint64_t{1} << 32U;
  for (const std::uint64_t low : {0U, 1U, 23U}) {
    for (const std::uint64_t length : {low, low + upper_half, low + (std::uint64_t{1} << 63U)}) {
      SCOPED_TRACE(length);
      expectUnreadable(Bytes().header("CC", length, 4).zeros(200), length, 4);
    }
  }
}

TEST(CCBLOCK, BodyTooShortForTheFixedPartMakesTheStreamBad) {
  for (std::uint64_t length = 24; length < 80; ++length) {
    SCOPED_TRACE(length);
    expectUnreadable(Bytes().header("CC", length, 4).zeros(200), length, 4);
  }
}

TEST(CCBLOCK, LengthOfFortyEightWithoutLinksIsTheShortestBlock) {
  const auto block = readBack<CCBLOCK>(Bytes().header("CC", 48, 0).text(plainDataSection(5, 0, 0)));
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0}));
  EXPECT_EQ(block.cc_type, 5);
  expectUnreadable(Bytes().header("CC", 47, 0).text(plainDataSection(5, 0, 0)), 47, 0);
}

TEST(CCBLOCK, OnlyTheLowHalfOfTheLengthSaysHowManyBytesAreRead) {
  constexpr std::uint64_t length = 0xABCDEF0100000000 + 80;
  std::istringstream is(Bytes()
                            .header("CC", length, 4)
                            .links({1, 2, 3, 4})
                            .text(plainDataSection(6, 0, 1))
                            .f64(1.5)
                            .str());
  const CCBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 80);
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(linksOf(block), (Links{1, 2, 3, 4}));
  EXPECT_EQ(block.cc_type, 6);
  EXPECT_EQ(block.cc_vals, Values{});
}

TEST(CCBLOCK, LengthBeyondTheStreamLeavesTheHeaderAlone) {
  for (const std::uint64_t length :
       {std::uint64_t{81}, std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000},
        std::uint64_t{0xFFFFFFFF}, std::uint64_t{INT64_MAX}, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::istringstream is(
        Bytes().header("CC", length, 4).links({1, 2, 3, 4}).text(plainDataSection(6, 0, 0)).str());
    const CCBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_EQ(block.header.length, length);
    EXPECT_EQ(block.header.link_count, 4U);
    expectNothingTaken(block);
  }
}

TEST(CCBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{5}, std::uint64_t{7}, std::uint64_t{1} << 32U, std::uint64_t{1} << 61U,
        std::uint64_t{INT64_MAX}, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    expectUnreadable(
        Bytes().header("CC", 80, link_count).links({1, 2, 3, 4}).text(plainDataSection(6, 0, 0)),
        80, link_count);
  }
}

TEST(CCBLOCK, LinkCountIsComparedAsASixtyFourBitNumber) {
  constexpr std::uint64_t link_count = (std::uint64_t{1} << 32U) + 4;
  expectUnreadable(
      Bytes().header("CC", 80, link_count).links({1, 2, 3, 4}).text(plainDataSection(6, 0, 0)), 80,
      link_count);
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
