#include "blocks.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace mdf_tests {

std::string valuesIn(const std::string& dump) {
  std::string values;
  for (std::size_t at = dump.find_first_of("=:("); at != std::string::npos;
       at = dump.find_first_of("=:(", at + 1)) {
    const std::size_t begin = at + (dump.compare(at + 1, 1, " ") == 0 ? 2 : 1);
    const std::size_t end = dump.find_first_not_of("-+.0123456789abcdefinrstul", begin);
    if (end != std::string::npos && end > begin &&
        std::string("\n,) ").find(dump[end]) != std::string::npos) {
      values += (values.empty() ? "" : " ") + dump.substr(begin, end - begin);
    }
  }
  return values;
}

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
