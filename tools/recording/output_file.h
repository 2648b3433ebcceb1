#ifndef MDF_TOOLS_RECORDING_OUTPUT_FILE_H_
#define MDF_TOOLS_RECORDING_OUTPUT_FILE_H_

#include <filesystem>
#include <fstream>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// A path that cannot be recorded to. The message is a whole sentence.
class UnusablePath : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The file that a recording goes to. Bytes go straight to it, so its size says what has been
/// written after a write fails. It stays the same file when it is moved meanwhile.
class OutputFile {
 public:
  /// Makes the file, or empties an existing one.
  /// @throws UnusablePath when that cannot be done, or when the beginning of what is there cannot
  /// be rewritten later, as with a pipe or a terminal.
  explicit OutputFile(std::filesystem::path path);

  const std::filesystem::path& path() const { return path_; }

  /// False when not all bytes were written; cause() then says why.
  bool append(const char* bytes, std::size_t count);

  /// Calls write(stream), which positions the stream as it likes, for rewriting parts in place.
  /// False when that failed.
  bool rewrite(const std::function<void(std::ostream&)>& write);

  /// Closes the file. False when anything went wrong since it was opened.
  bool close();

  /// Bytes in the file; 0 for a device. What failed before is forgotten.
  mdf_v4_10::UINT64 size();

  /// Makes the file shorter; parts can be rewritten afterwards. False when it cannot be done, as
  /// when the file was moved.
  bool cutTo(mdf_v4_10::UINT64 size);

  /// Closes the file and removes it, or leaves it empty when it was there before. A device stays.
  void discard();

  /// Why the last operation failed, in the system's words.
  const std::string& cause() const { return cause_; }

 private:
  void refuseWhatCannotBeRewritten() const;
  bool open(std::ios_base::openmode mode);
  bool succeeded(bool success);

  std::filesystem::path path_;
  std::fstream stream_;
  std::string cause_;
  bool was_there_ = false;
  bool is_device_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_OUTPUT_FILE_H_
