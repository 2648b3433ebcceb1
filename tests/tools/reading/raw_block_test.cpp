#include "reader/blocks/raw_block.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::forEachLink;
using mdf_reader::InputFile;
using mdf_reader::linksThere;
using mdf_reader::RawBlock;
using mdf_reader::readRawBlock;

namespace {

RawBlock blockOf(const std::string& letters, std::uint64_t length, std::uint64_t link_count) {
  RawBlock block;
  block.id = {'#', '#', letters[0], letters[1]};
  block.length = length;
  block.link_count = link_count;
  return block;
}

std::uint64_t linkCountOf(const std::string& letters, std::uint64_t length,
                          std::uint64_t link_count) {
  return blockOf(letters, length, link_count).linkCount();
}

bool holdsItsLinks(std::uint64_t length, std::uint64_t link_count) {
  return blockOf("XX", length, link_count).holdsItsLinks();
}

/// The links of the block at an offset of a file with these bytes.
std::vector<std::int64_t> linksOf(const std::string& bytes, std::uint64_t offset) {
  const TempFile file(bytes);
  InputFile input(file.path());
  const auto block = readRawBlock(input, offset);
  std::vector<std::int64_t> links;
  forEachLink(input, *block, [&](std::uint64_t index, std::int64_t link) {
    EXPECT_EQ(index, links.size());
    links.push_back(link);
  });
  EXPECT_EQ(linksThere(input, *block), links.size());
  return links;
}

TEST(RawBlock, ReadsTheHeaderOfAnyBlockAnywhere) {
  const TempFile file(Bytes().text("abc##\x01Z").u8s({9, 9, 9, 9}).u64(UINT64_MAX).u64(1).u64(0));
  InputFile input(file.path());
  const auto block = readRawBlock(input, 3);
  ASSERT_TRUE(block.has_value());
  EXPECT_EQ(block->offset, 3U);
  EXPECT_EQ(block->letters(), "\x01Z");
  EXPECT_EQ(block->name(), "##\\x01Z");
  EXPECT_TRUE(block->hasId());
  EXPECT_EQ(block->length, UINT64_MAX);
  EXPECT_EQ(block->link_count, 1U);
}

TEST(RawBlock, HeaderThatIsCutOffIsNone) {
  const std::string bytes = Bytes().header("XX", 24, 0);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    const TempFile file(bytes.substr(0, size));
    InputFile input(file.path());
    EXPECT_FALSE(readRawBlock(input, 0).has_value()) << size;
  }
}

TEST(RawBlock, OnlyTwoHashesMakeABlock) {
  for (const auto& [bytes, is_block] : std::vector<std::pair<std::string, bool>>{
           {"##XX", true}, {"#XXX", false}, {"X#XX", false}, {"XXXX", false}}) {
    const TempFile file(bytes + std::string(20, '\0'));
    InputFile input(file.path());
    EXPECT_EQ(readRawBlock(input, 0)->hasId(), is_block) << bytes;
  }
}

TEST(RawBlock, LinksAreReadInOrder) {
  EXPECT_EQ(linksOf(Bytes().text("12345").header("XX", 56, 3).links({-1, 0, INT64_MAX}).u64(7), 5),
            (std::vector<std::int64_t>{-1, 0, INT64_MAX}));
  EXPECT_TRUE(linksOf(Bytes().header("XX", 32, 0).u64(7), 0).empty());
}

TEST(RawBlock, LinksReachAsFarAsTheLength) {
  for (const std::uint64_t length : {0U, 1U, 23U, 24U, 25U, 31U}) {
    EXPECT_TRUE(linksOf(Bytes().header("XX", length, 2).links({1, 2}), 0).empty()) << length;
  }
  EXPECT_EQ(linksOf(Bytes().header("XX", 32, 2).links({1, 2}), 0), (std::vector<std::int64_t>{1}));
  EXPECT_EQ(linksOf(Bytes().header("XX", 39, UINT64_MAX).links({1, 2}), 0),
            (std::vector<std::int64_t>{1}));
}

TEST(RawBlock, LinksReachAsFarAsTheFile) {
  for (const std::uint64_t lie : {std::uint64_t{1} << 31U, std::uint64_t{1} << 63U, UINT64_MAX}) {
    EXPECT_EQ(linksOf(Bytes().header("XX", lie, lie).links({1, 2}).u32(3), 0),
              (std::vector<std::int64_t>{1, 2}));
  }
}

