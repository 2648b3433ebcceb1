#include "temporary_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <vector>

#include "import_failure.h"
#include "reader/bytes/nameless_file.h"

namespace mdf_tools {

using mdf_reader::Descriptor;

std::string reason() { return std::generic_category().message(errno); }

ssize_t readSome(int file, char* bytes, std::size_t count) {
  ssize_t got = 0;
  do {
    got = read(file, bytes, count);
  } while (got < 0 && errno == EINTR);
  return got;
}

Descriptor temporaryFile() {
  const std::string folder = mdf_reader::folderForFiles();
  Descriptor file = mdf_reader::namelessFile(folder);
  if (file.number() < 0) {
    throw CannotImport("cannot make a temporary file in " + folder + ": " + reason());
  }
  return file;
}

void copyRest(int from, const std::string& from_name, int to, const std::string& to_name) {
  std::vector<char> bytes(std::size_t{1} << 18U);
  for (;;) {
    const ssize_t count = readSome(from, bytes.data(), bytes.size());
    if (count < 0) {
      throw CannotImport("cannot read " + from_name + ": " + reason());
    }
    if (count == 0) {
      return;
    }
    for (ssize_t done = 0; done < count;) {
      const ssize_t written =
          write(to, bytes.data() + done, static_cast<std::size_t>(count - done));
      if (written < 0 && errno != EINTR) {
        throw ImportFailure("cannot write " + to_name + ": " + reason());
      }
      done += std::max<ssize_t>(written, 0);
    }
  }
}

}  // namespace mdf_tools
