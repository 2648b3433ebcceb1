#include "reader/decoding/decoding.h"

#include <gtest/gtest.h>
#include <mdf_writer/files/file_output.h>

#include <cstddef>
#include <string>

#include "mdf_reader/mdf_reader.h"
#include "reader/bus/dbc_reader.h"
#include "reader/bytes/input_file.h"
#include "support/bytes.h"
#include "tools/support/bus_file.h"
#include "tools/support/file_builder.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using namespace mdf_reader;

namespace {

/// Three frames of a message on one bus, and one without a message.
std::string log() {
  FileBuilder file;
  addFrames(file, "CAN_DataFrame", canMembers(),
            frameRecord(0.5, 1, 0x123, 0, 1, "\x10") + frameRecord(1, 1, 0x124, 0, 1, "\x20") +
                frameRecord(2, 1, 0x123, 0, 1, "\x30") + frameRecord(3, 1, 0x123, 0, 0, ""));
  return file.bytes();
}

/// The rows of signals that are made with so much memory: "time speed", without a speed where it is
/// invalid.
std::string rowsWith(std::size_t most_kept) {
  const ScratchFolder folder;
  const std::string path = (folder / "signals.mf4").string();
  const TempFile frames(log());
  InputFile input(frames.path());
  const FindingSink report = [](const Finding& finding) { ADD_FAILURE() << finding.sentence; };
  const std::string dbc = "BO_ 291 Engine: 1 ECU\n SG_ Speed : 0|8@1+ (1,0) [0|0] \"\" ECU\n";
  const TextFaultSink faultless = [](const TextFault& fault) { ADD_FAILURE() << fault.sentence; };
  const Decoding decoding{{{"", "", readDbc(dbc, faultless)}}, false, most_kept};
  mdf_writer::FileOutput output(path, mdf_writer::Existing::keep);
  mdf_writer::Plan plan;
  const Decoded decoded =
      decode({{input, report, [](const std::string& /*note*/) {}}}, decoding, plan, output, {});
  EXPECT_EQ(decoded.frames, 3U);
  EXPECT_EQ(decoded.unknown_frames, 1U);
  std::string rows;
  Batches batches = Measurement(path).read({});
  while (const Batch* const batch = batches.next()) {
    for (std::size_t row = 0; row < batch->rows(); ++row) {
      for (std::size_t i = 0; i < batch->columnCount(); ++i) {
        rows += i == 0 ? "" : " ";
        batch->column(i).print(row, rows);
      }
      rows += '\n';
    }
  }
  return rows;
}

TEST(Decoding, GivesTheSameWhetherFramesAreKeptOrReadAgain) {
  const std::string expected = "0.5 16\n2 48\n3 \n";
  EXPECT_EQ(rowsWith(std::size_t{1} << 20U), expected);
  EXPECT_EQ(rowsWith(0), expected);
}

}  // namespace
