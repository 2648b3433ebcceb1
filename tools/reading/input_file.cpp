#include "input_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

namespace mdf_tools {

namespace {

[[noreturn]] void fail(const std::string& what, const std::string& name, int error) {
  throw UnreadableFile("cannot " + what + " " + name + ": " +
                       std::generic_category().message(error));
}

std::unique_ptr<std::istream> openInPlace(const std::string& path) {
  auto stream = std::make_unique<std::ifstream>();
  // Blocks lie scattered, so bytes read ahead would mostly be thrown away.
  stream->rdbuf()->pubsetbuf(nullptr, 0);
  errno = 0;
  stream->open(path, std::ios_base::binary);
  if (!stream->is_open()) {
    fail("open", path, errno);
  }
  return stream;
}

std::unique_ptr<std::istream> readIntoMemory(std::FILE* source, const std::string& name) {
  auto memory = std::make_unique<std::stringstream>();
  std::array<char, 65536> piece;
  errno = 0;
  while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), source)) {
    memory->write(piece.data(), static_cast<std::streamsize>(count));
  }
  if (std::ferror(source) != 0) {
    fail("read", name, errno);
  }
  return memory;
}

std::unique_ptr<std::istream> openPath(const std::string& path) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(path, error);
  if (std::filesystem::is_regular_file(status)) {
    auto stream = openInPlace(path);
    // Some files that the system makes up have no end to go to; they are read like a pipe.
    if (stream->seekg(0, std::ios_base::end)) {
      return stream;
    }
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> source(std::fopen(path.c_str(), "rb"),
                                                               std::fclose);
  if (!source) {
    fail("open", path, errno);
  }
  return readIntoMemory(source.get(), path);
}

}  // namespace

InputFile::InputFile(const std::string& path)
    : name_(path == "-" ? "standard input" : path),
      stream_(path == "-" ? readIntoMemory(stdin, name_) : openPath(path)),
      size_(sizeNow()) {}

std::uint64_t InputFile::sizeNow() {
  stream_->clear();
  stream_->seekg(0, std::ios_base::end);
  return static_cast<std::uint64_t>(static_cast<std::streamoff>(stream_->tellg()));
}

std::size_t InputFile::readAt(std::uint64_t offset, char* bytes, std::size_t count) {
  std::istream& stream = streamAt(offset);
  stream.read(bytes, static_cast<std::streamsize>(count));
  return static_cast<std::size_t>(stream.gcount());
}

std::istream& InputFile::streamAt(std::uint64_t offset) {
  stream_->clear();
  stream_->seekg(static_cast<std::streamoff>(offset));
  return *stream_;
}

}  // namespace mdf_tools
