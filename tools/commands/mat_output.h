#ifndef MDF_TOOLS_COMMANDS_MAT_OUTPUT_H_
#define MDF_TOOLS_COMMANDS_MAT_OUTPUT_H_

#include <string>

#include "extracting/new_file.h"
#include "matlab/mat_file.h"
#include "matlab/mat_table.h"
#include "matlab/matlab_names.h"
#include "printing/value_form.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// Where tables go that are written to a MATLAB file. It appears when it is complete. Errors are
/// thrown as Unwritable or NoMatLibrary.
class MatOutput {
 public:
  /// What it is given but for the path must outlast it.
  MatOutput(const std::string& path, const ValueForm& form, const NoteSink& note);

  /// Writes a Table or a JoinedTable whose first batch, if any, has been read.
  template <class AnyTable>
  void add(AnyTable& table, const Batch* batch) {
    MatTable gathered(table.head(), form_);
    for (; batch != nullptr; batch = table.next()) {
      gathered.add(*batch);
    }
    write(gathered);
  }

  void complete();

 private:
  void write(const MatTable& table);

  const ValueForm& form_;
  const NoteSink& note_;
  NewFile new_file_;
  MatFile file_;
  MatlabNames names_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_MAT_OUTPUT_H_
