#ifndef MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_

#include <cstdio>
#include <memory>
#include <string>

namespace mdf_tests {

/// A file of the C library, closed with the object.
using CFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// An empty file without a name, to write and to read.
CFile temporaryFile();

/// A file to write to whose disk has no room left.
CFile fullFile();

/// All bytes of a file.
std::string contentOf(std::FILE* file);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_