TEST(RawBlock, ManyLinksAreReadInPieces) {
  for (const std::size_t count : {1023U, 1024U, 1025U, 5000U}) {
    Bytes bytes;
    bytes.header("XX", 24 + 8 * count, count);
    std::vector<std::int64_t> expected;
    for (std::size_t i = 0; i < count; ++i) {
      expected.push_back(static_cast<std::int64_t>(i * i));
      bytes.i64(expected.back());
    }
    EXPECT_EQ(linksOf(bytes.u64(1), 0), expected);
  }
}

TEST(RawBlock, VisitorMayReadElsewhere) {
  const TempFile file(Bytes().header("XX", 48, 3).links({1, 2, 3}));
  InputFile input(file.path());
  std::vector<std::int64_t> links;
  forEachLink(input, *readRawBlock(input, 0), [&](std::uint64_t, std::int64_t link) {
    char byte;
    input.readAt(0, &byte, 1);
    links.push_back(link);
  });
  EXPECT_EQ(links, (std::vector<std::int64_t>{1, 2, 3}));
}

TEST(RawBlock, LengthMustHoldHeaderAndLinks) {
  EXPECT_FALSE(holdsItsLinks(0, 0));
  EXPECT_FALSE(holdsItsLinks(23, 0));
  EXPECT_TRUE(holdsItsLinks(24, 0));
  EXPECT_FALSE(holdsItsLinks(31, 1));
  EXPECT_TRUE(holdsItsLinks(32, 1));
  EXPECT_FALSE(holdsItsLinks(32, std::uint64_t{1} << 61U));
  EXPECT_FALSE(holdsItsLinks(32, UINT64_MAX));
  EXPECT_TRUE(holdsItsLinks(UINT64_MAX, (UINT64_MAX - 24) / 8));
  EXPECT_FALSE(holdsItsLinks(UINT64_MAX, (UINT64_MAX - 24) / 8 + 1));
}

TEST(RawBlock, LinkCountIsBelievedForMostTypes) {
  EXPECT_EQ(linkCountOf("XX", 40, 0), 0U);
  EXPECT_EQ(linkCountOf("DL", 88, 2), 2U);
}

TEST(RawBlock, HeaderListHasALinkThoughItsCountSaysNone) {
  EXPECT_EQ(linksOf(Bytes().header("HL", 40, 0).i64(4096).u64(1), 0),
            (std::vector<std::int64_t>{4096}));
  EXPECT_EQ(linksOf(Bytes().header("HL", 40, 1).i64(4096).u64(1), 0),
            (std::vector<std::int64_t>{4096}));
}

TEST(RawBlock, ChannelHierarchyHasThreeLinksForEachElementItCounts) {
  EXPECT_EQ(linksOf(Bytes().header("CH", 64, 4).links({1, 2, 3, 4}).u64(5), 0),
            (std::vector<std::int64_t>{1, 2, 3, 4}));
  EXPECT_EQ(linksOf(Bytes().header("CH", 112, 6).links({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}).u64(11), 0),
            (std::vector<std::int64_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(RawBlock, ChannelHierarchyMayCountEveryLink) {
  EXPECT_EQ(
      linksOf(Bytes().header("CH", 112, 10).links({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}).u64(11), 0),
      (std::vector<std::int64_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(RawBlock, LengthThatLiesGivesNoMoreLinksThanTheTypeCanHave) {
  for (const std::uint64_t length : {std::uint64_t{400}, std::uint64_t{1} << 63U, UINT64_MAX}) {
    EXPECT_EQ(linkCountOf("HL", length, 0), 1U);
    EXPECT_EQ(linkCountOf("HL", length, 5), 5U);
    EXPECT_EQ(linkCountOf("CH", length, 4), 4U);
    EXPECT_EQ(linkCountOf("CH", length, 6), 10U);
    EXPECT_EQ(linkCountOf("CH", length, 3), 3U);
  }
  for (const std::uint64_t length : {0U, 23U, 24U, 31U, 32U, 39U}) {
    EXPECT_EQ(linkCountOf("HL", length, 0), 0U);
    EXPECT_EQ(linkCountOf("CH", length, 4), 4U);
  }
}

TEST(RawBlock, LinkCountThatLiesStaysALie) {
  for (const std::uint64_t count : {std::uint64_t{1} << 61U, UINT64_MAX - 1, UINT64_MAX}) {
    EXPECT_EQ(linkCountOf("HL", 40, count), count);
    EXPECT_EQ(linkCountOf("CH", 64, count), count);
    EXPECT_EQ(linkCountOf("CH", UINT64_MAX, count), count);
    EXPECT_FALSE(blockOf("CH", UINT64_MAX, count).holdsItsLinks());
  }
}

}  // namespace
