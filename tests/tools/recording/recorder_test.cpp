#include "recording/recorder.h"

#include <gtest/gtest.h>
#include <mdf_writer_zip/zipper.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "recording/status_line.h"
#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

constexpr std::int64_t second = 1'000'000'000;

RecordingInfo info() {
  return {"title", "1", {{"g", {uint64Signal("n", "")}}}, {1'600'000'000'000'000'000, 0, false}};
}

/// Records the numbers from 0 on, one each so many nanoseconds.
std::string record(const RecorderOptions& options, unsigned count, std::int64_t step) {
  try {
    Recorder recorder(options, info());
    for (unsigned i = 0; i < count; ++i) {
      recorder.append({0, i * step, {i}});
    }
    recorder.add({"mark", count * step});
    recorder.finish();
    EXPECT_EQ(recorder.records(), count);
    return recorder.place();
  } catch (const UnusablePath& refusal) {
    return refusal.what();
  }
}

/// The names of a folder's files, and the rows of all of them, one after another.
std::pair<std::string, std::string> filesIn(const ScratchFolder& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  std::pair<std::string, std::string> files;
  for (const std::string& name : names) {
    EXPECT_EQ(checkedBytes(bytesOf(folder / name)), "");
    files.first += name + ' ';
    const std::string table = run({"export", folder / name, "--time", "ns"}).output;
    files.second += table.substr(table.find('\n') + 1);
  }
  return files;
}

/// What the rows are of so many records.
std::string rowsOf(unsigned count, std::int64_t step) {
  std::string rows;
  for (unsigned i = 0; i < count; ++i) {
    rows += std::to_string(1'600'000'000'000'000'000 + i * step) + ',' + std::to_string(i) + '\n';
  }
  return rows;
}

TEST(Recorder, GoesOnInAnotherFileWhenOneIsOldEnough) {
  const ScratchFolder folder;
  RecorderOptions options{folder / "trip.mf4"};
  options.limit.nanoseconds = 10 * second;
  EXPECT_EQ(record(options, 9, 4 * second),
            (folder / "trip_001.mf4").string() + " to " + (folder / "trip_004.mf4").string());
  const auto [names, rows] = filesIn(folder);
  EXPECT_EQ(names, "trip_001.mf4 trip_002.mf4 trip_003.mf4 trip_004.mf4 ");
  EXPECT_EQ(rows, rowsOf(9, 4 * second));
  EXPECT_EQ(run({"export", folder / "trip_002.mf4"}).output, "time [s],n\n2,3\n6,4\n");
  EXPECT_EQ(run({"list", "events", folder / "trip_004.mf4"}).output,
            "offset  position  unit  kind    range  cause  name  comment\n"
            "  2296         6  s     marker  point  user   mark\n");
}

TEST(Recorder, HasNoFileBeforeTheFirstRecord) {
  const ScratchFolder folder;
  RecorderOptions options{folder / "trip.mf4"};
  options.limit.nanoseconds = 10 * second;
  Recorder recorder(options, info());
  for (const unsigned seconds : {1003U, 1009U, 1010U}) {
    recorder.append({0, seconds * second, {seconds}});
  }
  recorder.finish();
  const auto [names, rows] = filesIn(folder);
  EXPECT_EQ(names, "trip_001.mf4 trip_002.mf4 ");
  EXPECT_EQ(run({"export", folder / "trip_001.mf4"}).output, "time [s],n\n1003,1003\n1009,1009\n");
  EXPECT_EQ(run({"export", folder / "trip_002.mf4"}).output, "time [s],n\n0,1010\n");
}

