#ifndef MDF_TESTS_TOOLS_SUPPORT_TEMP_FILE_H_
#define MDF_TESTS_TOOLS_SUPPORT_TEMP_FILE_H_

#include <cstdint>
#include <string>

#include "scratch_folder.h"

namespace mdf_tests {

/// A file with the given bytes that is removed again with the object.
class TempFile {
 public:
  explicit TempFile(const std::string& bytes = {});

  const std::string& path() const { return path_; }

  /// Overwrites or appends bytes. What is left out before them takes no room on the disk.
  void writeAt(std::uint64_t offset, const std::string& bytes);

 private:
  ScratchFolder folder_;
  std::string path_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_TEMP_FILE_H_
