#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "changing/finishing.h"
#include "changing/relinking.h"
#include "changing/repair_report.h"
#include "checking/file_check.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "memory_output.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

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

}  // namespace

/// Looks for lost blocks, and finishes any file, whatever it says of itself.
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
  const std::size_t errors = errorsOf(output.bytes());
  const std::string sentence = repairSentence({"in", "out", {finishing, relinking}, losses});
  expect(sentence.find("repaired out: ") == 0, "a sentence");
  return std::to_string(losses.size()) + " losses, " + std::to_string(errors) + " errors";
}

}  // namespace mdf_fuzz
