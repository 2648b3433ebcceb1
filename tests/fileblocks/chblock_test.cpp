#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

using Type = CHBLOCK::MDF_CH_TYPE_t;
using Element = CHBLOCK::CHBLOCK_CHANNEL_t;

Type typeOf(int value) { return static_cast<Type>(value); }

using Links = std::vector<LINK>;

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
  return header("CH", 112, 6, {1, 2, 3, 4}) + links(100, 200, 300, 400) +
         links(501, 502, 503, 601, 602, 603) + u32(2) + u8(2) + u8(11, 12, 13);
}

/// All values that a type's byte may have: those of the format, and others.
constexpr int types[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255};

TEST(CHBLOCK, NewBlockOfAnyTypeWrites64Bytes) {
  for (const int type : types) {
    const CHBLOCK block(typeOf(type));
    EXPECT_BYTES(written(block), header("CH", 64, 4) + zeros(32) + u32(0) + u8(type) + zeros(3));
    EXPECT_BYTES(written(block.header), header("CH", 64, 4));
  }
}

TEST(CHBLOCK, WritesEveryFieldWithALengthAndLinkCountOfItsOwn) {
  CHBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 8888;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_BYTES(written(block.header), header("CH", 9999, 8888, {1, 2, 3, 4}));
}

TEST(CHBLOCK, LinkCountWrittenIsTheElementCountAndFour) {
  CHBLOCK block(CHBLOCK::CH_TYPE_FUNCTION);
  std::string element_links;
  for (unsigned n = 0; n <= 100; ++n) {
    SCOPED_TRACE(n);
    EXPECT_BYTES(written(block), header("CH", 64 + 24 * n, n + 4) + zeros(32) + element_links +
                                     u32(n) + u8(1) + zeros(3));
    EXPECT_EQ(block.getSize(), 64U + 24 * n);
    EXPECT_EQ(block.getElementCount(), n);
    EXPECT_BYTES(written(block.header), header("CH", 64, 4));
    const LINK link = 3 * n;
    block.addChannelElement(link + 1, link + 2, link + 3);
    element_links += links(link + 1, link + 2, link + 3);
  }
}

// One column for each type of the next block: 0 to 8, then values that are no type.
TEST(CHBLOCK, NextSiblingIsAcceptedByItsType) {
  const int next_types[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 255, 256, 257, 258, 259, -1, INT32_MAX};
  struct {
    int type;
    const char* accepts;
  } const rules[] = {{0, "yyyyyyyyyyyyyyyyy"},  // a group: any
                     {1, "-yyyyyyyyyyyyyyyy"},  // a function: any but a group
                     {2, "--yy-------------"},  // a structure: a structure or a map list
                     {3, "-----------------"},  // a map list: none
                     // measurements and characteristics: like a structure
                     {4, "--yy-------------"},
                     {5, "--yy-------------"},
                     {6, "--yy-------------"},
                     {7, "--yy-------------"},
                     {8, "--yy-------------"},
                     // no type: none
                     {9, "-----------------"},
                     {127, "-----------------"},
                     {128, "-----------------"},
                     {255, "-----------------"}};
  for (const auto& rule : rules) {
    std::string accepts;
    for (const int next_type : next_types) {
      CHBLOCK block(typeOf(rule.type));
      block.links[CHBLOCK::ch_ch_next] = 5;
      block.setNextCHBlock(100, typeOf(next_type));
      EXPECT_EQ(linksOf(block), (Links{block.getNextCHBlock(), 0, 0, 0}));
      accepts += block.getNextCHBlock() == 100 ? 'y' : block.getNextCHBlock() == 0 ? '-' : '?';
    }
    EXPECT_EQ(accepts, rule.accepts) << "this block's type is " << rule.type;
  }
}

