#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "../support/file_builder.h"
#include "../support/program.h"
#include "../support/scratch_folder.h"
#include "../support/small_file.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;

/// Runs a copy in a folder whose name is left out of what it says.
RunResult copyIn(const ScratchFolder& folder, Words words) {
  const std::string path = folder.path().string() + '/';
  for (std::string& word : words) {
    word = word.find(".mf4") == std::string::npos ? word : path + word;
  }
  words.insert(words.begin(), "copy");
  RunResult result = run(words);
  for (std::size_t at = result.messages.find(path); at != std::string::npos;
       at = result.messages.find(path)) {
    result.messages.erase(at, path.size());
  }
  return result;
}

/// The small file with a block of an unknown type where a comment should be: it leads to the
/// speed's name, and its bytes after the links stay as they are.
class OddFile : public SmallFile {
 public:
  OddFile() { setComment(add("XY", {speed_name, 0}, "any bytes")); }
};

TEST(CopyCommand, WholeFile) {
  const ScratchFolder folder;
  folder.write("in.mf4", OddFile().bytes());
  const RunResult result = copyIn(folder, {"in.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages,
            "mdf: in.mf4: the copy keeps 1 problem of the file, see 'mdf check'\n");

  const std::string version = run({"--version"}).output;  // "mdf ..." in a line
  OddFile expected;
  const std::uint64_t comment = expected.metadata(
      "<FHcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>copied from in.mf4</TX>"
      "<tool_id>mdf</tool_id><tool_vendor></tool_vendor><tool_version>" +
      version.substr(4, version.size() - 5) + "</tool_version></FHcomment>");
  const std::uint64_t history =
      expected.add("FH", {0, comment}, Bytes().u64(0).i16(0).i16(0).u8(2).zeros(3).str());
  expected.link(OddFile::header, 1, history);
  std::string bytes = bytesOf(folder / "out.mf4");
  bytes.replace(static_cast<std::size_t>(history) + 40, 8, 8, '\0');  // the time of the copy
  EXPECT_EQ(bytes, expected.bytes());
}

TEST(CopyCommand, Refusals) {
  struct Case {
    Words words;
    int exit_code;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"in.mf4", "-o", "in.mf4", "--force"}, 2, "mdf: the output in.mf4 is the file to read\n"},
      {{"in.mf4", "-o", "there.mf4"},
       2,
       "mdf: cannot write there.mf4: File exists; --force replaces it\n"},
      {{"none.mf4", "-o", "out.mf4"}, 2, "mdf: cannot open none.mf4: No such file or directory\n"},
      {{"in.mf4", "-o", "out.mf4", "--level", "3"}, 2, "mdf: --level requires --zip\n"},
      {{"text.mf4", "-o", "out.mf4"},
       2,
       "mdf: text.mf4: this is not an MDF file: it begins with \"text\"\n"},
  };
  const ScratchFolder folder;
  folder.write("in.mf4", SmallFile().bytes());
  folder.write("there.mf4", "");
  folder.write("text.mf4", "text");
  for (const Case& each : cases) {
    const RunResult result = copyIn(folder, each.words);
    EXPECT_EQ(result.exit_code, each.exit_code);
    EXPECT_EQ(result.messages, each.message);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "out.mf4"));
}

TEST(CopyCommand, ProblemsOfTheFile) {
  const ScratchFolder folder;
  folder.write("faulty.mf4", faultyFile());
  const RunResult result = copyIn(folder, {"faulty.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(
      result.messages,
      "mdf: faulty.mf4: 64 (0x40): expected link 5 of ##HD to lead to the 24 bytes of a block "
      "header, found only 23 at 739 (0x2e3)\n");
  EXPECT_TRUE(std::filesystem::exists(folder / "out.mf4"));
}

/// Adds an event in front of others; of one that ends, with the event that it began with.
std::uint64_t addEvent(FileBuilder& file, const std::string& name, double seconds,
                       std::uint64_t next, std::uint8_t range = 0, std::uint64_t began = 0) {
  const std::uint64_t text = file.text(name);
  return file.add("EV", {next, 0, began, text, 0},
                  Bytes()
                      .u8s({6, 1, range, 4, 0, 0, 0, 0})
                      .u32(0)
                      .u16(0)
                      .u16(0)
                      .i64(static_cast<std::int64_t>(seconds * 1000))
                      .f64(0.001));
}

TEST(CopyCommand, EventsWithinLimits) {
  const ScratchFolder folder;
  SmallFile file;
  const std::uint64_t late = addEvent(file, "late", 3.5, 0);
  const std::uint64_t began = addEvent(file, "begins early", 0.5, late, 1);
  const std::uint64_t ended = addEvent(file, "ends", 2.5, began, 2, began);
  const std::uint64_t inside = addEvent(file, "inside", 2, ended);
  const std::uint64_t first = addEvent(file, "early", 0.999, inside);
  file.link(SmallFile::header, 4, first);
  folder.write("in.mf4", file.bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "--from", "1", "--to", "3"}).exit_code, 0);
  EXPECT_EQ(run({"list", "events", (folder / "out.mf4").string()}).output,
            "offset  position  unit  kind    range  cause  name          comment\n"
            "  1016         2  s     marker  point  user   inside\n"
            "   888       2.5  s     marker  end    user   ends\n"
            "   760       0.5  s     marker  begin  user   begins early\n");
}

TEST(CopyCommand, WithoutWhatNobodyWants) {
  const ScratchFolder folder;
  SmallFile file;
  const std::uint64_t attachment = file.add(
      "AT", {0, 0, 0, 0}, Bytes().u16(1).u16(0).u32(0).zeros(16).u64(3).u64(3).text("abc"));
  const std::uint64_t reduction =
      file.add("SR", {0, 0}, Bytes().u64(0).f64(1).u8(1).u8(0).zeros(6));
  file.link(SmallFile::header, 3, attachment);
  file.link(SmallFile::header, 4, addEvent(file, "event", 1, 0));
  file.link(SmallFile::group, 4, reduction);
  folder.write("in.mf4", file.bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "--without", "attachments", "--without",
                            "events", "--without", "reductions"})
                .exit_code,
            0);
  const std::string blocks = run({"list", "blocks", (folder / "out.mf4").string()}).output;
  EXPECT_EQ(blocks.substr(0, blocks.find("   768")),  // the new entry of the history
            "offset  type  length  links\n"
            "    64  HD       104  6\n"
            "   168  DG        64  4\n"
            "   232  CG       104  6\n"
            "   336  CN       160  8\n"
            "   496  CN       160  8\n"
            "   656  TX        29  0\n"
            "   688  TX        30  0\n"
            "   720  DT        42  0\n");
}

TEST(CopyCommand, FromStandardInputToStandardOutput) {
  const ScratchFolder folder;
  folder.write("in.mf4", SmallFile().bytes());
  RunOptions options;
  options.input = SmallFile().bytes();
  const RunResult result = run({"copy", "-", "-o", "-", "--zip", "none"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  options.input = result.output;
  EXPECT_EQ(run({"export", "-"}, options).output,
            run({"export", (folder / "in.mf4").string()}).output);
}

}  // namespace
