#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

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

TEST(DZBLOCK, DataOfAnySizeIsWrittenAfterTheFields) {
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
  EXPECT_EQ(valuesIn(os.str()), "48 17491 255 0 0 0");
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
  block.setZipParameter(UINT32_MAX);
  block.setOriginalLength(UINT64_MAX);
  block.print(os);
  EXPECT_EQ(valuesIn(os.str()), "4d 5444 11 ffffffff ffffffffffffffff 1d");
  EXPECT_NE(os.str().find(" " + std::string(29, 'B') + "[DEBUG]"), std::string::npos);
}

TEST(DZBLOCK, OfTheNumbersInTheDumpOnlyTheZipTypeIsSigned) {
  DZBLOCK block = distinctBlock();
  block.setupZipData(nullptr, 0);
  EXPECT_EQ(shownValues(block, std::showpos), "48 17491 +1 77 1234567 0");
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

TEST(DZBLOCK, BlockAtTheEndOfAFileLeavesTheStreamBadAndZerosInTheData) {
  std::istringstream is(distinctBytes());
  const DZBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_bad);
  expectDistinctFields(block);
  EXPECT_EQ(block.dz_data, Data(5, 0));
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

}  // namespace
