// Each row of the table in docs/reading.md has a test of its class's name here, which asserts what
// the row says and runs the row's code as it stands there.

#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_v4_10;
using namespace mdf_tests;

namespace {

using Links = std::vector<LINK>;

constexpr LINK at = 16;
const std::string following = "what follows the block in its file";

/// A stream over a file that holds the block at offset 16 and other bytes after it.
std::istringstream fileWith(const std::string& block_bytes) {
  std::istringstream is(std::string(at, '#') + block_bytes + following);
  is.seekg(at);
  return is;
}

/// How far after the end of the block the stream stands; it is good.
long standsAfter(std::istringstream& is, const std::string& block_bytes) {
  EXPECT_EQ(is.rdstate(), state_good);
  return static_cast<long>(is.tellg()) - static_cast<long>(at) -
         static_cast<long>(block_bytes.size());
}

/// The block that these bytes are, of which the reader takes all and nothing after it.
template <class Block>
Block readWhole(const std::string& block_bytes) {
  auto is = fileWith(block_bytes);
  Block block(is);
  EXPECT_EQ(standsAfter(is, block_bytes), 0);
  return block;
}

std::string text(const std::vector<UINT8>& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(Reading, IDBLOCK) {
  const std::string bytes =
      std::string("MDF     4.10    program ") + u8(1, 2, 3, 4) + u16(410) + zeros(33) + u8(9);
  const auto block = readWhole<IDBLOCK>(bytes);
  EXPECT_EQ(block.getKenn(), "MDF     ");
  EXPECT_EQ(block.getVers(), "4.10    ");
  EXPECT_EQ(block.getProg(), "program ");
  EXPECT_EQ(block.getVersionNumber(), 410);
  EXPECT_EQ(asArray(block.id_reserved1), (std::array<UINT8, 4>{}));
  EXPECT_EQ(block.id_reserved2[33], 9);
  EXPECT_EQ(linksOf(block), Links{});
}

TEST(Reading, HDBLOCK) {
  const std::string bytes = header("HD", 104, 6) + links(1, 2, 3, 4, 5, 6) + u64(7) + u16(-8, 9) +
                            u8(3, 10, 3, 99) + f64(1.5, 2.5);
  const auto block = readWhole<HDBLOCK>(bytes);
  EXPECT_EQ(block.getDGFirstblock(), 1);
  EXPECT_EQ(block.getMDCommentblock(), 6);
  EXPECT_BYTES(written(block), std::string(bytes).replace(87, 1, 1, '\0'));
}

TEST(Reading, TXBLOCK) {
  const std::string bytes = header("TX", 24 + 12, 0) + "hello world" + u8(0);
  auto is = fileWith(bytes);
  const TXBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), -8);
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(text(block.getData()), std::string(8, '\0') + "hell");
  {
    is.seekg(at);
    const DTBLOCK text(is);
    EXPECT_EQ(::text(text.getData()), std::string("hello world") + '\0');
  }
}

TEST(Reading, MDBLOCK) {
  const std::string bytes = header("MD", 24 + 12, 0) + "<a>text</a>" + u8(0);
  auto is = fileWith(bytes);
  const MDBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), -8);
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(text(block.getData()), std::string(8, '\0') + "<a>t");
  {
    is.seekg(at);
    const DTBLOCK xml(is);
    EXPECT_EQ(text(xml.getData()), std::string("<a>text</a>") + '\0');
  }
}

TEST(Reading, FHBLOCK) {
  const std::string bytes =
      header("FH", 56, 2) + links(1, 2) + u64(3) + u16(-4, 5) + u8(2) + u8(9, 9, 9);
  const auto block = readWhole<FHBLOCK>(bytes);
  EXPECT_EQ(block.getNextFHBlock(), 1);
  EXPECT_EQ(block.getMDBlock(), 2);
  EXPECT_BYTES(written(block), std::string(bytes).replace(53, 3, 3, '\0'));
}

TEST(Reading, CHBLOCK) {
  const std::string bytes = header("CH", 64 + 24 * 2, 4 + 3 * 2) +
                            links(1, 2, 3, 4, 11, 12, 13, 21, 22, 23) + u32(2) +
                            u8(CHBLOCK::CH_TYPE_GROUP, 9, 9, 9);
  const auto block = readWhole<CHBLOCK>(bytes);
  EXPECT_EQ(linksOf(block), (Links{1, 2, 3, 4}));
  EXPECT_EQ(block.getFirstCHBlock(), 2);
  EXPECT_EQ(asArray(block.ch_reserved), (std::array<UINT8, 3>{}));
  EXPECT_EQ(block.getElementCount(), 4U);
  for (std::size_t k = 0; k < 2; ++k) {
    const auto& element = block.channels[3 * k];
    EXPECT_EQ(element.ch_element_dg, k == 0 ? 11 : 21);
    EXPECT_EQ(element.ch_element_cg, k == 0 ? 12 : 22);
    EXPECT_EQ(element.ch_element_cn, k == 0 ? 13 : 23);
  }
}

