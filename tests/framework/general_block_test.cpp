#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// Opens up what a block class builds on.
class Block : public GENERALBLOCK {
 public:
  using GENERALBLOCK::copyEntryAt;
  using GENERALBLOCK::GENERALBLOCK;

  using GENERALBLOCK::entryAt;
  using GENERALBLOCK::linkAt;
  using GENERALBLOCK::read;
  using GENERALBLOCK::removeEntryAt;
  using GENERALBLOCK::seekg;
  using GENERALBLOCK::seekgEntryAt;
  using GENERALBLOCK::setLinkAt;
  using GENERALBLOCK::writex;
};

TEST(GENERALBLOCK, StartsOutWithoutLengthAndLinks) {
  const Block block(0x4448);
  EXPECT_BYTES(written(block.header), header("HD", 0, 0));
  EXPECT_TRUE(block.links.empty());
  EXPECT_EQ(block.m_pad, 0);
}

TEST(GENERALBLOCK, StartsOutWithTheLengthAndTheNilLinksAskedFor) {
  const Block block(0x4448, 64, 4);
  EXPECT_BYTES(written(block.header), header("HD", 64, 4));
  EXPECT_BYTES(written(block.links), zeros(32));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0}));
  EXPECT_EQ(block.m_pad, 0);
}

TEST(GENERALBLOCK, MoreLinksThanAListCanHaveAreALengthError) {
  for (const UINT64 link_count : {UINT64{1} << 61U, UINT64{UINT64_MAX}}) {
    EXPECT_THROW(Block(0x4448, 0, link_count), std::length_error) << link_count;
  }
}

TEST(GENERALBLOCK, PaddingReachesTheNextMultipleOfEight) {
  const std::array<int, 8> padding{0, 7, 6, 5, 4, 3, 2, 1};
  for (const UINT64 start : {UINT64{0}, UINT64{24}, UINT64{1} << 40U, UINT64_MAX - 7}) {
    for (std::size_t i = 0; i < padding.size(); ++i) {
      Block block(0x4448, start + i, 0);
      block.set8BytePadding();
      EXPECT_EQ(block.getPadding(), padding[i]) << "length " << start + i;
      EXPECT_EQ(block.header.length, start + i);
    }
  }
}

TEST(GENERALBLOCK, PaddingIsStoredAsGiven) {
  Block block(0x4448, 25, 0);
  block.setPadding(255);
  EXPECT_EQ(block.getPadding(), 255);
  EXPECT_EQ(block.m_pad, 255);
  EXPECT_EQ(block.header.length, 25U);
}

TEST(GENERALBLOCK, PaddingIsNotWritten) {
  TXBLOCK block;
  block.set8BytePadding();
  EXPECT_EQ(block.getPadding(), 7);
  EXPECT_BYTES(written(block), header("TX", 25, 0) + zeros(1));
}

TEST(GENERALBLOCK, HeaderCanBeChanged) {
  Block block(0x4448, 64, 4);
  block.getHeader().setLength(72);
  block.getHeader().setLinkCount(5);
  EXPECT_EQ(&block.getHeader(), &block.header);
  EXPECT_BYTES(written(static_cast<const Block&>(block).getHeader()), header("HD", 72, 5));
}

TEST(GENERALBLOCK, CopiesAreIndependent) {
  Block block(0x4448, 64, 2);
  block.setPadding(3);
  const Block copy = block;
  block.header.length = 1;
  block.links[0] = 9;
  block.setPadding(4);
  EXPECT_EQ(copy.header.length, 64U);
  EXPECT_EQ(linksOf(copy), (std::vector<LINK>{0, 0}));
  EXPECT_EQ(copy.getPadding(), 3);
}

TEST(GENERALBLOCK, SeekPositionsTheStreamAndReturnsTheLink) {
  const LinkTargetFile file;
  const Block block(0x4448);
  for (const LINK link : {LINK{0}, LINK{1}, LINK{4095}, LINK{4096}, LINK{1} << 40U}) {
    SCOPED_TRACE(link);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekg(ifs, link); }, link);
  }
}

TEST(GENERALBLOCK, SeekToANegativeLinkFailsAndReturnsTheLink) {
  const LinkTargetFile file;
  std::ifstream ifs = file.open();
  EXPECT_EQ(Block(0x4448).seekg(ifs, -8), -8);
  EXPECT_EQ(ifs.rdstate(), std::ios_base::failbit);
}

TEST(GENERALBLOCK, SeekLeavesAFailedStreamFailedAndWhereItStands) {
  const LinkTargetFile file;
  std::ifstream ifs = file.open();
  ifs.seekg(7);
  ifs.setstate(std::ios_base::failbit);
  EXPECT_EQ(Block(0x4448).seekg(ifs, 100), 100);
  EXPECT_EQ(ifs.rdstate(), std::ios_base::failbit);
  ifs.clear();
  EXPECT_EQ(ifs.tellg(), 7);
}

