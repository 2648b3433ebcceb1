#include <cstddef>
#include <string>

#include "bus/frame_writer.h"
#include "bus/pcapng_writer.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "printing/json_output.h"
#include "reader/bus/bus_frames.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

constexpr std::size_t most_frames = 5000;

/// Writes a frame in each form.
class Forms {
 public:
  void take(const BusFrame& frame) {
    expect(frame.data.size() <= frame.length, "no more bytes than a frame has");
    const std::string json = textOf(json_, frame);
    expect(Json::accept(json), "lines of JSON");
    for (FrameWriter* const writer :
         {static_cast<FrameWriter*>(&text_), static_cast<FrameWriter*>(&csv_),
          static_cast<FrameWriter*>(&candump_)}) {
      const std::string line = textOf(*writer, frame);
      expect(line.find('\n') == line.size() - 1 || line.empty(), "a line");
    }
    expect(textOf(capture_, frame).size() % 4 == 0, "blocks of whole words");
  }

 private:
  static std::string textOf(FrameWriter& writer, const BusFrame& frame) {
    std::string text;
    writer.add(frame, text);
    return text;
  }

  TextFrameWriter text_{{}};
  CsvFrameWriter csv_{{}};
  JsonFrameWriter json_{"file", {}};
  CandumpWriter candump_{std::nullopt};
  PcapngWriter capture_{std::nullopt};
};

}  // namespace

std::string tryFrames(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 26U;
  constexpr std::size_t for_a_byte = 2200;  // of data that is zipped as small as can be
  static const MemoryFile memory;
  memory.hold(input);
  InputFile file(memory.path());
  std::size_t count = 0;
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  const FindingSink report = [&](const Finding& finding) { expectSentence(finding, file.size()); };
  const NoteSink note = [](const std::string& /*text*/) {};
  BusFrames frames(file, std::nullopt, std::nullopt, report, note);
  Forms forms;
  const BusFrame* frame = nullptr;
  while (count < most_frames && (frame = frames.next()) != nullptr) {
    ++count;
    forms.take(*frame);
  }
  return std::to_string(count) + " frames";
}

}  // namespace mdf_fuzz
