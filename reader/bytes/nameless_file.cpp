#include "nameless_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace mdf_reader {

std::string folderForFiles() {
  const char* const folder = std::getenv("TMPDIR");
  return folder == nullptr || *folder == '\0' ? "/var/tmp" : folder;
}

Descriptor namelessFile(const std::string& folder) {
  std::string path = folder + "/mdf-XXXXXX";
  Descriptor file(mkostemp(path.data(), O_CLOEXEC));
  if (file.number() >= 0) {
    unlink(path.c_str());
  }
  return file;
}

}  // namespace mdf_reader
