#ifndef MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_

#include <cstdio>
#include <memory>
#include <string>

namespace mdf_tests {

/// A file of the C library, closed with the object.
using CFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// An empty file without a name, to write and to read.
inline CFile temporaryFile() { return {std::tmpfile(), std::fclose}; }

/// A file to write to whose disk has no room left.
inline CFile fullFile() { return {std::fopen("/dev/full", "wb"), std::fclose}; }

/// All bytes of a file.
inline std::string contentOf(std::FILE* file) {
  std::fseek(file, 0, SEEK_END);
  std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
  std::rewind(file);
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
  return bytes;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_C_FILE_H_
