#ifndef MDF_TOOLS_VIEWING_OUTLINE_FILE_H_
#define MDF_TOOLS_VIEWING_OUTLINE_FILE_H_

#include <optional>
#include <string>
#include <string_view>

#include "outline.h"

namespace mdf_tools {

/// Outlines as the bytes of files: eight letters, the form's version, the number of bytes that
/// follow, their checksum; what the outline is of, and the outline. Numbers are little-endian and
/// have 64 bits.
class OutlineFile {
 public:
  /// @param key what it is of.
  static std::string pack(std::string_view key, const Outline& outline);

  /// Nothing where these are no such bytes, whole and unchanged, or those of another key.
  static std::optional<Outline> unpack(std::string_view bytes, std::string_view key);

  /// Bytes in front of which a head is put that says how many they are, and their checksum.
  static std::string withHead(std::string_view contents);

 private:
  class Maker;
  class Taker;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_VIEWING_OUTLINE_FILE_H_
