#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <ios>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::ATBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT16;
using mdf_v4_10::UINT64;
using mdf_v4_10::UINT8;

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

/// A file's block with four links, flags 1, and everything up to the embedded size.
Bytes bytesBeforeContent(std::uint64_t length, std::uint64_t link_count, std::uint64_t size) {
  return Bytes()
      .header("AT", length, link_count)
      .links({1, 2, 3, 4})
      .u16(1)
      .u16(7)
      .zeros(4)
      .text("fedcba9876543210")
      .u64(9)
      .u64(size);
}

TEST(ATBLOCK, Constants) {
  EXPECT_EQ(ATBLOCK::ATBLOCK_CONSTANT_SIZE, 96U);
  EXPECT_EQ(ATBLOCK::MDF_AT_MD5, 16U);
  EXPECT_EQ(ATBLOCK::MDF_AT_ID, 0x5441);
  EXPECT_EQ(ATBLOCK::MDF_AT_ID, 21569);
}

TEST(ATBLOCK, EnumerationValues) {
  EXPECT_EQ(ATBLOCK::at_at_next, 0);
  EXPECT_EQ(ATBLOCK::at_tx_filename, 1);
  EXPECT_EQ(ATBLOCK::at_tx_mimetype, 2);
  EXPECT_EQ(ATBLOCK::at_md_comment, 3);
  EXPECT_EQ(ATBLOCK::AT_BLOCK_LINKS_NUM, 4);
  EXPECT_EQ(ATBLOCK::embedded_data, 1);
  EXPECT_EQ(ATBLOCK::compressed_embedded_data, 2);
  EXPECT_EQ(ATBLOCK::md5_checksum, 4);
}

TEST(ATBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::atblock_fields, 56),
            "56 2 at_flags\n"
            "58 2 at_creator_index\n"
            "60 4 at_reserved\n"
            "64 16 at_md5_checksum\n"
            "80 8 at_original_size\n"
            "88 8 at_embedded_size\n");
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

TEST(ATBLOCK, Accessors) {
  ATBLOCK block;
  block.setNextATBlock(11);
  block.setTXFilenameBlock(12);
  block.setTXMimetypeBlock(13);
  block.setMDBlock(14);
  block.setCreatorIndex(15);
  block.setOriginalSize(16);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12, 13, 14}));
  EXPECT_EQ(block.getNextATBlock(), 11);
  EXPECT_EQ(block.getTXFilenameBlock(), 12);
  EXPECT_EQ(block.getTXMimetypeBlock(), 13);
  EXPECT_EQ(block.getMDBlock(), 14);
  EXPECT_EQ(block.getCreatorIndex(), 15);
  EXPECT_EQ(block.at_creator_index, 15);
  EXPECT_EQ(block.getOriginalSize(), 16U);
  EXPECT_EQ(block.at_original_size, 16U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "at_comment.xsd");
}

TEST(ATBLOCK, MissingLinksAreNil) {
  const ATBLOCK block;
  EXPECT_EQ(block.getNextATBlock(), 0);
  EXPECT_EQ(block.getTXFilenameBlock(), 0);
  EXPECT_EQ(block.getTXMimetypeBlock(), 0);
  EXPECT_EQ(block.getMDBlock(), 0);
}

TEST(ATBLOCK, EachFlagIsSetAndClearedAlone) {
  for (const int others : {0, 0xFFF8}) {
    ATBLOCK block;
    block.at_flags = static_cast<UINT16>(others);
    block.setEmbeddedDataFlag(true);
    EXPECT_EQ(block.at_flags, others | 1);
    EXPECT_TRUE(block.isEmbeddedData());
    EXPECT_FALSE(block.isCompressedEmbeddedData());
    EXPECT_FALSE(block.isMD5Checksum());
    block.setEmbeddedDataFlag(false);
    EXPECT_EQ(block.at_flags, others);
    EXPECT_FALSE(block.isEmbeddedData());
    block.setMD5ChecksumFlag(true);
    EXPECT_EQ(block.at_flags, others | 4);
    EXPECT_FALSE(block.isEmbeddedData());
    EXPECT_FALSE(block.isCompressedEmbeddedData());
    EXPECT_TRUE(block.isMD5Checksum());
    block.setMD5ChecksumFlag(false);
    EXPECT_EQ(block.at_flags, others);
    EXPECT_FALSE(block.isMD5Checksum());
  }
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

TEST(ATBLOCK, FollowsItsLinks) {
  const LinkTargetFile file;
  const ATBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextATBlock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXFilenameBlock(ifs); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXMimetypeBlock(ifs); }, 300);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgMDBlock(ifs); }, 400);
}

