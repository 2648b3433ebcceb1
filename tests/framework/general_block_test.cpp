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
  using GENERALBLOCK::GENERALBLOCK;

  using GENERALBLOCK::read;
  using GENERALBLOCK::seekg;
  using GENERALBLOCK::writex;
};

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

TEST(GENERALBLOCK, ReadTakesWhatComesAndAShortOneMakesTheStreamExactlyBad) {
  const struct {
    std::string stream;
    std::ios_base::iostate before;
    std::string bytes;
    std::ios_base::iostate after;
  } cases[] = {{"abcdefgh", state_good, "abcd", state_good},
               {"abcd", state_good, "abcd", state_good},
               {"ab", state_good, "ab--", state_bad},
               {"abcd", state_eof_fail, "----", state_bad},
               {"", state_good, "", state_good}};
  for (const auto& [stream, before, expected, after] : cases) {
    SCOPED_TRACE(stream);
    std::istringstream is(".." + stream);
    is.ignore(2);
    is.setstate(before);
    std::string bytes(expected.size(), '-');
    Block::read(is, bytes.data(), bytes.size());
    EXPECT_EQ(is.rdstate(), after);
    EXPECT_EQ(bytes, expected);
  }
}

TEST(GENERALBLOCK, WritesBytesAsTheyAre) {
  std::ostringstream os;
  const std::string bytes("a\0\n\xFF", 4);
  Block::writex(os, bytes.data(), bytes.size());
  Block::writex(os, bytes.data(), 0);
  EXPECT_BYTES(os.str(), bytes);
}

}  // namespace
