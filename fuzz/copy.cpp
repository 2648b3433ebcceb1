#include <cstddef>
#include <string>
#include <string_view>

#include "changing/copy_check.h"
#include "changing/copy_failure.h"
#include "changing/file_copy.h"
#include "expect.h"
#include "memory_file.h"
#include "memory_output.h"
#include "printing/table_writers.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

const NoteSink no_notes = [](const std::string& /*text*/) {};

CopyOptions optionsOf(unsigned char choice) {
  CopyOptions options;
  options.sorts = (choice & 1U) != 0;
  if ((choice & 2U) != 0) {
    options.form = DataForm();
    options.form->zip = (choice & 4U) != 0 ? Zip::transposed : Zip::none;
    options.form->level = 1;
    options.form->block_bytes = 1024;
  }
  if ((choice & 8U) != 0) {
    options.limits.from = 1;
    options.limits.to = 2;
  }
  if ((choice & 16U) != 0) {
    options.limits.last = 2;
  }
  if ((choice & 32U) != 0) {
    options.channels = {"*[a-m]", "?"};
  }
  if ((choice & 64U) != 0) {
    options.reductions = {1, 0.001};
  }
  return options;
}

/// The first values of all tables as CSV; where channels are chosen, without their names, which may
/// have got numbers to differ from others.
std::string exported(InputFile& file, const CopyOptions& options, bool& is_damaged) {
  constexpr std::size_t most = std::size_t{1} << 20U;
  const FindingSink report = [&](const Finding& /*finding*/) { is_damaged = true; };
  Query query;
  query.channels = options.channels;
  Tables tables(file, query, report, no_notes);
  CsvWriter csv;
  std::string text;
  while (Table* const table = tables.next()) {
    std::string names;
    csv.begin(table->head(), options.channels.empty() ? text : names);
    while (const Batch* const batch = text.size() < most ? table->next() : nullptr) {
      csv.addRows(*batch, 0, batch->rows(), text);
    }
  }
  return text;
}

}  // namespace

/// The first byte chooses options. A copy has no problems of other kinds than its file; of a file
/// that is read without a problem, all values are the same.
std::string tryCopy(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 29U;
  constexpr std::size_t for_a_byte = 2048;
  static const MemoryFile memory;
  static const MemoryFile memory_of_copy;
  if (input.empty()) {
    return "nothing";
  }
  const CopyOptions options = optionsOf(static_cast<unsigned char>(input[0]));
  memory.hold(input.substr(1));
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  InputFile file(memory.path());
  if (refusalOf(file)) {
    return "refused";
  }
  bool is_damaged = false;
  const FindingSink report = [&](const Finding& /*finding*/) { is_damaged = true; };
  MemoryOutput output;
  try {
    copyFile(file, options, output, report, no_notes);
    memory_of_copy.hold(output.bytes());
    InputFile copy(memory_of_copy.path());
    const std::uint64_t problems = checkCopy(copy, file);
    const std::string before = exported(file, options, is_damaged);
    if (!is_damaged && problems == 0 && !options.hasLimits()) {
      expect(exported(copy, options, is_damaged) == before, "the same values");
    }
  } catch (const CopyFailure& failure) {
    expect(*failure.what() != '\0', "a sentence");
    return "no copy";
  }
  return is_damaged ? "damaged" : "fine";
}

}  // namespace mdf_fuzz
