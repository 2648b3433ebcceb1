#ifndef MDF_TOOLS_PRINTING_TEXT_TABLE_H_
#define MDF_TOOLS_PRINTING_TEXT_TABLE_H_

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace mdf_tools {

/// Rows of texts, printed in aligned columns.
class TextTable {
 public:
  enum class Align { left, right };
  struct Column {
    std::string_view title;
    Align align = Align::left;
  };

  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Adds a row with as many cells as there are columns, and further facts, which are not part of
  /// the table.
  void add(std::vector<std::string> cells, std::string rest = {}) {
    rows_.push_back({std::move(cells), std::move(rest)});
  }

  /// Sorts the rows by a column: by number when it is aligned right, else by text.
  void sortBy(std::string_view title);

  bool isEmpty() const { return rows_.empty(); }

  std::size_t size() const { return rows_.size(); }

  /// Prints the rows and forgets them, the first time with the titles above. Columns are as wide as
  /// what has been printed so far needs. Cells are kept on their line: line ends and other control
  /// characters in them become blanks. Lines have no trailing blanks.
  void print(std::ostream& os);

  /// Prints the further facts of the rows, each on a line, and forgets them.
  void printRests(std::ostream& os);

 private:
  struct Row {
    std::vector<std::string> cells;
    std::string rest;
  };

  void widen(const std::vector<std::string>& cells);
  void printRow(std::ostream& os, const std::vector<std::string>& cells) const;

  std::vector<Column> columns_;
  std::vector<Row> rows_;
  std::vector<std::size_t> widths_;  ///< none before the titles are printed
};

/// How many columns a text in UTF-8 takes on a terminal, at one for each character.
std::size_t shownWidth(std::string_view text);

/// A text on one line: control characters become blanks, and what is longer than `most` characters
/// ends in "...".
std::string onOneLine(std::string_view text, std::size_t most = static_cast<std::size_t>(-1));

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_TEXT_TABLE_H_
