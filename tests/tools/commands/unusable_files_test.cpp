// What every command says of a file that it cannot read at all: the same sentence, with the same
// exit code, and nothing else.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// The words of each command that reads files; the file's name is added.
const std::vector<std::vector<std::string>>& readingCommands() {
  static const std::vector<std::vector<std::string>> commands = {
      {"info"},
      {"info", "--json"},
      {"list", "channels"},
      {"list", "blocks"},
      {"list", "attachments"},
      {"list", "events"},
      {"tree"},
      {"tree", "--json"},
      {"dump"},
      {"dump", "--hex"},
      {"dump", "--json"},
      {"dump", "--library"},
      {"dump", "--at", "64"},
      {"graph", "--json"},
      {"graph", "--map", "--json"},
      {"graph", "-o", "-"},
      {"export"},
      {"export", "--group", "1"},
      {"plot", "-c", "*", "--file"},
      {"plot", "--json", "-c", "*", "--file"},
      {"stats"},
      {"stats", "--json", "--du"},
      {"extract"}};
  return commands;
}

RunResult runOn(std::vector<std::string> words, const std::string& path) {
  if (words.back() == "--file") {
    // Patterns after the option would take the file's name too.
    words.pop_back();
    words.insert(words.begin() + 1, path);
  } else {
    words.push_back(path);
  }
  return run(words);
}

/// An identification of an earlier version, without the "##" of version 4 after it.
std::string earlierFile(const std::string& version_text, std::uint16_t version) {
  return "MDF     " + version_text + "    testprog" + zeros(4) + u16(version) + zeros(34) + "HD" +
         zeros(162);
}

std::vector<std::pair<std::string, std::string>> unusableFiles() {
  return {{"", "this is not an MDF file: it is empty"},
          {"hello\n", "this is not an MDF file: it begins with \"hello\\x0a\""},
          {std::string(1000, 'x'), "this is not an MDF file: it begins with \"xxxxxxxx\""},
          {FileBuilder().bytes().substr(0, 63),
           "this is not an MDF file: it has only 63 of the 64 bytes of identification"},
          {earlierFile("3.30", 330), "this is MDF 3.30; only 4.x is read"},
          {earlierFile("2.14", 214), "this is MDF 2.14; only 4.x is read"},
          {earlierFile("2.1\x7f", 210), "this is MDF 2.1\\x7f; only 4.x is read"},
          {earlierFile("3.00", 0x2C01), "this is MDF 3.00; only 4.x is read"},  // 300, big-endian
          {earlierFile("????", 310), "this is MDF 3.10; only 4.x is read"},
          {earlierFile("5.00", 500), "this is MDF 5.00; only 4.x is read"}};
}

TEST(UnusableFiles, GetOneSentenceFromEveryCommand) {
  for (const auto& [bytes, sentence] : unusableFiles()) {
    const TempFile file(bytes);
    for (const std::vector<std::string>& words : readingCommands()) {
      SCOPED_TRACE(testing::PrintToString(words) + " " + sentence);
      EXPECT_EQ(runOn(words, file.path()), said(2, file.path() + ": " + sentence));
    }
  }
}

TEST(UnusableFiles, CheckGivesTheSentenceItsCode) {
  for (const auto& [bytes, sentence] : unusableFiles()) {
    const TempFile file(bytes);
    const std::string code = sentence.find("not an MDF") < 20 ? "not-mdf" : "version-wrong";
    EXPECT_EQ(
        run({"check", file.path()}),
        (RunResult{2, file.path() + ": 0 (0x0): error " + code + ": " + sentence + "\n", ""}));
  }
}

TEST(UnusableFiles, FoldersAreNone) {
  const ScratchFolder folder;
  std::vector<std::vector<std::string>> commands = readingCommands();
  commands.push_back({"check"});
  for (const std::vector<std::string>& words : commands) {
    SCOPED_TRACE(testing::PrintToString(words));
    EXPECT_EQ(runOn(words, folder.path().string()),
              said(2, "cannot read " + folder.path().string() + ": Is a directory"));
  }
}

/// What has a header block can be read, whatever its identification says.
TEST(UnusableFiles, DamagedIdentificationsDoNotMakeOne) {
  FileBuilder wrong_word;
  wrong_word.write(0, "XXX");
  const std::string without_header = FileBuilder().bytes().substr(0, 64);
  for (const std::string& bytes :
       {wrong_word.bytes(), FileBuilder("MDF     ", 330).bytes(), without_header}) {
    const TempFile file(bytes);
    const RunResult result = run({"dump", "--type", "ID", file.path()});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.output.rfind("0 (0x0) identification", 0), 0U) << result.output;
  }
}

}  // namespace