TEST(Recorder, GoesOnInAnotherFileWhenOneIsLargeEnough) {
  const ScratchFolder folder;
  mdf_writer::Zipper zipper;
  RecorderOptions options{folder / "trip.mf4"};
  options.limit.bytes = 100'000;
  options.writing.packer = &zipper;
  options.writing.block_bytes = 4096;
  record(options, 60'000, 1'000'000);
  const auto [names, rows] = filesIn(folder);
  EXPECT_EQ(names.substr(0, 26), "trip_001.mf4 trip_002.mf4 ");
  const std::string first = bytesOf(folder / "trip_001.mf4");
  EXPECT_NE(first.find("##DZ"), std::string::npos);
  EXPECT_GE(first.size(), 100'000U);
  EXPECT_LT(first.size(), 120'000U);
  EXPECT_EQ(rows, rowsOf(60'000, 1'000'000));
}

TEST(Recorder, RefusesAtOnceWhatALaterFileWouldMeet) {
  const ScratchFolder folder;
  RecorderOptions options{folder / "trip.mf4"};
  options.limit.bytes = 100'000;
  folder.write("trip_x.mf4", "");
  folder.write("trip_1.csv", "");
  folder.write("trip_.mf4", "");
  const std::string path = folder / "trip_001.mf4";
  EXPECT_EQ(record(options, 1, 1), path);
  EXPECT_EQ(record(options, 1, 1), "cannot record to " + path + ": it exists; --force replaces it");
  options.writing.existing = mdf_writer::Existing::replace;
  EXPECT_EQ(record(options, 1, 1), path);
  options.path = "-";
  EXPECT_EQ(record(options, 1, 1), "cannot record to standard output: it is one file only");
}

TEST(Recorder, RefusesAtOnceWhatTheEndOfARingWouldMeet) {
  const ScratchFolder folder;
  folder.write("file", "");
  RecorderOptions options{folder.path()};
  options.ring.emplace();
  const std::string path = options.path;
  EXPECT_EQ(record(options, 0, 1), "cannot record to " + path + ": Is a directory");
  options.path = path + "/file/out";
  EXPECT_EQ(record(options, 0, 1), "cannot record to " + path + "/file/out: Not a directory");
}

TEST(Recorder, RingHasEventsAmongItsSamples) {
  const ScratchFolder folder;
  RecorderOptions options{folder / "trip.mf4"};
  options.ring.emplace().nanoseconds = 2 * second;
  Recorder recorder(options, info());
  for (unsigned i = 0; i < 10; ++i) {
    recorder.append({0, i * second, {i}});
    recorder.add({"mark " + std::to_string(i), i * second});
  }
  recorder.finish();
  EXPECT_EQ(filesIn(folder).second,
            "1600000007000000000,7\n1600000008000000000,8\n1600000009000000000,9\n");
  EXPECT_EQ(run({"list", "events", folder / "trip.mf4"}).output,
            "offset  position  unit  kind    range  cause  name    comment\n"
            "  1192         0  s     marker  point  user   mark 7\n"
            "  1320         1  s     marker  point  user   mark 8\n"
            "  1448         2  s     marker  point  user   mark 9\n");
}

TEST(Recorder, RingTakesNoMoreMemoryThanItMay) {
  const ScratchFolder folder;
  RecorderOptions options{folder / "trip.mf4"};
  options.ring.emplace().nanoseconds = 10 * second;
  options.ring->bytes = 3 * (sizeof(SampleRing::Entry) + sizeof(mdf_v4_10::UINT64));
  Recorder recorder(options, info());
  for (unsigned i = 0; i < 10; ++i) {
    recorder.append({0, i * second, {i}});
  }
  EXPECT_EQ(recorder.held(), 3U);
  recorder.finish();
  EXPECT_EQ(filesIn(folder).second,
            "1600000007000000000,7\n1600000008000000000,8\n1600000009000000000,9\n");
  testing::internal::CaptureStderr();
  summarise(recorder, 10 * second, "nothing lost");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "recorded 3 records of 2 channels in 10.0 s to " + options.path +
                ", nothing lost\nthe ring's memory was full: 7 samples dropped early; the file "
                "begins later than asked\n");
}

}  // namespace
