#include <gtest/gtest.h>

#include "tools/support/program.h"
#include "tools/support/recorded_file.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace fs = std::filesystem;

namespace {

void expectRefused(const std::vector<std::string>& arguments, const std::string& message) {
  EXPECT_EQ(record(arguments), said(2, message));
}

TEST(RecordRefused, BadArguments) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  expectRefused({}, "OUT.mf4 is required");
  expectRefused({path, "more"}, "The following argument was not expected: more");
  expectRefused({path, "--rate", "fast"},
                "\"fast\" is not a rate; write a number and Hz or kHz, such as 100Hz or 0.5Hz");
  expectRefused({path, "--duration", "-1s"},
                "\"-1s\" is out of range; a duration is 0, for no end, to 10 years");
  expectRefused({path, "--rate", "gpu=5"},
                "\"gpu\" is no source; there are cpu, load, memory, network and temperature");
  expectRefused({path, "-c", "speed*"}, "no signal of this machine matches \"speed*\"");
  expectRefused({path, "--time", "t"}, "--time requires --stdin");
  expectRefused({path + "/no/out.mf4"},
                "cannot record to " + path + "/no/out.mf4: there is no directory " + path + "/no");
  EXPECT_FALSE(fs::exists(path));
}

TEST(RecordRefused, FileThatExistsIsReplacedByForceAlone) {
  const ScratchFolder folder;
  folder.write("out.mf4", "what is there");
  const std::string path = folder / "out.mf4";
  expectRefused({path}, "cannot record to " + path + ": it exists; --force replaces it");
  RunOptions lines;
  lines.input = "a\n1\n";
  EXPECT_EQ(record({path, "--stdin", "csv"}, lines),
            said(2, "cannot record to " + path + ": it exists; --force replaces it"));
  EXPECT_EQ(record({path, "--stdin", "csv", "--rotate", "1GB"}, lines).exit_code, 0);
  const std::string numbered = folder / "out_001.mf4";
  EXPECT_EQ(record({path, "--stdin", "csv", "--rotate", "1GB"}, lines),
            said(2, "cannot record to " + numbered + ": it exists; --force replaces it"));
  EXPECT_EQ(bytesOf(path), "what is there");
  EXPECT_EQ(record({path, "--duration", "10ms", "--force"}).exit_code, 0);
  RecordedFile(path).expectComplete();
}

TEST(RecordRefused, TerminalIsNoPlaceForARecording) {
  RunOptions options;
  options.output_is_terminal = true;
  EXPECT_EQ(record({"-"}, options), said(2, "cannot record to standard output: it is a terminal"));
}

TEST(RecordFull, DeviceThatTakesNothing) {
  EXPECT_EQ(record({"/dev/full", "--duration", "1s"}),
            said(1, "cannot record to /dev/full: No space left on device; nothing was recorded"));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

/// Records to a file that may grow to so many bytes. True when it was big enough.
bool recordWithLimit(const fs::path& path, std::uint64_t limit) {
  SCOPED_TRACE("limit " + std::to_string(limit));
  RunOptions options;
  options.file_size_limit = limit;
  const RunResult result = record({path.string(), "--duration", "300ms"}, options);
  if (result.exit_code == 0) {
    RecordedFile(path).expectComplete();
    return true;
  }
  EXPECT_EQ(result.exit_code, 1);
  if (fs::exists(path)) {
    const RecordedFile file(path);
    file.expectComplete();
    EXPECT_LE(file.bytes().size(), limit);
    EXPECT_EQ(result.messages, "mdf: cannot write to " + path.string() + ": File too large; the " +
                                   std::to_string(file.records()) +
                                   " records written before that make a complete file\n");
    fs::remove(path);
  } else {
    EXPECT_EQ(result.messages, "mdf: cannot record to " + path.string() +
                                   ": File too large; nothing was recorded\n");
  }
  return false;
}

TEST(RecordFull, FileThatTakesNoMoreIsCompleteOrGone) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  ASSERT_EQ(record({path.string(), "--duration", "1ms"}).exit_code, 0);
  const std::uint64_t least = RecordedFile(path).bytes().size();
  fs::remove(path);
  for (const std::uint64_t limit : {std::uint64_t{0}, least / 2, least - 1, least + 1000}) {
    EXPECT_FALSE(recordWithLimit(path, limit));
  }
  EXPECT_TRUE(recordWithLimit(path, least + 100'000));
}

}  // namespace
