#include "scratch_folder.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace mdf_tests {

namespace fs = std::filesystem;

ScratchFolder::ScratchFolder() {
  std::string name = (fs::temp_directory_path() / "mdf_scratch_XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make a temporary folder");
  }
  path_ = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code error;
  fs::remove_all(path_, error);
}

void ScratchFolder::write(const std::string& name, const std::string& text) const {
  const fs::path file = path_ / name;
  fs::create_directories(file.parent_path());
  std::ofstream os(file, std::ios_base::binary);
  os << text;
  if (!os.flush()) {
    throw std::runtime_error("cannot write " + file.string());
  }
}

std::string bytesOf(const fs::path& path) {
  std::ifstream is(path, std::ios_base::binary);
  std::ostringstream bytes;
  bytes << is.rdbuf();
  return bytes.str();
}

}  // namespace mdf_tests
