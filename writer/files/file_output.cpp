// Offsets beyond 2 GiB on 32-bit machines, with any build system and none.
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
#define _FILE_OFFSET_BITS 64

#include "file_output.h"

#include <fcntl.h>
#include <stdlib.h>  // realpath
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <system_error>

namespace mdf_writer {

namespace {

constexpr int most_names = 1000;

std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

/// The file that a symbolic link leads to, or the path as it is.
std::string withoutLinks(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), &free);
  return resolved == nullptr ? path : std::string(resolved.get());
}

}  // namespace

FileOutput::FileOutput(const std::string& path, Existing existing)
    : path_(withoutLinks(path)), existing_(existing) {
  struct stat status {};
  const bool is_there = stat(path_.c_str(), &status) == 0;
  if (path_.empty()) {
    errno = ENOENT;
    fail();
  } else if (is_there && S_ISDIR(status.st_mode)) {
    errno = EISDIR;
    fail();
  } else if (is_there && !S_ISREG(status.st_mode)) {
    descriptor_ = open(path_.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
    is_seekable_ = descriptor_ >= 0 && lseek(descriptor_, 0, SEEK_CUR) >= 0;
    if (descriptor_ < 0) {
      fail();
    }
  } else if (is_there && existing == Existing::keep) {
    errno = EEXIST;
    fail();
  } else {
    openBeside();
  }
}

// What is opened for appending writes at its end, whatever the offset.
FileOutput::FileOutput(int descriptor)
    : descriptor_(descriptor),
      is_seekable_(lseek(descriptor, 0, SEEK_CUR) == 0 &&
                   (fcntl(descriptor, F_GETFL) & O_APPEND) == 0) {}

FileOutput::~FileOutput() {
  if (descriptor_ >= 0 && !path_.empty()) {
    close(descriptor_);
  }
  if (!temporary_.empty()) {
    unlink(temporary_.c_str());
  }
}

bool FileOutput::fail() {
  cause_ = errno != 0 ? std::generic_category().message(errno) : "the system does not say why";
  return false;
}

void FileOutput::openBeside() {
  for (int i = 0; i < most_names && descriptor_ < 0; ++i) {
    temporary_ = path_ + "." + std::to_string(getpid()) + "-" + std::to_string(i) + ".part";
    descriptor_ = open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor_ < 0 && errno != EEXIST) {
      break;
    }
  }
  if (descriptor_ < 0) {
    fail();
    temporary_.clear();
  }
  is_seekable_ = descriptor_ >= 0;
}

std::size_t FileOutput::write(std::uint64_t offset, const char* bytes, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    errno = 0;
    const ssize_t written = is_seekable_ ? pwrite(descriptor_, bytes + done, count - done,
                                                  static_cast<off_t>(offset + done))
                                         : ::write(descriptor_, bytes + done, count - done);
    if (written > 0) {
      done += static_cast<std::size_t>(written);
    } else if (errno != EINTR) {
      fail();
      break;
    }
  }
  return done;
}

bool FileOutput::cut(std::uint64_t size) {
  struct stat status {};
  if (fstat(descriptor_, &status) != 0) {
    return fail();
  }
  if (!S_ISREG(status.st_mode) || static_cast<std::uint64_t>(status.st_size) <= size) {
    return true;
  }
  return ftruncate(descriptor_, static_cast<off_t>(size)) == 0 || fail();
}

bool FileOutput::takeName() {
  if (existing_ == Existing::replace) {
    return rename(temporary_.c_str(), path_.c_str()) == 0;
  }
  if (link(temporary_.c_str(), path_.c_str()) == 0) {
    unlink(temporary_.c_str());
    return true;
  }
  // File systems of memory cards have no second names for a file.
  if (errno != EPERM && errno != ENOTSUP && errno != ENOSYS) {
    return false;
  }
  if (access(path_.c_str(), F_OK) == 0) {
    errno = EEXIST;
    return false;
  }
  return rename(temporary_.c_str(), path_.c_str()) == 0;
}

bool FileOutput::publish() {
  if (temporary_.empty()) {
    return true;
  }
  if (!takeName()) {
    return fail();
  }
  temporary_.clear();
  is_name_synced_ = false;
  return true;
}

bool FileOutput::sync() {
  // Devices and pipes have nothing to be synced, and say so with EINVAL.
  if (fdatasync(descriptor_) != 0 && errno != EINVAL && errno != EROFS) {
    return fail();
  }
  if (!is_name_synced_) {
    const int folder = open(folderOf(path_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool synced = folder >= 0 && (fsync(folder) == 0 || errno == EINVAL);
    if (!synced) {
      fail();
    }
    if (folder >= 0) {
      close(folder);
    }
    is_name_synced_ = synced;
    return synced;
  }
  return true;
}

}  // namespace mdf_writer
