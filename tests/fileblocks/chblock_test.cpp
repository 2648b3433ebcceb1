#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::CHBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT32;
using mdf_v4_10::UINT8;

namespace {

using Type = CHBLOCK::MDF_CH_TYPE_t;
using Element = CHBLOCK::CHBLOCK_CHANNEL_t;

constexpr int type_count = 9;
Type typeOf(int value) { return static_cast<Type>(value); }

/// The links of all elements, one element after another.
std::vector<LINK> elementLinksOf(const CHBLOCK& block) {
  std::vector<LINK> links;
  for (const Element& element : block.channels) {
    links.insert(links.end(),
                 {element.ch_element_dg, element.ch_element_cg, element.ch_element_cn});
  }
  return links;
}

/// A block with three elements: 1 2 3, 4 5 6 and 7 8 9.
CHBLOCK threeElements() {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.addChannelElement(1, 2, 3);
  block.addChannelElement(4, 5, 6);
  block.addChannelElement(7, 8, 9);
  return block;
}

CHBLOCK distinctBlock() {
  CHBLOCK block(CHBLOCK::CH_TYPE_STRUCTURE);
  block.setNextCHBlock(100, CHBLOCK::CH_TYPE_MAP_LIST);
  block.setFirstCHBlock(200);
  block.setTXNameBlock(300);
  block.setMDBlock(400);
  block.addChannelElement(501, 502, 503);
  block.addChannelElement(601, 602, 603);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.ch_reserved, {11, 12, 13});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##CH")
      .u8s({1, 2, 3, 4})
      .u64(112)
      .u64(6)
      .links({100, 200, 300, 400})
      .links({501, 502, 503, 601, 602, 603})
      .u32(2)
      .u8(2)
      .u8s({11, 12, 13});
}

/// A file's block with the links 1, 2, 3 and so on, as many as the link count says.
std::string bytesWithLinks(unsigned link_count) {
  Bytes bytes;
  bytes.header("CH", 32 + 8 * link_count, link_count);
  for (unsigned i = 1; i <= link_count; ++i) {
    bytes.i64(i);
  }
  return bytes.u32(77).u8(1).u8s({21, 22, 23});
}

TEST(CHBLOCK, ReservedBytesNeedNotBeThere) {
  for (const std::size_t length : {61U, 62U, 63U}) {
    SCOPED_TRACE(length);
    const std::string bytes =
        Bytes().header("CH", length, 4).links({1, 2, 3, 4}).u32(0).u8(5).zeros(3);
    const auto block = readBack<CHBLOCK>(bytes.substr(0, length));
    EXPECT_EQ(block.header.length, length);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 4}));
    EXPECT_EQ(block.ch_type, 5);
    EXPECT_EQ(asArray(block.ch_reserved), (std::array<UINT8, 3>{}));
  }
}

TEST(CHBLOCK, NewBlockOfAnyTypeWrites64Bytes) {
  for (int type = 0; type < type_count; ++type) {
    SCOPED_TRACE(type);
    EXPECT_BYTES(
        written(CHBLOCK(typeOf(type))),
        Bytes().header("CH", 64, 4).zeros(32).u32(0).u8(static_cast<UINT8>(type)).zeros(3));
  }
}

TEST(CHBLOCK, NewBlockHasFourNilLinksAndNoElements) {
  const CHBLOCK block(CHBLOCK::CH_TYPE_LOC_MEASUREMENT);
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0}));
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.getElementCount(), 0U);
  EXPECT_EQ(block.getType(), CHBLOCK::CH_TYPE_LOC_MEASUREMENT);
}

TEST(CHBLOCK, ConstructorTakesTheLowEightBitsOfTheType) {
  EXPECT_EQ(CHBLOCK(typeOf(0x1FF)).ch_type, 255);
  EXPECT_EQ(CHBLOCK(typeOf(0x102)).ch_type, 2);
  EXPECT_EQ(CHBLOCK(typeOf(-1)).ch_type, 255);
}

TEST(CHBLOCK, NewElementIsNil) {
  const Element element;
  EXPECT_EQ(element.ch_element_dg, 0);
  EXPECT_EQ(element.ch_element_cg, 0);
  EXPECT_EQ(element.ch_element_cn, 0);
}

