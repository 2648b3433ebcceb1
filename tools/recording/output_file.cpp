#include "output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace mdf_tools {

namespace fs = std::filesystem;

namespace {

UnusablePath unusable(const fs::path& path, const std::string& reason) {
  return UnusablePath("cannot record to " + path.string() + ": " + reason);
}

std::string reasonNotOpened(const fs::path& path, const std::string& cause) {
  const fs::path folder = path.parent_path();
  std::error_code error;
  if (!folder.empty() && !fs::exists(folder, error) && !error) {
    return "there is no directory " + folder.string();
  }
  return cause;
}

/// Opened without blocking: a pipe waits for its reader, and a serial line for its other end.
bool canBePositioned(const fs::path& path) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (descriptor < 0) {
    return false;
  }
  const bool positioned = lseek(descriptor, 0, SEEK_SET) == 0;
  close(descriptor);
  return positioned;
}

}  // namespace

OutputFile::OutputFile(fs::path path) : path_(std::move(path)) {
  refuseWhatCannotBeRewritten();
  std::error_code error;
  was_there_ = fs::exists(path_, error);
  is_device_ = was_there_ && !fs::is_regular_file(path_, error);
  if (!open(std::ios_base::out | std::ios_base::trunc)) {
    throw unusable(path_, reasonNotOpened(path_, cause_));
  }
}

void OutputFile::refuseWhatCannotBeRewritten() const {
  std::error_code error;
  const fs::file_status status = fs::status(path_, error);
  if (fs::is_directory(status)) {
    throw unusable(path_, "it is a directory");
  }
  if (fs::is_block_file(status)) {
    throw unusable(path_, "it is a whole disk or a part of one");
  }
  if (fs::exists(status) && !fs::is_regular_file(status) && !canBePositioned(path_)) {
    throw unusable(path_,
                   "finishing a recording goes back to its start, which works in a file only");
  }
}

bool OutputFile::open(std::ios_base::openmode mode) {
  stream_.rdbuf()->pubsetbuf(nullptr, 0);
  errno = 0;
  stream_.open(path_, mode | std::ios_base::binary);
  return succeeded(stream_.is_open());
}

bool OutputFile::append(const char* bytes, std::size_t count) {
  errno = 0;
  stream_.write(bytes, static_cast<std::streamsize>(count));
  return succeeded(stream_.good());
}

bool OutputFile::rewrite(const std::function<void(std::ostream&)>& write) {
  errno = 0;
  write(stream_);
  return succeeded(stream_.good());
}

bool OutputFile::close() {
  errno = 0;
  stream_.close();
  return succeeded(stream_.good());
}

bool OutputFile::succeeded(bool success) {
  if (!success) {
    cause_ = errno != 0 ? std::generic_category().message(errno) : "the system does not say why";
  }
  return success;
}

mdf_v4_10::UINT64 OutputFile::size() {
  stream_.clear();
  stream_.seekp(0, std::ios_base::end);
  const std::streamoff end = stream_.tellp();
  return end > 0 ? static_cast<mdf_v4_10::UINT64>(end) : 0;
}

bool OutputFile::cutTo(mdf_v4_10::UINT64 size) {
  const mdf_v4_10::UINT64 size_before = this->size();
  stream_.close();
  // A file can only be cut by its path, so the path must still be this file's.
  std::error_code error;
  if (fs::file_size(path_, error) != size_before || error) {
    return false;
  }
  fs::resize_file(path_, size, error);
  return !error && open(std::ios_base::in | std::ios_base::out);
}

void OutputFile::discard() {
  std::error_code error;
  stream_.close();
  if (is_device_) {
    return;
  }
  if (was_there_) {
    fs::resize_file(path_, 0, error);
  } else {
    fs::remove(path_, error);
  }
}

}  // namespace mdf_tools
