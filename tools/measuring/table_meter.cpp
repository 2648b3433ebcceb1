#include "table_meter.h"

#include <cstddef>
#include <utility>

namespace mdf_tools {

TableMeter::TableMeter(const TableHead& head) : head_(head) {
  if (head.has_master) {
    axis_ = axisMeterFor(head.columns.front().type);
  }
  for (const ColumnHead& column : head.columns) {
    columns_.push_back(columnMeterFor(column.type));
  }
}

void TableMeter::add(const Batch& batch) {
  records_ += batch.rows();
  if (axis_ != nullptr) {
    axis_->add(batch);
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    columns_[i]->add(batch.column(i));
  }
}

TableStatistics TableMeter::statistics() const {
  TableStatistics statistics;
  statistics.group = head_.group;
  statistics.records = records_;
  statistics.record_bytes = head_.record_bytes;
  if (axis_ != nullptr) {
    statistics.axis = axis_->statistics();
  }
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    ColumnStatistics column = columns_[i]->statistics();
    column.name = head_.columns[i].name;
    column.unit = head_.columns[i].unit;
    statistics.columns.push_back(std::move(column));
  }
  return statistics;
}

}  // namespace mdf_tools
