#ifndef MDF_TOOLS_VIEWING_SAMPLE_READER_H_
#define MDF_TOOLS_VIEWING_SAMPLE_READER_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "reader/measurement/measurement.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A column of a table of a file, as the file is read whole.
struct ViewedColumn {
  std::string name;  ///< which no other column of its table has
  std::string unit;
  ColumnType type = ColumnType::bytes;
  std::string pattern;        ///< that its channel's name matches
  std::uint64_t channel = 0;  ///< the offset of its block
  std::size_t part = 0;       ///< which of the channel's columns it is
};

/// A table of a file: a channel group, or an element of an array with records of its own.
struct ViewedTable {
  std::size_t group = 0;
  std::optional<std::size_t> element;
  std::string name;
  bool has_master = false;  ///< the first column
  std::vector<ViewedColumn> columns;
};

/// Lists the tables and their columns.
std::vector<ViewedTable> tablesOf(const Measurement& file);

/// Records of a table that follow one another.
struct SampleRange {
  std::uint64_t begin = 0;
  std::uint64_t end = UINT64_MAX;  ///< not included; it may be beyond the last record
};

/// Takes samples piece by piece.
/// @param times the master channel's values, or the numbers of the records where there is none.
/// @param values as many, of the column.
using SampleVisitor =
    std::function<void(const std::vector<double>& times, const ColumnData& values)>;

/// The master channel's values, or the numbers of the records where there is none.
std::vector<double> timesOf(const Batch& batch);

/// Reads the samples of a column.
void readSamples(const Measurement& file, const ViewedTable& table, const ViewedColumn& column,
                 const SampleRange& range, const SampleVisitor& visit);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_SAMPLE_READER_H_
