#ifndef MDF_TOOLS_MEASURING_AXIS_METER_H_
#define MDF_TOOLS_MEASURING_AXIS_METER_H_

#include <memory>

#include "reader/columns/batch.h"
#include "statistics.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Takes the values of a master channel, batch by batch, to see how they go on.
class AxisMeter {
 public:
  AxisMeter() = default;
  virtual ~AxisMeter() = default;
  AxisMeter(const AxisMeter&) = delete;
  AxisMeter& operator=(const AxisMeter&) = delete;

  /// Takes the first column of a batch.
  virtual void add(const Batch& batch) = 0;

  /// Of what has been taken so far.
  virtual AxisStatistics statistics() const = 0;
};

/// Null for a type that is none of numbers.
std::unique_ptr<AxisMeter> axisMeterFor(ColumnType type);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MEASURING_AXIS_METER_H_
