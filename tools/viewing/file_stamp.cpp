#include "file_stamp.h"

#include <sys/stat.h>

#include <chrono>

namespace mdf_tools {

FileStamp FileStamp::of(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  const auto nanoseconds = [](const timespec& moment) {
    return std::int64_t{moment.tv_sec} * 1'000'000'000 + moment.tv_nsec;
  };
  return {static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
          static_cast<std::uint64_t>(status.st_size), nanoseconds(status.st_mtim),
          nanoseconds(status.st_ctim)};
}

bool FileStamp::isAtRest() const {
  using std::chrono::nanoseconds;
  // Some file systems tell no less than two seconds.
  constexpr std::int64_t rest = 3'000'000'000;
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<nanoseconds>(now).count() - time > rest;
}

}  // namespace mdf_tools
