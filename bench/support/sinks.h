#ifndef MDF_BENCH_SUPPORT_SINKS_H_
#define MDF_BENCH_SUPPORT_SINKS_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace mdf_bench {

/// A stream that takes bytes and forgets all but their number.
class NullSink {
 public:
  explicit NullSink(std::size_t /*block_size*/) {}

  std::ostream& stream() { return stream_; }

  /// To be called before each block.
  void next() {}

  /// Whether nothing came except blocks of these bytes.
  bool holds(const std::string& block) const {
    return buffer_.count != 0 && buffer_.count % block.size() == 0;
  }

 private:
  class Buffer : public std::streambuf {
   public:
    std::uint64_t count = 0;

   protected:
    std::streamsize xsputn(const char* /*bytes*/, std::streamsize size) override {
      count += static_cast<std::uint64_t>(size);
      return size;
    }
    int_type overflow(int_type character) override {
      ++count;
      return character;
    }
  };

  Buffer buffer_;
  std::ostream stream_{&buffer_};
};

/// A string stream with room for a number of blocks, which is used again and again.
class StringSink {
 public:
  explicit StringSink(std::size_t block_size)
      : room_(std::max<std::size_t>(bytes_in_cache / block_size, 4)),
        stream_(std::string(room_ * block_size, '\0')) {}

  std::ostream& stream() { return stream_; }

  void next() {
    if (blocks_ == room_) {
      stream_.seekp(0);
      blocks_ = 0;
    }
    ++blocks_;
  }

  bool holds(const std::string& block) const {
    const std::string bytes = stream_.str();
    return stream_.good() && bytes.size() == room_ * block.size() &&
           bytes.compare(0, block.size(), block) == 0;
  }

 private:
  static constexpr std::size_t bytes_in_cache = 16384;

  std::size_t room_;
  std::size_t blocks_ = 0;
  std::ostringstream stream_;
};

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_SINKS_H_
