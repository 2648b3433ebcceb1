#include "support/files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/comparison.h"

namespace mdf_bench {

ScratchFile::ScratchFile(const std::string& contents)
    : path_(std::filesystem::temp_directory_path() / "mdf_bench_XXXXXX") {
  const int number = mkstemp(path_.data());
  require(number >= 0, "making a file in the folder for temporary files");
  close(number);
  std::ofstream file(path_, std::ios_base::binary);
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  require(file.flush().good(), "filling a file in the folder for temporary files");
}

ScratchFile::~ScratchFile() { (void)std::remove(path_.c_str()); }

std::string ScratchFile::contents() const {
  std::ostringstream contents;
  contents << std::ifstream(path_, std::ios_base::binary).rdbuf();
  return contents.str();
}

Descriptor::Descriptor(const std::string& path) : number_(open(path.c_str(), O_RDWR | O_CLOEXEC)) {
  require(number_ >= 0, "opening " + path);
}

Descriptor::~Descriptor() { close(number_); }

void Descriptor::goTo(std::size_t offset) const {
  require(lseek(number_, static_cast<off_t>(offset), SEEK_SET) >= 0, "going to an offset");
}

void Descriptor::write(const char* bytes, std::size_t count) const {
  require(::write(number_, bytes, count) == static_cast<ssize_t>(count), "writing to a file");
}

void Descriptor::read(char* bytes, std::size_t count) const {
  require(::read(number_, bytes, count) == static_cast<ssize_t>(count), "reading from a file");
}

std::uint64_t writeCalls() {
  std::ifstream counters("/proc/thread-self/io");
  std::string name;
  std::uint64_t number = 0;
  while (counters >> name >> number && name != "syscw:") {
  }
  require(name == "syscw:", "looking up the number of system calls");
  return number;
}

}  // namespace mdf_bench
