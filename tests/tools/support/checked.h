#ifndef MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_
#define MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_

#include <string>

#include "reader/blocks/finding.h"

namespace mdf_tests {

/// "64 error link-wrong-type: sentence [path]" with the end of the line.
std::string problemLine(const mdf_reader::Finding& problem);

/// The lines of all problems that a check of these bytes finds. Each sentence is tested in
/// checking/broken_files_test.cpp; other tests have the short forms below.
std::string checkedBytes(const std::string& bytes);

/// The same as lines "64 link-wrong-type 3 4": where it is, what it is, and the numbers of its
/// sentence as they come, those in parentheses left out.
std::string problemsIn(const std::string& bytes);

/// How often each code is found, as lines "link-wrong-type 3".
std::string checkedCodes(const std::string& bytes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_CHECKED_H_
