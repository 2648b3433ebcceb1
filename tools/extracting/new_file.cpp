#include "new_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace mdf_tools {

namespace {

template <class Problem = Unwritable>
[[noreturn]] void cannot(const std::string& what, const std::string& path) {
  throw Problem("cannot " + what + ' ' + path + ": " + std::generic_category().message(errno));
}

Descriptor openFolder(const std::string& path) {
  Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.number() < 0) {
    cannot<Uncreatable>("open the folder", path);
  }
  return folder;
}

/// Two runs at the same time have different names.
std::string temporaryName() { return ".mdf-" + std::to_string(getpid()) + ".part"; }

}  // namespace

NewFile::NewFile(const std::string& folder, const std::string& name)
    : name_(name),
      shown_path_(folder + '/' + name),
      folder_(openFolder(folder)),
      temporary_name_(temporaryName()),
      temporary_path_(folder + '/' + temporary_name_),
      file_(openat(folder_.number(), temporary_name_.c_str(),
                   O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666)) {
  if (file_.number() < 0) {
    cannot<Uncreatable>("create", shown_path_);
  }
}

NewFile::~NewFile() {
  // It is gone after renaming; what a failure left is removed here.
  unlinkat(folder_.number(), temporary_name_.c_str(), 0);
}

void NewFile::fail(const std::string& what) const { cannot(what, shown_path_); }

void NewFile::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file_.number(), bytes.data(), bytes.size());
    if (count < 0) {
      fail("write");
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
}

bool NewFile::complete(bool replaces) {
  const int folder = folder_.number();
  if (replaces) {
    if (renameat(folder, temporary_name_.c_str(), folder, name_.c_str()) != 0) {
      fail("write");
    }
    return true;
  }
  // A file can get a second name only where there is none.
  if (linkat(folder, temporary_name_.c_str(), folder, name_.c_str(), 0) != 0) {
    if (errno != EEXIST) {
      fail("write");
    }
    return false;
  }
  return true;
}

}  // namespace mdf_tools
