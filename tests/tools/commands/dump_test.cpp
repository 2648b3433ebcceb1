#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/healthy_file.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"
#include "tools/support/walker_findings.h"

using namespace mdf_tests;

namespace {

TEST(DumpCommand, HealthyFile) {
  const TempFile file(healthyFile());
  EXPECT_EQ(run({"dump", "--library", file.path()}), wrote(healthyDump()));
}

TEST(DumpCommand, StandardInput) {
  RunOptions options;
  options.input = healthyFile();
  EXPECT_EQ(run({"dump", "--library", "-"}, options), wrote(healthyDump()));
}

/// Lines "64: expected ..." as the program writes them about a file.
std::string messagesOf(const std::string& findings, const std::string& path) {
  std::string messages;
  std::istringstream lines(findings);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(':');
    messages += "mdf: " + path + ": " + mdf_reader::decimalAndHex(std::stoull(line)) +
                line.substr(colon) + '\n';
  }
  return messages;
}

TEST(DumpCommand, FaultyStandardInputIsNamed) {
  RunOptions options;
  options.input = healthyFile().substr(0, 80);
  EXPECT_EQ(run({"dump", "--library", "-"}, options),
            (RunResult{1, healthyDump().substr(0, healthyDump().find("64 (0x40)")),
                       messagesOf(headerBlockCut(16), "standard input")}));
}

TEST(DumpCommand, FileCutInTheChannel) {
  const TempFile file(healthyFile().substr(0, 528));
  EXPECT_EQ(
      run({"dump", "--library", file.path()}),
      (RunResult{
          1,
          healthyDump().substr(0, healthyDump().find("480 (0x1e0)")) +
              "480 (0x1e0) ##CN length 160 links 8: cn_cn_next=0 cn_composition=264 "
              "cn_tx_name=640\n",
          messagesOf(blockCut(480, "CN", 160, 48) + linkOutside(480, "CN", 2, 528, 640) +
                         linkOutside(376, "CG", 2, 528, 640) + linkOutside(376, "CG", 3, 528, 776) +
                         linkOutside(376, "CG", 4, 528, 832) + linkOutside(312, "DG", 2, 528, 744) +
                         linkOutside(64, "HD", 2, 528, 992) + linkOutside(64, "HD", 3, 528, 1080) +
                         linkOutside(64, "HD", 4, 528, 1184) + linkOutside(264, "XX", 1, 528, 1288),
                     file.path())}));
}

