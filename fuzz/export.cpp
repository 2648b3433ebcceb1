#include <csv.h>

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "expect.h"
#include "finding_check.h"
#include "measuring/table_meter.h"
#include "memory_file.h"
#include "output_check.h"
#include "pictures/chart.h"
#include "printing/json_output.h"
#include "printing/statistics.h"
#include "printing/table_writers.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/joined_table.h"
#include "reader/columns/tables.h"
#include "reader/values/text_encoding.h"
#include "support/allocation_counter.h"
#include "targets.h"

namespace mdf_fuzz {

namespace {

using namespace mdf_reader;
using namespace mdf_tools;

/// How many fields each line of CSV has.
struct Fields {
  std::vector<std::size_t> counts;
  std::size_t fields = 0;
};

Fields fieldsOf(const std::string& text) {
  Fields lines;
  csv_parser parser;
  expect(csv_init(&parser, CSV_STRICT | CSV_STRICT_FINI) == 0, "a parser of CSV");
  const auto field = [](void* /*text*/, std::size_t /*size*/, void* data) {
    ++static_cast<Fields*>(data)->fields;
  };
  const auto line = [](int /*end*/, void* data) {
    auto* all = static_cast<Fields*>(data);
    all->counts.push_back(all->fields);
    all->fields = 0;
  };
  const std::size_t parsed = csv_parse(&parser, text.data(), text.size(), field, line, &lines);
  const bool is_whole = csv_fini(&parser, field, line, &lines) == 0;
  csv_free(&parser);
  expect(parsed == text.size() && is_whole, "CSV in its strict form");
  return lines;
}

/// Expects statistics that are about all rows, and prints as they should be.
void expectSense(const TableStatistics& statistics) {
  for (const ColumnStatistics& column : statistics.columns) {
    expect(column.values + column.invalid + column.not_finite == statistics.records,
           "each record counted once");
    expect(column.deviation.value_or(0) >= 0, "a deviation that is not below 0");
  }
  Lines lines(Lines::Kind::printed);
  std::ostream os(&lines);
  os.exceptions(std::ios_base::badbit);
  printStatistics({statistics}, os);
  lines.expectEnd();
  expect(lines.count() == 4 + statistics.columns.size(), "a line for each column");
  expect(Json::accept(jsonLine(statisticsAsJson("file", statistics))), "JSON");
}

/// Writes, draws and measures the first samples of each table, and checks the output.
class Trial {
 public:
  void take(Table& table) {
    ++tables_;
    collector_.begin(table.head());
    TableMeter meter(table.head());
    const Batch* batch = table.next();
    batch = values_ < most_values ? batch : nullptr;
    if (batch != nullptr) {
      collector_.take(*batch);
      meter.add(*batch);
    }
    write(table.head(), batch);
    expectSense(meter.statistics());
  }

  /// Writes the first rows of a joined table.
  void take(JoinedTable& table) {
    if (table.problem().empty()) {
      write(table.head(), values_ < most_values ? table.next() : nullptr);
    }
  }

  std::size_t tables() const { return tables_; }
  std::string script() const {
    return gnuplotScript(curves_, {ChartForm::Kind::svg, "title"}).text;
  }

 private:
  static constexpr std::size_t most_values = 20000;

  void write(const TableHead& head, const Batch* batch) {
    std::string text;
    std::string json;
    csv_.begin(head, text);
    json_.begin(head, json);
    if (batch != nullptr) {
      values_ += batch->rows() * head.columns.size();
      csv_.addRows(*batch, 0, batch->rows(), text);
      json_.addRows(*batch, 0, batch->rows(), json);
    }
    expect(fromUtf8(text) == text, "text in UTF-8");
    for (const std::size_t count : fieldsOf(text).counts) {
      expect(count == head.columns.size(), "a field for each column");
    }
  }

  CsvWriter csv_;
  JsonLinesWriter json_{"file"};
  std::vector<Curve> curves_;
  CurveCollector collector_{curves_, 10};
  std::size_t tables_ = 0;
  std::size_t values_ = 0;
};

}  // namespace

std::string tryExport(std::string_view input) {
  constexpr std::size_t always = std::size_t{1} << 26U;
  constexpr std::size_t for_a_byte = 2200;  // of data that is zipped as small as can be
  static const MemoryFile memory;
  memory.hold(input);
  InputFile file(memory.path());
  Trial trial;
  std::size_t findings = 0;
  {
    const mdf_tests::AllocationLimit limit(always + for_a_byte * input.size());
    Query query;
    query.batch_rows = 50;
    const FindingSink report = [&](const Finding& finding) {
      expectSentence(finding, file.size());
      ++findings;
    };
    const NoteSink note = [](const std::string& /*text*/) {};
    Tables tables(file, query, report, note);
    while (Table* const table = tables.next()) {
      trial.take(*table);
    }
    for (const TimeBase& base : {TimeBase{std::nullopt, "0", Between::held},
                                 TimeBase{readRate("3Hz"), "", Between::linear}}) {
      Tables beside(file, query, report, note);
      JoinedTable joined(beside, query, base, note);
      trial.take(joined);
    }
  }
  expect(!trial.script().empty(), "a picture of whatever there is");
  return std::to_string(trial.tables()) + " tables, " + std::to_string(findings) + " findings";
}

}  // namespace mdf_fuzz
