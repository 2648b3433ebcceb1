#include <algorithm>
#include <cstddef>
#include <string>

#include "checking/file_check.h"
#include "expect.h"
#include "memory_file.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using Problem = mdf_reader::Finding;

bool isPrintable(char character) { return character >= 0x20 && character < 0x7F; }

bool isOneLine(const std::string& text) {
  return std::all_of(text.begin(), text.end(), isPrintable);
}

void expectSound(const Problem& problem, std::uint64_t file_size) {
  expect(problem.offset <= file_size, "a problem inside the file");
  expect(problem.sentence.rfind("expected ", 0) == 0 &&
             problem.sentence.find(", found ") != std::string::npos && isOneLine(problem.sentence),
         "a problem to say what was expected and found, on one line");
  expect(isOneLine(problem.path) && problem.path.size() < 1000, "a path that can be printed");
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
  mdf_tools::checkFile(file, [&](const Problem& problem) {
    expectSound(problem, file.size());
    ++count;
  });
  expect(count > 0 || input.size() >= 64 + 104, "a problem in a file without a header block");
  return std::to_string(count) + " problems";
}

}  // namespace mdf_fuzz
