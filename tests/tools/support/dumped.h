#ifndef MDF_TESTS_TOOLS_SUPPORT_DUMPED_H_
#define MDF_TESTS_TOOLS_SUPPORT_DUMPED_H_

#include <cstddef>
#include <string>

#include "reader/blocks/finding.h"

namespace mdf_tests {

/// "offset: sentence" with the end of the line.
std::string findingLine(const mdf_reader::Finding& finding);

/// What became of a file's dump.
struct Dumped {
  std::string output;
  std::string findings;  ///< their lines
};

/// Dumps a file with these bytes in this process.
Dumped dumpedBytes(const std::string& bytes);

/// The same for a file that is there. Reading and printing must do with so many bytes from operator
/// new, which throws when it is asked for more.
Dumped dumpedFile(const std::string& path, std::size_t allocation_limit);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_DUMPED_H_
