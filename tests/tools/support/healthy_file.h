#ifndef MDF_TESTS_TOOLS_SUPPORT_HEALTHY_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_HEALTHY_FILE_H_

#include <string>

namespace mdf_tests {

/// A small file without a fault, with a block of each type that the program can dump and one of a
/// type that nobody knows. Some links lead backwards, and some blocks are linked twice.
std::string healthyFile();

/// What `mdf dump` prints for it.
const std::string& healthyDump();

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_HEALTHY_FILE_H_
