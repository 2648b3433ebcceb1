#include "blocks.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace mdf_tests {

LinkTargetFile::LinkTargetFile() {
  std::string name = (std::filesystem::temp_directory_path() / "mdf_link_target_XXXXXX").string();
  const int descriptor = mkstemp(name.data());
  if (descriptor < 0 || ftruncate(descriptor, 4096) != 0) {
    throw std::runtime_error("cannot make a temporary file");
  }
  close(descriptor);
  path_ = name;
}

LinkTargetFile::~LinkTargetFile() { std::remove(path_.c_str()); }

}  // namespace mdf_tests
