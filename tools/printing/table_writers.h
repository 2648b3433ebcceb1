#ifndef MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
#define MDF_TOOLS_PRINTING_TABLE_WRITERS_H_

#include <functional>
#include <ostream>
#include <string>

#include "reader/values/table.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Gives where a table is to be written. Null where that cannot be: the table is passed over.
using TableOutput = std::function<std::ostream*(const Table& table)>;

/// Tables as comma-separated values: a line with the names of the channels, "name [unit]" where
/// there is a unit, and a line for each sample. A value that is missing is an empty field. Fields
/// are in quotes as RFC 4180 has it where they need to be; lines end in a line feed.
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

/// Tables as lines of JSON: one that tells of the channel group and its columns, and one for each
/// sample. Numbers that are none in JSON are strings ("nan", "inf", "-inf"), bytes are strings of
/// hexadecimal digits, a value that is missing is null.
class JsonLinesWriter : public TableVisitor {
 public:
  explicit JsonLinesWriter(TableOutput output) : output_(std::move(output)) {}

  void begin(Table& table) override;
  bool sample(Table& table, const Sample& sample) override;
  void end() override {}

 private:
  TableOutput output_;
  std::ostream* out_ = nullptr;
  std::string beginning_;           ///< of the line of each sample
  std::vector<std::string> names_;  ///< in quotes
  std::string line_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
