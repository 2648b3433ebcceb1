#include "blocks.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace mdf_tests {

LinkTargetFile::LinkTargetFile() : LinkTargetFile(std::string(4096, '\0')) {}

LinkTargetFile::LinkTargetFile(const std::string& contents) {
  std::string name = (std::filesystem::temp_directory_path() / "mdf_link_target_XXXXXX").string();
  const int descriptor = mkstemp(name.data());
  if (descriptor < 0) {
    throw std::runtime_error("cannot make a temporary file");
  }
  close(descriptor);
  if (!std::ofstream(name, std::ios_base::binary)
           .write(contents.data(), static_cast<std::streamsize>(contents.size()))
           .flush()) {
    throw std::runtime_error("cannot fill a temporary file");
  }
  path_ = name;
}

LinkTargetFile::~LinkTargetFile() { std::remove(path_.c_str()); }

}  // namespace mdf_tests
