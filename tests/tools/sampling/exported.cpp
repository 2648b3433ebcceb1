#include "exported.h"

#include <gtest/gtest.h>

#include <sstream>

#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {

namespace {

template <class Writer, class... Words>
Exported exportedBy(const std::string& bytes, const mdf_reader::Selection& selection,
                    const Words&... words) {
  const TempFile path(bytes);
  mdf_reader::InputFile file(path.path());
  Exported exported;
  std::ostringstream out;
  bool is_first = true;
  const auto output = [&](const mdf_reader::Table&) {
    out << (is_first ? "" : "\n");
    is_first = false;
    return &out;
  };
  Writer writer(output, words...);
  mdf_reader::visitTables(
      file, selection, writer,
      [&](const mdf_reader::Finding& finding) {
        exported.findings.push_back(std::to_string(finding.offset) + ": " + finding.sentence);
      },
      [&](const std::string& note) { exported.notes.push_back(note); });
  exported.text = out.str();
  return exported;
}

}  // namespace

Exported csvOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  return exportedBy<mdf_tools::CsvWriter>(bytes, selection);
}

Exported jsonOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  return exportedBy<mdf_tools::JsonLinesWriter>(bytes, selection, "FILE");
}

std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Selection& selection) {
  const Exported exported = csvOf(bytes, selection);
  EXPECT_EQ(exported.findings, std::vector<std::string>());
  return exported.text;
}

void expectFinding(const Exported& exported, const std::string& text, const std::string& words) {
  EXPECT_EQ(exported.text, text);
  ASSERT_EQ(exported.findings.size(), 1U);
  EXPECT_NE(exported.findings[0].find(words), std::string::npos) << exported.findings[0];
}

}  // namespace mdf_tests