TEST(DumpCommand, BlocksBeyondFourGibibytes) {
  constexpr std::int64_t far = (std::int64_t{1} << 32U) + 8;
  TempFile file(fileHead({0, far, 0, 0, 0, 0}));
  file.writeAt(far, header("FH", 56, 2) + links(far + 56, 168) + zeros(16) + header("XX", 32, 1) +
                        u64(far + 88));
  const RunResult result = run({"dump", "--library", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(
      result.output.substr(result.output.find("4294967304 (0x")),
      "4294967304 (0x100000008) ##FH length 56 links 2: fh_fh_next=4294967360 fh_md_comment=168\n"
      "[DEBUG] ==================== FHBLOCK ===================\n"
      "block size = 56\n"
      "next file history block (pointer) = 4294967360\n"
      "file comment (pointer) = 168\n"
      "time = 0\n"
      "UTC time offset = 0\n"
      "DST time offset = 0\n"
      "time flags = 0\n"
      "[DEBUG] ==================== End of FHBLOCK ===================\n"
      "4294967360 (0x100000040) ##XX length 32 links 1: 4294967392\n");
  EXPECT_EQ(result.messages,
            messagesOf(linkToNoBlock(4294967304, "FH", 1, "\\x00\\x00\\x00\\x00", 168) +
                           linkOutside(4294967360, "XX", 0, 4294967392, 4294967392),
                       file.path()));
}

TEST(DumpCommand, TerminalIsNotGivenControlCharacters) {
  const TempFile file(healthyFile());
  RunOptions options;
  options.output_is_terminal = true;
  options.environment = {"TERM=dumb"};
  const RunResult result = run({"dump", "--library", file.path()}, options);
  std::string expected = healthyDump();
  for (char& character : expected) {
    const auto byte = static_cast<unsigned char>(character);
    character = byte < 32 && character != '\n' ? '.' : character;
  }
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, expected);
}

TEST(DumpCommand, OutputGoesToAFile) {
  const TempFile file(healthyFile());
  const TempFile dump;
  RunOptions options;
  options.output_path = dump.path();
  EXPECT_EQ(run({"dump", "--library", file.path()}, options), wrote(""));
  EXPECT_EQ(bytesOf(dump.path()), healthyDump());
}

/// What the program prints for a file with these bytes, which has no problem.
std::string printed(const std::string& bytes, std::vector<std::string> arguments) {
  const TempFile file(bytes);
  arguments.insert(arguments.begin(), "dump");
  arguments.push_back(file.path());
  const RunResult result = run(arguments);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  return result.output;
}

/// The healthy file's dump of the block whose line begins so.
std::string dumpOf(const std::string& beginning) {
  const std::string dump = healthyDump();
  const std::size_t begin = dump.find(beginning);
  const std::size_t end = dump.find(" ===================\n", dump.find("End of", begin));
  return dump.substr(begin, end - begin) + " ===================\n";
}

TEST(DumpCommand, OnlyTheNamedTypes) {
  EXPECT_EQ(printed(healthyFile(), {"--library", "--type", "SI,dg"}),
            dumpOf("312 (0x138) ##DG") + dumpOf("776 (0x308) ##SI"));
  EXPECT_EQ(printed(healthyFile(), {"--library", "--type", "HL", "--type", "ID"}),
            dumpOf("0 (0x0) identification") + dumpOf("1288 (0x508) ##HL"));
  EXPECT_EQ(printed(healthyFile(), {"--library", "--type", "GD"}), "");
}

TEST(DumpCommand, OnlyTheNamedOffsetsInTheirOrder) {
  EXPECT_EQ(
      printed(healthyFile(), {"--library", "--at", "0x308", "--at", "312", "--at", "0"}),
      dumpOf("776 (0x308) ##SI") + dumpOf("312 (0x138) ##DG") + dumpOf("0 (0x0) identification"));
  EXPECT_EQ(printed(healthyFile(), {"--library", "--at", "776", "--at", "312", "--type", "DG"}),
            dumpOf("312 (0x138) ##DG"));
}

TEST(DumpCommand, BlockThatNothingLeadsTo) {
  FileBuilder file;
  file.add("ZZ", {64});
  EXPECT_EQ(printed(file.bytes(), {"--library", "--at", "168"}),
            "168 (0xa8) ##ZZ length 32 links 1: 64\n");
}

TEST(DumpCommand, OffsetsWithoutABlock) {
  const TempFile file(healthyFile());
  EXPECT_EQ(
      run({"dump", "--at", "65", "--at", "0x1000000000000000", file.path()}),
      (RunResult{1, "",
                 "mdf: " + file.path() +
                     ": 65 (0x41): expected a block \"##\" at 65 (0x41), found \"#HD\\x00\"\n" +
                     "mdf: " + file.path() +
                     ": 1449 (0x5a9): expected a block \"##\" at 1152921504606846976 "
                     "(0x1000000000000000), found only 0 bytes up to the file's end\n"}));
}

TEST(DumpCommand, SeveralFilesAreNamed) {
  const TempFile first(healthyFile());
  const TempFile second(healthyFile());
  EXPECT_EQ(
      run({"dump", "--library", first.path(), "/no/such/file", second.path()}),
      (RunResult{2, first.path() + ":\n" + healthyDump() + second.path() + ":\n" + healthyDump(),
                 "mdf: cannot open /no/such/file: No such file or directory\n"}));
}

TEST(DumpCommand, BytesOfTheIdentification) {
  EXPECT_EQ(printed(healthyFile(), {"--hex", "--type", "ID"}),
            "0 (0x0) identification length 64\n"
            "  0x00000000  4d 44 46 20 20 20 20 20  id_file = \"MDF     \"\n"
            "  0x00000008  34 2e 31 30 20 20 20 20  id_vers = \"4.10    \"\n"
            "  0x00000010  74 65 73 74 70 72 6f 67  id_prog = \"testprog\"\n"
            "  0x00000018  00 00                    id_default_byte_order = 0\n"
            "  0x0000001a  00 00                    id_float_format = 0\n"
            "  0x0000001c  9a 01                    id_ver = 410\n"
            "  0x0000001e  00 00                    id_code_page = 0\n"
            "  0x00000020  00 00 00 00 00 00 00 00  id_reserved\n"
            "  0x00000028  00 00 00 00 00 00 00 00\n"
            "  0x00000030  00 00 00 00 00 00 00 00\n"
            "  0x00000038  00 00 00 00\n"
            "  0x0000003c  00 00                    id_unfin_flags = 0\n"
            "  0x0000003e  00 00                    id_custom_unfin_flags = 0\n");
}

TEST(DumpCommand, BytesWithTheirFields) {
  EXPECT_EQ(printed(healthyFile(), {"--hex", "--at", "896"}),
            "896 (0x380) ##CC length 96 links 4: cc_tx_name=0 cc_md_unit=640 cc_md_comment=0 "
            "cc_cc_inverse=0\n"
            "  0x00000380  23 23 43 43              id = \"##CC\"\n"
            "  0x00000384  00 00 00 00              reserved\n"
            "  0x00000388  60 00 00 00 00 00 00 00  length = 96\n"
            "  0x00000390  04 00 00 00 00 00 00 00  link_count = 4\n"
            "  0x00000398  00 00 00 00 00 00 00 00  cc_tx_name = 0\n"
            "  0x000003a0  80 02 00 00 00 00 00 00  cc_md_unit = 640 (0x280)\n"
            "  0x000003a8  00 00 00 00 00 00 00 00  cc_md_comment = 0\n"
            "  0x000003b0  00 00 00 00 00 00 00 00  cc_cc_inverse = 0\n"
            "  0x000003b8  01                       cc_type = 1\n"
            "  0x000003b9  02                       cc_precision = 2\n"
            "  0x000003ba  01 00                    cc_flags = 1\n"
            "  0x000003bc  00 00                    cc_ref_count = 0\n"
            "  0x000003be  02 00                    cc_val_count = 2\n"
            "  0x000003c0  00 00 00 00 00 00 f0 bf  cc_phy_range_min = -1\n"
            "  0x000003c8  00 00 00 00 65 cd cd 41  cc_phy_range_max = 1e+09\n"
            "  0x000003d0  00 00 00 00 00 00 e0 3f  cc_val[0] = 0.5\n"
            "  0x000003d8  00 00 00 00 00 00 00 40  cc_val[1] = 2\n");
}

TEST(DumpCommand, CharactersBesideBytesAreThoseOfAscii) {
  FileBuilder file;
  const auto at = file.text(" ~\x1f\x7f\x80");
  EXPECT_PRED2(contains, printed(file.bytes(), {"--hex", "--at", std::to_string(at)}),
               "| ~....|\n");
}

TEST(DumpCommand, BytesOfDataAsFarAsWanted) {
  const std::string line =
      "224 (0xe0) ##MD length 40 links 0\n"
      "  0x000000e0  23 23 4d 44              id = \"##MD\"\n"
      "  0x000000e4  00 00 00 00              reserved\n"
      "  0x000000e8  28 00 00 00 00 00 00 00  length = 40\n"
      "  0x000000f0  00 00 00 00 00 00 00 00  link_count = 0\n"
      "  md_data, 16 bytes\n";
  EXPECT_EQ(printed(healthyFile(), {"--hex", "--at", "224"}),
            line +
                "  0x000000f8  3c 48 44 63 6f 6d 6d 65 6e 74 2f 3e 00 00 00 00  "
                "|<HDcomment/>....|\n");
  EXPECT_EQ(printed(healthyFile(), {"--hex", "--at", "224", "--bytes", "3"}),
            line +
                "  0x000000f8  3c 48 44                                         |<HD|\n"
                "  ... 13 more bytes\n");
}

TEST(DumpCommand, BytesOfAListOfValues) {
  FileBuilder file;
  file.add("LD", {0, 0, 0}, Bytes().u32(0x80000001U).u32(1).u64(2).u64(3));
  const std::string list = printed(file.bytes(), {"--hex", "--at", "168"});
  EXPECT_EQ(list.substr(list.find("  0x000000c0")),
            "  0x000000c0  00 00 00 00 00 00 00 00  ld_next = 0\n"
            "  0x000000c8  00 00 00 00 00 00 00 00  ld_data[0] = 0\n"
            "  0x000000d0  00 00 00 00 00 00 00 00  ld_invalidation_data[0] = 0\n"
            "  0x000000d8  01 00 00 80              ld_flags = 2147483649\n"
            "  0x000000dc  01 00 00 00              ld_count = 1\n"
            "  0x000000e0  02 00 00 00 00 00 00 00  ld_equal_sample_count = 2\n"
            "  0x000000e8  03 00 00 00 00 00 00 00  further value[0] = 3\n");
}

TEST(DumpCommand, BytesOfAListAndOfAnUnknownType) {
  const std::string offsets = printed(healthyFile(), {"--hex", "--at", "1328"});
  EXPECT_EQ(offsets.substr(offsets.find("  0x00000558")),
            "  0x00000558  00                       dl_flags = 0\n"
            "  0x00000559  00 00 00                 dl_reserved\n"
            "  0x0000055c  01 00 00 00              dl_count = 1\n"
            "  0x00000560  07 00 00 00 00 00 00 00  dl_offset[0] = 7\n");
  FileBuilder file;
  file.add("DL", {0, 0}, Bytes().u8s({1, 0, 0, 0}).u32(1).u64(4096));
  file.add("ZZ", {64, 7}, "abc");
  const std::string list = printed(file.bytes(), {"--hex", "--at", "168"});
  EXPECT_EQ(list.substr(list.find("  0x000000d8")),
            "  0x000000d8  00 10 00 00 00 00 00 00  dl_equal_length = 4096\n");
  EXPECT_EQ(printed(file.bytes(), {"--hex", "--at", "224"}),
            "224 (0xe0) ##ZZ length 43 links 2: 64 7\n"
            "  0x000000e0  23 23 5a 5a              id = \"##ZZ\"\n"
            "  0x000000e4  00 00 00 00              reserved\n"
            "  0x000000e8  2b 00 00 00 00 00 00 00  length = 43\n"
            "  0x000000f0  02 00 00 00 00 00 00 00  link_count = 2\n"
            "  0x000000f8  40 00 00 00 00 00 00 00  link 0 = 64 (0x40)\n"
            "  0x00000100  07 00 00 00 00 00 00 00  link 1 = 7 (0x7)\n"
            "  further data, 3 bytes\n"
            "  0x00000108  61 62 63                                         |abc|\n");
}

TEST(DumpCommand, BytesOfABlockThatIsCutOff) {
  const TempFile file(healthyFile().substr(0, 346));
  EXPECT_EQ(run({"dump", "--hex", "--at", "312", file.path()}),
            (RunResult{1,
                       "312 (0x138) ##DG length 64 links 4: dg_dg_next=0\n"
                       "  0x00000138  23 23 44 47              id = \"##DG\"\n"
                       "  0x0000013c  00 00 00 00              reserved\n"
                       "  0x00000140  40 00 00 00 00 00 00 00  length = 64\n"
                       "  0x00000148  04 00 00 00 00 00 00 00  link_count = 4\n"
                       "  0x00000150  00 00 00 00 00 00 00 00  dg_dg_next = 0\n",
                       messagesOf(blockCut(312, "DG", 64, 34), file.path())}));
}

TEST(DumpCommand, JsonLines) {
  const TempFile file(healthyFile());
  const RunResult result = run({"dump", "--json", "--at", "0", "--at", "896", "--at", "224", "--at",
                                "744", "--bytes", "8", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  const std::string head = R"({"schema":2,"file":")" + file.path() + R"(","offset":)";
  EXPECT_EQ(
      result.output,
      head +
          R"(0,"type":"ID","length":64,"fields":{"id_file":"MDF     ","id_vers":"4.10    ",)"
          R"("id_prog":"testprog","id_default_byte_order":0,"id_float_format":0,"id_ver":410,)"
          R"("id_code_page":0,"id_reserved":"00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 )"
          R"(00 00 00 00 00 00 00 00 00 00 00 00","id_unfin_flags":0,"id_custom_unfin_flags":0}})"
          "\n" +
          head +
          R"(896,"type":"CC","length":96,"link_count":4,"reserved":"00 00 00 00","fields":{)"
          R"("cc_type":1,"cc_precision":2,)"
          R"("cc_flags":1,"cc_ref_count":0,"cc_val_count":2,"cc_phy_range_min":-1.0,)"
          R"("cc_phy_range_max":1000000000.0},"cc_val":[0.5],"tail_bytes":16,"links":[)"
          R"({"role":"cc_tx_name","offset":0},{"role":"cc_md_unit","offset":640},)"
          R"({"role":"cc_md_comment","offset":0},{"role":"cc_cc_inverse","offset":0}]})"
          "\n" +
          head +
          R"(224,"type":"MD","length":40,"link_count":0,"reserved":"00 00 00 00","fields":{},)"
          R"("text":"<HDcomme","tail_bytes":16,"links":[]})"
          "\n" +
          head +
          R"(744,"type":"DT","length":30,"link_count":0,"reserved":"00 00 00 00","fields":{},)"
          R"("tail_bytes":6,"links":[]})"
          "\n");
}

