#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::DZBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::RDBLOCK;
using mdf_v4_10::SDBLOCK;
using mdf_v4_10::UINT8;

namespace {

using Data = std::vector<UINT8>;

DZBLOCK blockOf(const Data& data) {
  return DZBLOCK(DTBLOCK::MDF_DT_ID, DZBLOCK::DZ_ZIPTYPE_DEFLATE, data.data(), data.size());
}

DZBLOCK distinctBlock() {
  const Data data{0x78, 0x9C, 3, 0, 0x41};
  DZBLOCK block(SDBLOCK::MDF_SD_ID, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, data.data(),
                data.size());
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.dz_reserved = 9;
  block.setZipParameter(77);
  block.setOriginalLength(1234567);
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##DZ")
      .u8s({1, 2, 3, 4})
      .u64(53)
      .u64(0)
      .text("SD")
      .u8(1)
      .u8(9)
      .u32(77)
      .u64(1234567)
      .u64(5)
      .u8s({0x78, 0x9C, 3, 0, 0x41});
}

std::string withLength(std::string bytes, std::uint64_t length) {
  return bytes.replace(8, 8, Bytes().u64(length).str());
}

std::string withLinkCount(std::string bytes, std::uint64_t link_count) {
  return bytes.replace(16, 8, Bytes().u64(link_count).str());
}

std::string withCompressedLength(std::string bytes, std::uint64_t length) {
  return bytes.replace(40, 8, Bytes().u64(length).str());
}

void expectDistinctFields(const DZBLOCK& block) {
  EXPECT_EQ(block.dz_org_block_type, SDBLOCK::MDF_SD_ID);
  EXPECT_EQ(block.dz_zip_type, 1);
  EXPECT_EQ(block.dz_reserved, 0);
  EXPECT_EQ(block.dz_zip_parameter, 77U);
  EXPECT_EQ(block.dz_org_data_length, 1234567U);
}

/// Expects that nothing but the header's length and link count was taken.
void expectNothingTaken(const DZBLOCK& block, std::uint64_t length, std::uint64_t link_count) {
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  EXPECT_EQ(block.dz_org_block_type, 0);
  EXPECT_EQ(block.dz_zip_type, 0);
  EXPECT_EQ(block.dz_reserved, 0);
  EXPECT_EQ(block.dz_zip_parameter, 0U);
  EXPECT_EQ(block.dz_org_data_length, 0U);
  EXPECT_EQ(block.dz_data, Data{});
}

TEST(DZBLOCK, Constants) {
  EXPECT_EQ(DZBLOCK::DZBLOCK_CONSTANT_SIZE, 48U);
  EXPECT_EQ(DZBLOCK::MDF_DZ_ID, 0x5A44);
  static_assert(std::is_same_v<decltype(DZBLOCK::DZBLOCK_CONSTANT_SIZE), const std::size_t>);
  static_assert(std::is_same_v<decltype(DZBLOCK::MDF_DZ_ID), const std::uint16_t>);
  static_assert(!std::is_polymorphic_v<DZBLOCK>);
}

TEST(DZBLOCK, EnumerationValues) {
  EXPECT_EQ(DZBLOCK::DZ_ZIPTYPE_t{DZBLOCK::DZ_ZIPTYPE_DEFLATE}, 0);
  EXPECT_EQ(DZBLOCK::DZ_ZIPTYPE_t{DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE}, 1);
}

TEST(DZBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::dzblock_fields, 24),
            "24 2 dz_org_block_type\n"
            "26 1 dz_zip_type\n"
            "27 1 dz_reserved\n"
            "28 4 dz_zip_parameter\n"
            "32 8 dz_org_data_length\n"
            "40 8 dz_data_length\n");
}

