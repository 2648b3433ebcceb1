#ifndef MDF_TOOLS_IMPORTING_LINE_READER_H_
#define MDF_TOOLS_IMPORTING_LINE_READER_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "reader/bytes/descriptor.h"

namespace mdf_tools {

using namespace mdf_reader;

/// The lines of a text file, which can be read again from the beginning. What comes from a pipe is
/// kept in a temporary file for that.
class LineReader {
 public:
  /// @param path "-" for standard input.
  /// @throws CannotImport
  explicit LineReader(const std::string& path);

  /// The file as messages call it.
  const std::string& name() const { return name_; }

  /// Goes on to the next line; false at the end.
  /// @throws ImportFailure where the file cannot be read, or the line is longer than memory is
  ///         spent on.
  bool next();

  /// Makes the next line a part of this one, with the line feed between them.
  bool extend();

  /// Takes so many bytes that follow, or as many as there are, of a file that has no lines.
  std::size_t take(char* bytes, std::size_t count);

  /// Gives the same line again at the call of next().
  void giveBack() {
    next_ = begin_;
    --number_;
    extensions_ = 0;
  }

  /// How much the line is by now.
  struct Extent {
    std::size_t bytes;
    std::uint64_t extensions;
  };
  Extent extent() const { return {next_ - begin_, extensions_}; }

  /// Gives what the line was extended by since then at the call of next().
  void giveBackAfter(const Extent& extent) {
    next_ = begin_ + extent.bytes;
    extensions_ = extent.extensions;
  }

  /// The line without its line feed, or carriage return and line feed. It may be changed in place.
  char* data() { return buffer_.data() + begin_; }
  std::string_view text() const { return {buffer_.data() + begin_, end_ - begin_}; }

  /// Where what has been read ends, at or after the line's end.
  const char* readEnd() const { return buffer_.data() + filled_; }

  /// Of the line, from 1 on.
  std::uint64_t number() const { return number_; }

  /// Where a line begins.
  struct Place {
    std::uint64_t offset = 0;
    std::uint64_t lines = 0;  ///< before it
  };
  Place place() const { return {position_ - (filled_ - begin_), number_ - 1}; }

  /// Gives the line that begins at a place at the call of next().
  void goTo(const Place& place);

 private:
  bool find(std::size_t from);
  bool fill();

  std::string name_;
  Descriptor file_;
  std::uint64_t position_ = 0;  ///< in the file, of what is read next
  std::vector<char> buffer_;
  std::size_t filled_ = 0;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t next_ = 0;
  std::uint64_t number_ = 0;
  std::uint64_t extensions_ = 0;  ///< lines that were made a part of this one
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_LINE_READER_H_
