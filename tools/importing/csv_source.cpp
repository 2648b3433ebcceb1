#include "csv_source.h"

#include <algorithm>
#include <cstring>
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
  for (std::size_t at = 0;; ++at) {
    const bool is_quoted = at < lines_.text().size() && lines_.text()[at] == '"';
    at = is_quoted ? addQuoted(at, cells) : addPlain(at, cells);
    if (at >= lines_.text().size()) {
      return;
    }
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

/// Moves what is in the quotes together where quotes are doubled.
std::size_t CsvSource::addQuoted(std::size_t begin, std::vector<Cell>& cells) {
  const std::size_t first = begin + 1;
  std::size_t end = first;
  for (std::size_t at = first;;) {
    const std::string_view line = lines_.text();
    const std::size_t quote = std::min(line.find('"', at), line.size());
    if (end != at) {
      std::memmove(lines_.data() + end, lines_.data() + at, quote - at);
    }
    end += quote - at;
    at = quote;
    if (quote == line.size()) {
      if (!extend(cells)) {
        refuse(cells.size() + 1, "expected a quote at the end of the field, found none");
      }
    } else if (quote + 1 < line.size() && line[quote + 1] == '"') {
      lines_.data()[end++] = '"';
      at = quote + 2;
    } else {
      const std::string_view text = line.substr(first, end - first);
      const auto kind = text.empty() ? Cell::Kind::missing : Cell::Kind::plain;
      cells.push_back({kind, text, scanNumber(text, mark_in_quotes_)});
      if (quote + 1 < line.size() && line[quote + 1] != separator_) {
        refuse(cells.size(), "expected a separator after the field in quotes");
      }
      return quote + 1;
    }
  }
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
