#ifndef MDF_TESTS_DATABLOCKS_RECORDING_BUFFER_H_
#define MDF_TESTS_DATABLOCKS_RECORDING_BUFFER_H_

#include <cstddef>
#include <ios>
#include <streambuf>
#include <string>
#include <vector>

namespace mdf_tests {

/// A stream buffer that notes how many bytes each call of a stream moves, and counts the flushes.
/// What is written is dropped.
class RecordingBuffer : public std::streambuf {
 public:
  explicit RecordingBuffer(const std::string& bytes_to_read = "") : bytes_(bytes_to_read) {
    setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size());
  }

  std::vector<std::size_t> writes;
  std::vector<std::size_t> reads;
  int flushes = 0;

 protected:
  std::streamsize xsputn(const char* /*bytes*/, std::streamsize count) override {
    writes.push_back(static_cast<std::size_t>(count));
    return count;
  }
  int_type overflow(int_type byte) override {
    writes.push_back(1);
    return traits_type::not_eof(byte);
  }
  std::streamsize xsgetn(char* bytes, std::streamsize count) override {
    reads.push_back(static_cast<std::size_t>(count));
    return std::streambuf::xsgetn(bytes, count);
  }
  int_type uflow() override {
    reads.push_back(1);
    return std::streambuf::uflow();
  }
  int sync() override {
    ++flushes;
    return 0;
  }

 private:
  std::string bytes_;
};

}  // namespace mdf_tests

#endif  // MDF_TESTS_DATABLOCKS_RECORDING_BUFFER_H_
