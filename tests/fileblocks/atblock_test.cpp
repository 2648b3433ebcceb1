#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::ATBLOCK;
using mdf_v4_10::LINK;

namespace {

const char* const sixteen = "0123456789ABCDEF";

std::string embeddedIn(const ATBLOCK& block) {
  return {block.at_embedded_data.begin(), block.at_embedded_data.end()};
}

ATBLOCK embedding(const std::string& content) { return {content.data(), content.size()}; }

ATBLOCK distinctBlock() {
  ATBLOCK block("embedded..", 10);
  block.setNextATBlock(100);
  block.setTXFilenameBlock(200);
  block.setTXMimetypeBlock(300);
  block.setMDBlock(400);
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
  return Bytes()
      .text("##AT")
      .u8s({1, 2, 3, 4})
      .u64(106)
      .u64(4)
      .links({100, 200, 300, 400})
      .u16(5)
      .u16(2)
      .u8s({11, 12, 13, 14})
      .text("md5-checksum-16.")
      .u64(0x0102030405060708)
      .u64(10)
      .text("embedded..");
}

TEST(ATBLOCK, NewBlockHasNoLinksAndNoContent) {
  const ATBLOCK block;
  EXPECT_EQ(block.header.length, 96U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(embeddedIn(block), "");
  EXPECT_EQ(block.getSize(), 96U);
  EXPECT_BYTES(written(block), Bytes().header("AT", 96, 0).zeros(40));
}

TEST(ATBLOCK, BlockFromBytesEmbedsThem) {
  const ATBLOCK block("abc", 3);
  EXPECT_EQ(block.header.length, 99U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.at_flags, 1);
  EXPECT_TRUE(block.isEmbeddedData());
  EXPECT_EQ(embeddedIn(block), "abc");
  EXPECT_EQ(block.getSize(), 99U);
  EXPECT_BYTES(written(block),
               Bytes().header("AT", 99, 0).u16(1).zeros(2 + 4 + 16 + 8).u64(3).text("abc"));
}

TEST(ATBLOCK, BlockFromNoBytesIsFlaggedAsEmbedded) {
  EXPECT_BYTES(written(ATBLOCK(nullptr, 0)), Bytes().header("AT", 96, 0).u16(1).zeros(38));
}

TEST(ATBLOCK, EmbeddedBytesAreTakenAsTheyAre) {
  const std::string content("a\0b\xFF\n", 5);
  const ATBLOCK block = embedding(content);
  EXPECT_EQ(embeddedIn(block), content);
  EXPECT_BYTES(written(block), Bytes().header("AT", 101, 0).u16(1).zeros(30).u64(5).text(content));
}

TEST(ATBLOCK, SetupReplacesTheContentAndLeavesTheFlags) {
  ATBLOCK block("abc", 3);
  block.setup("twenty bytes of text", 20);
  EXPECT_EQ(block.getSize(), 116U);
  EXPECT_EQ(block.header.length, 116U);
  EXPECT_EQ(embeddedIn(block), "twenty bytes of text");
  EXPECT_EQ(block.at_flags, 1);
  block.at_flags = 0xFFFE;
  block.setup("", 0);
  EXPECT_EQ(block.getSize(), 96U);
  EXPECT_EQ(block.header.length, 96U);
  EXPECT_EQ(embeddedIn(block), "");
  EXPECT_EQ(block.at_flags, 0xFFFE);
  ATBLOCK empty;
  empty.setup("abc", 3);
  EXPECT_EQ(empty.at_flags, 0);
  EXPECT_EQ(empty.header.link_count, 0U);
}

TEST(ATBLOCK, SetupTakesAPieceOfItsOwnContent) {
  ATBLOCK block("0123456789", 10);
  block.setup(reinterpret_cast<const char*>(block.at_embedded_data.data()) + 2, 5);
  EXPECT_EQ(embeddedIn(block), "23456");
}

TEST(ATBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(ATBLOCK, WritesExtremeValues) {
  ATBLOCK block("\xFF", 1);
  block.setNextATBlock(INT64_MAX);
  block.setTXFilenameBlock(INT64_MIN);
  block.setTXMimetypeBlock(-1);
  block.setMDBlock(INT64_MAX);
  block.at_flags = 0xFFFF;
  block.setCreatorIndex(0xFFFF);
  block.setOriginalSize(UINT64_MAX);
  fillBytes(block.at_reserved, 255);
  fillBytes(block.at_md5_checksum, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("AT", 97, 4)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX})
                                   .u16(0xFFFF)
                                   .u16(0xFFFF)
                                   .u32(UINT32_MAX)
                                   .u64(UINT64_MAX)
                                   .u64(UINT64_MAX)
                                   .u64(UINT64_MAX)
                                   .u64(1)
                                   .u8(255));
}

TEST(ATBLOCK, WritesContentOfAnySizeWithoutFill) {
  for (const std::size_t size : {1U, 7U, 8U, 9U, 900U, 927U, 928U, 929U, 1024U, 100000U}) {
    SCOPED_TRACE(size);
    ATBLOCK block = embedding(std::string(size, 'x'));
    block.setMDBlock(0);
    EXPECT_EQ(written(block), Bytes()
                                  .header("AT", 96 + size, 4)
                                  .zeros(32)
                                  .u16(1)
                                  .zeros(30)
                                  .u64(size)
                                  .text(std::string(size, 'x'))
                                  .str());
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
    Bytes expected;
    expected.header("AT", 99, 8888);
    for (std::size_t i = 0; i < link_count; ++i) {
      expected.i64(5);
    }
    EXPECT_BYTES(written(block), expected.u16(1).zeros(30).u64(3).text("abc"));
    EXPECT_EQ(block.header.length, 9999U);
    EXPECT_EQ(block.getSize(), 99U);
  }
}

TEST(ATBLOCK, FirstLinkSetterMakesFourLinks) {
  struct {
    void (ATBLOCK::*set)(LINK);
    std::vector<LINK> links;
  } const setters[] = {{&ATBLOCK::setNextATBlock, {77, 0, 0, 0}},
                       {&ATBLOCK::setTXFilenameBlock, {0, 77, 0, 0}},
                       {&ATBLOCK::setTXMimetypeBlock, {0, 0, 77, 0}},
                       {&ATBLOCK::setMDBlock, {0, 0, 0, 77}}};
  for (const auto& setter : setters) {
    ATBLOCK block;
    (block.*setter.set)(77);
    EXPECT_EQ(linksOf(block), setter.links);
    EXPECT_EQ(block.header.link_count, 4U);
    EXPECT_EQ(block.header.length, 96U);
  }
}

TEST(ATBLOCK, SettingANilLinkMakesFourLinks) {
  ATBLOCK block;
  block.setMDBlock(0);
  EXPECT_BYTES(written(block), Bytes().header("AT", 96, 4).zeros(72));
}

TEST(ATBLOCK, LinkSetterFillsUpAShortLinkSection) {
  ATBLOCK block;
  block.links = {1, 2};
  block.header.link_count = 2;
  block.setNextATBlock(77);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{77, 2, 0, 0}));
  EXPECT_EQ(block.header.link_count, 4U);
}

