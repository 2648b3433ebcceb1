#include <fcntl.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "changing/copy_failure.h"
#include "changing/file_rescue.h"
#include "changing/finishing.h"
#include "changing/relinking.h"
#include "changing/repair_report.h"
#include "checking/file_check.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "memory_output.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/unreadable.h"
#include "reader/bytes/descriptor.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"
#include "writer/files/file_output.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

/// Zipped data may hold much more than its block; everything else is in proportion to the file.
std::size_t memoryFor(std::string_view input) {
  constexpr std::size_t most_from_a_byte = 1032;
  return (std::size_t{1} << 26U) + 4 * most_from_a_byte * input.size();
}

/// How many errors a file has that is finished and was not when it had these bytes.
std::size_t errorsOf(const std::string& bytes) {
  static const MemoryFile memory;
  memory.hold(bytes);
  InputFile file(memory.path());
  expect(readIdentification(file).isFinished(), "a file that says that it is finished");
  std::size_t errors = 0;
  checkFile(file, [&](const Finding& finding) {
    errors += textOf(finding.code).severity == Severity::error ? 1U : 0U;
  });
  return errors;
}

/// A file in memory that is written and read.
class Scrap {
 public:
  Scratch empty() {
    memory_.hold("");
    return {output_, memory_.path()};
  }

 private:
  MemoryFile memory_;
  Descriptor descriptor_{open(memory_.path().c_str(), O_RDWR | O_CLOEXEC)};
  mdf_writer::FileOutput output_{descriptor_.number()};
};

/// Makes a file of what there is, as if the file were damaged.
void tryRescue(InputFile& file) {
  static Scrap scratch;
  static Scrap output;
  const Scratch out = output.empty();
  CopyOptions options;
  options.history = "repaired";
  try {
    rescueFile(file, scratch.empty(), options, out, [](const Finding& /*finding*/) {});
    InputFile rescued(out.path);
    expect(readIdentification(rescued).isFinished(), "a file that says that it is finished");
  } catch (const Unreadable& /*error*/) {
  } catch (const CopyFailure& /*failure*/) {
  }
}

}  // namespace

/// Looks for lost blocks, finishes and rescues any file, whatever it says of itself.
std::string tryRepair(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  InputFile file(memory.path());
  if (refusalOf(file)) {
    return "refused";
  }
  const mdf_tests::AllocationLimit limit(memoryFor(input));
  const Relinking relinking = relinkingOf(file);
  for (const Relinking::PutBack& each : relinking.put_back) {
    expect(each.place + sizeof each.place <= file.size(), "a link in the file");
  }
  std::vector<Finding> losses;
  const Finishing finishing = finishingOf(file, [&](const Finding& finding) {
    expectSentence(finding, file.size());
    losses.push_back(finding);
  });
  MemoryOutput output(input);
  expect(apply(finishing, output), "that memory takes everything");
  expect(output.bytes().size() <= 2 * input.size() + 4096,
         "a file that grows by its lists at most");
  tryRescue(file);
  const std::size_t errors = errorsOf(output.bytes());
  const std::string sentence = repairSentence({"in", "out", {finishing, relinking}, losses});
  expect(sentence.find("repaired out: ") == 0, "a sentence");
  return std::to_string(losses.size()) + " losses, " + std::to_string(errors) + " errors";
}

}  // namespace mdf_fuzz
