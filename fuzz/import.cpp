#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "checking/file_check.h"
#include "expect.h"
#include "importing/import_failure.h"
#include "importing/importer.h"
#include "memory_file.h"
#include "memory_output.h"
#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

std::string import(std::string_view text, const ImportOptions& options, Imported& imported) {
  static const MemoryFile memory;
  memory.hold(text);
  mdf_writer::Plan plan;
  MemoryOutput output;
  imported = importFiles({memory.path()}, options, plan, output);
  return output.bytes();
}

/// The tables of a file as CSV. Nothing is wrong with it, and no row is missing.
std::string exported(const std::string& bytes, std::uint64_t expected_rows) {
  static const MemoryFile memory;
  memory.hold(bytes);
  InputFile file(memory.path());
  const FindingSink report = [](const Finding& finding) { throw Violation(finding.sentence); };
  checkFile(file, report);
  const NoteSink note = [](const std::string& /*text*/) {};
  std::string text;
  std::uint64_t rows = 0;
  const Query query;
  Tables tables(file, query, report, note);
  CsvWriter csv;
  while (Table* const table = tables.next()) {
    text += text.empty() ? "" : "\n";
    csv.begin(table->head(), text);
    while (const Batch* const batch = table->next()) {
      csv.addRows(*batch, 0, batch->rows(), text);
      rows += batch->rows();
    }
  }
  expect(rows == expected_rows, "a record of each row");
  return text;
}

}  // namespace

/// The first byte chooses options. What was imported from CSV comes back from its export.
std::string tryImport(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 28U;
  constexpr std::size_t for_a_byte = 5000;  // of columns without names
  if (input.empty()) {
    return "nothing";
  }
  const auto choice = static_cast<unsigned char>(input[0]);
  ImportOptions options;
  options.skips_bad_lines = (choice & 1U) != 0;
  options.has_decimal_comma = (choice & 2U) != 0;
  options.time = (choice & 4U) != 0 ? "t" : "";
  options.kept_bytes = (choice & 16U) != 0 ? 100 : 10000;  // few rows, or all
  const bool is_json = (choice & 8U) != 0;
  options.format = is_json ? ImportOptions::Format::json_lines : ImportOptions::Format::csv;
  const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
  try {
    Imported imported;
    const std::string bytes = import(input.substr(1), options, imported);
    const std::string text = exported(bytes, imported.rows);
    // Where the comma is the mark, "1.5" is a text, which would then come back as a number.
    if (!is_json && !options.has_decimal_comma) {
      ImportOptions commas;
      commas.separator = ',';
      Imported again;
      const std::string bytes_again = import(text, commas, again);
      expect(exported(bytes_again, again.rows) == text, "the same table again");
    }
    return std::to_string(imported.tables) + " tables, " + std::to_string(imported.rows) +
           " rows, " + std::to_string(imported.bad_lines) + " bad lines";
  } catch (const ImportFailure& failure) {
    const std::string_view sentence = failure.what();
    expect(!sentence.empty() && sentence.find('\n') == std::string_view::npos, "one sentence");
    return "refused";
  }
}

}  // namespace mdf_fuzz
