#include <algorithm>
#include <cstddef>
#include <string>

#include "checking/file_check.h"
#include "expect.h"
#include "finding_check.h"
#include "memory_file.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using mdf_reader::Finding;

void expectSound(const Finding& finding, std::uint64_t file_size) {
  expectSentence(finding, file_size);
  expect(std::all_of(finding.path.begin(), finding.path.end(), isPrintable) &&
             finding.path.size() < 1000,
         "a path that can be printed");
}

/// Zipped data may hold much more than its block; everything else is in proportion to the file.
std::size_t memoryFor(std::string_view input) {
  constexpr std::size_t most_from_a_byte = 1032;
  return (std::size_t{1} << 26U) + 4 * most_from_a_byte * input.size();
}

}  // namespace

std::string tryCheck(std::string_view input) {
  static const MemoryFile memory;
  memory.hold(input);
  mdf_reader::InputFile file(memory.path());
  std::size_t count = 0;
  const mdf_tests::AllocationLimit limit(memoryFor(input));
  mdf_tools::checkFile(file, [&](const Finding& finding) {
    expectSound(finding, file.size());
    ++count;
  });
  expect(count > 0 || input.size() >= 64 + 104, "a finding in a file without a header block");
  return std::to_string(count) + " findings";
}

}  // namespace mdf_fuzz
