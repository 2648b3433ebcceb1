#ifndef MDF_WRITER_STREAM_STORAGE_H_
#define MDF_WRITER_STREAM_STORAGE_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "../files/output.h"

namespace mdf_writer {

/// Gives the blocks of a file their places, one after another, and remembers the first failure.
class Storage {
 public:
  explicit Storage(Output& output) : output_(output) {}

  /// Where the next block goes: at a multiple of 8 after all others.
  std::uint64_t place() const { return (end_ + 7) / 8 * 8; }

  /// Gives it so many bytes.
  std::uint64_t allocate(std::uint64_t bytes);

  /// Gives back the place of a block that could not be written, if it is the last, and what of it
  /// was written.
  void giveBack(std::uint64_t at);

  /// Cuts off what lies after the last block.
  bool cut() { return succeeded(output_.cut(end_)); }

  /// Writes bytes; returns how many were written.
  std::size_t write(std::uint64_t at, const char* bytes, std::size_t count);

  /// Writes a link, a length or a count in place. Its eight bytes lie on a multiple of eight, so
  /// that a medium takes all of them or none.
  bool put(std::uint64_t at, std::uint64_t number);

  bool publish() { return succeeded(output_.publish()); }
  bool sync() { return succeeded(output_.sync()); }

  bool isSeekable() const { return output_.isSeekable(); }

  /// Why something failed first; empty as long as nothing did.
  const std::string& cause() const { return cause_; }

 private:
  bool succeeded(bool success);

  Output& output_;
  std::uint64_t end_ = 0;   ///< of the last block
  std::uint64_t last_ = 0;  ///< where it begins
  std::string cause_;
};

}  // namespace mdf_writer

#endif  // MDF_WRITER_STREAM_STORAGE_H_
