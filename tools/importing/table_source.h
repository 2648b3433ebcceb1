#ifndef MDF_TOOLS_IMPORTING_TABLE_SOURCE_H_
#define MDF_TOOLS_IMPORTING_TABLE_SOURCE_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "import_failure.h"
#include "line_reader.h"
#include "number_scan.h"

namespace mdf_tools {

/// A field of a row.
struct Cell {
  enum class Kind {
    missing,
    plain,  ///< what it is follows from its text
    text    ///< said to be a text
  };

  Kind kind = Kind::missing;
  std::string_view text;
  ScannedNumber number{};  ///< where the text is one

  double real() const { return realOf(number, text); }
};

struct ColumnName {
  std::string name;
  std::string unit;
};

/// More columns than a table of measurements has; those of a file that is none take no more memory.
inline constexpr std::size_t most_columns = 1'000'000;

/// The tables in a text file, one after another, and their rows.
class TableSource {
 public:
  explicit TableSource(LineReader& lines) : lines_(lines) {}
  virtual ~TableSource() = default;
  TableSource(const TableSource&) = delete;
  TableSource& operator=(const TableSource&) = delete;

  /// Goes on to the next table, when the one before has no more rows; false after the last.
  /// @throws ImportFailure where its columns cannot be found.
  virtual bool nextTable() = 0;

  /// The table's name, if it is stated, and its columns; rows of JSON may bring more.
  const std::string& name() const { return name_; }
  const std::vector<ColumnName>& columns() const { return columns_; }

  /// Reads the table's next row, of which cells at the end may be left out; false after the last.
  /// The texts are valid until the next call.
  /// @throws BadLine; the next call goes on with the line after it.
  virtual bool nextRow(std::vector<Cell>& cells) = 0;

  const LineReader& lines() const { return lines_; }

 protected:
  [[noreturn]] void refuse(std::size_t column, const std::string& sentence) const {
    throw BadLine{lines_.number(), column, sentence};
  }

  /// Ends all, for what a table begins with.
  [[noreturn]] void fail(const std::string& sentence) const {
    throw ImportFailure(lines_.name() + ": line " + std::to_string(lines_.number()) + ": " +
                        sentence);
  }

  LineReader& lines_;
  std::string name_;
  std::vector<ColumnName> columns_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_TABLE_SOURCE_H_
