#ifndef MDF_TOOLS_IMPORTING_CSV_SOURCE_H_
#define MDF_TOOLS_IMPORTING_CSV_SOURCE_H_

#include <cstddef>
#include <vector>

#include "table_source.h"

namespace mdf_tools {

/// Tables as lines of fields: a line of names with units in brackets, then a line for each row, and
/// an empty line between two tables. Quotes are those of RFC 4180.
class CsvSource : public TableSource {
 public:
  /// @param separator of fields; '\0' for one to be found out.
  CsvSource(LineReader& lines, char separator, bool has_decimal_comma)
      : TableSource(lines), separator_(separator), has_decimal_comma_(has_decimal_comma) {}

  bool nextTable() override;
  bool nextRow(std::vector<Cell>& cells) override;

 private:
  void findSeparator();
  void setMark();
  void split(std::vector<Cell>& cells);
  std::size_t addPlain(std::size_t begin, std::vector<Cell>& cells);
  std::size_t addQuoted(std::size_t begin, std::vector<Cell>& cells);
  std::size_t findQuote(std::size_t begin, std::vector<Cell>& cells);
  [[noreturn]] void refuseQuote(const LineReader::Extent& opened, std::size_t column,
                                const std::string& sentence);
  bool extend(std::vector<Cell>& cells);

  char separator_;
  bool has_decimal_comma_;
  DecimalMark mark_ = DecimalMark::point;
  DecimalMark mark_in_quotes_ = DecimalMark::point;
  std::vector<Cell> head_;
  std::vector<std::size_t> with_quotes_;  ///< cells of the row that have quotes, which are doubled
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_CSV_SOURCE_H_