TEST(ATBLOCK, FollowingANilOrMissingLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  ATBLOCK nil;
  nil.setMDBlock(0);
  for (const ATBLOCK& block : {nil, ATBLOCK()}) {
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgNextATBlock(ifs); }, 0);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXFilenameBlock(ifs); }, 0);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgTXMimetypeBlock(ifs); }, 0);
    file.expectFollows([&](std::ifstream& ifs) { return block.seekgMDBlock(ifs); }, 0);
  }
}

TEST(ATBLOCK, DumpPutsTheEndBannerDirectlyBehindTheContent) {
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
  block.setMD5ChecksumFlag(false);
  block.setCompressedEmbeddedDataFlag(true);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== ATBLOCK ===================\n"
            "block size = 106\n"
            "next attached block (pointer) = 100\n"
            "filename text (pointer) = 200\n"
            "mimetype text (pointer) = 300\n"
            "comment md (pointer) = 400\n"
            "flags = embedded(1), compressed(1), md5(0)\n"
            "creator index = 2\n"
            "original size = 72623859790382856\n"
            "embedded size = 10\n"
            "embedded text data = \n"
            "embedded..[DEBUG] ==================== End of ATBLOCK ===================\n");
}

TEST(ATBLOCK, DumpOfANewBlockShowsZeroForTheMissingLinks) {
  EXPECT_EQ(dumped(ATBLOCK()),
            "[DEBUG] ==================== ATBLOCK ===================\n"
            "block size = 96\n"
            "next attached block (pointer) = 0\n"
            "filename text (pointer) = 0\n"
            "mimetype text (pointer) = 0\n"
            "comment md (pointer) = 0\n"
            "flags = embedded(0), compressed(0), md5(0)\n"
            "creator index = 0\n"
            "original size = 0\n"
            "embedded size = 0\n"
            "embedded text data = \n"
            "[DEBUG] ==================== End of ATBLOCK ===================\n");
}

TEST(ATBLOCK, DumpShowsBytesRawAndExtremeValues) {
  ATBLOCK block("a\0\xFF\nb", 5);
  block.header.length = 9999;
  block.links = {-1, INT64_MIN};
  block.at_flags = 0xFFFF;
  block.setCreatorIndex(0xFFFF);
  block.setOriginalSize(UINT64_MAX);
  EXPECT_EQ(dumped(block), std::string("[DEBUG] ==================== ATBLOCK ===================\n"
                                       "block size = 101\n"
                                       "next attached block (pointer) = -1\n"
                                       "filename text (pointer) = -9223372036854775808\n"
                                       "mimetype text (pointer) = 0\n"
                                       "comment md (pointer) = 0\n"
                                       "flags = embedded(1), compressed(1), md5(1)\n"
                                       "creator index = 65535\n"
                                       "md5 checksum = ") +
                               std::string(16, '\0') +
                               "\n"
                               "original size = 18446744073709551615\n"
                               "embedded size = 5\n"
                               "embedded text data = \n" +
                               std::string("a\0\xFF\nb", 5) +
                               "[DEBUG] ==================== End of ATBLOCK ===================\n");
}

TEST(ATBLOCK, DumpShowsFlagsAsTheStreamShowsBooleans) {
  std::ostringstream os;
  os << std::boolalpha;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== ATBLOCK ===================\n"
            "block size = 106\n"
            "next attached block (pointer) = 100\n"
            "filename text (pointer) = 200\n"
            "mimetype text (pointer) = 300\n"
            "comment md (pointer) = 400\n"
            "flags = embedded(true), compressed(false), md5(true)\n"
            "creator index = 2\n"
            "md5 checksum = md5-checksum-16.\n"
            "original size = 72623859790382856\n"
            "embedded size = 10\n"
            "embedded text data = \n"
            "embedded..[DEBUG] ==================== End of ATBLOCK ===================\n");
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

