#include "input_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include "descriptor.h"
#include "framework/wire.h"

namespace mdf_reader {

namespace {

/// No file, and why there is none.
Descriptor failed(const std::string& what, const std::string& name, std::string& problem) {
  problem = "cannot " + what + " " + name + ": " + std::generic_category().message(errno);
  return Descriptor(-1);
}

bool writeAll(int file, const char* bytes, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t written = write(file, bytes + done, count - done);
    if (written < 0) {
      return false;
    }
    done += static_cast<std::size_t>(written);
  }
  return true;
}

/// All that a source still has to give, as a file without a name in memory.
Descriptor readIntoMemory(int source, const std::string& name, std::string& problem) {
  Descriptor memory(memfd_create("mdf", MFD_CLOEXEC));
  if (memory.number() < 0) {
    return failed("read", name, problem);
  }
  std::array<char, 65536> piece;
  while (const ssize_t count = read(source, piece.data(), piece.size())) {
    if (count < 0 || !writeAll(memory.number(), piece.data(), static_cast<std::size_t>(count))) {
      return failed("read", name, problem);
    }
  }
  return memory;
}

/// Some regular files that the system makes up have no known end; they are read like a pipe.
bool hasOffsets(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode) && lseek(file, 0, SEEK_END) >= 0;
}

Descriptor openPath(const std::string& path, std::string& problem) {
  Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.number() < 0) {
    return failed("open", path, problem);
  }
  return hasOffsets(file.number()) ? std::move(file) : readIntoMemory(file.number(), path, problem);
}

}  // namespace

InputFile::InputFile(const std::string& path, std::string name)
    : name_(std::move(name)),
      file_(path == "-" ? readIntoMemory(STDIN_FILENO, name_, problem_) : openPath(path, problem_)),
      buffer_(file_),
      stream_(&buffer_),
      size_(file_.size()) {}

std::istream& InputFile::streamAt(std::uint64_t offset) {
  stream_.clear();
  stream_.seekg(static_cast<std::streamoff>(offset));
  return stream_;
}

std::uint64_t numberAt(InputFile& file, std::uint64_t offset) {
  std::array<char, sizeof(std::uint64_t)> bytes{};
  file.readAt(offset, bytes.data(), bytes.size());
  return mdf_v4_10::detail::loadLe<std::uint64_t>(bytes.data());
}

void forEachPiece(InputFile& file, std::uint64_t offset, std::uint64_t count,
                  const std::function<void(std::string_view)>& take) {
  std::vector<char> piece(65536);
  while (count > 0) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(count, piece.size()));
    const std::size_t got = file.readAt(offset, piece.data(), wanted);
    if (got == 0) {
      return;
    }
    take({piece.data(), got});
    offset += got;
    count -= got;
  }
}

}  // namespace mdf_reader