TEST(Reading, CHBLOCK_that_this_library_wrote) {
  CHBLOCK original(CHBLOCK::CH_TYPE_STRUCTURE);
  original.setFirstCHBlock(2);
  original.addChannelElement(11, 12, 13);
  original.addChannelElement(21, 22, 23);
  const std::string bytes = written(original);
  auto is = fileWith(bytes);
  {
    const CHBLOCK block(is);
    EXPECT_EQ(standsAfter(is, bytes), 0);
    EXPECT_EQ(linksOf(block), (Links{0, 2, 0, 0}));
    EXPECT_EQ(block.getElementCount(), 0U);
    EXPECT_NE(block.ch_type, CHBLOCK::CH_TYPE_STRUCTURE);
  }
  is.seekg(at);
  DTBLOCK raw(is);
  raw.header.link_count = 3 * raw.header.link_count - 8;
  std::stringstream copy;
  copy << raw;
  const CHBLOCK block(copy);
  EXPECT_EQ(copy.rdstate(), state_good);
  EXPECT_EQ(block.ch_type, CHBLOCK::CH_TYPE_STRUCTURE);
  EXPECT_EQ(block.channels[0].ch_element_dg, 11);
  EXPECT_EQ(block.channels[3].ch_element_cn, 23);
}

TEST(Reading, ATBLOCK) {
  const std::string bytes = header("AT", 96 + 3, 4) + links(1, 2, 3, 4) + u16(5, 6) + zeros(4) +
                            "0123456789abcdef" + u64(7, 3) + "abc";
  const auto block = readWhole<ATBLOCK>(bytes);
  EXPECT_EQ(block.getTXMimetypeBlock(), 3);
  EXPECT_BYTES(written(block), bytes);
}

TEST(Reading, EVBLOCK) {
  const std::string bytes = header("EV", 96 + 8 * 3, 5 + 3) + links(1, 2, 3, 4, 5, 11, 12, 21) +
                            u8(6, 1, 0, 4, 1, 9, 9, 9) + u32(2) + u16(1, 7) + links(-8) + f64(0.5);
  auto is = fileWith(bytes);
  const EVBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), 0);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0, 0}));
  EXPECT_EQ(block.ev_scope, (Links{1, 2}));
  EXPECT_EQ(block.ev_at_reference, (Links{3}));
  EXPECT_EQ(block.getSyncBaseValue(), -8);
  {
    is.seekg(at);
    const DLBLOCK raw(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(raw.links[1 + EVBLOCK::ev_ev_next], 1);
    EXPECT_EQ(raw.links[1 + EVBLOCK::ev_md_comment], 5);
    EXPECT_EQ(raw.links[6], 11);
    EXPECT_EQ(raw.links[7], 12);
    EXPECT_EQ(raw.links[8], 21);
  }
}

TEST(Reading, DGBLOCK) {
  const std::string bytes =
      header("DG", 64, 4) + links(1, 2, 3, 4) + u8(1) + u8(9, 9, 9, 9, 9, 9, 9);
  const auto block = readWhole<DGBLOCK>(bytes);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0, 1, 2, 3, 4}));
  EXPECT_EQ(block.getFirstCgblock(), 0);
  EXPECT_EQ(block.getRecordIdSize(), DGBLOCK::DG_UINT8);
  const LINK channel_group = block.links[DGBLOCK::DG_BLOCK_LINKS_NUM + DGBLOCK::dg_cg_first];
  EXPECT_EQ(channel_group, 2);
}

TEST(Reading, CGBLOCK) {
  const std::string bytes =
      header("CG", 104, 6) + links(1, 2, 3, 4, 5, 6) + u64(7, 8) + u16(2, 46) + u32(99, 10, 11);
  const auto block = readWhole<CGBLOCK>(bytes);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(block.getCycleCount(), 8U);
  EXPECT_EQ(block.getInvalidBytes(), 11U);
  const LINK channel = block.links[CGBLOCK::CG_BLOCK_LINKS_NUM + CGBLOCK::cg_cn_first];
  EXPECT_EQ(channel, 2);
}

TEST(Reading, SIBLOCK) {
  const std::string bytes = header("SI", 56, 3) + links(1, 2, 3) + u8(4, 2, 1, 9, 9, 9, 9, 9);
  const auto block = readWhole<SIBLOCK>(bytes);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 1, 2, 3}));
  EXPECT_EQ(block.getSourceType(), SIBLOCK::SI_SOURCETYPE_TOOL);
  EXPECT_TRUE(block.isSimulatedSource());
  const LINK name = block.links[SIBLOCK::SI_BLOCK_LINKS_NUM + SIBLOCK::si_tx_name];
  EXPECT_EQ(name, 1);
}

