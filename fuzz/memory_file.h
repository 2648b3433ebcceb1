#ifndef MDF_FUZZ_MEMORY_FILE_H_
#define MDF_FUZZ_MEMORY_FILE_H_

#include <sys/mman.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <string_view>

namespace mdf_fuzz {

/// A file with a path, in memory.
class MemoryFile {
 public:
  MemoryFile() : descriptor_(memfd_create("mdf", 0)) {
    if (descriptor_ < 0) {
      throw std::runtime_error("a file in memory");
    }
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  void hold(std::string_view bytes) const {
    const bool is_written =
        ftruncate(descriptor_, 0) == 0 &&
        pwrite(descriptor_, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    if (!is_written) {
      throw std::runtime_error("room for a file in memory");
    }
  }

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_MEMORY_FILE_H_
