#include "table_comparison.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "value_comparison.h"

namespace mdf_tools {

bool TableComparison::Reader::hasRows() {
  if (!has_ended && (batch == nullptr || row == batch->rows())) {
    batch = table.next();
    row = 0;
    has_ended = batch == nullptr;
  }
  return !has_ended;
}

void TableComparison::Reader::take(std::size_t count, bool has_master) {
  row += count;
  if (has_master) {
    last_master = batch->column(0).real(row - 1);
  }
}

TableComparison::TableComparison(Table& a, Table& b, const DiffOptions& options, Thing thing)
    : options_(options),
      thing_(std::move(thing)),
      a_{a},
      b_{b},
      has_master_(a.head().has_master && b.head().has_master) {
  pairColumns();
}

void TableComparison::pairColumns() {
  std::unordered_map<std::string_view, std::size_t> of_b;
  const auto& columns_b = b_.table.head().columns;
  for (std::size_t i = 0; i < columns_b.size(); ++i) {
    of_b.emplace(columns_b[i].name, i);
  }
  const auto& columns_a = a_.table.head().columns;
  for (std::size_t i = 0; i < columns_a.size(); ++i) {
    const auto found = of_b.find(columns_a[i].name);
    if (found != of_b.end()) {
      columns_.push_back({i, found->second});
    }
  }
}

void TableComparison::run(const DifferenceSink& report, DiffSummary& summary) {
  while (!isDecided() && a_.hasRows() && b_.hasRows()) {
    compareNext();
  }
  takeRest(Side::a);
  takeRest(Side::b);
  reportAll(report, summary);
}

bool TableComparison::isDecided() const {
  return options_.stops_at_first && (has_differing_ || lone_a_.count + lone_b_.count > 0);
}

/// Compares the rows that belong together by their masters, and deals with the one after them.
void TableComparison::compareNext() {
  const std::size_t rows = std::min(a_.rows(), b_.rows());
  const std::size_t aligned = countAligned(rows);
  if (aligned > 0) {
    compareRows(aligned, true);
  }
  if (aligned < rows) {
    takeUnequal();
  }
}

std::size_t TableComparison::countAligned(std::size_t rows) const {
  return has_master_ ? firstDifferent({a_.batch->column(0), a_.row}, {b_.batch->column(0), b_.row},
                                      rows, options_.time_tolerance)
                     : rows;
}

/// @param are_aligned their masters are known to be equal.
void TableComparison::compareRows(std::size_t count, bool are_aligned) {
  for (ColumnPair& pair : columns_) {
    if (are_aligned && has_master_ && pair.a == 0 && pair.b == 0) {
      continue;
    }
    const ColumnRows rows_a{a_.batch->column(pair.a), a_.row};
    const ColumnRows rows_b{b_.batch->column(pair.b), b_.row};
    const Tolerance& tolerance = toleranceOf(pair);
    for (std::size_t row = firstDifferent(rows_a, rows_b, count, tolerance); row < count;
         row = firstDifferent(rows_a, rows_b, count, tolerance, row + 1)) {
      addDifference(pair, row);
    }
  }
  records_ += count;
  a_.take(count, has_master_);
  b_.take(count, has_master_);
}

const Tolerance& TableComparison::toleranceOf(const ColumnPair& pair) const {
  const bool is_master = has_master_ && pair.a == 0 && pair.b == 0;
  return is_master ? options_.time_tolerance : options_.tolerance;
}

/// @param row after those that were taken.
void TableComparison::addDifference(ColumnPair& pair, std::size_t row) {
  has_differing_ = true;
  ++pair.differing;
  if (pair.first.size() < options_.samples) {
    const std::size_t row_a = a_.row + row;
    const std::size_t row_b = b_.row + row;
    pair.first.push_back({a_.batch->record(row_a), b_.batch->record(row_b), masterAt(a_, row_a),
                          valueAsJson(a_.batch->column(pair.a), row_a),
                          valueAsJson(b_.batch->column(pair.b), row_b)});
  }
}

/// The next rows have different masters.
void TableComparison::takeUnequal() {
  const double master_a = a_.master();
  const double master_b = b_.master();
  const bool are_growing = master_a >= a_.last_master && master_b >= b_.last_master;
  if (are_growing && master_a < master_b) {
    takeLone(Side::a, 1);
  } else if (are_growing && master_b < master_a) {
    takeLone(Side::b, 1);
  } else {
    compareRows(1, false);
  }
}

void TableComparison::takeLone(Side side, std::size_t count) {
  Reader& reader = side == Side::a ? a_ : b_;
  LoneRecords& lone = side == Side::a ? lone_a_ : lone_b_;
  for (std::size_t i = 0; i < count && lone.first.size() < options_.samples; ++i) {
    RecordDifference& record = lone.first.emplace_back();
    (side == Side::a ? record.record_a : record.record_b) = reader.batch->record(reader.row + i);
    record.master = masterAt(reader, reader.row + i);
  }
  lone.count += count;
  reader.take(count, has_master_);
}

void TableComparison::takeRest(Side side) {
  Reader& reader = side == Side::a ? a_ : b_;
  while (!isDecided() && reader.hasRows()) {
    takeLone(side, reader.rows());
  }
}

Json TableComparison::masterAt(const Reader& reader, std::size_t row) const {
  return has_master_ ? valueAsJson(reader.batch->column(0), row) : Json();
}

void TableComparison::reportAll(const DifferenceSink& report, DiffSummary& summary) const {
  summary.records += records_;
  summary.values += records_ * columns_.size();
  for (const ColumnPair& pair : columns_) {
    if (pair.differing > 0) {
      Difference difference{Difference::Kind::values, thing_};
      difference.thing.kind = "channel";
      difference.thing.name = a_.table.head().columns[pair.a].name;
      difference.count = pair.differing;
      difference.compared = records_;
      difference.first = pair.first;
      report(difference);
    }
  }
  for (const Side side : {Side::a, Side::b}) {
    const LoneRecords& lone = side == Side::a ? lone_a_ : lone_b_;
    if (lone.count > 0) {
      Difference difference{Difference::Kind::records, thing_, side};
      difference.count = lone.count;
      difference.first = lone.first;
      report(difference);
    }
  }
}

}  // namespace mdf_tools
