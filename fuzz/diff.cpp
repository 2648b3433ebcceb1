#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "changing/difference_output.h"
#include "changing/file_comparison.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "output_check.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

/// Prints differences in both forms, and counts what is wrong with the files.
class Trial {
 public:
  DiffSummary compare(const MemoryFile& a, const MemoryFile& b) {
    InputFile input_a(a.path());
    InputFile input_b(b.path());
    const FindingSink report = [&](const Finding& finding) {
      expectSentence(finding, std::max(input_a.size(), input_b.size()));
      ++findings_;
    };
    const NoteSink note = [](const std::string& /*sentence*/) {};
    ComparedFile file_a(input_a, report, note);
    ComparedFile file_b(input_b, report, note);
    DiffOptions options;
    options.compares_history = true;
    const DiffSummary summary =
        FileComparison(file_a, file_b, options, [this](const Difference& difference) {
          printDifference(difference, printed_);
          expect(Json::accept(jsonLine(differenceAsJson(difference))), "JSON");
        }).run();
    printSummary(summary, printed_);
    lines_.expectEnd();
    return summary;
  }

  std::size_t findings() const { return findings_; }

 private:
  Lines lines_{Lines::Kind::printed};
  std::ostream printed_{&lines_};
  std::size_t findings_ = 0;
};

bool isReadable(const MemoryFile& memory) {
  InputFile file(memory.path());
  return !refusalOf(file);
}

/// The input with one byte changed, which its last byte chooses.
std::string changed(std::string_view input) {
  std::string bytes(input);
  const std::size_t at = static_cast<unsigned char>(bytes.back()) * bytes.size() / 256;
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  return bytes;
}

}  // namespace

std::string tryDiff(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 27U;
  constexpr std::size_t for_a_byte = 4400;  // of data that is zipped as small as can be
  static const MemoryFile a;
  static const MemoryFile b;
  a.hold(input);
  if (!isReadable(a)) {
    return "unreadable";
  }
  b.hold(changed(input));
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  Trial itself;
  expect(itself.compare(a, a).isSame(), "a file to be the same as itself");
  if (!isReadable(b)) {
    return "the same";
  }
  Trial trial;
  const DiffSummary there = trial.compare(a, b);
  const DiffSummary back = trial.compare(b, a);
  expect(trial.findings() > 0 || summaryAsJson(there) == summaryAsJson(back),
         "the same differences both ways");
  return there.isSame() ? "the same" : "different";
}

}  // namespace mdf_fuzz
