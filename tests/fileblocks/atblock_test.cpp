#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

const char* const sixteen = "0123456789ABCDEF";

std::string embeddedIn(const ATBLOCK& block) {
  return {block.at_embedded_data.begin(), block.at_embedded_data.end()};
}

ATBLOCK embedding(const std::string& content) { return {content.data(), content.size()}; }

ATBLOCK distinctBlock() {
  ATBLOCK block("embedded..", 10);
  block.links = {100, 200, 300, 400};
  block.header.link_count = 4;
  block.setMD5ChecksumFlag(true);
  block.setCreatorIndex(2);
  block.setOriginalSize(0x0102030405060708);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.at_reserved, {11, 12, 13, 14});
  setBytes(block.at_md5_checksum,
           {'m', 'd', '5', '-', 'c', 'h', 'e', 'c', 'k', 's', 'u', 'm', '-', '1', '6', '.'});
  return block;
}

std::string distinctBytes() {
  return header("AT", 106, 4, {1, 2, 3, 4}) + links(100, 200, 300, 400) + u16(5, 2) +
         u8(11, 12, 13, 14) + "md5-checksum-16." + u64(0x0102030405060708, 10) + "embedded..";
}

TEST(ATBLOCK, NewBlockHasNoLinksAndNoContent) {
  EXPECT_BYTES(written(ATBLOCK()), header("AT", 96, 0) + zeros(40));
  EXPECT_BYTES(written(ATBLOCK().header), header("AT", 96, 0));
}

TEST(ATBLOCK, BlockFromBytesEmbedsThemAsTheyAre) {
  const std::string content("a\0b\xFF\n", 5);
  const ATBLOCK block = embedding(content);
  EXPECT_BYTES(written(block), header("AT", 101, 0) + u16(1) + zeros(30) + u64(5) + content);
  EXPECT_BYTES(written(block.header), header("AT", 101, 0));
  EXPECT_BYTES(written(ATBLOCK(nullptr, 0)), header("AT", 96, 0) + u16(1) + zeros(38));
}

TEST(ATBLOCK, SetupReplacesTheContentAndLeavesTheFlags) {
  ATBLOCK block("abc", 3);
  block.setup("twenty bytes of text", 20);
  EXPECT_EQ(block.header.length, 116U);
  EXPECT_EQ(embeddedIn(block), "twenty bytes of text");
  EXPECT_EQ(block.at_flags, 1);
  block.at_flags = 0xFFFE;
  block.setup("", 0);
  EXPECT_BYTES(written(block), header("AT", 96, 0) + u16(0xFFFE) + zeros(38));
  EXPECT_EQ(block.header.length, 96U);
}

TEST(ATBLOCK, SetupTakesAPieceOfItsOwnContent) {
  ATBLOCK block("0123456789", 10);
  block.setup(reinterpret_cast<const char*>(block.at_embedded_data.data()) + 2, 5);
  EXPECT_EQ(embeddedIn(block), "23456");
}

