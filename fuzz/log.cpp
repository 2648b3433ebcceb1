#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "bus/frame_writer.h"
#include "bus/pcapng_writer.h"
#include "checking/file_check.h"
#include "expect.h"
#include "importing/import_failure.h"
#include "importing/importer.h"
#include "memory_file.h"
#include "memory_output.h"
#include "reader/bus/bus_frames.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;
using Format = ImportOptions::Format;

constexpr double most_exact = 4e6;  // seconds

/// Lists the frames of a file that nothing is wrong with.
class Listing {
 public:
  explicit Listing(const std::string& bytes) {
    static const MemoryFile memory;
    memory.hold(bytes);
    InputFile file(memory.path());
    const FindingSink report = [](const Finding& finding) { throw Violation(finding.sentence); };
    checkFile(file, report);
    const NoteSink note = [](const std::string& /*text*/) {};
    BusFrames frames(file, std::nullopt, std::nullopt, report, note);
    const StoredTime start = startTimeOf(frames.header());
    const auto begun = start.isUnset() ? std::nullopt : std::optional(start);
    CandumpWriter log(begun);
    PcapngWriter capture(begun);
    capture.begin(capture_);
    while (const BusFrame* const frame = frames.next()) {
      ++count_;
      span_ = std::max(span_, std::abs(frame->time));
      const bool has_place = log.add(*frame, log_) && capture.add(*frame, capture_);
      expect(has_place || span_ > most_exact, "a place for each frame");
    }
  }

  std::uint64_t count() const { return count_; }
  const std::string& log() const { return log_; }
  const std::string& capture() const { return capture_; }

  /// Whether the times, which are floating-point numbers, say each nanosecond.
  bool isExact() const { return span_ < most_exact; }

 private:
  std::string log_;
  std::string capture_;
  std::uint64_t count_ = 0;
  double span_ = 0;
};

Listing listed(std::string_view log, Format format, bool skips_bad_lines, Imported& imported) {
  static const MemoryFile memory;
  memory.hold(log);
  ImportOptions options;
  options.format = format;
  options.skips_bad_lines = skips_bad_lines;
  mdf_writer::Plan plan;
  MemoryOutput output;
  imported = importFiles({memory.path()}, options, plan, output);
  Listing listing(output.bytes());
  expect(listing.count() == imported.frames, "a record of each frame");
  return listing;
}

/// The first byte says whether what is wrong is left out. What is listed is the same when it is
/// imported and listed again.
std::string tryLog(std::string_view input, Format format) {
  constexpr std::size_t always = std::size_t{1} << 29U;  // 256 buses have a buffer each
  constexpr std::size_t for_a_byte = 5000;
  if (input.empty()) {
    return "nothing";
  }
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  try {
    Imported imported;
    const bool skips = (static_cast<unsigned char>(input[0]) & 1U) != 0;
    const Listing first = listed(input.substr(1), format, skips, imported);
    Imported again;
    if (imported.frames == 0 || !first.isExact()) {
      return "not to be repeated";
    }
    expect(listed(first.log(), Format::candump, false, again).log() == first.log(),
           "the same lines again");
    expect(listed(first.capture(), Format::capture, false, again).capture() == first.capture(),
           "the same capture again");
    return std::to_string(imported.frames) + " frames, " + std::to_string(imported.bad_lines) +
           " bad ones";
  } catch (const ImportFailure& failure) {
    const std::string_view sentence = failure.what();
    expect(!sentence.empty() && sentence.find('\n') == std::string_view::npos, "one sentence");
    return "refused";
  }
}

}  // namespace

std::string tryCandump(std::string_view input) { return tryLog(input, Format::candump); }

std::string tryCapture(std::string_view input) { return tryLog(input, Format::capture); }

}  // namespace mdf_fuzz
