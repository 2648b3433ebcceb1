#ifndef MDF_TOOLS_MEASURING_STATISTICS_H_
#define MDF_TOOLS_MEASURING_STATISTICS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "reader/model/description.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A value of a column, integers without loss; nothing for none.
using Value = std::variant<std::monostate, std::int64_t, std::uint64_t, double, std::string>;

/// What the values of a column are like. Each record counts once: it has a value, or one that is
/// not finite, or none.
struct ColumnStatistics {
  std::string name;
  std::string unit;
  std::uint64_t values = 0;      ///< finite numbers, texts or bytes
  std::uint64_t invalid = 0;     ///< records without a value
  std::uint64_t not_finite = 0;  ///< NaN and infinite values; what follows is without these
  Value first;                   ///< texts, and bytes as digits, are cut after 1000 bytes
  Value last;
  Value minimum;  ///< of numbers only, as all that follows
  Value maximum;
  std::optional<double> mean;
  std::optional<double> deviation;  ///< of a sample: the squares' sum is divided by values - 1
};

/// From one value of the master channel to the next one.
struct Step {
  std::uint64_t record = 0;  ///< the one with the first of the two, numbered from 0 in the group
  Value from;
  Value to;
  double length = 0;  ///< below 0 for a step backwards
};

/// How the master channel goes on from record to record. Values that are invalid or not finite are
/// passed over.
struct AxisStatistics {
  std::optional<double> rate;  ///< records for each unit, from the first value to the last
  std::optional<Step> longest_gap;
  std::uint64_t backwards = 0;  ///< how many steps lead backwards
  std::optional<Step> first_backwards;
};

struct TableStatistics {
  const ChannelGroup* group = nullptr;
  std::uint64_t records = 0;
  std::uint64_t record_bytes = 0;      ///< of a record in the file, its record id included
  std::optional<AxisStatistics> axis;  ///< of the first column, where that is a master with numbers
  std::vector<ColumnStatistics> columns;

  /// Bytes of the records in the file, before compression.
  std::uint64_t bytes() const { return records * record_bytes; }
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MEASURING_STATISTICS_H_
