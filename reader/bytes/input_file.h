#ifndef MDF_READER_BYTES_INPUT_FILE_H_
#define MDF_READER_BYTES_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <istream>
#include <string>
#include <string_view>

#include "file_buffer.h"
#include "paged_file.h"

namespace mdf_reader {

/// The bytes of a file, at any offset. A regular file is read in place, however large; standard
/// input and pipes, which have no offsets, are read into memory first.
class InputFile {
 public:
  /// A file that cannot be opened or read has no bytes, but a problem.
  /// @param path the file's name; "-" is standard input.
  explicit InputFile(const std::string& path)
      : InputFile(path, path == "-" ? "standard input" : path) {}

  /// @param name what messages call the file.
  InputFile(const std::string& path, std::string name);

  /// Why the file cannot be opened or read, a sentence that names it; "" when it can.
  const std::string& problem() const { return problem_; }

  /// What messages call the file.
  const std::string& name() const { return name_; }

  /// The file's size in bytes when it was opened.
  std::uint64_t size() const { return size_; }

  /// The file's size now: another program may have cut it or added to it.
  std::uint64_t sizeNow() const { return file_.size(); }

  /// Bytes from an offset to the file's end; 0 at and beyond the end.
  std::uint64_t sizeFrom(std::uint64_t offset) const { return offset < size_ ? size_ - offset : 0; }

  /// Reads up to `count` bytes and returns how many there were.
  std::size_t readAt(std::uint64_t offset, char* bytes, std::size_t count) {
    return file_.read(offset, bytes, count);
  }

  /// Says which few bytes will be read next, and none near them, see PagedFile.
  void expect(std::uint64_t offset, std::size_t count) { file_.expect(offset, count); }

  /// Bytes that have been read so far, see PagedFile.
  std::uint64_t bytesRead() const { return file_.bytesRead(); }

  /// A good stream that stands at an offset, for the constructors of the library's blocks. It
  /// serves until the next call of streamAt() or readAt().
  std::istream& streamAt(std::uint64_t offset);

 private:
  std::string name_;
  std::string problem_;
  PagedFile file_;
  FileBuffer buffer_;
  std::istream stream_;
  std::uint64_t size_;
};

/// The 8 bytes at an offset as a number; bytes that are not there are 0.
std::uint64_t numberAt(InputFile& file, std::uint64_t offset);

/// Hands bytes of a file on piece by piece: as many as wanted, or as there are.
void forEachPiece(InputFile& file, std::uint64_t offset, std::uint64_t count,
                  const std::function<void(std::string_view)>& take);

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_INPUT_FILE_H_
