#include "recording/recorder.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/bytes.h"
#include "tools/support/file_size_limit.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace fs = std::filesystem;

namespace {

const std::vector<Signal> signals = {float32Signal("a", "%"), uint64Signal("b", "")};
const RecordingInfo info = {{1, 0, false}, "title", "change", "1"};
constexpr std::uint64_t record_bytes = 8 + 4 + 8;

/// A record whose time and values follow from its number.
void appendRecord(Recorder& recorder, unsigned number) {
  recorder.append(number, {bitsOf(static_cast<float>(number)), 0x0102030405060700U + number});
}

std::string recordBytes(unsigned number) {
  const std::uint64_t float_bits = bitsOf(static_cast<float>(number));
  return f64(number) + u32(float_bits) + u64(0x0102030405060700U + number);
}

/// The bytes of a finished recording with so many records, which says when they were taken unless
/// it has been cut.
std::string finishedFile(unsigned records, bool is_cut = false) {
  std::vector<Signal> channels = {float64Signal("time", "s")};
  channels.insert(channels.end(), signals.begin(), signals.end());
  RecordingBlocks blocks(channels, info);
  std::ostringstream os;
  blocks.write(os);
  for (unsigned i = 0; i < records; ++i) {
    os << recordBytes(i);
  }
  const bool has_times = records > 0 && !is_cut;
  blocks.finish(os, records,
                has_times ? std::make_optional(TimeRange{0, records - 1.0}) : std::nullopt);
  return os.str();
}

const std::uint64_t description_bytes = finishedFile(0).size();

/// Records so many records to a path and returns the complaint, or what was recorded.
std::string record(const fs::path& path, unsigned records, double rate) {
  try {
    OutputFile file(path);
    Recorder recorder(file, signals, info, rate);
    for (unsigned i = 0; i < records; ++i) {
      appendRecord(recorder, i);
    }
    recorder.finish();
    return std::to_string(recorder.records()) + " records of " +
           std::to_string(recorder.channels()) + " channels";
  } catch (const RecordingFailure& failure) {
    return failure.what();
  }
}

TEST(Recorder, WritesDescriptionAndRecords) {
  const ScratchFolder folder;
  EXPECT_EQ(record(folder / "out", 3, 100), "3 records of 3 channels");
  EXPECT_BYTES(bytesOf(folder / "out"), finishedFile(3));
}

TEST(Recorder, RecordingWithoutRecordsIsAWholeFile) {
  const ScratchFolder folder;
  EXPECT_EQ(record(folder / "out", 0, 100), "0 records of 3 channels");
  EXPECT_BYTES(bytesOf(folder / "out"), finishedFile(0));
}

TEST(Recorder, RecordsAreInTheFileAfterASecond) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  Recorder recorder(file, signals, info, 10);
  const std::vector<mdf_v4_10::UINT64> values = {0, 0};
  recorder.append(0, values);
  recorder.append(0.5, values);
  EXPECT_EQ(file.size(), description_bytes);
  recorder.append(0.9, values);
  EXPECT_EQ(file.size(), description_bytes + 3 * record_bytes)
      << "the next record comes a second after the first";
  recorder.append(1.8, values);
  EXPECT_EQ(file.size(), description_bytes + 4 * record_bytes);
}

TEST(Recorder, SlowRecordsAreInTheFileAtOnce) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  Recorder recorder(file, signals, info, 0.5);
  for (unsigned i = 1; i <= 3; ++i) {
    recorder.append(2.0 * i, {0, 0});
    EXPECT_EQ(file.size(), description_bytes + i * record_bytes);
  }
}

TEST(Recorder, ManyRecordsAreInTheFileBeforeASecondHasPassed) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  Recorder recorder(file, signals, info, 100e3);
  for (unsigned i = 0; i < 10000; ++i) {
    recorder.append(i * 1e-5, {0, 0});
    ASSERT_LT(description_bytes + recorder.records() * record_bytes, file.size() + 65536);
  }
  EXPECT_GT(file.size(), description_bytes + 130000);
}

TEST(Recorder, FileThatIsMovedMeanwhileIsFinishedWhereItIs) {
  const ScratchFolder folder;
  OutputFile file(folder / "out");
  Recorder recorder(file, signals, info, 0.5);
  appendRecord(recorder, 0);
  fs::rename(folder / "out", folder / "moved");
  folder.write("out", "another file");
  appendRecord(recorder, 1);
  recorder.finish();
  EXPECT_BYTES(bytesOf(folder / "moved"), finishedFile(2));
  EXPECT_EQ(bytesOf(folder / "out"), "another file");
}

/// What must come of a recording of 4 records in a file that takes so many bytes.
void expectCutRecording(const ScratchFolder& folder, std::uint64_t limit, double rate) {
  SCOPED_TRACE("limit " + std::to_string(limit) + ", rate " + std::to_string(rate));
  const fs::path path = folder / "out";
  std::string message;
  {
    const FileSizeLimit full(limit);
    message = record(path, 4, rate);
  }
  const std::string beginning = "cannot write to " + path.string() + " at offset " +
                                std::to_string(limit) + ": File too large; ";
  if (limit < description_bytes) {
    EXPECT_EQ(message, beginning + "nothing was recorded");
    EXPECT_FALSE(fs::exists(path));
    return;
  }
  const auto kept = static_cast<unsigned>((limit - description_bytes) / record_bytes);
  const std::string records = kept == 1 ? "1 record" : std::to_string(kept) + " records";
  EXPECT_EQ(message, beginning + records + " written before that make a complete file");
  EXPECT_TRUE(bytesOf(path) == finishedFile(kept, true));
  fs::remove(path);
}

TEST(Recorder, FileThatTakesNoMoreAtAnyByteIsCompleteWithItsWholeRecordsOrGone) {
  const ScratchFolder folder;
  const std::uint64_t whole = description_bytes + 4 * record_bytes;
  for (std::uint64_t limit = 0; limit < whole; ++limit) {
    expectCutRecording(folder, limit, 0.5);  // each record is written by itself
    expectCutRecording(folder, limit, 100);  // all records are written at the end
    if (HasFailure()) {
      return;
    }
  }
  const FileSizeLimit enough(whole);
  EXPECT_EQ(record(folder / "out", 4, 100), "4 records of 3 channels");
}

TEST(Recorder, FileThatCannotBeCompletedStillSaysThatItIsUnfinished) {
  const ScratchFolder folder;
  const fs::path path = folder / "out";
  const std::string next = std::to_string(description_bytes + record_bytes);
  for (const bool is_full : {false, true}) {
    OutputFile file(path);
    Recorder recorder(file, signals, info, 0.5);
    appendRecord(recorder, 0);
    const FileSizeLimit nothing_beyond(64);
    try {
      is_full ? appendRecord(recorder, 1) : recorder.finish();
      FAIL();
    } catch (const RecordingFailure& failure) {
      EXPECT_EQ(failure.what(), (is_full ? "cannot write to " + path.string() + " at offset " + next
                                         : "cannot complete " + path.string()) +
                                    ": File too large; the file still says that it is unfinished");
    }
    EXPECT_EQ(bytesOf(path).substr(0, 8), "UnFinMF ");
  }
}

}  // namespace
