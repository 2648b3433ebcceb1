#include "text_table.h"

#include <algorithm>
#include <cstdlib>

#include "style.h"

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

void TextTable::sortBy(std::string_view title) {
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

void TextTable::widen(const std::vector<std::string>& cells) {
  for (std::size_t i = 0; i < widths_.size(); ++i) {
    widths_[i] = std::max(widths_[i], shownWidth(cells[i]));
  }
}

void TextTable::printRow(std::ostream& os, const std::vector<std::string>& cells) const {
  std::size_t blanks = 0;  // owed until a text follows
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::size_t gap = widths_[i] - shownWidth(cells[i]);
    const bool is_left = columns_[i].align == Align::left;
    if (!cells[i].empty()) {
      os << std::string(blanks + (is_left ? 0 : gap), ' ') << onOneLine(cells[i]);
      blanks = is_left ? gap : 0;
    } else {
      blanks += widths_[i];
    }
    blanks += 2;
  }
  os << '\n';
}

void TextTable::print(std::ostream& os) {
  std::vector<std::string> titles;
  if (widths_.empty()) {
    for (const Column& column : columns_) {
      titles.emplace_back(column.title);
    }
    widths_.resize(columns_.size());
    widen(titles);
  }
  for (const Row& row : rows_) {
    widen(row.cells);
  }
  if (!titles.empty()) {
    os << Style::strong;
    printRow(os, titles);
    os << Style::plain;
  }
  for (const Row& row : rows_) {
    printRow(os, row.cells);
  }
  rows_.clear();
}

void TextTable::printRests(std::ostream& os) {
  for (const Row& row : rows_) {
    os << row.rest << '\n';
  }
  rows_.clear();
}

}  // namespace mdf_tools
