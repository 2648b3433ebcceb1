#ifndef MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_
#define MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/bytes.h"

namespace mdf_tests {

/// Puts a file together block by block, with bytes that are written down by hand: it shares nothing
/// with the library and follows the format, so that links stand in front of the fields and nowhere
/// else. Each block is placed at the next 8-byte boundary; links to blocks that come later are set
/// when these are there.
class FileBuilder {
 public:
  /// Identification and header block; the file word may be "UnFinMF ".
  explicit FileBuilder(const std::string& file_word = "MDF     ", unsigned version = 410);

  /// Adds a block and returns its offset. `contents` stands behind the links.
  std::uint64_t add(const std::string& letters, const std::vector<std::uint64_t>& links,
                    const std::string& contents = {});

  /// A text block, or a metadata block, with a zero byte behind the text.
  std::uint64_t text(const std::string& text) { return add("TX", {}, terminated(text)); }
  std::uint64_t metadata(const std::string& xml) { return add("MD", {}, terminated(xml)); }

  /// Sets a link of a block that is there.
  void link(std::uint64_t block, std::size_t index, std::uint64_t target);

  /// Overwrites bytes.
  void write(std::uint64_t offset, const std::string& bytes);

  /// Bytes outside any block, without filling up to the next boundary.
  void append(const std::string& bytes) { bytes_ += bytes; }

  static constexpr std::uint64_t header = 64;  ///< where the header block is

  const std::string& bytes() const { return bytes_; }

 private:
  static std::string terminated(const std::string& text) { return text + '\0'; }

  std::string bytes_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_FILE_BUILDER_H_