TEST(ATBLOCK, LinkSetterLeavesTheLinkCountOfALinkSectionWithFourLinks) {
  ATBLOCK block;
  block.links = {1, 2, 3, 4};
  block.header.link_count = 9;
  block.setMDBlock(77);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 77}));
  EXPECT_EQ(block.header.link_count, 9U);
}

TEST(ATBLOCK, LinkSetterLeavesALongerLinkSectionAsItIs) {
  ATBLOCK block;
  block.links = {1, 2, 3, 4, 5};
  block.header.link_count = 5;
  block.setMDBlock(77);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 77, 5}));
  EXPECT_EQ(block.header.link_count, 5U);
}

TEST(ATBLOCK, EachFlagIsClearedAlone) {
  ATBLOCK block;
  block.at_flags = 0xFFFF;
  block.setEmbeddedDataFlag(false);
  EXPECT_EQ(block.at_flags, 0xFFFE);
  block.at_flags = 0xFFFF;
  block.setCompressedEmbeddedDataFlag(false);
  EXPECT_EQ(block.at_flags, 0xFFFD);
  block.at_flags = 0xFFFF;
  block.setMD5ChecksumFlag(false);
  EXPECT_EQ(block.at_flags, 0xFFFB);
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

TEST(ATBLOCK, ClearingTheEmbeddingLeavesTheCompression) {
  ATBLOCK block;
  block.at_flags = 3;
  block.setEmbeddedDataFlag(false);
  EXPECT_EQ(block.at_flags, 2);
  EXPECT_TRUE(block.isCompressedEmbeddedData());
}

TEST(ATBLOCK, SetMD5ChecksumWritesIntoTheEmbeddedBytes) {
  ATBLOCK block("abcdefghijklmnopqrst", 20);
  fillBytes(block.at_md5_checksum, 9);
  block.setMD5Checksum(sixteen);
  EXPECT_EQ(embeddedIn(block), "0123456789ABCDEFqrst");
  EXPECT_EQ(block.getMD5Checksum(), std::string(16, 9));
  EXPECT_EQ(block.at_flags, 1);
  EXPECT_EQ(block.getSize(), 116U);
}

TEST(ATBLOCK, SetMD5ChecksumNeedsExactlySixteenCharacters) {
  for (const std::size_t count : {0U, 1U, 15U, 17U, 32U}) {
    SCOPED_TRACE(count);
    ATBLOCK block("abcdefghijklmnopqrst", 20);
    block.setMD5Checksum(std::string(count, 'x').c_str());
    EXPECT_EQ(embeddedIn(block), "abcdefghijklmnopqrst");
    EXPECT_EQ(block.getMD5Checksum(), std::string(16, '\0'));
    EXPECT_EQ(block.at_flags, 1);
  }
}

TEST(ATBLOCK, DigestWithAZeroByteIsTooShort) {
  ATBLOCK block("abcdefghijklmnopqrst", 20);
  block.setMD5Checksum("0123456\089ABCDEF");
  EXPECT_EQ(embeddedIn(block), "abcdefghijklmnopqrst");
}

TEST(ATBLOCK, SetMD5ChecksumWithFewerThanSixteenEmbeddedBytesDoesNothing) {
  for (const std::size_t size : {0U, 1U, 15U}) {
    SCOPED_TRACE(size);
    ATBLOCK block = embedding(std::string(size, 'x'));
    block.setMD5Checksum(sixteen);
    EXPECT_EQ(embeddedIn(block), std::string(size, 'x'));
    EXPECT_EQ(block.getMD5Checksum(), std::string(16, '\0'));
  }
}

TEST(ATBLOCK, SetMD5ChecksumWithSixteenEmbeddedBytesReplacesThemAll) {
  ATBLOCK block("abcdefghijklmnop", 16);
  block.setMD5Checksum(
      "\x80\xFF"
      "23456789ABCDEF");
  EXPECT_EQ(embeddedIn(block),
            "\x80\xFF"
            "23456789ABCDEF");
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
  EXPECT_NE(dumped(block).find("md5-checksum-16."), std::string::npos);
  block.setMD5ChecksumFlag(false);
  block.setCompressedEmbeddedDataFlag(true);
  EXPECT_EQ(dumped(block).find("md5-checksum-16."), std::string::npos);
  EXPECT_EQ(shownValues(block), "106 100 200 300 400 1 1 0 2 72623859790382856 10");
}

TEST(ATBLOCK, DumpOfANewBlockShowsZeroForTheMissingLinks) {
  EXPECT_EQ(shownValues(ATBLOCK()), "96 0 0 0 0 0 0 0 0 0 0");
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

TEST(ATBLOCK, DumpLeavesTheStreamsIntegerBase) {
  for (const auto base : {std::ios_base::dec, std::ios_base::hex, std::ios_base::oct}) {
    std::ostringstream os;
    os.setf(base, std::ios_base::basefield);
    const auto flags = os.flags();
    distinctBlock().print(os);
    EXPECT_EQ(os.flags(), flags);
  }
}

}  // namespace
