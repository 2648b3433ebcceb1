#include "table_facts.h"

#include <fnmatch.h>

#include <algorithm>

#include "reader/columns/unique_names.h"

namespace mdf_tools {

namespace {

std::optional<ValueType> statedType(const ImportOptions& options, const std::string& name) {
  const auto found =
      std::find_if(options.types.rbegin(), options.types.rend(), [&](const auto& each) {
        return each.first == name || fnmatch(each.first.c_str(), name.c_str(), 0) == 0;
      });
  return found == options.types.rend() ? std::nullopt : std::optional(found->second);
}

}  // namespace

void TableFacts::takeColumns(const TableSource& source) {
  const bool has_rows = time_.has_value();
  for (std::size_t i = columns_.size(); i < source.columns().size(); ++i) {
    ColumnFacts& column = columns_.emplace_back();
    column.stated = statedType(*options_, source.columns()[i].name);
    column.has_missing = has_rows;
  }
  if (!time_) {
    takeTime(source);
  }
}

void TableFacts::takeTime(const TableSource& source) {
  const auto& columns = source.columns();
  const auto named = std::find_if(columns.begin(), columns.end(), [this](const ColumnName& column) {
    return column.name == options_->time;
  });
  const bool is_stated = !options_->time.empty();
  if (is_stated && named == columns.end()) {
    throw ImportFailure(source.lines().name() + ": no column is named \"" + options_->time + '"');
  }
  time_index_ = is_stated ? static_cast<std::size_t>(named - columns.begin()) : 0;
  time_.emplace(columns.empty() ? ColumnName() : columns[time_index_], is_stated);
}

/// A bad line must leave no traces: all of it is checked first.
void TableFacts::add(const TableSource& source, const std::vector<Cell>& cells) {
  static const Cell missing;
  if (columns_.size() != source.columns().size() || !time_) {
    takeColumns(source);
  }
  const std::uint64_t line = source.lines().number();
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const bool is_number = cells[i].number.kind != ScannedNumber::Kind::none;
    const ValueType type = columns_[i].stated.value_or(ValueType::text);
    if ((columns_[i].stated || !is_number) && cells[i].kind != Cell::Kind::missing &&
        !canHold(type, cells[i])) {
      throw BadLine{line, i + 1, faultOf(type, cells[i])};
    }
  }
  addTime(line, time_index_ < cells.size() ? cells[time_index_] : missing);
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    columns_[i].add(i < cells.size() ? cells[i] : missing);
  }
}

void TableFacts::addTime(std::uint64_t line, const Cell& cell) {
  const std::string fault = time_->add(cell);
  if (!fault.empty() && !options_->time.empty()) {
    throw BadLine{line, time_index_ + 1, fault};
  }
  if (!fault.empty() && note_.empty() && time_->looksLikeTimes()) {
    note_ = "note: the first column does not become the master channel: line " +
            std::to_string(line) + ": " + fault;
  }
}

void TableFacts::settle(const TableSource& source) {
  takeColumns(source);
  time_->settle();
  time_->rewind();
  mdf_reader::UniqueNames unique;
  for (const ColumnName& column : source.columns()) {
    if (!mdf_writer::isUtf8(column.name) || !mdf_writer::isUtf8(column.unit)) {
      throw ImportFailure(source.lines().name() + ": expected names and units in UTF-8, found " +
                          shownText(column.name));
    }
    const std::string number = std::to_string(names_.size() + 1);
    names_.push_back(
        {unique.unique(column.name.empty() ? "column " + number : column.name), column.unit});
  }
}

bool TableFacts::needsTexts() const {
  return std::any_of(columns_.begin(), columns_.end(), [](const ColumnFacts& column) {
    return column.type() == ValueType::text && (column.has_real || column.has_integer);
  });
}

}  // namespace mdf_tools
