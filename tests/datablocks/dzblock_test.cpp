#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

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
  return header("DZ", 53, 0, {1, 2, 3, 4}) + "SD" + u8(1, 9) + u32(77) + u64(1234567, 5) +
         u8(0x78, 0x9C, 3, 0, 0x41);
}

TEST(DZBLOCK, WritesTheLettersOfTheReplacedBlock) {
  const auto letters = [](std::uint16_t type) {
    return written(DZBLOCK(type, DZBLOCK::DZ_ZIPTYPE_DEFLATE, nullptr, 0)).substr(24, 3);
  };
  EXPECT_EQ(letters(DTBLOCK::MDF_DT_ID), std::string("DT\0", 3));
  EXPECT_EQ(letters(RDBLOCK::MDF_RD_ID), std::string("RD\0", 3));
  EXPECT_EQ(letters(SDBLOCK::MDF_SD_ID), std::string("SD\0", 3));
}

TEST(DZBLOCK, NewBlockHasNoOriginalLengthAndNoParameter) {
  const Data data{5, 6};
  const DZBLOCK block(0x1234, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, data.data(), data.size());
  EXPECT_BYTES(written(block.header), header("DZ", 48, 0));
  EXPECT_BYTES(written(block),
               header("DZ", 50, 0) + u16(0x1234) + u8(1) + zeros(13) + u64(2) + u8(5, 6));
}

TEST(DZBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(DZBLOCK, NeitherStoredLengthNorLinksAreWritten) {
  DZBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 5;
  block.links = {1, 2};
  EXPECT_BYTES(written(block), distinctBytes());
  EXPECT_BYTES(written(block.header), header("DZ", 999, 5, {1, 2, 3, 4}));
}

TEST(DZBLOCK, DataOfAnySizeIsWrittenAfterTheFields) {
  for (const std::size_t size : {0U, 1U, 975U, 976U, 977U, 70000U}) {
    SCOPED_TRACE(size);
    const DZBLOCK block = blockOf(Data(size, 0xA5));
    const std::string expected =
        header("DZ", 48 + size, 0) + "DT" + zeros(14) + u64(size) + std::string(size, '\xA5');
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
  EXPECT_BYTES(written(block), header("DZ", 50, 0, {1, 2, 3, 4}) + "SD" + u8(1, 9) + u32(77) +
                                   u64(1234567, 2) + u8(8, 7));
}

TEST(DZBLOCK, SetupTakesAPartOfItsOwnData) {
  DZBLOCK block = blockOf({1, 2, 3, 4});
  block.setupZipData(block.dz_data.data() + 1, 2);
  EXPECT_EQ(block.dz_data, (Data{2, 3}));
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

}  // namespace
