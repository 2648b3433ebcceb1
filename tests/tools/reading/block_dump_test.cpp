#include "printing/block_dump.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "reader/blocks/block_type.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "support/bytes.h"
#include "tools/support/dumped.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/temp_file.h"
#include "tools/support/walker_findings.h"

using namespace mdf_tests;
using namespace mdf_reader;
using namespace mdf_tools;

namespace {

/// What is printed of the block at an offset, and what is reported of it.
Dumped blockDump(InputFile& file, std::uint64_t offset) {
  std::ostringstream os;
  Dumped dump;
  dumpBlock(file, *readRawBlock(file, offset), os,
            [&](const Finding& finding) { dump.findings += findingLine(finding); });
  dump.output = os.str();
  return dump;
}

Dumped blockDump(const std::string& bytes, std::uint64_t offset = 0) {
  const TempFile file(bytes);
  InputFile input(file.path());
  return blockDump(input, offset);
}

TEST(BlockDump, UnknownTypeIsALine) {
  const Dumped dump =
      blockDump(Bytes().text("abc").header("\x1b!", 51, 3).links({7, 0, -1}).zeros(3), 3);
  EXPECT_EQ(dump.output, "3 (0x3) ##\\x1b! length 51 links 3: 7 0 -1\n");
  EXPECT_EQ(dump.findings, "");
}

std::string lineOf(const std::string& bytes) {
  const std::string output = blockDump(bytes).output;
  return output.substr(0, output.find('\n') + 1);
}

TEST(BlockDump, LineShowsTheCountAsStoredAndTheLinksThatStandThere) {
  EXPECT_EQ(lineOf(Bytes().header("HL", 40, 0).i64(4096).zeros(8)),
            "0 (0x0) ##HL length 40 links 0: hl_dl_first=4096\n");
  EXPECT_EQ(lineOf(Bytes().header("CH", 88, 5).links({1, 2, 3, 4, 5, 6, 7}).zeros(8)),
            "0 (0x0) ##CH length 88 links 5: ch_ch_next=1 ch_ch_first=2 ch_tx_name=3 "
            "ch_md_comment=4 ch_element[0].dg=5 ch_element[0].cg=6 ch_element[0].cn=7\n");
  EXPECT_EQ(lineOf(Bytes().header("XX", UINT64_MAX, UINT64_MAX).links({1, 2}).u32(3)),
            "0 (0x0) ##XX length 18446744073709551615 links 18446744073709551615: 1 2\n");
}

const std::string group_fields =
    "[DEBUG] ==================== DGBLOCK ===================\n"
    "block size = 64\n"
    "next data group block = 0\n"
    "first channel group block = 0\n"
    "data block = 0\n"
    "comment block = 0\n"
    "record ID size = 8\n"
    "[DEBUG] ==================== End of DGBLOCK ===================\n";

TEST(BlockDump, FieldsOfAFixedSizeAreShownWhereTheirBytesAreThere) {
  const std::string nil_links = "dg_dg_next=0 dg_cg_first=0 dg_data=0 dg_md_comment=0";
  const struct {
    std::string bytes;
    std::string line;
    std::string fields;
    std::string findings;
  } cases[] = {
      {header("DG", 64, 4) + links(64, 65, 66, 67) + u8(8) + zeros(7),
       "##DG length 64 links 4: dg_dg_next=64 dg_cg_first=65 dg_data=66 dg_md_comment=67",
       group_fields, ""},
      {header("DG", 72, 4) + zeros(32) + u8(8) + zeros(15), "##DG length 72 links 4: " + nil_links,
       group_fields, ""},
      {header("DG", 63, 4) + zeros(32) + u8(8) + zeros(7), "##DG length 63 links 4: " + nil_links,
       group_fields, doesNotFit(0, "DG", 63, 4)},
      {header("DG", 63, 4) + zeros(32) + u8(8) + zeros(6), "##DG length 63 links 4: " + nil_links,
       "", doesNotFit(0, "DG", 63, 4)},
      {header("DG", 64, 5) + zeros(40), "##DG length 64 links 5: " + nil_links + " 0", "",
       doesNotFit(0, "DG", 64, 5)},
      {header("CN", 159, 8) + zeros(136),
       "##CN length 159 links 8: cn_cn_next=0 cn_composition=0 cn_tx_name=0 cn_si_source=0 "
       "cn_cc_conversion=0 cn_data=0 cn_md_unit=0 cn_md_comment=0",
       "", doesNotFit(0, "CN", 159, 8)},
  };
  for (const auto& [bytes, line, fields, findings] : cases) {
    const Dumped dump = blockDump(bytes);
    EXPECT_EQ(dump.output, "0 (0x0) " + line + '\n' + fields);
    EXPECT_EQ(dump.findings, findings);
  }
}

TEST(BlockDump, WhatTheWalkReportsIsNotReportedAgain) {
  EXPECT_EQ(blockDump(Bytes().header("DG", 55, 4).zeros(40)).findings, "");
  EXPECT_EQ(blockDump(Bytes().header("DG", 65, 4).zeros(40)).findings, "");
  EXPECT_EQ(blockDump(Bytes().header("DT", 23, 0)).findings, "");
  EXPECT_EQ(blockDump(Bytes().header("DT", 25, 0)).findings, "");
}

std::string zipped(std::uint64_t compressed_length) {
  return header("DZ", 51, 0) + "DT" + u8(0, 0) + u32(0) + u64(6, compressed_length) + "zip";
}

std::string zippedDump(const std::string& data) {
  return "0 (0x0) ##DZ length 51 links 0\n"
         "[DEBUG] ==================== DZBLOCK ===================\n"
         "block size = " +
         std::to_string(48 + data.size()) +
         "\n"
         "orig block type = 21572\n"
         "zip type = 0\n"
         "zip parameter = 0\n"
         "original size = 6\n"
         "zipped data size = " +
         std::to_string(data.size()) +
         "\n"
         "data hex dump: " +
         data + "[DEBUG] ==================== End of DZBLOCK ===================\n";
}

TEST(BlockDump, ZippedDataIsReadFromAfterTheBlock) {
  for (const auto& [after, read] : std::vector<std::pair<std::string, std::string>>{
           {"following", "fol"}, {"fo", {'f', 'o', '\0'}}, {"", {'\0', '\0', '\0'}}}) {
    const Dumped dump = blockDump(zipped(3) + after);
    EXPECT_EQ(dump.output, zippedDump(read));
    EXPECT_EQ(dump.findings, "");
  }
}

TEST(BlockDump, CompressedLengthMayBeSmaller) {
  const Dumped dump = blockDump(zipped(0) + "following");
  EXPECT_EQ(dump.output, zippedDump(""));
  EXPECT_EQ(dump.findings, "");
}

TEST(BlockDump, CompressedLengthThatLiesIsReportedAndCostsNoMemory) {
  ASSERT_TRUE(typeOf("DZ").isKnown());  // the tables are made when first asked for
  for (const std::uint64_t lie :
       {std::uint64_t{4}, std::uint64_t{1} << 31U, std::uint64_t{1} << 63U, UINT64_MAX}) {
    const TempFile file(zipped(lie) + "following");
    InputFile input(file.path());
    const AllocationLimit limit(4096);
    const Dumped dump = blockDump(input, 0);
    EXPECT_EQ(dump.output, "0 (0x0) ##DZ length 51 links 0\n");
    EXPECT_EQ(dump.findings,
              "0: expected the compressed length in ##DZ to fit its length of 51, found " +
                  std::to_string(lie) + "\n");
  }
}

TEST(BlockDump, BlockBeyondMemoryIsReported) {
  for (const std::string letters : {"DT", "RD", "SD", "TX", "MD"}) {
    SCOPED_TRACE(letters);
    const TempFile file(Bytes().header(letters, 100024, 0).zeros(100000));
    InputFile input(file.path());
    const AllocationLimit limit(50000);
    const Dumped dump = blockDump(input, 0);
    EXPECT_EQ(dump.output, "0 (0x0) ##" + letters + " length 100024 links 0\n");
    EXPECT_EQ(dump.findings,
              "0: expected memory for the 100024 bytes of ##" + letters + ", found too little\n");
  }
}

TEST(BlockDump, DataNeedsMemoryOnceOnly) {
  const TempFile file(fileHead({168, 0, 0, 0, 0, 0}) +
                      Bytes().header("DT", 1000024, 0).zeros(1000000).str());
  typeOf("DT");  // makes the table of types, which whoever asks first does
  const Dumped dump = dumpedFile(file.path(), 1010000);
  EXPECT_EQ(dump.findings, "");
  EXPECT_NE(dump.output.find("data size = 1000000\n"), std::string::npos) << dump.output;
}

TEST(BlockDump, LengthBeyondFourGibibytesIsTakenAsTheClassTakesIt) {
  constexpr std::uint64_t wrap = std::uint64_t{1} << 32U;
  TempFile file(Bytes().header("TX", wrap + 28, 0).text("ab").zeros(6).header("CN", wrap + 24, 8));
  file.writeAt(wrap + 100, "end");
  InputFile input(file.path());
  const Dumped text = blockDump(input, 0);
  EXPECT_EQ(text.output,
            "0 (0x0) ##TX length 4294967324 links 0\n"
            "[DEBUG] ==================== TXBLOCK ===================\n"
            "block size = 28\n"
            "text data = \n" +
                std::string(3, '\0') +
                "\n"
                "[DEBUG] ==================== End of TXBLOCK ===================\n");
  EXPECT_EQ(text.findings, "");
  const Dumped channel = blockDump(input, 32);
  EXPECT_EQ(channel.output,
            "32 (0x20) ##CN length 4294967320 links 8: cn_cn_next=0 cn_composition=0 cn_tx_name=0 "
            "cn_si_source=0 cn_cc_conversion=0 cn_data=0 cn_md_unit=0 cn_md_comment=0\n");
  EXPECT_EQ(channel.findings, doesNotFit(32, "CN", 4294967320, 8));
}

TEST(BlockDump, IdentificationThatIsCutOffIsNotShown) {
  for (std::size_t size = 0; size < 64; ++size) {
    const TempFile file(fileHead({}).substr(0, size));
    InputFile input(file.path());
    std::ostringstream os;
    dumpIdentification(input, os);
    EXPECT_EQ(os.str(), "") << size;
  }
}

}  // namespace
