#ifndef MDF_TOOLS_PRINTING_OUTPUT_BUFFER_H_
#define MDF_TOOLS_PRINTING_OUTPUT_BUFFER_H_

#include <cstddef>
#include <cstdio>
#include <functional>
#include <streambuf>
#include <string_view>
#include <utility>
#include <vector>

namespace mdf_tools {

/// Where dumps go: an open C file. The flush at the end of each line of a dump costs nothing, for
/// short pieces are collected first, and large data passes without a copy.
///
/// For a terminal, control characters other than line feed and tab are shown as '.', so that the
/// bytes of a file give it no commands. Nothing is collected then: the dump and messages about it
/// appear in their order.
class OutputBuffer : public std::streambuf {
 public:
  enum class Bytes { as_they_are, for_a_terminal, for_a_terminal_with_colours };

  OutputBuffer(std::FILE* file, Bytes bytes);
  ~OutputBuffer() override { flush(); }
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  /// Does a write, after what has to be done before; bytes that end a line or do not.
  using Writer = std::function<void(const std::function<void()>& write, bool ends_line)>;

  /// Who does the writes to a terminal, where something else may have to give way.
  void setWriter(Writer writer) { writer_ = std::move(writer); }

  /// Hands everything to the file.
  void flush();

  /// Gives a command to a terminal with colours; other outputs do not get it.
  void command(std::string_view sequence);

  /// The error number of the first write that failed; 0 as long as none has.
  int error() const { return error_; }

 protected:
  std::streamsize xsputn(const char* bytes, std::streamsize count) override;
  int_type overflow(int_type character) override;
  int sync() override { return error_ == 0 ? 0 : -1; }

 private:
  bool drain();
  bool pass(const char* bytes, std::size_t count);
  bool write(const char* bytes, std::size_t count);
  void writeToFile(const char* bytes, std::size_t count);
  bool isForATerminal() const { return bytes_ != Bytes::as_they_are; }
  bool writeShown(const char* bytes, std::size_t count);
  char shown(char character);

  std::FILE* file_;
  Writer writer_;
  Bytes bytes_;
  std::vector<char> collected_;  ///< the put area
  int error_ = 0;
  unsigned char previous_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_OUTPUT_BUFFER_H_
