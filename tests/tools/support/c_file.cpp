#include "c_file.h"

#include <stdexcept>

namespace mdf_tests {

namespace {

CFile opened(std::FILE* file) {
  if (file == nullptr) {
    throw std::runtime_error("cannot open a file");
  }
  return {file, std::fclose};
}

}  // namespace

CFile temporaryFile() { return opened(std::tmpfile()); }

CFile fullFile() { return opened(std::fopen("/dev/full", "wb")); }

std::string contentOf(std::FILE* file) {
  std::fseek(file, 0, SEEK_END);
  std::string bytes(static_cast<std::size_t>(std::ftell(file)), '\0');
  std::rewind(file);
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file));
  return bytes;
}

}  // namespace mdf_tests
