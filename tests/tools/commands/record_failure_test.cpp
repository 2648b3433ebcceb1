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
  expectRefused({"-"},
                "cannot record to standard output: finishing a recording goes back to its start; "
                "name a file");
  expectRefused({path + "/no/out.mf4"},
                "cannot record to " + path + "/no/out.mf4: there is no directory " + path + "/no");
  EXPECT_FALSE(fs::exists(path));
}

TEST(RecordRefused, ProgramThatIsRunningIsNoFileToWriteTo) {
  const ScratchFolder folder;
  const std::string program = folder / "sh";
  fs::copy_file("/bin/sh", program);
  RunOptions options;
  const std::vector<std::string> shell = {program, "-c", "\"$@\"; exit $?", "sh"};
  options.command.insert(options.command.begin(), shell.begin(), shell.end());
  EXPECT_EQ(record({program}, options),
            said(2, "cannot record to " + program + ": Text file busy"));
}

TEST(RecordFull, DeviceThatTakesNothing) {
  EXPECT_EQ(record({"/dev/full", "--duration", "1s"}),
            said(1,
                 "cannot write to /dev/full at offset 0: No space left on device; nothing was "
                 "recorded"));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

/// Records to a file that may grow to so many bytes. True when it was big enough.
/// @param duration at the most: it ends when the file is full.
bool recordWithLimit(const fs::path& path, std::uint64_t limit, const std::string& duration) {
  SCOPED_TRACE("limit " + std::to_string(limit));
  fs::remove(path);
  RunOptions options;
  options.file_size_limit = limit;
  const RunResult result = record({path.string(), "--duration", duration}, options);
  if (result.exit_code == 0) {
    RecordedFile(path).expectComplete();
    return true;
  }
  EXPECT_EQ(result.exit_code, 1);
  const std::string beginning = "mdf: cannot write to " + path.string() + " at offset " +
                                std::to_string(limit) + ": File too large; ";
  EXPECT_EQ(result.messages.substr(0, beginning.size()), beginning);
  if (fs::exists(path)) {
    const RecordedFile file(path);
    file.expectComplete();
    EXPECT_LE(file.bytes().size(), limit);
    EXPECT_GT(file.bytes().size() + file.recordBytes(), limit) << "no whole record is given away";
  } else {
    EXPECT_EQ(result.messages, beginning + "nothing was recorded\n");
  }
  return false;
}

TEST(RecordFull, FileThatTakesNoMoreIsCompleteOrGone) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  ASSERT_EQ(record({path.string(), "--duration", "200ms"}).exit_code, 0);
  const RecordedFile whole(path);
  const std::uint64_t description = whole.data() + 24;
  const std::uint64_t record_bytes = whole.recordBytes();
  std::vector<std::uint64_t> limits = {0, 1, 64, description / 2};
  for (const std::uint64_t middle :
       {description, description + record_bytes, description + 3 * record_bytes}) {
    limits.insert(limits.end(), {middle - 1, middle, middle + 1});
  }
  for (const std::uint64_t limit : limits) {
    EXPECT_FALSE(recordWithLimit(path, limit, "10s"));
  }
  EXPECT_TRUE(recordWithLimit(path, description + 20 * record_bytes, "200ms"));
}

}  // namespace
