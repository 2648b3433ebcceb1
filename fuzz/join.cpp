#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "changing/copy_check.h"
#include "changing/copy_failure.h"
#include "changing/file_join.h"
#include "changing/join_report.h"
#include "expect.h"
#include "memory_file.h"
#include "memory_output.h"
#include "printing/json_output.h"
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

JoinOptions optionsOf(unsigned char choice) {
  JoinOptions options;
  options.side_by_side = (choice & 1U) != 0;
  options.keeps_order = true;
  if ((choice & 2U) != 0) {
    options.form = DataForm();
    options.form->block_bytes = 1024;
  }
  return options;
}

/// The file, begun later.
std::string begunLater(std::string_view file, unsigned char choice) {
  constexpr std::size_t start_at = 136;
  std::string bytes(file);
  if ((choice & 4U) != 0 && bytes.size() > start_at + 4) {
    bytes[start_at + ((choice & 8U) != 0 ? 0 : 4)] ^= 1;  // a nanosecond, or some seconds
  }
  return bytes;
}

/// The records of all tables.
std::uint64_t recordsOf(InputFile& file, const FindingSink& report) {
  const Query query;
  Tables tables(file, query, report, no_notes);
  std::uint64_t records = 0;
  while (Table* const table = tables.next()) {
    while (const Batch* const batch = table->next()) {
      records += batch->rows();
    }
  }
  return records;
}

}  // namespace

/// The first byte chooses options, and when the second file begins, which is the first but for
/// that. Of files that are read without a problem the joined one has all records.
std::string tryJoin(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 29U;
  constexpr std::size_t for_a_byte = 4096;
  static const MemoryFile memory;
  static const MemoryFile memory_of_other;
  static const MemoryFile memory_of_joined;
  if (input.empty()) {
    return "nothing";
  }
  const auto choice = static_cast<unsigned char>(input[0]);
  memory.hold(input.substr(1));
  memory_of_other.hold(begunLater(input.substr(1), choice));
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  InputFile first(memory.path());
  InputFile second(memory_of_other.path());
  if (refusalOf(first) || refusalOf(second)) {
    return "refused";
  }
  bool is_damaged = false;
  const FindingSink report = [&](const Finding& /*finding*/) { is_damaged = true; };
  MemoryOutput output;
  try {
    const JoinSummary summary =
        joinFiles({{&first, "a", &report}, {&second, "b", &report}}, optionsOf(choice), output);
    expect(Json::accept(joinJson("out", summary)), "JSON");
    expect(!joinText("out", summary).empty(), "a text");
    memory_of_joined.hold(output.bytes());
    InputFile joined(memory_of_joined.path());
    const std::uint64_t problems = checkCopy(joined, {&first, &second});
    const std::uint64_t records = recordsOf(first, report) + recordsOf(second, report);
    if (!is_damaged && problems == 0) {
      expect(recordsOf(joined, report) == records, "all records");
    }
  } catch (const CopyFailure& failure) {
    expect(*failure.what() != '\0', "a sentence");
    return "no file";
  }
  return is_damaged ? "damaged" : "fine";
}

}  // namespace mdf_fuzz
