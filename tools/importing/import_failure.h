#ifndef MDF_TOOLS_IMPORTING_IMPORT_FAILURE_H_
#define MDF_TOOLS_IMPORTING_IMPORT_FAILURE_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace mdf_tools {

/// Why nothing was imported; what() is one sentence that names the file.
class ImportFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The same, where no file could be opened or made.
class CannotImport : public ImportFailure {
 public:
  using ImportFailure::ImportFailure;
};

/// A line that cannot be imported. Those after it can be.
struct BadLine {
  std::uint64_t line;
  std::size_t column;  ///< of the table, or of a line of JSON the byte; from 1 on
  std::string sentence;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_IMPORT_FAILURE_H_
