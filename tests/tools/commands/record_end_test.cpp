#include <gtest/gtest.h>

#include <chrono>
#include <csignal>

#include "reader/measurement/measurement.h"
#include "reader/summary/names.h"
#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/recorded_file.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace fs = std::filesystem;

namespace {

/// Sends a signal half a second after the recording has begun.
RunOptions interrupt(int signal, const fs::path& file) {
  RunOptions options;
  options.signal = signal;
  options.signal_after = std::chrono::milliseconds(500);
  options.signal_when = [file] {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file, error);
    return !error && size > 0;
  };
  return options;
}

void expectEndsCleanly(const RunOptions& options, const fs::path& path) {
  const RunResult result = record({path.string(), "--duration", "0", "--rate", "20Hz"}, options);
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_GT(summaryOf(result.messages).seconds, 0);
  const RecordedFile file(path);
  file.expectComplete();
  EXPECT_GT(file.cycleCount(), 0U);
  EXPECT_LT(file.cycleCount(), 100U);
}

/// Names and types of the events in a file, one a line.
std::string eventsOf(const fs::path& path) {
  std::string lines;
  const mdf_reader::Measurement file(path.string());
  for (const mdf_reader::Event& event : file.events()) {
    lines += std::string(event.name) + ", " + mdf_reader::eventTypeName(event.type) + '\n';
  }
  return lines;
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
  const RunResult result =
      record({path.string(), "--duration", "1h", "--rate", "0.01Hz"}, interrupt(SIGINT, path));
  EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(20));
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_EQ(summaryOf(result.messages).records, 1U);
  RecordedFile(path).expectComplete();
}

TEST(RecordInterrupted, ClosedTerminalIsIgnoredWhenItWasIgnoredBefore) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  RunOptions options = interrupt(SIGHUP, path);
  options.signal_after = std::chrono::milliseconds(100);
  options.ignore_hangup = true;
  const RunResult result = record({path.string(), "--duration", "1", "--rate", "10"}, options);
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  expectSummary(result.messages, path, 1.0, 10);
}

TEST(RecordInterrupted, FileThatWasCutOffSaysSo) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  RunOptions options = interrupt(SIGKILL, path);
  options.signal_after = std::chrono::milliseconds(1500);
  const RunResult result = record({path.string(), "--duration", "0", "--rate", "100"}, options);
  EXPECT_EQ(result.exit_code, 128 + SIGKILL);
  const RecordedFile file(path);
  EXPECT_EQ(file.bytes().substr(0, 16), "UnFinMF 4.10    ");
  EXPECT_EQ(file.cycleCount(), 0U);
  EXPECT_GT(file.records(), 20U) << "what was recorded is there";
  // In the middle of a flush there are blocks that nothing leads to yet.
  const std::string codes = checkedCodes(file.bytes());
  EXPECT_TRUE(codes == "file-unfinished 1\n" || codes == "block-unreachable 2\nfile-unfinished 1\n")
      << codes;
}

TEST(RecordMissed, RateThatCannotBeKeptIsReported) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  const RunResult result = record({path.string(), "--duration", "500ms", "--rate", "100kHz"});
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  RecordedFile(path).expectComplete();
  expectSummary(result.messages, path, 0.5, 50000);
  EXPECT_GT(summaryOf(result.messages).missed, 0U);
  EXPECT_PRED2(contains, eventsOf(path), " missed, acquisition interrupt\n");
  EXPECT_EQ(summaryOf(result.messages).rest,
            "could not keep up 100000 Hz all the time; a lower --rate misses fewer samples\n");
}

TEST(RecordProgress, GivesWayToAComplaint) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  ASSERT_EQ(record({path, "--duration", "100ms"}).exit_code, 0);
  RunOptions options;
  options.error_is_terminal = true;
  options.file_size_limit = RecordedFile(path).bytes().size() + 20000;
  const RunResult result =
      record({path, "--duration", "1min", "--rate", "100", "--force"}, options);
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_NE(result.messages.find(" missed\033[K\r\033[Kmdf: cannot write to "), std::string::npos)
      << result.messages;
}

TEST(RecordProgress, IsShownOnATerminal) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  RunOptions options;
  options.error_is_terminal = true;
  const RunResult result = record({path.string(), "--duration", "1.5s", "--rate", "10"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages.substr(0, 6), "\r1 s, ") << result.messages;
  EXPECT_PRED2(contains, result.messages, " records, 1");
  EXPECT_PRED2(contains, result.messages, "/s, 0.0 MB, 0 samples missed\033[K\r\033[K");
  EXPECT_NE(result.messages.find("\r\033[Krecorded "), std::string::npos) << result.messages;
}

TEST(RecordMarkers, AreLinesOnStandardInput) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  RunOptions options;
  options.input = "hill\n\n\xff\nvalley";
  EXPECT_EQ(record({path.string(), "--duration", "200ms", "--rate", "10"}, options).exit_code, 0);
  RecordedFile(path).expectComplete();
  EXPECT_EQ(eventsOf(path), "hill, marker\nmarker 2, marker\nmarker 3, marker\nvalley, marker\n");
}

TEST(RecordMarkers, AreSignals) {
  const ScratchFolder folder;
  const fs::path path = folder / "out.mf4";
  const RunResult result =
      record({path.string(), "--duration", "1s", "--rate", "10"}, interrupt(SIGUSR1, path));
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_EQ(eventsOf(path), "marker 1, marker\n");
}

}  // namespace
