#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

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

TEST(FHBLOCK, WritesTheNextBlockBeforeTheComment) {
  EXPECT_BYTES(written(FHBLOCK(300, 5, -60, 0)), Bytes()
                                                     .header("FH", 56, 2)
                                                     .links({0, 300})
                                                     .u64(5)
                                                     .u8s({0xC4, 0xFF})
                                                     .u8s({0, 0})
                                                     .u8s({2, 0, 0, 0}));
}

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

TEST(FHBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== FHBLOCK ===================\n"
            "block size = 56\n"
            "next file history block (pointer) = 100\n"
            "file comment (pointer) = 200\n"
            "time = 72623859790382856\n"
            "UTC time offset = -60\n"
            "DST time offset = 4370\n"
            "time flags = 21\n"
            "[DEBUG] ==================== End of FHBLOCK ===================\n");
}

TEST(FHBLOCK, DumpOfExtremeValues) {
  FHBLOCK block(INT64_MIN, UINT64_MAX, INT16_MIN, -1);
  block.fh_dst_offset_min = -1;
  block.fh_time_flags = 255;
  EXPECT_EQ(shownValues(block), "56 -1 -9223372036854775808 18446744073709551615 -32768 -1 255");
}

TEST(FHBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  FHBLOCK block(300, 5, 0, -1);
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "56 -1 0 5 0 0 2");
  EXPECT_EQ(block.getMDBlock(), 0);
}

}  // namespace
