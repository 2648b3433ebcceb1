#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "checking/codes.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

TEST(CheckCommand, HealthyFile) {
  const TempFile file(SmallFile().bytes());
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": nothing found, 8 blocks\n");
}

TEST(CheckCommand, FaultyFile) {
  const TempFile file(faultyFile());
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output,
            file.path() +
                ": 64 (0x40): error link-outside-file: expected hd_md_comment to lead to a block "
                "in the file of 762 bytes, found 739 (0x2e3) [HD]\n" +
                file.path() +
                ": 656 (0x290): warning text-not-utf8: expected a text in UTF-8, found other bytes "
                "[HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[0].cn_tx_name/TX]\n" +
                file.path() +
                ": 232 (0xe8): note master-missing: expected a master channel among the channels, "
                "found none [HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]\n");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": 1 error, 1 warning, 1 note, 8 blocks\n");
}

TEST(CheckCommand, Json) {
  const TempFile file(faultyFile());
  const RunResult result = run({"check", "--json", file.path()});
  const std::string begin = R"({"schema":1,"file":")" + file.path() + R"(",)";
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(
      result.output,
      begin +
          R"("code":"link-outside-file","severity":"error","offset":64,"path":"HD",)"
          R"("text":"expected hd_md_comment to lead to a block in the file of 762 bytes, )"
          R"x(found 739 (0x2e3)"})x"
          "\n" +
          begin +
          R"("code":"text-not-utf8","severity":"warning","offset":656,)"
          R"("path":"HD.hd_dg_first/DG[0].dg_cg_first/CG[0].cg_cn_first/CN[0].cn_tx_name/TX",)"
          R"("text":"expected a text in UTF-8, found other bytes"})"
          "\n" +
          begin +
          R"("code":"master-missing","severity":"note","offset":232,)"
          R"("path":"HD.hd_dg_first/DG[0].dg_cg_first/CG[0]",)"
          R"("text":"expected a master channel among the channels, found none"})"
          "\n");
}

TEST(CheckCommand, NotesAloneAreFine) {
  SmallFile small;
  small.setChannel(SmallFile::time, {0, 0, 4, 0, 0, 64});
  const TempFile file(small.bytes());
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_NE(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": 1 note, 8 blocks\n");
}

TEST(CheckCommand, WarningsAreProblems) {
  const TempFile file(SmallFile("UnFinMF ").bytes());
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output,
            file.path() +
                ": 0 (0x0): warning file-unfinished: expected a finished file, found an unfinished "
                "one; still open: nothing that the standard flags name\n");
}

TEST(CheckCommand, SeveralFilesGoOnAfterAnUnreadableOne) {
  const TempFile healthy(SmallFile().bytes());
  const TempFile empty;
  const RunResult result =
      run({"check", healthy.path(), "/no/such/file", empty.path(), healthy.path()});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, empty.path() +
                               ": 0 (0x0): error not-mdf: expected 64 bytes of identification, "
                               "found 0 up to the end of the file\n");
  EXPECT_EQ(result.messages, "mdf: " + healthy.path() + ": nothing found, 8 blocks\n" +
                                 "mdf: cannot open /no/such/file: No such file or directory\n" +
                                 "mdf: " + empty.path() + ": 1 error, 0 blocks\n" +
                                 "mdf: " + healthy.path() + ": nothing found, 8 blocks\n");
}

TEST(CheckCommand, BytesThatAreNoMeasurementAreAProblemOfTheFile) {
  const TempFile file(std::string(100, 'x'));
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, file.path() +
                               ": 0 (0x0): error not-mdf: expected \"MDF     \" or \"UnFinMF \" at "
                               "the beginning, found \"xxxxxxxx\"\n");
}

TEST(CheckCommand, StandardInput) {
  RunOptions options;
  options.input = faultyFile();
  const RunResult result = run({"check", "-"}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output.rfind("standard input: 64 (0x40): error link-outside-file: ", 0), 0U);
}

void expectUnusable(const std::vector<std::string>& arguments, const std::string& message) {
  const RunResult result = run(arguments);
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + message + "\n");
}

TEST(CheckCommand, WrongArguments) {
  const std::string folder = std::filesystem::temp_directory_path().string();
  expectUnusable({"check"}, "FILE is required");
  expectUnusable({"check", "--json"}, "FILE is required");
  expectUnusable({"check", "--frob", "file"}, "The following argument was not expected: --frob");
  expectUnusable({"check", folder}, "cannot read " + folder + ": Is a directory");
  expectUnusable({"check", "--explain", "frob"},
                 "there is no code \"frob\"; 'mdf check --codes' lists them");
}

TEST(CheckCommand, ExplainsEachCode) {
  std::string list;
  for (const mdf_tools::CodeText& code : mdf_tools::allCodes()) {
    const std::string severity(severityWord(code.severity));
    list += severity + ' ' + std::string(code.word) + '\n';
    const RunResult result = run({"check", "--explain", std::string(code.word)});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.messages, "");
    EXPECT_EQ(result.output,
              std::string(code.word) + " (" + severity + "): " + std::string(code.title) + ".\n\n" +
                  std::string(code.meaning) + "\n\n" + std::string(code.advice) + '\n');
  }
  EXPECT_EQ(run({"check", "--codes"}).output, list);
}

TEST(CheckCommand, FullOutputIsAProblem) {
  const TempFile file(faultyFile());
  RunOptions options;
  options.output_path = "/dev/full";
  const RunResult result = run({"check", file.path()}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.messages.find("mdf: cannot write to standard output: "), std::string::npos);
  for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
           {"check", "--codes"}, {"check", "--explain", "link-outside-file"}}) {
    const RunResult of_codes = run(arguments, options);
    EXPECT_EQ(of_codes.exit_code, 1);
    EXPECT_EQ(of_codes.messages, "mdf: cannot write to standard output: No space left on device\n");
  }
}

TEST(CheckCommand, HelpTeachesWithExamples) {
  const RunResult result = run({"check", "--help"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  for (const std::string text :
       {"Usage: mdf check [OPTIONS] [FILE...]", "- is standard input", "--explain CODE",
        "Examples:\n  mdf check trip.mf4", "Exit code: 0 fine"}) {
    EXPECT_NE(result.output.find(text), std::string::npos) << text << '\n' << result.output;
  }
}

TEST(CheckCommand, OwnRecordingIsHealthy) {
  const ScratchFolder folder;
  const std::string path = (folder.path() / "own.mf4").string();
  ASSERT_EQ(run({"record", path, "--duration", "100ms", "--rate", "50Hz"}).exit_code, 0);
  const RunResult result = run({"check", path});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "");
}

}  // namespace
