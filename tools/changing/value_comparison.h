#ifndef MDF_TOOLS_CHANGING_VALUE_COMPARISON_H_
#define MDF_TOOLS_CHANGING_VALUE_COMPARISON_H_

#include <cstddef>

#include "difference.h"
#include "reader/columns/column_data.h"

namespace mdf_tools {

/// Rows of a column from one on.
struct ColumnRows {
  const ColumnData& data;
  std::size_t begin;
};

/// Finds the first of so many rows whose values differ; `count` where none does. Invalid values are
/// equal to one another alone, as NaN is; -0 is equal to 0, and a number to the same number of
/// another type.
/// @param from the row to begin with.
std::size_t firstDifferent(const ColumnRows& a, const ColumnRows& b, std::size_t count,
                           const Tolerance& tolerance, std::size_t from = 0);

/// A value for people and programs: a number, or a text where JSON has none such; null for an
/// invalid one. Long texts are cut.
Json valueAsJson(const ColumnData& data, std::size_t row);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_VALUE_COMPARISON_H_