TEST(DZBLOCK, TenBytesAreWrittenAsFiftyEight) {
  EXPECT_BYTES(written(blockOf({1, 2, 3, 4, 5, 6, 7, 8, 9, 10})),
               Bytes()
                   .header("DZ", 58, 0)
                   .text("DT")
                   .zeros(14)
                   .u64(10)
                   .u8s({1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
}

TEST(DZBLOCK, WritesTheLettersOfTheReplacedBlock) {
  const auto letters = [](std::uint16_t type) {
    return written(DZBLOCK(type, DZBLOCK::DZ_ZIPTYPE_DEFLATE, nullptr, 0)).substr(24, 3);
  };
  EXPECT_EQ(letters(DTBLOCK::MDF_DT_ID), std::string("DT\0", 3));
  EXPECT_EQ(letters(RDBLOCK::MDF_RD_ID), std::string("RD\0", 3));
  EXPECT_EQ(letters(SDBLOCK::MDF_SD_ID), std::string("SD\0", 3));
}

TEST(DZBLOCK, ConstructorLeavesEverythingElseZero) {
  const Data data{5, 6};
  const DZBLOCK block(0x1234, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, data.data(), data.size());
  EXPECT_EQ(block.header.length, 48U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  EXPECT_EQ(block.dz_org_block_type, 0x1234);
  EXPECT_EQ(block.dz_zip_type, 1);
  EXPECT_EQ(block.dz_reserved, 0);
  EXPECT_EQ(block.dz_zip_parameter, 0U);
  EXPECT_EQ(block.dz_org_data_length, 0U);
  EXPECT_EQ(block.dz_data, data);
}

TEST(DZBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(DZBLOCK, WritesExtremeValues) {
  const Data data{255};
  DZBLOCK block(0xFFFF, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(0x1FF), data.data(), data.size());
  block.dz_reserved = 255;
  block.setZipParameter(UINT32_MAX);
  block.setOriginalLength(UINT64_MAX);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("DZ", 49, 0)
                                   .u16(0xFFFF)
                                   .u8(255)
                                   .u8(255)
                                   .u32(UINT32_MAX)
                                   .u64(UINT64_MAX)
                                   .u64(1)
                                   .u8(255));
}

TEST(DZBLOCK, LengthAndLinkCountInTheFileAreNotTheStoredOnes) {
  DZBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 5;
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_EQ(block.header.length, 999U);
  EXPECT_EQ(block.header.link_count, 5U);
}

TEST(DZBLOCK, StoredLinksAreNotWritten) {
  DZBLOCK block = distinctBlock();
  block.links = {1, 2};
  EXPECT_BYTES(written(block), distinctBytes());
}

TEST(DZBLOCK, DataOfAnySizeIsWrittenBehindTheFields) {
  for (const std::size_t size : {0U, 1U, 975U, 976U, 977U, 70000U}) {
    SCOPED_TRACE(size);
    const DZBLOCK block = blockOf(Data(size, 0xA5));
    const std::string expected = Bytes()
                                     .header("DZ", 48 + size, 0)
                                     .text("DT")
                                     .zeros(14)
                                     .u64(size)
                                     .text(std::string(size, '\xA5'));
    EXPECT_TRUE(written(block) == expected);
    EXPECT_EQ(block.getSize(), expected.size());
  }
}

TEST(DZBLOCK, SetupReplacesTheDataAndNothingElse) {
  DZBLOCK block = distinctBlock();
  const Data data{8, 7};
  block.setupZipData(data.data(), data.size());
  EXPECT_EQ(block.dz_data, data);
  EXPECT_EQ(block.getSize(), 50U);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##DZ")
                                   .u8s({1, 2, 3, 4})
                                   .u64(50)
                                   .u64(0)
                                   .text("SD")
                                   .u8(1)
                                   .u8(9)
                                   .u32(77)
                                   .u64(1234567)
                                   .u64(2)
                                   .u8s({8, 7}));
}

TEST(DZBLOCK, SetupWithoutBytesLeavesFortyEight) {
  DZBLOCK block = distinctBlock();
  const UINT8 byte = 1;
  block.setupZipData(&byte, 0);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##DZ")
                                   .u8s({1, 2, 3, 4})
                                   .u64(48)
                                   .u64(0)
                                   .text("SD")
                                   .u8(1)
                                   .u8(9)
                                   .u32(77)
                                   .u64(1234567)
                                   .u64(0));
  block.setupZipData(nullptr, 0);
  EXPECT_EQ(block.dz_data, Data{});
}

TEST(DZBLOCK, SetupTakesAPartOfItsOwnData) {
  DZBLOCK block = blockOf({1, 2, 3, 4});
  block.setupZipData(block.dz_data.data() + 1, 2);
  EXPECT_EQ(block.dz_data, (Data{2, 3}));
}

TEST(DZBLOCK, DataIsCopied) {
  Data data{1, 2, 3};
  const DZBLOCK block = blockOf(data);
  data.assign(3, 9);
  EXPECT_EQ(block.dz_data, (Data{1, 2, 3}));
}

TEST(DZBLOCK, Accessors) {
  DZBLOCK block = blockOf({1});
  EXPECT_EQ(block.getOriginalBlockType(), 0x5444);
  EXPECT_EQ(block.getZipType(), DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  EXPECT_EQ(block.getZipParameter(), 0U);
  EXPECT_EQ(block.getOriginalLength(), 0U);
  block.setOriginalBlockType(RDBLOCK::MDF_RD_ID);
  block.setZipType(DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  block.setZipParameter(UINT32_MAX);
  block.setOriginalLength(UINT64_MAX);
  EXPECT_EQ(block.dz_org_block_type, 0x4452);
  EXPECT_EQ(block.dz_zip_type, 1);
  EXPECT_EQ(block.dz_zip_parameter, UINT32_MAX);
  EXPECT_EQ(block.dz_org_data_length, UINT64_MAX);
  EXPECT_EQ(block.getOriginalBlockType(), 0x4452);
  EXPECT_EQ(block.getZipType(), DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  EXPECT_EQ(block.getZipParameter(), UINT32_MAX);
  EXPECT_EQ(block.getOriginalLength(), UINT64_MAX);
  block.dz_zip_type = 200;
  EXPECT_EQ(static_cast<int>(block.getZipType()), 200);
}

TEST(DZBLOCK, Dump) {
  DZBLOCK block = blockOf({0x41, 0x42});
  block.setZipParameter(UINT32_MAX);
  block.setOriginalLength(UINT64_MAX);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== DZBLOCK ===================\n"
            "block size = 50\n"
            "orig block type = 21572\n"
            "zip type = 0\n"
            "zip parameter = 4294967295\n"
            "original size = 18446744073709551615\n"
            "zipped data size = 2\n"
            "data hex dump: AB[DEBUG] ==================== End of DZBLOCK ===================\n");
}

TEST(DZBLOCK, DumpShowsBytesAsTheCharactersTheyAre) {
  EXPECT_EQ(dumped(distinctBlock()),
            std::string("[DEBUG] ==================== DZBLOCK ===================\n"
                        "block size = 53\n"
                        "orig block type = 17491\n"
                        "zip type = 1\n"
                        "zip parameter = 77\n"
                        "original size = 1234567\n"
                        "zipped data size = 5\n"
                        "data hex dump: \x78\x9C\x03") +
                std::string(1, '\0') +
                "A[DEBUG] ==================== End of DZBLOCK ===================\n");
}

TEST(DZBLOCK, DumpWithoutDataLeavesTheStreamDecimal) {
  std::ostringstream os;
  const DZBLOCK block(SDBLOCK::MDF_SD_ID, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(255), nullptr, 0);
  block.print(os);
  EXPECT_EQ(os.flags(), std::ostringstream().flags());
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== DZBLOCK ===================\n"
            "block size = 48\n"
            "orig block type = 17491\n"
            "zip type = 255\n"
            "zip parameter = 0\n"
            "original size = 0\n"
            "zipped data size = 0\n"
            "data hex dump: [DEBUG] ==================== End of DZBLOCK ===================\n");
}

TEST(DZBLOCK, DumpWithDataLeavesTheStreamHexadecimal) {
  std::ostringstream os;
  os << std::oct;
  blockOf({'A'}).print(os);
  EXPECT_EQ(os.flags() & std::ios_base::basefield, std::ios_base::hex);
  os.str("");
  os << 255;
  EXPECT_EQ(os.str(), "ff");
}

TEST(DZBLOCK, SecondDumpIsHexadecimal) {
  std::ostringstream os;
  blockOf({'A'}).print(os);
  os.str("");
  DZBLOCK block = blockOf(Data(29, 'B'));
  block.setZipType(static_cast<DZBLOCK::DZ_ZIPTYPE_t>(17));
  block.setZipParameter(30);
  block.setOriginalLength(1234567);
  block.print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== DZBLOCK ===================\n"
            "block size = 4d\n"
            "orig block type = 5444\n"
            "zip type = 11\n"
            "zip parameter = 1e\n"
            "original size = 12d687\n"
            "zipped data size = 1d\n"
            "data hex dump: BBBBBBBBBBBBBBBBBBBBBBBBBBBBB"
            "[DEBUG] ==================== End of DZBLOCK ===================\n");
}

TEST(DZBLOCK, OfTheNumbersInTheDumpOnlyTheZipTypeIsSigned) {
  std::ostringstream os;
  os << std::showpos;
  DZBLOCK block = distinctBlock();
  block.setupZipData(nullptr, 0);
  block.print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== DZBLOCK ===================\n"
            "block size = 48\n"
            "orig block type = 17491\n"
            "zip type = +1\n"
            "zip parameter = 77\n"
            "original size = 1234567\n"
            "zipped data size = 0\n"
            "data hex dump: [DEBUG] ==================== End of DZBLOCK ===================\n");
}

TEST(DZBLOCK, ReaderTakesTheBytesThatFollowTheBlock) {
  std::istringstream is(distinctBytes() + "fghijKLM");
  const DZBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(is.tellg(), 53 + 5);
  EXPECT_EQ(block.header.length, 53U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(linksOf(block), std::vector<LINK>{});
  expectDistinctFields(block);
  EXPECT_EQ(block.dz_data, (Data{'f', 'g', 'h', 'i', 'j'}));
}

TEST(DZBLOCK, SixteenCompressedBytesBecomeTheSixteenBytesThatFollow) {
  const std::string bytes = written(blockOf(Data(16, 0x5A))) + "0123456789abcdef";
  const auto block = readBack<DZBLOCK>(bytes);
  EXPECT_EQ(std::string(block.dz_data.begin(), block.dz_data.end()), "0123456789abcdef");
}

TEST(DZBLOCK, WritingABlockThatWasReadWritesTheBytesThatFollowedIt) {
  EXPECT_BYTES(
      written(readBack<DZBLOCK>(distinctBytes() + "fghij")),
      Bytes().header("DZ", 53, 0).text("SD").u8(1).u8(0).u32(77).u64(1234567).u64(5).text("fghij"));
}

TEST(DZBLOCK, BlockAtTheEndOfAFileLeavesTheStreamBadAndZerosInTheData) {
  std::istringstream is(distinctBytes());
  const DZBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_bad);
  expectDistinctFields(block);
  EXPECT_EQ(block.dz_data, Data(5, 0));
}

TEST(DZBLOCK, BlockWithoutDataAtTheEndOfAFileIsRead) {
  const auto block = readBack<DZBLOCK>(written(blockOf({})));
  EXPECT_EQ(block.dz_org_block_type, DTBLOCK::MDF_DT_ID);
  EXPECT_EQ(block.dz_data, Data{});
}

TEST(DZBLOCK, CutStream) {
  const std::string bytes = distinctBytes() + "fghij";
  forEachPrefix(bytes, [&](std::istream& is, std::size_t length) {
    const DZBLOCK block(is);
    if (length < 24) {
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      expectNothingTaken(block, 48, 0);
    } else if (length < 53) {
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      expectNothingTaken(block, 53, 0);
    } else {
      EXPECT_EQ(is.rdstate(), state_bad);
      expectDistinctFields(block);
      Data expected(bytes.begin() + 53, bytes.begin() + static_cast<std::ptrdiff_t>(length));
      expected.resize(5);
      EXPECT_EQ(block.dz_data, expected);
    }
  });
}

TEST(DZBLOCK, LongBlockInACutStream) {
  const std::string bytes = written(blockOf(Data(70000, 7)));
  for (const std::size_t length :
       {std::size_t{48}, std::size_t{24 + 65535}, std::size_t{24 + 65536}, bytes.size() - 1}) {
    SCOPED_TRACE(length);
    std::istringstream is(bytes.substr(0, length));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectNothingTaken(block, 70048, 0);
  }
  const std::string following(70000, 'x');
  EXPECT_EQ(readBack<DZBLOCK>(bytes + following).dz_data, Data(70000, 'x'));
}

TEST(DZBLOCK, ReadsFromTheMiddleOfAStream) {
  std::istringstream is("before" + distinctBytes() + "fghij" + written(blockOf({})) + "after");
  is.seekg(6);
  EXPECT_EQ(DZBLOCK(is).dz_data, (Data{'f', 'g', 'h', 'i', 'j'}));
  EXPECT_EQ(DZBLOCK(is).dz_org_block_type, DTBLOCK::MDF_DT_ID);
  EXPECT_EQ(is.tellg(), 6 + 58 + 48);
  EXPECT_EQ(is.rdstate(), state_good);
}

TEST(DZBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    expectNothingTaken(block, 48, 0);
    is.clear();
    EXPECT_EQ(is.tellg(), 0);
  }
}

