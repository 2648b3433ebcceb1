#ifndef MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
#define MDF_TOOLS_PRINTING_TABLE_WRITERS_H_

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "reader/values/table.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Gives the stream for a table. Null where there is none: the table is skipped.
using TableOutput = std::function<std::ostream*(const Table& table)>;

/// Passes tables on to another visitor, but for those without samples, which it counts.
class FilledTables : public TableVisitor {
 public:
  explicit FilledTables(TableVisitor& next) : next_(next) {}

  void begin(Table& /*table*/) override { has_samples_ = false; }
  bool sample(Table& table, const Sample& sample) override;
  void end() override;

  std::size_t leftOut() const { return left_out_; }

 private:
  TableVisitor& next_;
  bool has_samples_ = false;
  std::size_t left_out_ = 0;
};

/// Tables as comma-separated values: a line with the names of the channels, "name [unit]" where
/// there is a unit, and a line for each sample. A missing value is an empty field. Fields that need
/// quotes have them as in RFC 4180; lines end in a line feed.
class CsvWriter : public TableVisitor {
 public:
  explicit CsvWriter(TableOutput output) : output_(std::move(output)) {}

  void begin(Table& table) override;
  bool sample(Table& table, const Sample& sample) override;
  void end() override {}

 private:
  void addField(const std::string& text);
  bool writeLine();

  TableOutput output_;
  std::ostream* out_ = nullptr;
  std::string line_;
  std::string field_;
};

/// Tables as lines of JSON: one for the channel group and its columns, and one for each sample.
/// Numbers that JSON lacks are strings ("nan", "inf", "-inf"), bytes are strings of hexadecimal
/// digits, a missing value is null.
class JsonLinesWriter : public TableVisitor {
 public:
  /// @param file what every line calls the file.
  JsonLinesWriter(TableOutput output, std::string file)
      : output_(std::move(output)), file_(std::move(file)) {}

  void begin(Table& table) override;
  bool sample(Table& table, const Sample& sample) override;
  void end() override {}

 private:
  TableOutput output_;
  std::string file_;
  std::ostream* out_ = nullptr;
  std::string beginning_;           ///< of the line of each sample
  std::vector<std::string> names_;  ///< in quotes
  std::string line_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