TEST(CHBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(CHBLOCK, WritesExtremeValues) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.setNextCHBlock(INT64_MAX, CHBLOCK::CH_TYPE_GROUP);
  block.setFirstCHBlock(INT64_MIN);
  block.setTXNameBlock(-1);
  block.setMDBlock(INT64_MAX);
  block.addChannelElement(INT64_MIN, INT64_MAX, -1);
  block.ch_type = 255;
  fillBytes(block.ch_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CH", 88, 5)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX})
                                   .links({INT64_MIN, INT64_MAX, -1})
                                   .u32(1)
                                   .u8s({255, 255, 255, 255}));
}

TEST(CHBLOCK, LinkCountWrittenIsTheElementCountAndFour) {
  CHBLOCK block(CHBLOCK::CH_TYPE_FUNCTION);
  Bytes element_links;
  for (unsigned n = 0; n <= 100; ++n) {
    SCOPED_TRACE(n);
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CH", 64 + 24 * n, n + 4)
                                     .zeros(32)
                                     .text(element_links)
                                     .u32(n)
                                     .u8(1)
                                     .zeros(3));
    EXPECT_EQ(block.getSize(), 64U + 24 * n);
    EXPECT_EQ(block.getElementCount(), n);
    const LINK link = 3 * n;
    block.addChannelElement(link + 1, link + 2, link + 3);
    element_links.links({link + 1, link + 2, link + 3});
  }
}

TEST(CHBLOCK, WriterDoesNotUseTheStoredLengthAndLinkCount) {
  CHBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 8888;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.header.link_count, 8888U);
  EXPECT_EQ(block.getSize(), 112U);
}

TEST(CHBLOCK, ElementOperationsDoNotUpdateTheHeader) {
  CHBLOCK block = threeElements();
  block.removeChannelAtIndex(0);
  EXPECT_EQ(block.header.length, 64U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0}));
}

// One column for each type of the next block: 0 to 8, then values that are no type.
TEST(CHBLOCK, NextSiblingIsAcceptedByItsType) {
  const int next_types[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255, 256, 257, 258, 259, -1, INT32_MAX};
  struct {
    int type;
    const char* accepts;
  } const rules[] = {
      {0, "yyyyyyyyyyyyyyyyy"},    // a group: any
      {1, "-yyyyyyyyyyyyyyyy"},    // a function: any but a group
      {2, "--yy-------------"},    // a structure: a structure or a map list
      {3, "-----------------"},    // a map list: none
      {4, "--yy-------------"},    // measurements and characteristics: like a structure
      {5, "--yy-------------"},    //
      {6, "--yy-------------"},    //
      {7, "--yy-------------"},    //
      {8, "--yy-------------"},    //
      {9, "-----------------"},    // no type: none
      {127, "-----------------"},  //
      {128, "-----------------"},  //
      {255, "-----------------"},  //
  };
  for (const auto& rule : rules) {
    std::string accepts;
    for (const int next_type : next_types) {
      CHBLOCK block(typeOf(rule.type));
      block.links[CHBLOCK::ch_ch_next] = 5;
      block.setNextCHBlock(100, typeOf(next_type));
      EXPECT_EQ(linksOf(block), (std::vector<LINK>{block.getNextCHBlock(), 0, 0, 0}));
      accepts += block.getNextCHBlock() == 100 ? 'y' : block.getNextCHBlock() == 0 ? '-' : '?';
    }
    EXPECT_EQ(accepts, rule.accepts) << "this block's type is " << rule.type;
  }
}

TEST(CHBLOCK, OnlyAMapListRefusesAFirstChild) {
  for (const int type : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255}) {
    SCOPED_TRACE(type);
    CHBLOCK block(typeOf(type));
    block.links[CHBLOCK::ch_ch_first] = 5;
    block.setFirstCHBlock(100);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, type == 3 ? 0 : 100, 0, 0}));
  }
}

TEST(CHBLOCK, OnlyTypesBelowFourHaveAName) {
  for (const int type : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255}) {
    SCOPED_TRACE(type);
    CHBLOCK block(typeOf(type));
    block.links[CHBLOCK::ch_tx_name] = 5;
    block.setTXNameBlock(100);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, type < 4 ? 100 : 0, 0}));
  }
}

TEST(CHBLOCK, EveryTypeHasAComment) {
  for (const int type : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255}) {
    SCOPED_TRACE(type);
    CHBLOCK block(typeOf(type));
    block.setMDBlock(100);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 100}));
  }
}

