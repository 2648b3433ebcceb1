#ifndef MDF_TOOLS_RECORDING_LINE_INPUT_H_
#define MDF_TOOLS_RECORDING_LINE_INPUT_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mdf_tools {

/// Lines that come in at any time, such as from a pipe or a terminal.
class LineInput {
 public:
  /// @param descriptor what is open and stays so.
  explicit LineInput(int descriptor) : descriptor_(descriptor) {}

  /// Waits so many nanoseconds at most until there is something to read, or a signal comes.
  void wait(std::int64_t nanoseconds);

  /// The next line without its end, if there is a whole one, or the last one. It lasts until the
  /// next call.
  std::optional<std::string_view> next();

  /// Whether no line is to come any more.
  bool hasEnded() const { return is_at_end_ && begin_ == buffer_.size(); }

 private:
  bool isReadable() const;
  void read();

  int descriptor_;
  std::string buffer_;
  std::size_t begin_ = 0;  ///< of the next line
  bool is_at_end_ = false;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_LINE_INPUT_H_