TEST(DumpCommand, JsonOfBytesThatAreNoAsciiAndOfAnUnfinishedFile) {
  FileBuilder file("UnFinMF ");
  file.write(16, std::string("a\0\xFC\x01    ", 8));
  file.write(60, Bytes().u16(5).u16(256));
  file.add("DG", {0, 0, 0, 0}, Bytes().u8s({8, 1, 2, 3, 4, 5, 6, 255}));
  const std::string lines = printed(file.bytes(), {"--json", "--at", "0", "--at", "168"});
  for (const std::string member :
       {R"("id_file":"UnFinMF ")", "\"id_prog\":\"a\\u0000\xC3\xBC\\u0001    \"",
        R"("id_unfin_flags":5,"id_custom_unfin_flags":256)",
        R"("dg_rec_id_size":8,"dg_reserved":"01 02 03 04 05 06 ff")"}) {
    EXPECT_PRED2(contains, lines, member);
  }
}

TEST(DumpCommand, FieldsAsTheFormatHasThem) {
  EXPECT_EQ(printed(healthyFile(), {"--at", "0"}),
            "0 (0x0) identification length 64\n"
            "  id_file = \"MDF     \"\n"
            "  id_vers = \"4.10    \"\n"
            "  id_prog = \"testprog\"\n"
            "  id_default_byte_order = 0\n"
            "  id_float_format = 0\n"
            "  id_ver = 410\n"
            "  id_code_page = 0\n"
            "  id_reserved = 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
            "00 00 00 00 00\n"
            "  id_unfin_flags = 0\n"
            "  id_custom_unfin_flags = 0\n");
  EXPECT_EQ(printed(healthyFile(), {"--at", "896"}),
            "896 (0x380) ##CC length 96 links 4\n"
            "  reserved = 00 00 00 00\n"
            "  cc_tx_name = 0\n"
            "  cc_md_unit = 640 (0x280)\n"
            "  cc_md_comment = 0\n"
            "  cc_cc_inverse = 0\n"
            "  cc_type = 1\n"
            "  cc_precision = 2\n"
            "  cc_flags = 1\n"
            "  cc_ref_count = 0\n"
            "  cc_val_count = 2\n"
            "  cc_phy_range_min = -1\n"
            "  cc_phy_range_max = 1e+09\n"
            "  cc_val[0] = 0.5\n"
            "  cc_val[1] = 2\n");
}

