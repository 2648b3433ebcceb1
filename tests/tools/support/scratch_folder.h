#ifndef MDF_TESTS_TOOLS_SUPPORT_SCRATCH_FOLDER_H_
#define MDF_TESTS_TOOLS_SUPPORT_SCRATCH_FOLDER_H_

#include <filesystem>
#include <string>

namespace mdf_tests {

/// A folder for the files of one test. It is removed again with the object.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  /// Writes a file, in place when it is there, with the folders above it.
  void write(const std::string& name, const std::string& text) const;

 private:
  std::filesystem::path path_;
};

/// A file's bytes.
std::string bytesOf(const std::filesystem::path& path);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_SCRATCH_FOLDER_H_