TEST(CHBLOCK, SetTypeRemovesWhatTheTypeForbids) {
  struct {
    int type;
    std::vector<LINK> links;
    UINT32 element_count;
  } const effects[] = {
      {0, {100, 200, 300, 400}, 2}, {1, {100, 200, 300, 400}, 0},   {2, {100, 200, 300, 400}, 2},
      {3, {100, 0, 300, 400}, 2},   {4, {100, 200, 0, 400}, 2},     {5, {100, 200, 0, 400}, 2},
      {6, {100, 200, 0, 400}, 2},   {7, {100, 200, 0, 400}, 2},     {8, {100, 200, 0, 400}, 2},
      {9, {100, 200, 300, 400}, 2}, {255, {100, 200, 300, 400}, 2},
  };
  for (const auto& effect : effects) {
    SCOPED_TRACE(effect.type);
    CHBLOCK block = distinctBlock();
    block.setType(typeOf(effect.type));
    EXPECT_EQ(block.ch_type, effect.type);
    EXPECT_EQ(block.getType(), effect.type);
    EXPECT_EQ(linksOf(block), effect.links);
    EXPECT_EQ(block.getElementCount(), effect.element_count);
  }
}

TEST(CHBLOCK, SetTypeWithAValueAbove255StoresItsLowEightBitsAndRemovesNothing) {
  for (const int low_bits : {1, 3, 4, 8}) {
    for (const int type : {0x100 + low_bits, -0x100 + low_bits}) {
      SCOPED_TRACE(type);
      CHBLOCK block = distinctBlock();
      block.setType(typeOf(type));
      EXPECT_EQ(block.ch_type, low_bits);
      EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200, 300, 400}));
      EXPECT_EQ(block.getElementCount(), 2U);
    }
  }
}

TEST(CHBLOCK, SetTypeDoesNotCheckTheNextSiblingAgain) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.setNextCHBlock(100, CHBLOCK::CH_TYPE_GROUP);
  for (int type = 0; type < type_count; ++type) {
    block.setType(typeOf(type));
    EXPECT_EQ(block.getNextCHBlock(), 100) << type;
  }
}

TEST(CHBLOCK, FunctionAcceptsElementsAfterItsListWasEmptied) {
  CHBLOCK block = threeElements();
  block.setType(CHBLOCK::CH_TYPE_FUNCTION);
  EXPECT_EQ(elementLinksOf(block), std::vector<LINK>{});
  block.addChannelElement(1, 2, 3);
  EXPECT_EQ(elementLinksOf(block), (std::vector<LINK>{1, 2, 3}));
}

TEST(CHBLOCK, AnyTypeAcceptsElements) {
  for (const int type : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255}) {
    CHBLOCK block(typeOf(type));
    block.addChannelElement(1, 2, 3);
    EXPECT_EQ(elementLinksOf(block), (std::vector<LINK>{1, 2, 3})) << type;
  }
}

TEST(CHBLOCK, AddsElementsAtTheEnd) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.addChannelElement(1, 2, 3);
  Element element;
  element.ch_element_dg = 4;
  element.ch_element_cg = 5;
  element.ch_element_cn = 6;
  block.addChannelElement(element);
  EXPECT_EQ(elementLinksOf(block), (std::vector<LINK>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(block.getElementCount(), 2U);
  EXPECT_EQ(block.getSize(), 112U);
}

TEST(CHBLOCK, AddsAnElementOfItsOwn) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.addChannelElement(1, 2, 3);
  for (int i = 0; i < 9; ++i) {
    block.addChannelElement(block.channels.front());
  }
  ASSERT_EQ(block.getElementCount(), 10U);
  EXPECT_EQ(block.channels.back().ch_element_cn, 3);
}

TEST(CHBLOCK, GivesTheElementAtAnIndex) {
  const CHBLOCK block = threeElements();
  for (UINT32 i = 0; i < 3; ++i) {
    SCOPED_TRACE(i);
    const LINK first = 3 * i + 1;
    LINK dg = -1, cg = -1, cn = -1;
    EXPECT_TRUE(block.getChannelElementAtIndex(i, dg, cg, cn));
    EXPECT_EQ(dg, first);
    EXPECT_EQ(cg, first + 1);
    EXPECT_EQ(cn, first + 2);
    Element element;
    EXPECT_TRUE(block.getChannelElementAtIndex(i, element));
    EXPECT_EQ(element.ch_element_dg, first);
    EXPECT_EQ(element.ch_element_cg, first + 1);
    EXPECT_EQ(element.ch_element_cn, first + 2);
  }
}

