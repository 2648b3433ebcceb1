#include "temp_file.h"

#include <fstream>
#include <stdexcept>

namespace mdf_tests {

TempFile::TempFile(const std::string& bytes) : path_((folder_ / "file").string()) {
  folder_.write("file", bytes);
}

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
