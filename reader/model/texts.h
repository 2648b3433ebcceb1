#ifndef MDF_READER_MODEL_TEXTS_H_
#define MDF_READER_MODEL_TEXTS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace mdf_reader {

class InputFile;

/// The bytes of a text or metadata block up to the first zero byte, or else to the end of the block
/// or file, but at most `most`. Nothing when there is no such block at the offset.
std::optional<std::string> readText(InputFile& file, std::uint64_t offset,
                                    std::uint64_t most = UINT64_MAX);

/// The readable part of a comment: the TX element of an XML comment, or else the text as it is.
std::string plainText(const std::string& comment);

/// A text without the white space around it.
std::string_view trimmed(std::string_view text);

/// The texts of a file, each read once, however many blocks share it.
class Texts {
 public:
  /// The plain text at an offset; "" when there is none. The view lasts as long as this object.
  std::string_view at(InputFile& file, std::uint64_t offset);

  /// The same of a comment, trimmed.
  std::string_view commentAt(InputFile& file, std::uint64_t offset) {
    return trimmed(at(file, offset));
  }

 private:
  std::unordered_map<std::uint64_t, std::string> texts_;  ///< its nodes stay where they are
};

}  // namespace mdf_reader

#endif  // MDF_READER_MODEL_TEXTS_H_
