#ifndef MDF_TESTS_TOOLS_SUPPORT_FILE_SIZE_LIMIT_H_
#define MDF_TESTS_TOOLS_SUPPORT_FILE_SIZE_LIMIT_H_

#include <sys/resource.h>

#include <csignal>
#include <cstdint>

namespace mdf_tests {

/// Lets files grow to so many bytes and no further, as a full disk does, as long as it lives.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::uint64_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{static_cast<rlim_t>(bytes), before_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int);
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FILE_SIZE_LIMIT_H_
