#ifndef MDF_TESTS_SUPPORT_RECORDING_BUFFER_H_
#define MDF_TESTS_SUPPORT_RECORDING_BUFFER_H_

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace mdf_tests {

/// A stream buffer that keeps the bytes it is given and notes how many each call moved, in either
/// direction, and where it was flushed. It has room for a stated number of bytes and refuses more;
/// its room is there from the start, so that it allocates nothing while it is written to.
class RecordingBuffer : public std::streambuf {
 public:
  static constexpr std::size_t roomy = std::size_t{1} << 20U;

  explicit RecordingBuffer(std::size_t capacity = roomy) : capacity_(capacity) {
    bytes.reserve(capacity);
    writes.reserve(1024);
    flushes.reserve(1024);
  }

  /// A buffer to read from.
  explicit RecordingBuffer(const std::string& bytes_to_read) : RecordingBuffer(0) {
    bytes = bytes_to_read;
    setg(bytes.data(), bytes.data(), bytes.data() + bytes.size());
  }

  std::string bytes;
  std::vector<std::size_t> writes;
  std::vector<std::size_t> reads;
  /// The number of bytes that had come at each flush.
  std::vector<std::size_t> flushes;

 protected:
  std::streamsize xsputn(const char* more, std::streamsize count) override {
    const std::size_t taken = std::min(static_cast<std::size_t>(count), capacity_ - bytes.size());
    bytes.append(more, taken);
    writes.push_back(taken);
    return static_cast<std::streamsize>(taken);
  }

  int_type overflow(int_type character) override {
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
  }

  std::streamsize xsgetn(char* to, std::streamsize count) override {
    reads.push_back(static_cast<std::size_t>(count));
    return std::streambuf::xsgetn(to, count);
  }

  int_type uflow() override {
    reads.push_back(1);
    return std::streambuf::uflow();
  }

  int sync() override {
    flushes.push_back(bytes.size());
    return 0;
  }

 private:
  std::size_t capacity_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_SUPPORT_RECORDING_BUFFER_H_
