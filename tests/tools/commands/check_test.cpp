#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "reader/blocks/codes.h"
#include "reader/blocks/finding.h"
#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

TEST(CheckCommand, HealthyFile) {
  const TempFile file(SmallFile().bytes());
  EXPECT_EQ(run({"check", file.path()}), said(0, file.path() + ": nothing found, 8 blocks"));
}

/// Lines "64 error link-outside-file: ..." as the program writes them about a file.
std::string outputFor(const std::string& problem_lines, const std::string& path) {
  std::string output;
  std::istringstream lines(problem_lines);
  for (std::string line; std::getline(lines, line);) {
    output += path + ": " + mdf_reader::decimalAndHex(std::stoull(line)) + ':' +
              line.substr(line.find(' ')) + '\n';
  }
  return output;
}

TEST(CheckCommand, FaultyFile) {
  const TempFile file(faultyFile());
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, outputFor(checkedBytes(faultyFile()), file.path()));
  EXPECT_EQ(problemsIn(faultyFile()),
            "64 link-outside-file 762 739\n656 text-not-utf8 8\n232 master-missing\n");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": 1 error, 1 warning, 1 note, 8 blocks\n");
}

TEST(CheckCommand, Json) {
  const TempFile file(faultyFile());
  const RunResult result = run({"check", "--json", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  std::string lines;
  std::istringstream output(result.output);
  for (std::string line; std::getline(output, line);) {
    const nlohmann::ordered_json problem = nlohmann::ordered_json::parse(line);
    const auto text = [&](const char* key) { return problem.at(key).get<std::string>(); };
    EXPECT_EQ(text("file"), file.path());
    EXPECT_EQ(problem.dump(), line);
    std::string keys;
    for (const auto& [key, value] : problem.items()) {
      keys += key + ' ';
    }
    EXPECT_EQ(keys, "schema file code severity offset path text ");
    lines += problem.at("offset").dump() + ' ' + text("severity") + ' ' + text("code") + ": " +
             text("text") + " [" + text("path") + "]\n";
  }
  EXPECT_EQ(lines, checkedBytes(faultyFile()));
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
  EXPECT_EQ(run({"check", file.path()}),
            (RunResult{1, outputFor(checkedBytes(SmallFile("UnFinMF ").bytes()), file.path()),
                       "mdf: " + file.path() + ": 1 warning, 8 blocks\n"}));
}

TEST(CheckCommand, SeveralFilesGoOnAfterAnUnreadableOne) {
  const TempFile healthy(SmallFile().bytes());
  const TempFile empty;
  EXPECT_EQ(run({"check", healthy.path(), "/no/such/file", empty.path(), healthy.path()}),
            (RunResult{2, outputFor(checkedBytes(""), empty.path()),
                       "mdf: " + healthy.path() + ": nothing found, 8 blocks\n" +
                           "mdf: cannot open /no/such/file: No such file or directory\n" +
                           "mdf: " + healthy.path() + ": nothing found, 8 blocks\n"}));
}

TEST(CheckCommand, StandardInput) {
  RunOptions options;
  options.input = faultyFile();
  const RunResult result = run({"check", "-"}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output.rfind("standard input: 64 (0x40): error link-outside-file: ", 0), 0U);
}

TEST(CheckCommand, ExplainsEachCode) {
  std::string list;
  for (const mdf_reader::CodeText& code : mdf_reader::allCodes()) {
    const std::string severity(severityWord(code.severity));
    list += severity + ' ' + std::string(code.word) + '\n';
    EXPECT_EQ(
        run({"check", "--explain", std::string(code.word)}),
        wrote(std::string(code.word) + " (" + severity + "): " + std::string(code.title) + ".\n\n" +
              std::string(code.meaning) + "\n\n" + std::string(code.advice) + '\n'));
  }
  EXPECT_EQ(run({"check", "--codes"}).output, list);
}

TEST(CheckCommand, FullOutputIsAProblem) {
  const TempFile file(faultyFile());
  RunOptions options;
  options.output_path = "/dev/full";
  const RunResult result = run({"check", file.path()}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_PRED2(contains, result.messages, "mdf: cannot write to standard output: ");
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