// Only a map list refuses a first child, and only types below four have a name.
TEST(CHBLOCK, LinksAndElementsAreAcceptedByTheBlocksType) {
  for (const int type : types) {
    SCOPED_TRACE(type);
    CHBLOCK block(typeOf(type));
    block.links = {0, 5, 5, 5};
    block.setFirstCHBlock(200);
    block.setTXNameBlock(300);
    block.setMDBlock(400);
    EXPECT_EQ(linksOf(block), (Links{0, type == 3 ? 0 : 200, type < 4 ? 300 : 0, 400}));
    block.addChannelElement(1, 2, 3);
    EXPECT_EQ(elementLinksOf(block), (Links{1, 2, 3}));
  }
}

TEST(CHBLOCK, SetTypeRemovesWhatTheTypeForbids) {
  struct {
    int type;
    Links links;
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
      EXPECT_EQ(linksOf(block), (Links{100, 200, 300, 400}));
      EXPECT_EQ(block.getElementCount(), 2U);
    }
  }
}

TEST(CHBLOCK, SetTypeDoesNotCheckTheNextSiblingAgain) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.setNextCHBlock(100, CHBLOCK::CH_TYPE_GROUP);
  for (const int type : types) {
    block.setType(typeOf(type));
    EXPECT_EQ(block.getNextCHBlock(), 100) << type;
  }
}

TEST(CHBLOCK, AddsElementsAtTheEnd) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.addChannelElement(1, 2, 3);
  Element element;
  block.addChannelElement(element);
  block.addChannelElement({4, 5, 6});
  block.addChannelElement(block.channels.front());
  EXPECT_EQ(elementLinksOf(block), (Links{1, 2, 3, 0, 0, 0, 4, 5, 6, 1, 2, 3}));
}

TEST(CHBLOCK, GivesTheElementAtAnIndexOrLeavesTheOutputsUntouched) {
  const std::pair<UINT32, Links> cases[] = {{0, {1, 2, 3}},    {1, {4, 5, 6}},
                                            {2, {7, 8, 9}},    {3, {91, 92, 93}},
                                            {4, {91, 92, 93}}, {UINT32_MAX, {91, 92, 93}}};
  const CHBLOCK block = threeElements();
  for (const auto& [index, expected] : cases) {
    SCOPED_TRACE(index);
    LINK dg = 91, cg = 92, cn = 93;
    EXPECT_EQ(block.getChannelElementAtIndex(index, dg, cg, cn), index < 3);
    EXPECT_EQ((Links{dg, cg, cn}), expected);
    Element element{91, 92, 93};
    EXPECT_EQ(block.getChannelElementAtIndex(index, element), index < 3);
    EXPECT_EQ((Links{element.ch_element_dg, element.ch_element_cg, element.ch_element_cn}),
              expected);
  }
}

TEST(CHBLOCK, RemovesTheElementAtAnIndex) {
  const std::pair<UINT32, Links> cases[] = {
      {0, {4, 5, 6, 7, 8, 9}},          {1, {1, 2, 3, 7, 8, 9}},
      {2, {1, 2, 3, 4, 5, 6}},          {3, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
      {4, {1, 2, 3, 4, 5, 6, 7, 8, 9}}, {UINT32_MAX, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
  };
  for (const auto& [index, left] : cases) {
    SCOPED_TRACE(index);
    CHBLOCK block = threeElements();
    block.removeChannelAtIndex(index);
    EXPECT_EQ(elementLinksOf(block), left);
  }
}

TEST(CHBLOCK, DumpShowsTheCommentLinkInPlaceOfTheFirstChild) {
  EXPECT_EQ(dumped(distinctBlock()),
            inBanners("CHBLOCK",
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
                      "type = 2\n"));
}

TEST(CHBLOCK, DumpShowsZeroForMissingLinksAndSignedLinks) {
  CHBLOCK block(CHBLOCK::CH_TYPE_GROUP);
  block.links = {-1};
  block.addChannelElement(INT64_MIN, INT64_MAX, -2);
  block.ch_type = 255;
  EXPECT_EQ(shownValues(block), "88 -1 0 0 0 1 -9223372036854775808 9223372036854775807 -2 255");
}

}  // namespace
