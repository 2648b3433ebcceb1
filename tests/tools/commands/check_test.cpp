#include <gtest/gtest.h>

#include <filesystem>
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
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "mdf: " + file.path() + ": nothing found, 8 blocks\n");
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
  const RunResult result = run({"check", file.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.output, outputFor(checkedBytes(SmallFile("UnFinMF ").bytes()), file.path()));
}

TEST(CheckCommand, SeveralFilesGoOnAfterAnUnreadableOne) {
  const TempFile healthy(SmallFile().bytes());
  const TempFile empty;
  const RunResult result =
      run({"check", healthy.path(), "/no/such/file", empty.path(), healthy.path()});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, outputFor(checkedBytes(""), empty.path()));
  EXPECT_EQ(result.messages, "mdf: " + healthy.path() + ": nothing found, 8 blocks\n" +
                                 "mdf: cannot open /no/such/file: No such file or directory\n" +
                                 "mdf: " + healthy.path() + ": nothing found, 8 blocks\n");
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
  for (const mdf_reader::CodeText& code : mdf_reader::allCodes()) {
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