TEST(ATBLOCK, ReadsEveryField) {
  const auto block = readBack<ATBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 106U);
  EXPECT_EQ(block.header.link_count, 4U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{100, 200, 300, 400}));
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(block.at_flags, 5);
  EXPECT_EQ(block.at_creator_index, 2);
  EXPECT_EQ(block.getMD5Checksum(), "md5-checksum-16.");
  EXPECT_EQ(block.at_original_size, 0x0102030405060708U);
  EXPECT_EQ(embeddedIn(block), "embedded..");
  EXPECT_EQ(block.getSize(), 106U);
}

TEST(ATBLOCK, ReservedBytesAreNotTaken) {
  const auto block = readBack<ATBLOCK>(distinctBytes());
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.at_reserved), (std::array<UINT8, 4>{}));
}

TEST(ATBLOCK, WritingABlockThatWasReadWritesZeroForReservedBytes) {
  EXPECT_BYTES(written(readBack<ATBLOCK>(distinctBytes())), Bytes()
                                                                .header("AT", 106, 4)
                                                                .links({100, 200, 300, 400})
                                                                .u16(5)
                                                                .u16(2)
                                                                .zeros(4)
                                                                .text("md5-checksum-16.")
                                                                .u64(0x0102030405060708)
                                                                .u64(10)
                                                                .text("embedded.."));
}

TEST(ATBLOCK, ReadsExtremeValues) {
  const std::string bytes = Bytes()
                                .header("AT", 97, 4)
                                .links({INT64_MAX, INT64_MIN, -1, INT64_MAX})
                                .u16(0xFFFF)
                                .u16(0xFFFF)
                                .zeros(4)
                                .u64(UINT64_MAX)
                                .u64(UINT64_MAX)
                                .u64(UINT64_MAX)
                                .u64(1)
                                .u8(255);
  EXPECT_BYTES(written(readBack<ATBLOCK>(bytes)), bytes);
}

TEST(ATBLOCK, BlockWithoutContentReadsBackExactly) {
  const std::string bytes = bytesBeforeContent(96, 4, 0);
  EXPECT_BYTES(written(readBack<ATBLOCK>(bytes)), bytes);
}

TEST(ATBLOCK, LongContentReadsBackExactly) {
  for (const std::size_t size : {400U, 500U, 1000U, 65000U, 65536U, 300000U}) {
    SCOPED_TRACE(size);
    std::string content;
    for (std::size_t i = 0; i < size; ++i) {
      content += static_cast<char>(i % 251);
    }
    const std::string bytes = bytesBeforeContent(96 + size, 4, size).text(content);
    const auto block = readBack<ATBLOCK>(bytes);
    EXPECT_EQ(embeddedIn(block), content);
    EXPECT_EQ(written(block), bytes);
  }
}

TEST(ATBLOCK, AnyIdentifierIsRead) {
  std::string bytes = bytesBeforeContent(99, 4, 3).text("abc");
  const std::string with_own_identifier = bytes;
  bytes.replace(0, 8, "XYZ!1234");
  EXPECT_BYTES(written(readBack<ATBLOCK>(bytes)), with_own_identifier);
}

TEST(ATBLOCK, LinkCountSaysWhereTheFieldsAre) {
  for (unsigned link_count = 0; link_count <= 8; ++link_count) {
    SCOPED_TRACE(link_count);
    Bytes bytes;
    bytes.header("AT", 67 + 8 * link_count, link_count);
    std::vector<LINK> links;
    for (unsigned i = 1; i <= link_count; ++i) {
      bytes.i64(i);
      links.push_back(i);
    }
    bytes.u16(4).u16(7).u32(0xFFFFFFFF).text(sixteen).u64(9).u64(3).text("abc");
    const auto block = readBack<ATBLOCK>(bytes);
    EXPECT_EQ(linksOf(block), links);
    EXPECT_EQ(block.header.link_count, link_count);
    EXPECT_EQ(block.at_flags, 4);
    EXPECT_EQ(block.at_creator_index, 7);
    EXPECT_EQ(block.getMD5Checksum(), sixteen);
    EXPECT_EQ(block.at_original_size, 9U);
    EXPECT_EQ(embeddedIn(block), "abc");
  }
}

TEST(ATBLOCK, GettersGiveTheLinksThatWereRead) {
  const auto block = readBack<ATBLOCK>(bytesBeforeContent(96, 4, 0));
  EXPECT_EQ(block.getNextATBlock(), 1);
  EXPECT_EQ(block.getTXFilenameBlock(), 2);
  EXPECT_EQ(block.getTXMimetypeBlock(), 3);
  EXPECT_EQ(block.getMDBlock(), 4);
}