TEST(DZBLOCK, FailedStreamIsNotWritten) {
  std::ostringstream os;
  os.setstate(std::ios_base::failbit);
  EXPECT_EQ(&(os << distinctBlock()), &os);
  EXPECT_EQ(os.rdstate() & ~std::ios_base::badbit, std::ios_base::failbit);
  EXPECT_EQ(os.str(), "");
}

TEST(DZBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes() + "fghij";
  bytes.replace(0, 4, "XYZ!");
  const auto block = readBack<DZBLOCK>(bytes);
  expectDistinctFields(block);
  EXPECT_EQ(written(block).substr(0, 4), "##DZ");
}

TEST(DZBLOCK, FieldsFollowTheHeaderWhateverTheLinkCountSays) {
  for (const std::uint64_t link_count :
       {std::uint64_t{1}, std::uint64_t{3}, std::uint64_t{4}, std::uint64_t{UINT32_MAX},
        (std::uint64_t{1} << 32U) + 1, std::uint64_t{1} << 61U, std::uint64_t{1} << 63U,
        UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    const auto block = readBack<DZBLOCK>(withLinkCount(distinctBytes() + "fghij", link_count));
    EXPECT_EQ(block.header.link_count, link_count);
    EXPECT_EQ(linksOf(block), std::vector<LINK>{});
    expectDistinctFields(block);
    EXPECT_EQ(block.dz_data, (Data{'f', 'g', 'h', 'i', 'j'}));
    EXPECT_EQ(written(block).substr(16, 8), std::string(8, '\0'));
  }
}

TEST(DZBLOCK, LengthThatDoesNotHoldTheFieldsMakesTheStreamBad) {
  for (const std::uint64_t length : {0U, 1U, 23U, 24U, 25U, 40U, 47U}) {
    SCOPED_TRACE(length);
    std::istringstream is(withLength(distinctBytes() + "fghij", length));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectNothingTaken(block, length, 0);
  }
}

TEST(DZBLOCK, DataIsTakenFromWhereTheLengthEnds) {
  const std::string bytes = distinctBytes() + "fghij";
  for (const std::size_t length : {48U, 49U, 52U, 53U}) {
    SCOPED_TRACE(length);
    std::istringstream is(withLength(bytes, length));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(static_cast<std::size_t>(is.tellg()), length + 5);
    EXPECT_EQ(block.header.length, length);
    expectDistinctFields(block);
    EXPECT_EQ(std::string(block.dz_data.begin(), block.dz_data.end()), bytes.substr(length, 5));
  }
}

TEST(DZBLOCK, LengthBeyondTheStreamKeepsTheStateOfTheRead) {
  for (const std::uint64_t length :
       {std::uint64_t{59}, std::uint64_t{INT32_MAX}, std::uint64_t{1} << 31U,
        std::uint64_t{UINT32_MAX}, (std::uint64_t{1} << 32U) + 24, (std::uint64_t{1} << 32U) + 53,
        std::uint64_t{1} << 40U, std::uint64_t{INT64_MAX}, std::uint64_t{1} << 63U, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::istringstream is(withLength(distinctBytes() + "fghij", length));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    expectNothingTaken(block, length, 0);
  }
}

TEST(DZBLOCK, CompressedLengthDecidesHowManyBytesAreTaken) {
  const std::string bytes = distinctBytes() + "fghij";
  for (const std::size_t count : {0U, 1U, 4U, 5U}) {
    SCOPED_TRACE(count);
    std::istringstream is(withCompressedLength(bytes, count));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(static_cast<std::size_t>(is.tellg()), 53 + count);
    EXPECT_EQ(std::string(block.dz_data.begin(), block.dz_data.end()), bytes.substr(53, count));
  }
}

TEST(DZBLOCK, CompressedLengthBeyondTheStreamLeavesZerosBehindWhatCame) {
  for (const std::size_t count : {6U, 23U, 24U, 25U, 100000U}) {
    SCOPED_TRACE(count);
    std::istringstream is(withCompressedLength(distinctBytes() + "fghij", count));
    const DZBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectDistinctFields(block);
    Data expected{'f', 'g', 'h', 'i', 'j'};
    expected.resize(count);
    EXPECT_EQ(block.dz_data, expected);
  }
}

TEST(DZBLOCK, CompressedLengthBeyondMemoryRaisesTheLengthError) {
  for (const std::uint64_t count : {std::uint64_t{1} << 63U, UINT64_MAX}) {
    SCOPED_TRACE(count);
    std::istringstream is(withCompressedLength(distinctBytes() + "fghij", count));
    EXPECT_THROW(DZBLOCK{is}, std::length_error);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 53);
  }
}

TEST(DZBLOCK, ReadsFromFiles) {
  const LinkTargetFile file(std::string(64, '\0') + distinctBytes() + "fghij");
  std::ifstream ifs = file.open();
  ifs.seekg(64);
  const DZBLOCK block(ifs);
  EXPECT_EQ(ifs.rdstate(), state_good);
  EXPECT_EQ(ifs.tellg(), 64 + 58);
  expectDistinctFields(block);
  EXPECT_EQ(block.dz_data, (Data{'f', 'g', 'h', 'i', 'j'}));
}

TEST(DZBLOCK, CopiesAreIndependent) {
  const DZBLOCK block = distinctBlock();
  DZBLOCK copy = block;
  copy.setupZipData(nullptr, 0);
  copy.setZipParameter(1);
  EXPECT_BYTES(written(block), distinctBytes());
}

}  // namespace