/// A channel with two attachments and a default X axis.
std::string channelBytes() {
  return header("CN", 160 + 8 * 5, 8 + 5) + links(1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 21, 22, 23) +
         u8(2, 1, 4, 3) + u32(0xFFFF, 64, 4096, 5) + u8(6, 9) + u16(2) + f64(1, 2, 3, 4, 5, 6);
}

TEST(Reading, CNBLOCK) {
  const std::string bytes = channelBytes();
  auto is = fileWith(bytes);
  const CNBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), 0);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.cc_attachements, (Links{1, 2, 3}));
  EXPECT_EQ(block.getDefaultXAxisdgblock(), 21);
  EXPECT_EQ(block.getDefaultXAxiscgblock(), 22);
  EXPECT_EQ(block.getDefaultXAxiscnblock(), 23);
  EXPECT_EQ(block.cn_reserved, 0);
  EXPECT_EQ(block.getLimitExtendedMax(), 6);
  {
    is.seekg(at);
    const DLBLOCK raw(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(raw.links[1 + CNBLOCK::cn_cn_next], 1);
    EXPECT_EQ(raw.links[1 + CNBLOCK::cn_md_comment], 8);
    EXPECT_EQ(raw.links[9], 11);
    EXPECT_EQ(raw.links[10], 12);
  }
}

TEST(Reading, CCBLOCK) {
  const std::string bytes = header("CC", 80 + 8 * 2 + 8 * 1, 4 + 2) + links(1, 2, 3, 4, 11, 12) +
                            u8(7, 3) + u16(7, 2, 1) + f64(-1, 1, 2.5);
  auto is = fileWith(bytes);
  const CCBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), 0);
  EXPECT_EQ(block.getInverseCcblock(), 4);
  EXPECT_EQ(block.cc_refs, (Links{11, 12}));
  EXPECT_BYTES(written(block), bytes);

  auto further = fileWith(header("CC", 80 + 8, 5) + links(1, 2, 3, 4, 11) + zeros(24));
  EXPECT_EQ(CCBLOCK(further).cc_refs, Links{});
}

/// Everything after the header is data, links as well, and the block writes what it read.
template <class Block>
void expectPlainData(const std::string& letters, const std::vector<UINT8> Block::*data) {
  const std::string bytes = header(letters, 24 + 12, 1) + links(77) + "abcd";
  auto is = fileWith(bytes);
  const Block block(is);
  EXPECT_EQ(standsAfter(is, bytes), 0);
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_BYTES(text(block.*data), links(77) + "abcd");
  EXPECT_BYTES(written(block), bytes);
}

TEST(Reading, DTBLOCK) { expectPlainData<DTBLOCK>("DT", &DTBLOCK::dt_data); }

TEST(Reading, RDBLOCK) { expectPlainData<RDBLOCK>("RD", &RDBLOCK::rd_data); }

TEST(Reading, SDBLOCK) { expectPlainData<SDBLOCK>("SD", &SDBLOCK::sd_data); }

TEST(Reading, DLBLOCK) {
  const std::string bytes =
      header("DL", 40 + 16 * 2, 3) + links(1, 11, 12) + u8(0, 9, 9, 9) + u32(2) + u64(0, 500);
  const auto block = readWhole<DLBLOCK>(bytes);
  EXPECT_EQ(linksOf(block), (Links{0, 1, 11, 12}));
  EXPECT_EQ(block.getNextDlblock(), 0);
  EXPECT_EQ(block.dl_data, (std::vector<std::pair<LINK, UINT64>>{{1, 0}, {11, 500}}));
  for (std::size_t k = 0; k < 2; ++k) {
    const LINK next = block.links[1];
    const LINK data = block.links[2 + k];
    EXPECT_EQ(next, 1);
    EXPECT_EQ(data, k == 0 ? 11 : 12);
  }

  const std::string equal_bytes =
      header("DL", 48 + 8 * 2, 3) + links(1, 11, 12) + u8(1, 9, 9, 9) + u32(2) + u64(500);
  auto equal_is = fileWith(equal_bytes);
  const DLBLOCK equal(equal_is);
  EXPECT_EQ(standsAfter(equal_is, equal_bytes), 0);
  EXPECT_EQ(equal.dl_data, (std::vector<std::pair<LINK, UINT64>>{{1, 500}, {11, 500}, {12, 500}}));
}

