#ifndef MDF_TOOLS_IMPORTING_TABLE_FACTS_H_
#define MDF_TOOLS_IMPORTING_TABLE_FACTS_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "importer.h"
#include "table_source.h"
#include "time_column.h"

namespace mdf_tools {

/// What a table's columns are, as far as its rows were looked at.
class TableFacts {
 public:
  explicit TableFacts(const ImportOptions& options) : options_(&options) {}

  /// Looks at a row.
  /// @throws BadLine
  void add(const TableSource& source, const std::vector<Cell>& cells);

  /// Decides what the columns are, after all rows.
  /// @throws ImportFailure where the names of columns cannot be used.
  void settle(const TableSource& source);

  const std::vector<ColumnName>& names() const { return names_; }
  const std::vector<ColumnFacts>& columns() const { return columns_; }
  std::size_t timeIndex() const { return time_index_; }
  TimeColumn& time() { return *time_; }

  /// Whether a column of texts has cells that are numbers.
  bool needsTexts() const;

  /// Why a column that looks like times is none, as a sentence; empty for nothing.
  const std::string& note() const { return note_; }

 private:
  void takeColumns(const TableSource& source);
  void takeTime(const TableSource& source);
  void addTime(std::uint64_t line, const Cell& cell);

  const ImportOptions* options_;
  std::vector<ColumnName> names_;
  std::vector<ColumnFacts> columns_;
  std::size_t time_index_ = 0;
  std::optional<TimeColumn> time_;
  std::string note_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_TABLE_FACTS_H_
