#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::FHBLOCK;
using mdf_v4_10::LINK;

namespace {

FHBLOCK distinctBlock() {
  FHBLOCK block(200, 0x0102030405060708, -60, 100);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.fh_dst_offset_min = 0x1112;
  block.fh_time_flags = 21;
  setBytes(block.fh_reserved, {22, 23, 24});
  return block;
}

/// The data section of the block above; only the reserved bytes are up to the caller.
std::string distinctFields(std::initializer_list<int> reserved) {
  return Bytes()
      .u8s({8, 7, 6, 5, 4, 3, 2, 1})
      .u8s({0xC4, 0xFF})
      .u8s({0x12, 0x11})
      .u8(21)
      .u8s(reserved);
}

std::string distinctBytes() {
  return Bytes()
      .text("##FH")
      .u8s({1, 2, 3, 4})
      .u64(56)
      .u64(2)
      .links({100, 200})
      .text(distinctFields({22, 23, 24}));
}

/// What a block that was read from the bytes above writes: reserved bytes are not taken.
std::string distinctBytesReadBack() {
  return Bytes().header("FH", 56, 2).links({100, 200}).text(distinctFields({0, 0, 0}));
}

/// What a block writes that holds nothing but this length and link count.
std::string bytesWithoutLinks(std::uint64_t length, std::uint64_t link_count) {
  return Bytes().header("FH", length, link_count).zeros(16);
}

TEST(FHBLOCK, Constants) {
  EXPECT_EQ(FHBLOCK::FHBLOCK_SIZE, 56U);
  EXPECT_EQ(FHBLOCK::MDF_FH_ID, 0x4846);
}

TEST(FHBLOCK, EnumerationValues) {
  EXPECT_EQ(FHBLOCK::fh_fh_next, 0);
  EXPECT_EQ(FHBLOCK::fh_md_comment, 1);
  EXPECT_EQ(FHBLOCK::FH_BLOCK_LINKS_NUM, 2);
}

TEST(FHBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::fhblock_fields, 40),
            "40 8 fh_time_ns\n"
            "48 2 fh_tz_offset_min\n"
            "50 2 fh_dst_offset_min\n"
            "52 1 fh_time_flags\n"
            "53 3 fh_reserved\n");
}

TEST(FHBLOCK, WritesTheNextBlockBeforeTheComment) {
  EXPECT_BYTES(written(FHBLOCK(300, 5, -60, 0)), Bytes()
                                                     .header("FH", 56, 2)
                                                     .links({0, 300})
                                                     .u64(5)
                                                     .u8s({0xC4, 0xFF})
                                                     .u8s({0, 0})
                                                     .u8s({2, 0, 0, 0}));
}

TEST(FHBLOCK, ConstructorLeavesPaddingZero) { EXPECT_EQ(distinctBlock().getPadding(), 0); }

TEST(FHBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(FHBLOCK, WritesExtremeValues) {
  FHBLOCK block(INT64_MIN, UINT64_MAX, INT16_MIN, INT64_MAX);
  block.fh_dst_offset_min = INT16_MAX;
  block.fh_time_flags = 255;
  fillBytes(block.fh_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("FH", 56, 2)
                                   .links({INT64_MAX, INT64_MIN})
                                   .u64(UINT64_MAX)
                                   .u8s({0x00, 0x80})
                                   .u8s({0xFF, 0x7F})
                                   .u8s({255, 255, 255, 255}));
}

TEST(FHBLOCK, HeaderAndLinksAreWrittenAsTheyAreStored) {
  FHBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##FH")
                                   .u8s({1, 2, 3, 4})
                                   .u64(9999)
                                   .u64(77)
                                   .links({5, 6, 7})
                                   .text(distinctFields({22, 23, 24})));
}

TEST(FHBLOCK, Accessors) {
  FHBLOCK block = distinctBlock();
  EXPECT_EQ(block.getNextFHBlock(), 100);
  EXPECT_EQ(block.getMDBlock(), 200);
  block.setNextFHBlock(11);
  block.setMDBlock(-12);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, -12}));
  EXPECT_EQ(block.getNextFHBlock(), 11);
  EXPECT_EQ(block.getMDBlock(), -12);
  EXPECT_EQ(block.getTime(), 0x0102030405060708U);
  EXPECT_EQ(block.getUtcOffset(), -60);
  EXPECT_EQ(block.getSize(), 56U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "fh_comment.xsd");
  EXPECT_TRUE((std::is_same_v<decltype(block.getUtcOffset()), std::int16_t>));
}

void expectLeadTo(const FHBLOCK& block, LINK next, LINK comment) {
  const LinkTargetFile file;
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextFHBlock(ifs); }, next);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgMDBlock(ifs); }, comment);
}

TEST(FHBLOCK, FollowsItsLinks) { expectLeadTo(distinctBlock(), 100, 200); }

TEST(FHBLOCK, FollowingANilLinkLeadsToOffsetZero) { expectLeadTo(FHBLOCK(0, 0, 0, 0), 0, 0); }

