#ifndef MDF_TOOLS_CHANGING_RECORD_REDUCTION_H_
#define MDF_TOOLS_CHANGING_RECORD_REDUCTION_H_

#include <mdf_writer/stream/reduction.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "reader/blocks/finding.h"
#include "reader/columns/column.h"
#include "reader/columns/column_data.h"
#include "reader/data/record_span.h"
#include "reader/model/description.h"
#include "reader/values/conversion.h"

namespace mdf_tools {

using namespace mdf_reader;

/// Condenses the records of a channel group over intervals of time, as a writer does: for each
/// interval in which there are some a record of means, one of least and one of greatest numbers,
/// then the invalidation bytes. Their time is that of the interval's beginning; what is no number
/// stays as in the interval's first record.
class RecordReduction {
 public:
  /// Takes an interval's bytes.
  using Sink = std::function<void(std::string_view record)>;

  /// Why the records of a group cannot be condensed; "" where they can.
  static std::string problemOf(InputFile& file, const ChannelGroup& group);

  /// What it is given must outlast it.
  RecordReduction(const ChannelGroup& group, double seconds, Conversion* conversion, Sink sink);

  /// Takes a record with all its bytes.
  /// @param time by the master channel, in seconds.
  void add(double time, std::string_view record);

  /// Ends the last interval.
  void end();

  std::uint64_t count() const { return count_; }

 private:
  void begin(std::string_view record);

  double seconds_;
  Sink sink_;
  std::size_t data_bytes_;
  double master_factor_ = 1;  ///< of the linear conversion
  double master_offset_ = 0;
  std::optional<mdf_writer::ReducedNumber> master_;
  std::vector<mdf_writer::ReducedNumber> numbers_;
  std::string result_;  ///< of the interval
  double interval_ = 0;
  bool is_open_ = false;
  std::uint64_t count_ = 0;
};

/// The times of records, by the master channel of their group.
class RecordTimes {
 public:
  RecordTimes(const ChannelGroup& group, Conversion* conversion);

  /// NaN where there is none. They last until the next call.
  const std::vector<double>& of(const RecordSpan& records);

 private:
  FindingSink silent_;
  Column master_;
  ColumnData values_;
  std::vector<double> times_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RECORD_REDUCTION_H_
