#ifndef MDF_TOOLS_MATLAB_MAT_TABLE_H_
#define MDF_TOOLS_MATLAB_MAT_TABLE_H_

#include <string>
#include <string_view>
#include <vector>

#include "mat_variable.h"
#include "printing/value_form.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// All rows of a table, which become a structure of MATLAB: a field for each channel, with its
/// values, and a field `info` with what belongs to them.
class MatTable {
 public:
  /// @param head of the table; it must outlast this.
  MatTable(const TableHead& head, const ValueForm& form);

  void add(const Batch& batch);

  /// "engine" or, of a group without a name, "group_3"; "engine_0" for an element with records of
  /// its own; "table" for rows of no group.
  std::string name() const;
  /// The structure, with a name in the file. It takes its numbers from here.
  MatVariable structure(const std::string& name) const;
  /// The channels whose integers doubles do not hold, although they must.
  std::vector<std::string> rounded() const;

 private:
  bool isTime(std::size_t column) const { return form_.isTime(head_, column); }
  std::string_view unit(std::size_t column) const;
  void addTimes(const Batch& batch, std::size_t column);

  const TableHead& head_;
  const ValueForm& form_;
  std::vector<ColumnData> columns_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MATLAB_MAT_TABLE_H_
