#ifndef MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_
#define MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_

#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

namespace mdf_tests {

/// What this process has read since the object's construction, as the kernel counts it. Looking it
/// up is a read by itself, which counts too.
class FileReads {
 public:
  std::uint64_t calls() const { return now().calls - start_.calls; }
  std::uint64_t bytes() const { return now().bytes - start_.bytes; }

 private:
  struct Counts {
    std::uint64_t calls;
    std::uint64_t bytes;
  };

  static Counts now() {
    std::ifstream file("/proc/self/io");
    std::string label[3];
    std::uint64_t written = 0;
    Counts counts{};
    file >> label[0] >> counts.bytes >> label[1] >> written >> label[2] >> counts.calls;
    if (!file || label[0] != "rchar:" || label[2] != "syscr:") {
      throw std::runtime_error("the kernel does not count what is read");
    }
    return counts;
  }

  Counts start_ = now();
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_