TEST(CHBLOCK, IndexOutOfRangeLeavesTheOutputsUntouched) {
  const CHBLOCK empty(CHBLOCK::CH_TYPE_GROUP);
  const CHBLOCK three = threeElements();
  struct {
    const CHBLOCK& block;
    UINT32 index;
  } const cases[] = {{empty, 0}, {empty, 1}, {empty, UINT32_MAX},
                     {three, 3}, {three, 4}, {three, UINT32_MAX}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    LINK dg = 91, cg = 92, cn = 93;
    EXPECT_FALSE(c.block.getChannelElementAtIndex(c.index, dg, cg, cn));
    EXPECT_EQ(dg, 91);
    EXPECT_EQ(cg, 92);
    EXPECT_EQ(cn, 93);
    Element element{94, 95, 96};
    EXPECT_FALSE(c.block.getChannelElementAtIndex(c.index, element));
    EXPECT_EQ(element.ch_element_dg, 94);
    EXPECT_EQ(element.ch_element_cg, 95);
    EXPECT_EQ(element.ch_element_cn, 96);
  }
}

TEST(CHBLOCK, RemovesTheElementAtAnIndex) {
  struct {
    UINT32 index;
    std::vector<LINK> left;
  } const cases[] = {
      {0, {4, 5, 6, 7, 8, 9}},          {1, {1, 2, 3, 7, 8, 9}},
      {2, {1, 2, 3, 4, 5, 6}},          {3, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {4, {1, 2, 3, 4, 5, 6, 7, 8, 9}}, {UINT32_MAX, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.index);
    CHBLOCK block = threeElements();
    block.removeChannelAtIndex(c.index);
    EXPECT_EQ(elementLinksOf(block), c.left);
  }
}

TEST(CHBLOCK, RemovingFromAnEmptyListDoesNothing) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  for (const UINT32 index : {UINT32{0}, UINT32{1}, UINT32_MAX}) {
    block.removeChannelAtIndex(index);
    EXPECT_EQ(block.getElementCount(), 0U);
  }
}

TEST(CHBLOCK, DumpShowsTheCommentLinkInPlaceOfTheFirstChild) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== CHBLOCK ===================\n"
            "block size = 112\n"
            "next file ch history block (pointer) = 100\n"
            "first (sibling) file ch history block (pointer) = 400\n"
            "name text (pointer) = 300\n"
            "file comment (pointer) = 400\n"
            "element count = 2\n"
            "element DG (pointer) = 501\n"
            "element CG (pointer) = 502\n"
            "element CN (pointer) = 503\n"
            "element DG (pointer) = 601\n"
            "element CG (pointer) = 602\n"
            "element CN (pointer) = 603\n"
            "type = 2\n"
            "[DEBUG] ==================== End of CHBLOCK ===================\n");
}

TEST(CHBLOCK, DumpOfANewBlock) {
  EXPECT_EQ(shownValues(CHBLOCK(CHBLOCK::CH_TYPE_REF_CHARACTERISTIC)), "64 0 0 0 0 0 8");
}

TEST(CHBLOCK, DumpShowsZeroForMissingLinksAndSignedLinks) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.links = {-1};
  block.addChannelElement(INT64_MIN, INT64_MAX, -2);
  block.ch_type = 255;
  EXPECT_EQ(shownValues(block), "88 -1 0 0 0 1 -9223372036854775808 9223372036854775807 -2 255");
  EXPECT_EQ(block.getFirstCHBlock(), 0);
  EXPECT_EQ(block.getTXNameBlock(), 0);
  EXPECT_EQ(block.getMDBlock(), 0);
}

TEST(CHBLOCK, BlockWrittenWithOneElementReadsBackWithoutItAndWithATypeFromInsideIt) {
  CHBLOCK one(CHBLOCK::CH_TYPE_GROUP);
  one.setMDBlock(400);
  one.addChannelElement(0x1111111111111111, 0x2827262524232221, 0x3333333333333333);
  const auto block = readBack<CHBLOCK>(written(one));
  EXPECT_EQ(block.header.length, 88U);
  EXPECT_EQ(block.header.link_count, 5U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 400}));
  EXPECT_EQ(block.getElementCount(), 0U);
  EXPECT_EQ(block.ch_type, 0x25);
  EXPECT_EQ(asArray(block.ch_reserved), (std::array<UINT8, 3>{}));
}

TEST(CHBLOCK, TenLinksGiveFourOverlappingElements) {
  const auto block = readBack<CHBLOCK>(bytesWithLinks(10));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 4}));
  EXPECT_EQ(elementLinksOf(block), (std::vector<LINK>{5, 6, 7, 6, 7, 8, 7, 8, 9, 8, 9, 10}));
  EXPECT_EQ(block.getType(), CHBLOCK::CH_TYPE_FUNCTION);
}

}  // namespace
