#ifndef MDF_TOOLS_MATLAB_MAT_VARIABLE_H_
#define MDF_TOOLS_MATLAB_MAT_VARIABLE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mat_library.h"
#include "reader/columns/column_data.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A variable of MATLAB, or a part of one.
struct MatVariable {
  struct Deleter {
    void operator()(matvar_t* freed) const { MatLibrary::get().free(freed); }
  };

  std::unique_ptr<matvar_t, Deleter> variable;
  std::uint64_t bytes;  ///< at most, in a file that is not compressed
};

/// A row of characters.
MatVariable matText(std::string_view utf8);

/// A number, of class double.
MatVariable matNumber(double number);

/// A column of numbers or, of texts and bytes, a column of cells with a row in each. Integers keep
/// their class unless there are rows without a value, which are NaN: then all are double. Texts and
/// bytes without a value are empty. Numbers may stay where they are, and must outlast the variable.
MatVariable matColumn(const ColumnData& values);

/// A field of a structure.
struct MatField {
  std::string name;
  MatVariable value;
};

/// A structure with these fields. `name` is the one it has in a file, "" for a part of another.
MatVariable matStructure(const std::string& name, std::vector<MatField> fields);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_MATLAB_MAT_VARIABLE_H_
