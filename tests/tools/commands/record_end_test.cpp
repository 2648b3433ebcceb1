#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "tools/support/child.h"
#include "tools/support/recorded_file.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace fs = std::filesystem;

namespace {

/// Sends a signal half a second after the recording has begun.
ChildSetup interrupt(int signal, const fs::path& file) {
  ChildSetup setup;
  setup.signal = signal;
  setup.signal_after = 0.5;
  setup.signal_when = [file] {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return !error && size > 0;
  };
  return setup;
}

void expectEndsCleanly(const ChildSetup& setup, const fs::path& path) {
  const ChildResult result = record({path.string(), "--duration", "0", "--rate", "20Hz"}, setup);
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(result.signal, 0);
  EXPECT_GT(summaryOf(result.err).seconds, 0);
  const RecordedFile file(path);
  file.expectComplete();
  EXPECT_GT(file.cycleCount(), 0U);
  EXPECT_LT(file.cycleCount(), 100U);
}

TEST(RecordInterrupted, SignalsEndTheRecordingAndTheFileIsComplete) {
  const ScratchFolder folder;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    const fs::path path = folder / ("out" + std::to_string(signal));
    expectEndsCleanly(interrupt(signal, path), path);
  }
}

TEST(RecordInterrupted, SlowRateIsNotWaitedFor) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  const auto before = std::chrono::steady_clock::now();
  const ChildResult result =
      record({path.string(), "--duration", "1h", "--rate", "0.01Hz"}, interrupt(SIGINT, path));
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20));
  EXPECT_EQ(result.exit_code, 0) << result.err;
  EXPECT_EQ(summaryOf(result.err).records, 1U);
  RecordedFile(path).expectComplete();
}

TEST(RecordInterrupted, ClosedTerminalIsIgnoredWhenItWasIgnoredBefore) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  ChildSetup setup = interrupt(SIGHUP, path);
  setup.signal_after = 0.1;
  setup.ignore_hangup = true;
  const ChildResult result = record({path.string(), "--duration", "1", "--rate", "10"}, setup);
  EXPECT_EQ(result.exit_code, 0) << result.err;
  expectSummary(result.err, path, 1.0, 10);
}

TEST(RecordInterrupted, FileThatWasCutOffSaysSo) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  ChildSetup setup = interrupt(SIGKILL, path);
  setup.signal_after = 1.5;
  const ChildResult result = record({path.string(), "--duration", "0", "--rate", "100"}, setup);
  EXPECT_EQ(result.signal, SIGKILL);
  const RecordedFile file(path);
  EXPECT_EQ(file.bytes().substr(0, 16), "UnFinMF 4.10    ");
  EXPECT_EQ(file.numberAt(60, 2), 5U) << "cycle count and last length are to be set";
  EXPECT_EQ(file.cycleCount(), 0U);
  EXPECT_EQ(file.data().length, 24U);
  const std::uint64_t data = file.bytes().size() - file.data().position - 24;
  EXPECT_EQ(data % file.recordBytes(), 0U);
  EXPECT_GT(data / file.recordBytes(), 20U) << "what was recorded is there";
}

TEST(RecordMissed, RateThatCannotBeKeptIsReported) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  const ChildResult result = record({path.string(), "--duration", "500ms", "--rate", "100kHz"});
  EXPECT_EQ(result.exit_code, 0) << result.err;
  RecordedFile(path).expectComplete();
  expectSummary(result.err, path, 0.5, 50000);
  EXPECT_GT(summaryOf(result.err).missed, 0U);
  EXPECT_EQ(summaryOf(result.err).rest, "a rate of 100000 Hz could not be kept all the time\n");
}

TEST(RecordProgress, GivesWayToAComplaint) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  ASSERT_EQ(record({path, "--duration", "100ms"}).exit_code, 0);
  const RecordedFile file(path);
  ChildSetup setup;
  setup.errors_to_terminal = true;
  setup.file_size_limit = file.data().position + 24 + 150 * file.recordBytes();
  const ChildResult result = record({path, "--duration", "1min", "--rate", "100"}, setup);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.err.find(" missed\r\033[Kmdf: cannot write to "), std::string::npos)
      << result.err;
}

TEST(RecordProgress, IsShownOnATerminal) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  ChildSetup setup;
  setup.errors_to_terminal = true;
  const ChildResult result = record({path.string(), "--duration", "1.5s", "--rate", "10"}, setup);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.err.substr(0, 6), "\r1 s, ") << result.err;
  EXPECT_NE(result.err.find(" records, "), std::string::npos) << result.err;
  EXPECT_NE(result.err.find("\r\033[Krecorded "), std::string::npos) << result.err;
}

}  // namespace
