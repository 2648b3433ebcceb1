#ifndef MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
#define MDF_TOOLS_PRINTING_TABLE_WRITERS_H_

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "reader/columns/batch.h"
#include "value_form.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Turns tables into text.
class TableWriter {
 public:
  TableWriter() = default;
  virtual ~TableWriter() = default;
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  /// Begins a table: appends what stands above its rows.
  virtual void begin(const TableHead& table, std::string& text) = 0;
  /// Appends rows of the table that was begun last. Several threads may do so at a time.
  virtual void addRows(const Batch& batch, std::size_t begin, std::size_t end,
                       std::string& text) const = 0;
};

/// Makes text of a batch's rows on several threads, and hands it on in the order of the rows.
void forEachText(const TableWriter& writer, const Batch& batch, std::size_t threads,
                 const std::function<void(const std::string& text)>& take);

/// Tables as comma-separated values: a line with the names of the channels, "name [unit]" where
/// there is a unit, and a line for each sample. A missing value is an empty field. Fields that need
/// quotes have them as in RFC 4180; lines end in a line feed.
class CsvWriter : public TableWriter {
 public:
  explicit CsvWriter(ValueForm form = {}) : form_(form) {}

  void begin(const TableHead& table, std::string& text) override;
  void addRows(const Batch& batch, std::size_t begin, std::size_t end,
               std::string& text) const override;

 private:
  ValueForm form_;
};

/// Tables as lines of JSON: one for the channel group and its columns, and one for each sample.
/// Numbers that JSON lacks are strings ("nan", "inf", "-inf"), bytes are strings of hexadecimal
/// digits, a missing value is null.
class JsonLinesWriter : public TableWriter {
 public:
  /// @param file what every line calls the file.
  explicit JsonLinesWriter(std::string file, ValueForm form = {})
      : file_(std::move(file)), form_(form) {}

  void begin(const TableHead& table, std::string& text) override;
  void addRows(const Batch& batch, std::size_t begin, std::size_t end,
               std::string& text) const override;

 private:
  std::string file_;
  ValueForm form_;
  std::string beginning_;           ///< of the line of each sample
  std::vector<std::string> names_;  ///< in quotes
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_TABLE_WRITERS_H_
