#ifndef MDF_TOOLS_MEASURING_TABLE_METER_H_
#define MDF_TOOLS_MEASURING_TABLE_METER_H_

#include <memory>
#include <vector>

#include "axis_meter.h"
#include "column_meter.h"
#include "reader/columns/batch.h"
#include "statistics.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Takes the batches of a table for its statistics. The table's head must outlast it.
class TableMeter {
 public:
  explicit TableMeter(const TableHead& head);

  void add(const Batch& batch);

  /// Of what has been taken so far.
  TableStatistics statistics() const;

 private:
  const TableHead& head_;
  std::unique_ptr<AxisMeter> axis_;  ///< null without a master channel, or numbers of it
  std::vector<std::unique_ptr<ColumnMeter>> columns_;
  std::uint64_t records_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MEASURING_TABLE_METER_H_