/// The library's reader puts what it has read after links that are there already.
TEST(DumpCommand, LinksStandWhereTheFormatHasThemAndNotWhereTheLibraryReadsThem) {
  const std::string format = printed(healthyFile(), {"--at", "312"});
  EXPECT_PRED2(contains, format, "\n  dg_data = 744 (0x2e8)\n");
  const std::string library = printed(healthyFile(), {"--library", "--at", "312"});
  EXPECT_EQ(library, dumpOf("312 (0x138) ##DG"));
  EXPECT_EQ(library.find("(pointer) = 744"), std::string::npos) << library;
}

TEST(DumpCommand, TextsLineByLineAndDataAsBytes) {
  FileBuilder file;
  file.text("first\n\x1B[31msecond \xC3\xA4\n");
  file.add("DT", {}, "0123456789abcdefXYZ");
  file.add("ZZ", {64}, "abc");
  EXPECT_EQ(printed(file.bytes(), {"--at", "168"}),
            "168 (0xa8) ##TX length 46 links 0\n"
            "  reserved = 00 00 00 00\n"
            "  tx_data, 22 bytes\n"
            "    first\n"
            "    \\x1b[31msecond \xC3\xA4\n");
  EXPECT_EQ(printed(file.bytes(), {"--at", "168", "--bytes", "3"}),
            "168 (0xa8) ##TX length 46 links 0\n"
            "  reserved = 00 00 00 00\n"
            "  tx_data, 22 bytes\n"
            "    fir\n"
            "  ... 19 more bytes\n");
  EXPECT_EQ(printed(file.bytes(), {"--at", "216", "--bytes", "17"}),
            "216 (0xd8) ##DT length 43 links 0\n"
            "  reserved = 00 00 00 00\n"
            "  dt_data, 19 bytes\n"
            "  0x000000f0  30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
            "  0x00000100  58                                               |X|\n"
            "  ... 2 more bytes\n");
  EXPECT_EQ(printed(file.bytes(), {"--at", "264"}),
            "264 (0x108) ##ZZ length 35 links 1\n"
            "  reserved = 00 00 00 00\n"
            "  link 0 = 64 (0x40)\n"
            "  further data, 3 bytes\n"
            "  0x00000128  61 62 63                                         |abc|\n");
}

TEST(DumpCommand, FieldsOfABlockThatIsCutOff) {
  const TempFile file(healthyFile().substr(0, 346));
  EXPECT_EQ(run({"dump", "--at", "312", file.path()}),
            (RunResult{1,
                       "312 (0x138) ##DG length 64 links 4\n"
                       "  reserved = 00 00 00 00\n"
                       "  dg_dg_next = 0\n",
                       messagesOf(blockCut(312, "DG", 64, 34), file.path())}));
}

TEST(DumpCommand, DataIsNotReadWhereItIsNotShown) {
  constexpr std::uint64_t far = std::uint64_t{1} << 40U;
  FileBuilder builder;
  const auto data = builder.add("DT", {}, "");
  const auto group = builder.add("DG", {0, 0, data, 0}, Bytes().zeros(8));
  builder.link(FileBuilder::header, 0, group);
  builder.write(data + 8, Bytes().u64(far));
  TempFile file(builder.bytes());
  // The data reaches to the end of a file with a hole of a tebibyte.
  file.writeAt(data + far - 1, "!");
  for (const std::string option : {"--hex", "--json"}) {
    const RunResult result = run({"dump", option, file.path()});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_PRED2(contains, result.output, "1099511627776");
  }
}

}  // namespace