TEST(ATBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(ATBLOCK, WritesContentOfAnySizeWithoutFill) {
  for (const std::size_t size : {1U, 7U, 8U, 9U, 900U, 927U, 928U, 929U, 1024U, 100000U}) {
    SCOPED_TRACE(size);
    ATBLOCK block = embedding(std::string(size, 'x'));
    block.setMDBlock(0);
    EXPECT_EQ(written(block), header("AT", 96 + size, 4) + zeros(32) + u16(1) + zeros(30) +
                                  u64(size) + std::string(size, 'x'));
    EXPECT_EQ(block.getSize(), 96 + size);
  }
}

TEST(ATBLOCK, LengthWrittenAssumesFourLinksAndTheStoredLinksAreWritten) {
  for (std::size_t link_count = 0; link_count <= 6; ++link_count) {
    SCOPED_TRACE(link_count);
    ATBLOCK block("abc", 3);
    block.links.assign(link_count, 5);
    block.header.length = 9999;
    block.header.link_count = 8888;
    EXPECT_BYTES(written(block), header("AT", 99, 8888) + listed(std::vector<LINK>(link_count, 5)) +
                                     u16(1) + zeros(30) + u64(3) + "abc");
    EXPECT_EQ(block.header.length, 9999U);
    EXPECT_EQ(block.getSize(), 99U);
  }
}

TEST(ATBLOCK, LinkSetterFillsAShortLinkSectionUpToFourLinksAndCountsThem) {
  const struct {
    std::vector<LINK> before;
    std::vector<LINK> after;
    std::uint64_t link_count;
  } cases[] = {{{}, {0, 0, 77, 0}, 4},
               {{1, 2}, {1, 2, 77, 0}, 4},
               {{1, 2, 3, 4}, {1, 2, 77, 4}, 9},
               {{1, 2, 3, 4, 5}, {1, 2, 77, 4, 5}, 9}};
  for (const auto& [before, after, link_count] : cases) {
    ATBLOCK block;
    block.links = before;
    block.header.link_count = 9;
    block.setTXMimetypeBlock(77);
    EXPECT_EQ(linksOf(block), after);
    EXPECT_BYTES(written(block.header), header("AT", 96, link_count));
  }
}

TEST(ATBLOCK, CompressionWithoutEmbeddingIsRefused) {
  ATBLOCK block;
  block.setCompressedEmbeddedDataFlag(true);
  EXPECT_EQ(block.at_flags, 0);
  EXPECT_FALSE(block.isCompressedEmbeddedData());
  block.setEmbeddedDataFlag(true);
  EXPECT_EQ(block.at_flags, 1);
  block.setCompressedEmbeddedDataFlag(true);
  EXPECT_EQ(block.at_flags, 3);
  EXPECT_TRUE(block.isCompressedEmbeddedData());
  block.setCompressedEmbeddedDataFlag(false);
  EXPECT_EQ(block.at_flags, 1);
}

TEST(ATBLOCK, RefusedCompressionClearsTheFlag) {
  for (const bool set : {false, true}) {
    ATBLOCK block;
    block.at_flags = 0xFFFE;
    block.setCompressedEmbeddedDataFlag(set);
    EXPECT_EQ(block.at_flags, 0xFFFC);
  }
}

TEST(ATBLOCK, SetMD5ChecksumWritesIntoTheEmbeddedBytes) {
  ATBLOCK block("abcdefghijklmnopqrst", 20);
  fillBytes(block.at_md5_checksum, 9);
  block.setMD5Checksum(sixteen);
  EXPECT_EQ(embeddedIn(block), "0123456789ABCDEFqrst");
  EXPECT_EQ(block.getMD5Checksum(), std::string(16, 9));
  EXPECT_EQ(block.at_flags, 1);

  ATBLOCK as_long_as_a_digest("abcdefghijklmnop", 16);
  as_long_as_a_digest.setMD5Checksum(sixteen);
  EXPECT_EQ(embeddedIn(as_long_as_a_digest), sixteen);
}

TEST(ATBLOCK, SetMD5ChecksumNeedsSixteenCharactersAndSixteenEmbeddedBytes) {
  const std::pair<std::size_t, std::string> cases[] = {{20, ""},
                                                       {20, "x"},
                                                       {20, std::string(15, 'x')},
                                                       {20, std::string(17, 'x')},
                                                       {20, std::string(32, 'x')},
                                                       {20, std::string("0123456\0"
                                                                        "89ABCDEF",
                                                                        16)},
                                                       {0, sixteen},
                                                       {1, sixteen},
                                                       {15, sixteen}};
  for (const auto& [size, digest] : cases) {
    SCOPED_TRACE(digest);
    ATBLOCK block = embedding(std::string(size, '-'));
    const std::string before = written(block);
    block.setMD5Checksum(digest.c_str());
    EXPECT_BYTES(written(block), before);
  }
}

TEST(ATBLOCK, GetMD5ChecksumGivesSixteenCharacters) {
  ATBLOCK block;
  setBytes(block.at_md5_checksum, {1, 0, 255, 0, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 0});
  EXPECT_EQ(block.getMD5Checksum(),
            std::string("\x01\x00\xFF\x00\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x00", 16));
}

TEST(ATBLOCK, DumpPutsTheEndBannerDirectlyAfterTheContent) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== ATBLOCK ===================\n"
            "block size = 106\n"
            "next attached block (pointer) = 100\n"
            "filename text (pointer) = 200\n"
            "mimetype text (pointer) = 300\n"
            "comment md (pointer) = 400\n"
            "flags = embedded(1), compressed(0), md5(1)\n"
            "creator index = 2\n"
            "md5 checksum = md5-checksum-16.\n"
            "original size = 72623859790382856\n"
            "embedded size = 10\n"
            "embedded text data = \n"
            "embedded..[DEBUG] ==================== End of ATBLOCK ===================\n");
}

TEST(ATBLOCK, DumpHasAChecksumLineOnlyWithTheFlag) {
  ATBLOCK block = distinctBlock();
  block.at_flags = 3;
  EXPECT_EQ(dumped(block).find("md5-checksum-16."), std::string::npos);
  EXPECT_EQ(shownValues(block), "106 100 200 300 400 1 1 0 2 72623859790382856 10");
}

TEST(ATBLOCK, DumpShowsBytesRawAndExtremeValues) {
  const std::string content("a\0\xFF\nb", 5);
  ATBLOCK block = embedding(content);
  block.header.length = 9999;
  block.links = {-1, INT64_MIN};
  block.at_flags = 0xFFFF;
  block.setCreatorIndex(0xFFFF);
  block.setOriginalSize(UINT64_MAX);
  EXPECT_EQ(shownValues(block),
            "101 -1 -9223372036854775808 0 0 1 1 1 65535 18446744073709551615 5");
  EXPECT_NE(dumped(block).find(" = " + std::string(16, '\0') + "\n"), std::string::npos);
  EXPECT_NE(dumped(block).find("\n" + content + "[DEBUG]"), std::string::npos);
}

TEST(ATBLOCK, DumpShowsFlagsAsTheStreamShowsBooleans) {
  EXPECT_EQ(shownValues(distinctBlock(), std::boolalpha),
            "106 100 200 300 400 true false true 2 72623859790382856 10");
}

}  // namespace
