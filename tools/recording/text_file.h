#ifndef MDF_TOOLS_RECORDING_TEXT_FILE_H_
#define MDF_TOOLS_RECORDING_TEXT_FILE_H_

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// A small text file of the kernel, such as /proc/stat, that is read again and again. It stays
/// open.
class TextFile {
 public:
  /// A file that cannot be opened reads as empty.
  explicit TextFile(const std::filesystem::path& path);
  TextFile(TextFile&& other) noexcept;
  ~TextFile();
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  TextFile& operator=(TextFile&&) = delete;

  /// The whole text as it is now, or nothing when it cannot be read. It lasts until the next call.
  std::string_view read();

 private:
  int descriptor_;
  std::string buffer_;
};

/// Takes a line off the front of the text and returns it without its end.
std::string_view takeLine(std::string_view& text);

/// The next characters that are neither blanks nor tabs; empty at the end.
std::string_view takeWord(std::string_view& line);

/// The next word as a number; nothing when it is not one or does not fit.
std::optional<mdf_v4_10::UINT64> takeUnsigned(std::string_view& line);
std::optional<float> takeFloat(std::string_view& line);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_TEXT_FILE_H_
