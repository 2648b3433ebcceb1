#include "recording/recording_file.h"

#include <gtest/gtest.h>

#include "tools/support/checked.h"
#include "tools/support/file_size_limit.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace fs = std::filesystem;

namespace {

RecordingInfo info() {
  return {"title",
          "1",
          {{"fast", {float32Signal("a", "%"), uint64Signal("b", "")}},
           {"slow", {float64Signal("c", "V")}}},
          {1'600'000'000'000'000'000, 0, false}};
}

constexpr std::int64_t second = 1'000'000'000;

/// Four records of one group, two of the other.
void appendAll(RecordingFile& file) {
  for (unsigned i = 0; i < 4; ++i) {
    file.append({0, i * second, {bitsOf(0.5F * static_cast<float>(i)), i + (1ULL << 40U)}});
    if (i % 2 == 0) {
      file.append({1, i * second + 1, {bitsOf(-1.25 * i)}});
    }
  }
}

constexpr const char* fast_table =
    "time [s],a [%],b\n"
    "0,0,1099511627776\n"
    "1,0.5,1099511627777\n"
    "2,1,1099511627778\n"
    "3,1.5,1099511627779\n";

std::string tableOf(const fs::path& path, const std::string& group) {
  return run({"export", path.string(), "--group", group}).output;
}

TEST(RecordingFile, WritesWhatTheGroupsHave) {
  const ScratchFolder folder;
  const fs::path path = folder / "out";
  RecordingFile file(path.string(), info(), {});
  file.open(0);
  appendAll(file);
  file.finish();
  EXPECT_EQ(file.channels(), 5U);
  EXPECT_EQ(tableOf(path, "fast"), fast_table);
  EXPECT_EQ(tableOf(path, "slow"), "time [s],c [V]\n1e-09,-0\n2.000000001,-2.5\n");
  EXPECT_EQ(checkedBytes(bytesOf(path)), "");
}

/// What is said of a recording to a path, and what a check finds in the file.
std::string record(const fs::path& path) {
  std::string sentence;
  try {
    RecordingFile file(path.string(), info(), {});
    file.open(0);
    appendAll(file);
    file.finish();
    sentence = "recorded";
  } catch (const RecordingFailure& failure) {
    sentence = failure.what();
  } catch (const UnusablePath& refusal) {
    sentence = refusal.what();
  }
  return sentence;
}

TEST(RecordingFile, FileThatTakesNoMoreIsCompleteOrGone) {
  const ScratchFolder folder;
  const fs::path path = folder / "out";
  const std::string beginning = "cannot write to " + path.string() + ": File too large; the ";
  for (std::uint64_t limit = 0;; limit += 64) {
    SCOPED_TRACE(limit);
    std::string message;
    {
      const FileSizeLimit full(limit);
      message = record(path);
    }
    if (message == "recorded") {
      EXPECT_GT(limit, 1000U);
      break;
    }
    if (fs::exists(path)) {
      EXPECT_EQ(message.substr(0, beginning.size()), beginning);
      EXPECT_PRED2(contains, message, " records written before that make a complete file");
      EXPECT_EQ(checkedBytes(bytesOf(path)), "");
      fs::remove(path);
    } else {
      EXPECT_EQ(message,
                "cannot record to " + path.string() + ": File too large; nothing was recorded");
    }
  }
}

TEST(RecordingFile, RefusesPathsThatAreNoFile) {
  const ScratchFolder folder;
  const std::string path = folder.path().string();
  EXPECT_EQ(record(path), "cannot record to " + path + ": Is a directory");
  EXPECT_EQ(record(path + "/no/out"),
            "cannot record to " + path + "/no/out: there is no directory " + path + "/no");
  folder.write("file", "");
  EXPECT_EQ(record(path + "/file/out"), "cannot record to " + path + "/file/out: Not a directory");
}

}  // namespace
