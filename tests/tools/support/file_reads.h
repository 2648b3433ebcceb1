#ifndef MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_
#define MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_

#include <cstdint>

namespace mdf_tests {

/// What this process has read since the object's construction, as the kernel counts it. Looking it
/// up is a read by itself, which counts too.
class FileReads {
 public:
  FileReads() : start_(now()) {}

  std::uint64_t calls() const { return now().calls - start_.calls; }
  std::uint64_t bytes() const { return now().bytes - start_.bytes; }

 private:
  struct Counts {
    std::uint64_t calls;
    std::uint64_t bytes;
  };

  static Counts now();

  Counts start_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FILE_READS_H_