TEST(GENERALBLOCK, ReadTakesTheBytesAskedFor) {
  std::istringstream is("abcdefgh");
  std::array<char, 4> bytes{};
  Block::read(is, bytes.data(), bytes.size());
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(std::string(bytes.data(), bytes.size()), "abcd");
  Block::read(is, bytes.data(), bytes.size());
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(std::string(bytes.data(), bytes.size()), "efgh");
}

TEST(GENERALBLOCK, ShortReadTakesWhatComesAndMakesTheStreamExactlyBad) {
  std::istringstream is("..0123456789");
  is.ignore(2);
  std::string bytes(24, '-');
  Block::read(is, bytes.data(), bytes.size());
  EXPECT_EQ(is.rdstate(), state_bad);
  EXPECT_EQ(bytes, "0123456789--------------");
}

TEST(GENERALBLOCK, ReadFromAFailedStreamMakesItExactlyBad) {
  std::istringstream is("0123456789");
  is.setstate(state_eof_fail);
  std::string bytes(4, '-');
  Block::read(is, bytes.data(), bytes.size());
  EXPECT_EQ(is.rdstate(), state_bad);
  EXPECT_EQ(bytes, "----");
}

TEST(GENERALBLOCK, ReadOfNothingAtTheEndLeavesTheStreamGood) {
  std::istringstream is;
  Block::read(is, nullptr, 0);
  EXPECT_EQ(is.rdstate(), state_good);
}

TEST(GENERALBLOCK, WritesBytesAsTheyAre) {
  std::ostringstream os;
  const std::string bytes("a\0\n\xFF", 4);
  Block::writex(os, bytes.data(), bytes.size());
  Block::writex(os, bytes.data(), 0);
  EXPECT_BYTES(os.str(), bytes);
}

TEST(GENERALBLOCK, MissingLinksAreNil) {
  Block block(0x4448, 64, 2);
  block.links = {5, 6};
  EXPECT_EQ(block.linkAt(0), 5);
  EXPECT_EQ(block.linkAt(1), 6);
  EXPECT_EQ(block.linkAt(2), 0);
}

TEST(GENERALBLOCK, StoringAMissingLinkPutsNilLinksInFrontOfIt) {
  Block block(0x4448);
  block.setLinkAt(2, 7);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 7}));
  block.setLinkAt(0, 5);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{5, 0, 7}));
  block.setLinkAt(3, 8);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{5, 0, 7, 8}));
  EXPECT_EQ(block.header.link_count, 0U);
}

TEST(GENERALBLOCK, EntriesOfAListAreNilBeyondItsEnd) {
  const std::vector<LINK> list{5, 6};
  EXPECT_EQ(Block::entryAt(list, 1), 6);
  EXPECT_EQ(Block::entryAt(list, 2), 0);
  EXPECT_EQ(Block::entryAt(list, SIZE_MAX), 0);
  EXPECT_EQ(Block::entryAt({}, 0), 0);
}

TEST(GENERALBLOCK, SeekToAListEntryStaysWithoutOne) {
  const LinkTargetFile file;
  const Block block(0x4448);
  const std::vector<LINK> list{500, 0};
  const auto seekTo = [&](std::size_t index) {
    return [&, index](std::ifstream& ifs) { return block.seekgEntryAt(ifs, list, index); };
  };
  file.expectFollows(seekTo(0), 500);
  file.expectFollows(seekTo(1), 0);
  file.expectStays(seekTo(2));
  file.expectStays(seekTo(SIZE_MAX));
}

TEST(GENERALBLOCK, RemovingAListEntryMovesLaterOnesForward) {
  std::vector<LINK> list{5, 6, 7};
  Block::removeEntryAt(list, 3);
  Block::removeEntryAt(list, SIZE_MAX);
  EXPECT_EQ(list, (std::vector<LINK>{5, 6, 7}));
  Block::removeEntryAt(list, 1);
  EXPECT_EQ(list, (std::vector<LINK>{5, 7}));
  Block::removeEntryAt(list, 1);
  Block::removeEntryAt(list, 0);
  Block::removeEntryAt(list, 0);
  EXPECT_TRUE(list.empty());
}

TEST(GENERALBLOCK, CopyingAListEntryLeavesTheTargetAloneWithoutOne) {
  const std::vector<LINK> list{5, 6};
  LINK entry = 9;
  EXPECT_TRUE(Block::copyEntryAt(list, 1, entry));
  EXPECT_EQ(entry, 6);
  entry = 9;
  EXPECT_FALSE(Block::copyEntryAt(list, 2, entry));
  EXPECT_FALSE(Block::copyEntryAt(list, SIZE_MAX, entry));
  EXPECT_FALSE(Block::copyEntryAt({}, 0, entry));
  EXPECT_EQ(entry, 9);
}

}  // namespace
