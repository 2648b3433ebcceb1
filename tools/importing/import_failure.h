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

/// Says why a file cannot be written to its end.
template <class Recording, class Output>
[[noreturn]] void failToImport(const Recording& recording, const Output& output) {
  throw ImportFailure(output.cause().empty() ? recording.cause()
                                             : "cannot write the new file: " + output.cause());
}

/// A line that cannot be imported. Those after it can be.
struct BadLine {
  std::uint64_t line;
  std::size_t column;  ///< of the table, or of a line of JSON the byte; from 1 on
  std::string sentence;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_IMPORT_FAILURE_H_
