#include "table.h"

#include <algorithm>
#include <cstdlib>

namespace mdf_tools {

namespace {

bool isInsideCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; }

bool isControl(char byte) {
  const auto value = static_cast<unsigned char>(byte);
  return value < 0x20 || value == 0x7F;
}

}  // namespace

std::size_t shownWidth(std::string_view text) {
  return text.size() -
         static_cast<std::size_t>(std::count_if(text.begin(), text.end(), isInsideCharacter));
}

std::string onOneLine(std::string_view text, std::size_t most) {
  constexpr std::string_view more = "...";
  std::string line(text);
  std::replace_if(line.begin(), line.end(), isControl, ' ');
  if (shownWidth(line) <= most) {
    return line;
  }
  std::size_t end = 0;
  for (std::size_t kept = 0; end < line.size(); ++end) {
    if (!isInsideCharacter(line[end]) && kept++ + more.size() >= most) {
      break;
    }
  }
  return line.substr(0, end).append(more);
}

void Table::sortBy(std::string_view title) {
  const auto found = std::find_if(columns_.begin(), columns_.end(),
                                  [&](const Column& each) { return each.title == title; });
  if (found == columns_.end()) {
    return;
  }
  const auto column = static_cast<std::size_t>(found - columns_.begin());
  const bool by_number = found->align == Align::right;
  std::stable_sort(rows_.begin(), rows_.end(), [&](const Row& left, const Row& right) {
    const std::string& a = left.cells[column];
    const std::string& b = right.cells[column];
    return by_number ? std::strtod(a.c_str(), nullptr) < std::strtod(b.c_str(), nullptr) : a < b;
  });
}

std::vector<std::size_t> Table::widths() const {
  std::vector<std::size_t> widths;
  for (const Column& column : columns_) {
    widths.push_back(shownWidth(column.title));
  }
  for (const Row& row : rows_) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      widths[i] = std::max(widths[i], shownWidth(row.cells[i]));
    }
  }
  return widths;
}

void Table::printRow(std::ostream& os, const std::vector<std::string>& cells,
                     const std::vector<std::size_t>& widths) const {
  std::size_t blanks = 0;  // owed until a text follows
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t gap = widths[i] - shownWidth(cells[i]);
    const bool is_left = columns_[i].align == Align::left;
    if (!cells[i].empty()) {
      os << std::string(blanks + (is_left ? 0 : gap), ' ') << onOneLine(cells[i]);
      blanks = is_left ? gap : 0;
    } else {
      blanks += widths[i];
    }
    blanks += 2;
  }
  os << '\n';
}

void Table::print(std::ostream& os) const {
  const std::vector<std::size_t> widths = this->widths();
  std::vector<std::string> titles;
  for (const Column& column : columns_) {
    titles.emplace_back(column.title);
  }
  printRow(os, titles, widths);
  for (const Row& row : rows_) {
    printRow(os, row.cells, widths);
  }
}

void Table::printRests(std::ostream& os) const {
  for (const Row& row : rows_) {
    os << row.rest << '\n';
  }
}

}  // namespace mdf_tools
