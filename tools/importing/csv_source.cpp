#include "csv_source.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "digit_scan.h"

namespace mdf_tools {

namespace {

/// How many fields a line has with a separator, as far as that can be told from one line.
std::size_t countFields(std::string_view line, char separator) {
  bool is_quoted = false;
  std::size_t count = 1;
  for (const char character : line) {
    is_quoted = is_quoted != (character == '"');
    count += character == separator && !is_quoted ? 1 : 0;
  }
  return count;
}

/// "speed [km/h]" is a name and a unit.
ColumnName columnOf(std::string_view head, std::size_t number) {
  const std::size_t bracket = head.rfind(" [");
  const bool has_unit = bracket != std::string_view::npos && head.back() == ']';
  ColumnName column;
  column.name = has_unit ? head.substr(0, bracket) : head;
  column.unit = has_unit ? head.substr(bracket + 2, head.size() - bracket - 3) : "";
  if (column.name.empty()) {
    column.name = "column " + std::to_string(number);
  }
  return column;
}

/// A text with one quote in place of two, in the same memory.
std::string_view withoutDoubles(char* text, std::size_t size) {
  std::size_t to = 0;
  for (std::size_t from = 0; from < size; from += text[from] == '"' ? 2 : 1) {
    text[to++] = text[from];
  }
  return {text, to};
}

bool isBlank(char character) { return character == ' ' || character == '\t'; }

}  // namespace

/// The one that makes as many fields of the line of names as of the line after it; of several that
/// do, the one that makes most.
void CsvSource::findSeparator() {
  constexpr std::string_view candidates = ",;\t|";
  const std::string head(lines_.text());
  const std::string row(lines_.extend() ? lines_.text().substr(head.size()) : "");
  lines_.giveBack();
  lines_.next();
  const std::string_view after =
      std::string_view(row).substr(std::min(row.find_first_not_of("\r\n"), row.size()));
  std::size_t most = 0;
  for (const char candidate : candidates) {
    const std::size_t fields = countFields(head, candidate);
    const bool agrees = after.empty() || fields == countFields(after, candidate);
    const std::size_t weight = fields > 1 ? 2 * fields + (agrees ? 2 * most_columns : 0) : 0;
    if (weight > most || separator_ == '\0') {
      most = weight;
      separator_ = candidate;
    }
  }
}

/// A semicolon separates where the comma is the mark of decimals; such files have points, too.
void CsvSource::setMark() {
  mark_in_quotes_ = has_decimal_comma_  ? DecimalMark::comma
                    : separator_ == ';' ? DecimalMark::either
                                        : DecimalMark::point;
  mark_ = separator_ == ',' ? DecimalMark::point : mark_in_quotes_;
}

bool CsvSource::nextTable() {
  do {
    if (!lines_.next()) {
      return false;
    }
  } while (lines_.text().empty());
  if (separator_ == '\0') {
    findSeparator();
  }
  setMark();
  try {
    split(head_);
  } catch (const BadLine& bad) {
    fail(bad.sentence);
  }
  if (head_.size() > most_columns) {
    fail("expected at most " + std::to_string(most_columns) + " columns, found " +
         std::to_string(head_.size()));
  }
  columns_.clear();
  bool has_names = false;
  for (const Cell& cell : head_) {
    has_names = has_names || cell.number.kind == ScannedNumber::Kind::none;
    columns_.push_back(columnOf(cell.text, columns_.size() + 1));
  }
  if (!has_names) {
    fail("expected the names of columns, found numbers");
  }
  return true;
}

bool CsvSource::nextRow(std::vector<Cell>& cells) {
  if (!lines_.next() || lines_.text().empty()) {
    return false;
  }
  split(cells);
  if (cells.size() != columns_.size()) {
    refuse(std::min(cells.size(), columns_.size()), "expected " + std::to_string(columns_.size()) +
                                                        " fields, found " +
                                                        std::to_string(cells.size()));
  }
  return true;
}

void CsvSource::split(std::vector<Cell>& cells) {
  cells.clear();
  with_quotes_.clear();
  for (std::size_t at = 0;; ++at) {
    const bool is_quoted = at < lines_.text().size() && lines_.text()[at] == '"';
    at = is_quoted ? addQuoted(at, cells) : addPlain(at, cells);
    if (at >= lines_.text().size()) {
      break;
    }
  }
  // Until here the lines could be given back.
  for (const std::size_t index : with_quotes_) {
    const std::string_view text = cells[index].text;
    cells[index].text =
        withoutDoubles(lines_.data() + (text.data() - lines_.text().data()), text.size());
  }
}

/// Most fields are numbers, whose end is found by reading them.
/// @return where the field's separator is, or the line's end.
std::size_t CsvSource::addPlain(std::size_t begin, std::vector<Cell>& cells) {
  const char* const line = lines_.text().data();
  const char* const line_end = line + lines_.text().size();
  const char* first = line + begin;
  Cell& cell = cells.emplace_back();
  // No number goes on in the next line.
  const char* end = scanDigits(first, lines_.readEnd(), mark_, cell.number);
  const bool is_number = cell.number.kind != ScannedNumber::Kind::none;
  if (is_number && (end == line_end || *end == separator_)) {
    cell.kind = Cell::Kind::plain;
    cell.text = {first, static_cast<std::size_t>(end - first)};
    return static_cast<std::size_t>(end - line);
  }
  end = std::find(first, line_end, separator_);
  const auto next = static_cast<std::size_t>(end - line);
  while (first < end && isBlank(*first)) {
    ++first;
  }
  while (first < end && isBlank(end[-1])) {
    --end;
  }
  cell.kind = first == end ? Cell::Kind::missing : Cell::Kind::plain;
  cell.text = {first, static_cast<std::size_t>(end - first)};
  cell.number = scanNumber(cell.text, mark_);
  return next;
}

/// @return where the quote is that ends a field.
std::size_t CsvSource::findQuote(std::size_t begin, std::vector<Cell>& cells) {
  // A quote too many must not take the rest of the file.
  constexpr std::size_t most_bytes = std::size_t{1} << 20U;
  const LineReader::Extent opened = lines_.extent();
  for (std::size_t at = begin + 1;;) {
    const std::string_view line = lines_.text();
    at = std::min(line.find('"', at), line.size());
    if (at == line.size()) {
      const bool is_long = at - begin > most_bytes;
      if (is_long || !extend(cells)) {
        refuseQuote(opened, cells.size() + 1,
                    std::string("expected a quote at the end of the field, found none") +
                        (is_long ? " in 1 MiB" : ""));
      }
    } else if (line.substr(at + 1, 1) == "\"") {
      at += 2;
    } else if (at + 1 < line.size() && line[at + 1] != separator_) {
      refuseQuote(opened, cells.size() + 1, "expected a separator after the field in quotes");
    } else {
      return at;
    }
  }
}

std::size_t CsvSource::addQuoted(std::size_t begin, std::vector<Cell>& cells) {
  const std::size_t end = findQuote(begin, cells);
  const std::string_view text = lines_.text().substr(begin + 1, end - begin - 1);
  if (text.find('"') != std::string_view::npos) {
    with_quotes_.push_back(cells.size());
  }
  const auto kind = text.empty() ? Cell::Kind::missing : Cell::Kind::plain;
  cells.push_back({kind, text, scanNumber(text, mark_in_quotes_)});
  return end + 1;
}

/// What is wrong with quotes is wrong with the line where they open; those after it are lines of
/// their own.
void CsvSource::refuseQuote(const LineReader::Extent& opened, std::size_t column,
                            const std::string& sentence) {
  lines_.giveBackAfter(opened);
  throw BadLine{lines_.number() + opened.extensions, column, sentence};
}

/// Makes the next line a part of this one, which may move in memory with its fields.
bool CsvSource::extend(std::vector<Cell>& cells) {
  const char* const before = lines_.text().data();
  const bool is_there = lines_.extend();
  const char* const now = lines_.text().data();
  if (now != before) {
    for (Cell& cell : cells) {
      cell.text = {now + (cell.text.data() - before), cell.text.size()};
    }
  }
  return is_there;
}

}  // namespace mdf_tools