TEST(ATBLOCK, EmbeddedSizeThatLiesStopsAtTheEndOfTheBlock) {
  for (const UINT64 size : {UINT64{6}, UINT64{7}, UINT64{0x7FFFFFFF}, UINT64{1} << 32U,
                            UINT64{INT64_MAX}, UINT64{UINT64_MAX}}) {
    SCOPED_TRACE(size);
    const auto block = readBack<ATBLOCK>(bytesBeforeContent(102, 4, size).text("sixsix"));
    EXPECT_EQ(embeddedIn(block), "sixsix");
    EXPECT_EQ(block.at_flags, 1);
  }
}

TEST(ATBLOCK, EmbeddedSizeBelowTheBlocksLeavesTheRest) {
  const auto block = readBack<ATBLOCK>(bytesBeforeContent(102, 4, 4).text("sixsix"));
  EXPECT_EQ(embeddedIn(block), "sixs");
  EXPECT_EQ(block.header.length, 102U);
  EXPECT_EQ(block.getSize(), 100U);
}

TEST(ATBLOCK, EmbeddedSizeInABlockWithoutContentGivesNone) {
  EXPECT_EQ(embeddedIn(readBack<ATBLOCK>(bytesBeforeContent(96, 4, 10))), "");
}

TEST(ATBLOCK, ReaderStopsAtTheEndOfTheBlock) {
  const std::string bytes = bytesBeforeContent(99, 4, 3).text("abc");
  std::istringstream is(bytes + bytes);
  EXPECT_EQ(embeddedIn(ATBLOCK(is)), "abc");
  EXPECT_EQ(is.tellg(), 99);
  EXPECT_EQ(embeddedIn(ATBLOCK(is)), "abc");
  EXPECT_EQ(is.tellg(), 198);
  EXPECT_EQ(is.rdstate(), state_good);
}

/// Expects that nothing but the header was taken.
void expectHeaderOnly(const ATBLOCK& block, std::uint64_t length, std::uint64_t link_count) {
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  EXPECT_BYTES(written(block), Bytes().header("AT", 96, link_count).zeros(40));
}

TEST(ATBLOCK, CutStreamKeepsItsOwnState) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t length) {
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    if (length < 24) {
      expectHeaderOnly(block, 0, 0);
    } else {
      expectHeaderOnly(block, 106, 4);
    }
  });
}

TEST(ATBLOCK, CutLongStreamKeepsItsOwnState) {
  const std::string bytes = bytesBeforeContent(96 + 200000, 4, 200000).zeros(200000);
  for (const std::size_t length : {24U, 25U, 65559U, 65560U, 65561U, 131095U, 200095U}) {
    SCOPED_TRACE(length);
    std::istringstream is(bytes.substr(0, length));
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectHeaderOnly(block, 96 + 200000, 4);
  }
}

TEST(ATBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    expectHeaderOnly(block, 0, 0);
  }
}

TEST(ATBLOCK, LengthBelowTheHeaderSizeMakesTheStreamBad) {
  for (const std::uint64_t length : {0U, 1U, 8U, 23U}) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header("AT", length, 4).zeros(100).str());
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectHeaderOnly(block, length, 4);
  }
}

TEST(ATBLOCK, LengthTooShortForLinksAndFieldsMakesTheStreamBad) {
  for (std::uint64_t length = 24; length < 96; ++length) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header("AT", length, 4).zeros(100).str());
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectHeaderOnly(block, length, 4);
  }
}

TEST(ATBLOCK, AllBitsOfTheLengthCount) {
  for (const std::uint64_t length :
       {std::uint64_t{97}, std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000},
        std::uint64_t{0xFFFFFFFF}, (std::uint64_t{1} << 32U) + 8, (std::uint64_t{1} << 32U) + 96,
        std::uint64_t{INT64_MAX}, std::uint64_t{UINT64_MAX}}) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header("AT", length, 4).zeros(72).str());
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectHeaderOnly(block, length, 4);
  }
}

TEST(ATBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{5}, std::uint64_t{1} << 32U, std::uint64_t{1} << 61U,
        (std::uint64_t{1} << 61U) + 4, std::uint64_t{INT64_MAX}, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(bytesBeforeContent(103, link_count, 7).text("content").str());
    const ATBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectHeaderOnly(block, 103, link_count);
  }
}

}  // namespace
