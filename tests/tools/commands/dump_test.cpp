#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/bytes.h"
#include "tools/support/healthy_file.h"
#include "tools/support/mdf_bytes.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

TEST(DumpCommand, HealthyFile) {
  const TempFile file(healthyFile());
  const RunResult result = run({"dump", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, healthyDump());
  EXPECT_EQ(result.messages, "");
}

TEST(DumpCommand, StandardInput) {
  RunOptions options;
  options.input = healthyFile();
  const RunResult result = run({"dump", "-"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, healthyDump());
  EXPECT_EQ(result.messages, "");
}

TEST(DumpCommand, FaultyStandardInputIsNamed) {
  RunOptions options;
  options.input = healthyFile().substr(0, 80);
  const RunResult result = run({"dump", "-"}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages,
            "mdf: standard input: 64 (0x40): expected the header block's 24 bytes of common "
            "header, found 16 up to the file's end\n");
}

/// Runs the program on a file with these bytes; what it says must be these lines, the program's and
/// the file's name and a colon before each.
void expectProblems(const std::string& bytes, const std::string& output,
                    std::initializer_list<std::string> messages) {
  const TempFile file(bytes);
  const RunResult result = run({"dump", file.path()});
  std::string expected;
  for (const std::string& message : messages) {
    expected += "mdf: " + file.path() + ": " + message + "\n";
  }
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, output);
  EXPECT_EQ(result.messages, expected);
}

/// The healthy file's dump up to the line of a block, which is left out.
std::string healthyDumpBefore(const std::string& line) {
  const std::string dump = healthyDump();
  return dump.substr(0, dump.find(line));
}

TEST(DumpCommand, EmptyFile) {
  expectProblems("", "",
                 {"0 (0x0): expected 64 bytes of identification, found 0 up to the file's end"});
}

TEST(DumpCommand, FileCutInTheIdentification) {
  expectProblems(healthyFile().substr(0, 63), "",
                 {"0 (0x0): expected 64 bytes of identification, found 63 up to the file's end"});
}

TEST(DumpCommand, FileCutBehindTheIdentification) {
  expectProblems(healthyFile().substr(0, 64), healthyDumpBefore("64 (0x40)"),
                 {"64 (0x40): expected the header block's 24 bytes of common header, found 0 up to "
                  "the file's end"});
}

TEST(DumpCommand, FileCutInTheHeaderBlock) {
  expectProblems(
      healthyFile().substr(0, 97),
      healthyDumpBefore("64 (0x40)") + "64 (0x40) ##HD length 104 links 6: 312\n",
      {"64 (0x40): expected the 104 bytes of ##HD, found 33 up to the file's end",
       "64 (0x40): expected link 0 of ##HD to lead into the file of 97 bytes, found 312 (0x138)"});
}

TEST(DumpCommand, FileCutInTheChannel) {
  expectProblems(
      healthyFile().substr(0, 528),
      healthyDumpBefore("480 (0x1e0)") + "480 (0x1e0) ##CN length 160 links 8: 0 264 640\n",
      {"64 (0x40): expected link 2 of ##HD to lead into the file of 528 bytes, found 992 (0x3e0)",
       "64 (0x40): expected link 3 of ##HD to lead into the file of 528 bytes, found 1080 (0x438)",
       "64 (0x40): expected link 4 of ##HD to lead into the file of 528 bytes, found 1184 (0x4a0)",
       "312 (0x138): expected link 2 of ##DG to lead into the file of 528 bytes, found 744 (0x2e8)",
       "376 (0x178): expected link 2 of ##CG to lead into the file of 528 bytes, found 640 (0x280)",
       "376 (0x178): expected link 3 of ##CG to lead into the file of 528 bytes, found 776 (0x308)",
       "376 (0x178): expected link 4 of ##CG to lead into the file of 528 bytes, found 832 (0x340)",
       "480 (0x1e0): expected the 160 bytes of ##CN, found 48 up to the file's end",
       "480 (0x1e0): expected link 2 of ##CN to lead into the file of 528 bytes, found 640 (0x280)",
       "264 (0x108): expected link 1 of ##XX to lead into the file of 528 bytes, found 1288 "
       "(0x508)"});
}

TEST(DumpCommand, FileCutInTheData) {
  expectProblems(healthyFile().substr(0, 1434),
                 healthyDumpBefore("1384 (0x568)") + "1384 (0x568) ##DZ length 51 links 0\n",
                 {"1384 (0x568): expected the 51 bytes of ##DZ, found 50 up to the file's end"});
}

TEST(DumpCommand, NoMeasurementFile) {
  expectProblems(std::string(100, 'x'),
                 "0 (0x0) identification length 64\n"
                 "[DEBUG] ==================== IDBLOCK ===================\n"
                 "file identifier = xxxxxxxx\n"
                 "format identifier = xxxxxxxx\n"
                 "programm identfier = xxxxxxxx\n"
                 "version number = 30840\n"
                 "[DEBUG] ==================== End of IDBLOCK ===================\n",
                 {"0 (0x0): expected the file identifier \"MDF     \" or \"UnFinMF \", found "
                  "\"xxxxxxxx\"",
                  "64 (0x40): expected the header block \"##HD\", found \"xxxx\""});
}

TEST(DumpCommand, FileThatPointsOutsideItselfIsShownAllTheSame) {
  std::string bytes = healthyFile();
  bytes.replace(440, 8, Bytes().i64(-8));  // the channel group's comment
  std::string dump = healthyDump();
  const std::string line = "##CG length 104 links 6: 0 480 640 776 832 0\n";
  dump.replace(dump.find(line), line.size(), "##CG length 104 links 6: 0 480 640 776 832 -8\n");
  expectProblems(bytes, dump,
                 {"376 (0x178): expected link 5 of ##CG to lead into the file of 1435 bytes, found "
                  "-8"});
}

TEST(DumpCommand, HeaderThatDoesNotFitItsType) {
  std::string bytes = healthyFile();
  bytes.replace(176, 8, Bytes().u64(55));  // the file history's length
  std::string dump = healthyDump();
  dump.replace(dump.find("##FH length 56"), 14, "##FH length 55");
  expectProblems(bytes, dump,
                 {"168 (0xa8): expected length and link count to fit ##FH, found length 55 and 2 "
                  "links"});
}

TEST(DumpCommand, BlocksBeyondFourGibibytes) {
  constexpr std::int64_t far = (std::int64_t{1} << 32U) + 8;
  TempFile file(fileHead({0, far, 0, 0, 0, 0}));
  file.writeAt(far, Bytes()
                        .header("FH", 56, 2)
                        .links({far + 56, 168})
                        .zeros(16)
                        .header("XX", 32, 1)
                        .i64(far + 88));
  const RunResult result = run({"dump", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output.substr(result.output.find("4294967304 (0x")),
            "4294967304 (0x100000008) ##FH length 56 links 2: 4294967360 168\n"
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
            "mdf: " + file.path() +
                ": 4294967304 (0x100000008): expected link 1 of ##FH to lead to a block \"##\", "
                "found \"\\x00\\x00\\x00\\x00\" at 168 (0xa8)\n"
                "mdf: " +
                file.path() +
                ": 4294967360 (0x100000040): expected link 0 of ##XX to lead into the file of "
                "4294967392 bytes, found 4294967392 (0x100000060)\n");
}

TEST(DumpCommand, BlocksBeyondOneTebibyte) {
  constexpr std::int64_t far = (std::int64_t{1} << 40U) + 8;
  TempFile file(fileHead({0, far, 0, 0, 0, 0}));
  file.writeAt(far, Bytes().header("FH", 56, 2).zeros(32));
  const RunResult result = run({"dump", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output.substr(result.output.find("1099511627784 (0x")),
            "1099511627784 (0x10000000008) ##FH length 56 links 2: 0 0\n"
            "[DEBUG] ==================== FHBLOCK ===================\n"
            "block size = 56\n"
            "next file history block (pointer) = 0\n"
            "file comment (pointer) = 0\n"
            "time = 0\n"
            "UTC time offset = 0\n"
            "DST time offset = 0\n"
            "time flags = 0\n"
            "[DEBUG] ==================== End of FHBLOCK ===================\n");
  EXPECT_EQ(result.messages, "");
}

TEST(DumpCommand, TerminalIsNotGivenControlCharacters) {
  const TempFile file(healthyFile());
  RunOptions options;
  options.output_is_terminal = true;
  const RunResult result = run({"dump", file.path()}, options);
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
  const RunResult result = run({"dump", file.path()}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(bytesOf(dump.path()), healthyDump());
}

TEST(DumpCommand, FullDisk) {
  const TempFile file(healthyFile());
  RunOptions options;
  options.output_path = "/dev/full";
  const RunResult result = run({"dump", file.path()}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages, "mdf: cannot write to standard output: No space left on device\n");
}

/// Runs the program in vain: it must say this and nothing else.
void expectUnusable(const std::vector<std::string>& arguments, const std::string& message) {
  const RunResult result = run(arguments);
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + message + "\n");
}

TEST(DumpCommand, MissingFile) {
  expectUnusable({"dump", "/no/such/file"}, "cannot open /no/such/file: No such file or directory");
}

TEST(DumpCommand, Directory) {
  const std::string directory = std::filesystem::temp_directory_path().string();
  expectUnusable({"dump", directory}, "cannot read " + directory + ": Is a directory");
}

TEST(DumpCommand, WrongArguments) {
  const TempFile file(healthyFile());
  expectUnusable({"dump"}, "FILE is required");
  expectUnusable({"dump", "--frob", file.path()},
                 "The following argument was not expected: --frob");
  expectUnusable({"dump", file.path(), "more"}, "The following argument was not expected: more");
}

TEST(DumpCommand, HelpTeachesWithExamples) {
  const RunResult result = run({"dump", "--help"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  for (const std::string text :
       {"Usage: mdf dump [OPTIONS] FILE", "- is standard input", "control characters",
        "Examples:\n  mdf dump trip.mf4 | less", "Exit code: 0 fine, 1 problems"}) {
    EXPECT_NE(result.output.find(text), std::string::npos) << text;
  }
}

}  // namespace
