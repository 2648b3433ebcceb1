#ifndef MDF_TOOLS_MEASURING_COLUMN_METER_H_
#define MDF_TOOLS_MEASURING_COLUMN_METER_H_

#include <memory>

#include "reader/columns/column_data.h"
#include "statistics.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Takes the values of a column, batch by batch, for its statistics.
class ColumnMeter {
 public:
  ColumnMeter() = default;
  virtual ~ColumnMeter() = default;
  ColumnMeter(const ColumnMeter&) = delete;
  ColumnMeter& operator=(const ColumnMeter&) = delete;

  virtual void add(const ColumnData& column) = 0;

  /// Of what has been taken so far, without name and unit.
  virtual ColumnStatistics statistics() const = 0;
};

std::unique_ptr<ColumnMeter> columnMeterFor(ColumnType type);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MEASURING_COLUMN_METER_H_
