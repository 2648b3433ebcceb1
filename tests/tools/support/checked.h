#ifndef MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_
#define MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_

#include <string>

#include "checking/problem.h"

namespace mdf_tests {

/// "64 error link-wrong-type: sentence [path]" with the end of the line.
std::string problemLine(const mdf_tools::Problem& problem);

/// The lines of all problems that a check of these bytes finds.
std::string checkedBytes(const std::string& bytes);

/// How often each code is found, as lines "link-wrong-type 3".
std::string checkedCodes(const std::string& bytes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_