TEST(FHBLOCK, AListIsWalkedUntilTheNilLink) {
  const LinkTargetFile file(written(FHBLOCK(0, 1, 0, 112)) + written(FHBLOCK(0, 3, 0, 0)) +
                            written(FHBLOCK(0, 2, 0, 56)));
  std::ifstream ifs = file.open();
  std::vector<mdf_v4_10::UINT64> times;
  std::vector<LINK> links;
  do {
    const FHBLOCK block(ifs);
    times.push_back(block.getTime());
    links.push_back(block.seekgNextFHBlock(ifs));
  } while (links.back() != 0 && links.size() < 10);
  EXPECT_EQ(times, (std::vector<mdf_v4_10::UINT64>{1, 2, 3}));
  EXPECT_EQ(links, (std::vector<LINK>{112, 56, 0}));
  EXPECT_EQ(ifs.rdstate(), state_good);
}

const std::string distinct_dump =
    "[DEBUG] ==================== FHBLOCK ===================\n"
    "block size = 56\n"
    "next file history block (pointer) = 100\n"
    "file comment (pointer) = 200\n"
    "time = 72623859790382856\n"
    "UTC time offset = -60\n"
    "DST time offset = 4370\n"
    "time flags = 21\n"
    "[DEBUG] ==================== End of FHBLOCK ===================\n";

TEST(FHBLOCK, Dump) { EXPECT_EQ(dumped(distinctBlock()), distinct_dump); }

TEST(FHBLOCK, DumpOfExtremeValues) {
  FHBLOCK block(INT64_MIN, UINT64_MAX, INT16_MIN, -1);
  block.fh_dst_offset_min = -1;
  block.fh_time_flags = 255;
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== FHBLOCK ===================\n"
            "block size = 56\n"
            "next file history block (pointer) = -1\n"
            "file comment (pointer) = -9223372036854775808\n"
            "time = 18446744073709551615\n"
            "UTC time offset = -32768\n"
            "DST time offset = -1\n"
            "time flags = 255\n"
            "[DEBUG] ==================== End of FHBLOCK ===================\n");
}

TEST(FHBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  FHBLOCK block(300, 5, 0, -1);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== FHBLOCK ===================\n"
            "block size = 56\n"
            "next file history block (pointer) = -1\n"
            "file comment (pointer) = 0\n"
            "time = 5\n"
            "UTC time offset = 0\n"
            "DST time offset = 0\n"
            "time flags = 2\n"
            "[DEBUG] ==================== End of FHBLOCK ===================\n");
  EXPECT_EQ(block.getMDBlock(), 0);
}

TEST(FHBLOCK, DumpOfABlockThatWasReadShowsTheConstantSize) {
  std::string bytes = distinctBytes();
  bytes.replace(8, 8, Bytes().u64(9999));
  EXPECT_EQ(dumped(readBack<FHBLOCK>(bytes)), distinct_dump);
}

TEST(FHBLOCK, ReaderTakesEverythingButReservedBytes) {
  const auto block = readBack<FHBLOCK>(distinctBytes());
  EXPECT_BYTES(written(block), distinctBytesReadBack());
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(FHBLOCK, ReaderTakesExtremeValues) {
  const std::string bytes = Bytes()
                                .header("FH", UINT64_MAX, 2)
                                .links({INT64_MIN, INT64_MAX})
                                .text(std::string(13, '\xFF'))
                                .zeros(3);
  EXPECT_BYTES(written(readBack<FHBLOCK>(bytes)), bytes);
}

TEST(FHBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<FHBLOCK>(bytes)), distinctBytesReadBack());
}

TEST(FHBLOCK, CutStreamKeepsItsOwnState) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const FHBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    EXPECT_BYTES(written(block), bytesWithoutLinks(0, 0));
  });
}

TEST(FHBLOCK, FailedStreamIsNotRead) {
  for (const auto state : failed_states) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const FHBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    EXPECT_BYTES(written(block), bytesWithoutLinks(0, 0));
  }
}

TEST(FHBLOCK, AccessorsServeABlockWhoseReadFailed) {
  std::istringstream is;
  FHBLOCK block(is);
  EXPECT_EQ(block.getNextFHBlock(), 0);
  EXPECT_EQ(block.getMDBlock(), 0);
  expectLeadTo(block, 0, 0);
  block.setMDBlock(5);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 5}));
}

TEST(FHBLOCK, FieldsFollowTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 2; ++link_count) {
    SCOPED_TRACE(link_count);
    const std::string links = distinctBytes().substr(24, std::size_t{8} * link_count);
    std::string bytes =
        Bytes().header("FH", 77, link_count).text(links).text(distinctFields({22, 23, 24}));
    bytes.resize(56, '\x55');
    EXPECT_BYTES(written(readBack<FHBLOCK>(bytes)),
                 Bytes().header("FH", 77, link_count).text(links).text(distinctFields({0, 0, 0})));
  }
}

TEST(FHBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count : lyingLinkCounts(3)) {
    SCOPED_TRACE(link_count);
    std::string bytes = distinctBytes();
    bytes.replace(16, 8, Bytes().u64(link_count));
    std::istringstream is(bytes);
    const FHBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), bytesWithoutLinks(56, link_count));
  }
}

}  // namespace
