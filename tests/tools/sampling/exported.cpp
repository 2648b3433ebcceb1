#include "exported.h"

#include <gtest/gtest.h>

#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {

namespace {

Exported exportedBy(mdf_tools::TableWriter&& writer, const std::string& bytes,
                    const mdf_reader::Query& query) {
  const TempFile path(bytes);
  mdf_reader::InputFile file(path.path());
  Exported exported;
  const mdf_reader::FindingSink report = [&](const mdf_reader::Finding& finding) {
    exported.findings.push_back(std::to_string(finding.offset) + ": " + finding.sentence);
  };
  const mdf_reader::NoteSink note = [&](const std::string& text) {
    exported.notes.push_back(text);
  };
  mdf_reader::Tables tables(file, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    exported.text += exported.text.empty() ? "" : "\n";
    writer.begin(table->head(), exported.text);
    while (const mdf_reader::Batch* const batch = table->next()) {
      writer.addRows(*batch, 0, batch->rows(), exported.text);
    }
  }
  return exported;
}

}  // namespace

Read readThrough(const std::string& path) {
  mdf_reader::InputFile file(path);
  Read read;
  const AllocationMeter meter;
  const mdf_reader::Query query;
  const mdf_reader::FindingSink report = [&](const mdf_reader::Finding& /*finding*/) {
    ++read.findings;
  };
  const mdf_reader::NoteSink note = [](const std::string& /*text*/) {};
  mdf_reader::Tables tables(file, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    while (const mdf_reader::Batch* const batch = table->next()) {
      read.samples += batch->rows();
      read.values += batch->rows() - batch->column(0).nullCount();
    }
  }
  read.peak_bytes = meter.peakBytes();
  return read;
}

Exported csvOf(const std::string& bytes, const mdf_reader::Query& query) {
  return exportedBy(mdf_tools::CsvWriter(), bytes, query);
}

Exported jsonOf(const std::string& bytes, const mdf_reader::Query& query) {
  return exportedBy(mdf_tools::JsonLinesWriter("FILE"), bytes, query);
}

std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Query& query) {
  const Exported exported = csvOf(bytes, query);
  EXPECT_EQ(exported.findings, std::vector<std::string>());
  return exported.text;
}

void expectFinding(const Exported& exported, const std::string& text, const std::string& words) {
  EXPECT_EQ(exported.text, text);
  ASSERT_EQ(exported.findings.size(), 1U);
  EXPECT_NE(exported.findings[0].find(words), std::string::npos) << exported.findings[0];
}

}  // namespace mdf_tests