TEST(Reading, DZBLOCK) {
  const std::string bytes =
      header("DZ", 48 + 5, 0) + "DT" + u8(1, 9) + u32(8) + u64(100, 5) + "zzzzz";
  auto is = fileWith(bytes);
  DZBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), 5);
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.getOriginalLength(), 100U);
  EXPECT_EQ(text(block.dz_data), "what ");
  is.clear();
  is.seekg(at + static_cast<LINK>(DZBLOCK::DZBLOCK_CONSTANT_SIZE));
  is.read(reinterpret_cast<char*>(block.dz_data.data()),
          static_cast<std::streamsize>(block.dz_data.size()));
  EXPECT_EQ(text(block.dz_data), "zzzzz");

  std::istringstream end_of_file(bytes + "fo");
  const DZBLOCK last(end_of_file);
  EXPECT_EQ(end_of_file.rdstate(), state_bad);
  EXPECT_EQ(last.getOriginalLength(), 100U);
  EXPECT_EQ(text(last.dz_data), std::string("fo\0\0\0", 5));
}

TEST(Reading, HLBLOCK) {
  const std::string bytes = header("HL", 40, 1) + links(4096) + u16(1) + u8(1) + u8(9, 9, 9, 9, 9);
  const auto block = readWhole<HLBLOCK>(bytes);
  EXPECT_EQ(block.getFirstDlblock(), 4096);
  EXPECT_TRUE(block.isEqualLengthFlag());
  EXPECT_EQ(block.getZipType(), DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));
}

TEST(Reading, HLBLOCK_that_this_library_wrote) {
  const std::string bytes = written(HLBLOCK(0x12345678, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE));
  auto is = fileWith(bytes);
  {
    const HLBLOCK block(is);
    EXPECT_EQ(standsAfter(is, bytes), 0);
    EXPECT_EQ(linksOf(block), Links{});
    EXPECT_EQ(block.hl_flags, 0x5678);
    EXPECT_EQ(block.hl_zip_type, 0x34);
  }
  is.seekg(at);
  DTBLOCK raw(is);
  raw.header.link_count = 1;
  std::stringstream copy;
  copy << raw;
  const HLBLOCK block(copy);
  EXPECT_EQ(copy.rdstate(), state_good);
  EXPECT_EQ(block.getFirstDlblock(), 0x12345678);
  EXPECT_EQ(block.hl_flags, 1);
  EXPECT_EQ(block.hl_zip_type, 0);
}

TEST(Reading, SRBLOCK) {
  const std::string bytes =
      header("SR", 64, 2) + links(1, 2) + u64(3) + f64(0.5) + u8(1, 1, 9, 9, 9, 9, 9, 9);
  auto is = fileWith(bytes);
  const SRBLOCK block(is);
  EXPECT_EQ(standsAfter(is, bytes), 0);
  EXPECT_EQ(linksOf(block), (Links{0, 0, 1, 2}));
  EXPECT_EQ(block.getDatablock(), 0);
  EXPECT_EQ(block.getCycleCount(), 3U);
  EXPECT_TRUE(block.isValidationBytesFlag());
  const LINK data = block.links[SRBLOCK::SR_BLOCK_LINKS_NUM + SRBLOCK::sr_data];
  EXPECT_EQ(data, 2);
}

/// A block whose length claims 100 bytes more than its type has.
template <class Block>
void expectReadByItsSize(std::size_t size) {
  std::istringstream is(header("XX", size + 100, 0) + zeros(size + 100));
  const Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<std::size_t>(is.tellg()), size);
  EXPECT_EQ(block.header.length, size + 100);
}

TEST(Reading, BlocksOfFixedSizeByThatSize) {
  expectReadByItsSize<HDBLOCK>(104);
  expectReadByItsSize<FHBLOCK>(56);
  expectReadByItsSize<DGBLOCK>(64);
  expectReadByItsSize<CGBLOCK>(104);
  expectReadByItsSize<SIBLOCK>(56);
  expectReadByItsSize<HLBLOCK>(40);
  expectReadByItsSize<SRBLOCK>(64);
}

TEST(Reading, AnyBlockAsAnyOther) {
  auto is = fileWith(channelBytes());
  const DTBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(block.header.mdfID.idInternal, 0x54442323U);
  EXPECT_EQ(text(block.getData()), channelBytes().substr(24));
}

TEST(Reading, AsADataListNeedsSixteenBytesAfterTheLinks) {
  for (const std::size_t count : {std::size_t{8}, std::size_t{16}}) {
    std::istringstream is(header("XX", 24 + 8 + count, 1) + links(5) + u8(255) + zeros(count - 1));
    const DLBLOCK raw(is);
    EXPECT_EQ(is.good(), count == 16);
    EXPECT_EQ(linksOf(raw), count == 16 ? (Links{0, 5}) : Links{0});
  }
}

}  // namespace
