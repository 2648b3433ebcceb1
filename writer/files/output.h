#ifndef MDF_WRITER_FILES_OUTPUT_H_
#define MDF_WRITER_FILES_OUTPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace mdf_writer {

/// Where the bytes of a file go.
class Output {
 public:
  Output() = default;
  virtual ~Output() = default;
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Whether bytes can be written at any offset; else they are written one after another.
  virtual bool isSeekable() const = 0;

  /// Writes bytes at an offset, beyond the end, too. Returns how many were written; where those are
  /// fewer, cause() says why.
  virtual std::size_t write(std::uint64_t offset, const char* bytes, std::size_t count) = 0;

  /// Makes the file no longer than this.
  virtual bool cut(std::uint64_t size) = 0;

  /// Makes the file appear under its name, with what has been written.
  virtual bool publish() = 0;

  /// Returns when everything that was written, and the name, is on the medium.
  virtual bool sync() = 0;

  /// Why a call returned false or wrote less: in the system's words.
  virtual std::string cause() const = 0;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_FILES_OUTPUT_H_
