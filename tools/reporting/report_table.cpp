#include "report_table.h"

#include <algorithm>
#include <cmath>

namespace mdf_tools {

/// A master that is all that was chosen is a channel like others.
ReportTable::ReportTable(const TableHead& head)
    : group_(head.group->index), element_(head.group->element), name_(head.group->shownName()) {
  for (const ColumnHead& column : head.columns) {
    columns_.push_back({column.name, column.unit, column.type, column.decimals});
  }
  if (head.has_master && columns_.size() > 1) {
    master_ = columns_.front();
    columns_.erase(columns_.begin());
  }
  const auto numbers = std::count_if(columns_.begin(), columns_.end(),
                                     [](const Column& column) { return isNumber(column.type); });
  numbers_ = std::make_unique<NumberLevels>(static_cast<std::size_t>(numbers));
  levels_.push_back(numbers_.get());
  for (std::size_t i = static_cast<std::size_t>(numbers); i < columns_.size(); ++i) {
    texts_.push_back(std::make_unique<TextLevels>());
    levels_.push_back(texts_.back().get());
  }
}

/// Records before the first one in order have no time to stand at.
ReportTable::Rows ReportTable::rowsOf(const Batch& batch) {
  Rows rows;
  rows.times = timesOf(batch);
  const bool has_begun = records_ > out_of_order_;
  for (std::size_t row = 0; row < rows.times.size(); ++row) {
    double& time = rows.times[row];
    rows.in_order.push_back(order_.take(time));
    out_of_order_ += rows.in_order.back() ? 0U : 1U;
    time = order_.latest();
    rows.begin += std::isfinite(time) ? 0U : 1U;
  }
  if (!has_begun && rows.begin < rows.times.size()) {
    first_ = rows.times[rows.begin];
  }
  records_ += rows.times.size();
  return rows;
}

void ReportTable::add(const Batch& batch) {
  Rows rows = rowsOf(batch);
  std::vector<std::vector<double>> numbers;
  auto texts = texts_.begin();
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const ColumnData& column = batch.column(i + (master_ ? 1U : 0U));
    if (!isNumber(columns_[i].type)) {
      addTexts(column, rows, **texts++);
      continue;
    }
    std::vector<double> values = column.reals();
    for (std::size_t row = 0; row < values.size(); ++row) {
      values[row] = rows.in_order[row] ? values[row] : Extent::none;
    }
    numbers.emplace_back(values.begin() + static_cast<std::ptrdiff_t>(rows.begin), values.end());
  }
  rows.times.erase(rows.times.begin(),
                   rows.times.begin() + static_cast<std::ptrdiff_t>(rows.begin));
  numbers_->add(rows.times, numbers);
}

void ReportTable::addTexts(const ColumnData& column, const Rows& rows, TextLevels& texts) {
  std::string text;
  for (std::size_t row = 0; row < rows.times.size(); ++row) {
    if (!rows.in_order[row]) {
      continue;
    }
    if (column.isValid(row)) {
      text.clear();
      column.print(row, text);
      texts.add(rows.times[row], text);
    } else {
      texts.addGap(rows.times[row]);
    }
  }
}

Json ReportTable::describe() const {
  Json columns = Json::array();
  for (const Column& column : columns_) {
    columns.push_back({{"name", column.name},
                       {"unit", column.unit},
                       {"text", !isNumber(column.type)},
                       {"single", column.type == ColumnType::float32}});
  }
  Json json = {{"group", group_},
               {"element", element_ ? Json(*element_) : Json()},
               {"name", name_},
               {"has_master", false},
               {"columns", std::move(columns)}};
  if (!master_) {
    json["master"] = Json();
    return json;
  }
  json["master"] = {{"name", master_->name},
                    {"unit", master_->unit},
                    {"decimals", master_->decimals ? Json(*master_->decimals) : Json()}};
  return json;
}

void ReportTable::narrow(Json& group) const {
  const bool is_empty = records_ == out_of_order_;
  group["records"] = records_;
  group["span"] =
      is_empty ? Json() : Json{{"from", first_}, {"to", order_.latest()}, {"source", "records"}};
}

Json ReportTable::describeSamples(const std::function<Json(const PackedNumbers&)>& store) const {
  Json lists = Json::array();
  for (const Levels* const levels : levels_) {
    Json list = Json::array();
    for (const PackedNumbers& packed : levels->pack()) {
      list.push_back(store(packed));
    }
    lists.push_back(std::move(list));
  }
  return {{"width", numbers_->width()},
          {"records", records_},
          {"out_of_order", out_of_order_},
          {"lists", std::move(lists)}};
}

}  // namespace mdf_tools
