#include "temp_file.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace mdf_tests {

TempFile::TempFile(const std::string& bytes)
    : path_((std::filesystem::temp_directory_path() / "mdf_test_XXXXXX").string()) {
  const int descriptor = mkstemp(path_.data());
  if (descriptor < 0) {
    throw std::runtime_error("cannot make a temporary file");
  }
  close(descriptor);
  writeAt(0, bytes);
}

TempFile::~TempFile() { std::remove(path_.c_str()); }

void TempFile::writeAt(std::uint64_t offset, const std::string& bytes) {
  std::fstream file(path_, std::ios_base::in | std::ios_base::out | std::ios_base::binary);
  file.seekp(static_cast<std::streamoff>(offset));
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  file.close();
  if (!file.good()) {
    throw std::runtime_error("cannot write a temporary file");
  }
}

}  // namespace mdf_tests
