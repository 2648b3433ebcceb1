// Writes and reads blocks many times, each between two requests to the tool that counts
// instructions; without that tool the requests do nothing.

#include <valgrind/callgrind.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>

#include "support/sample_blocks.h"

using mdf_bench::written;

namespace {

/// How often each thing is done.
constexpr int repetitions = 1000;

/// Takes all bytes and keeps none.
class NullBuffer : public std::streambuf {
 protected:
  std::streamsize xsputn(const char* /*bytes*/, std::streamsize count) override { return count; }
  int_type overflow(int_type character) override { return traits_type::not_eof(character); }
};

/// Bytes that can be read again and again.
class BytesBuffer : public std::streambuf {
 public:
  explicit BytesBuffer(std::string bytes) : bytes_(std::move(bytes)) {}
  void rewind() { setg(bytes_.data(), bytes_.data(), bytes_.data() + bytes_.size()); }

 private:
  std::string bytes_;
};

template <class Once>
void count(const std::string& name, const std::ios& stream, Once once) {
  once();
  CALLGRIND_ZERO_STATS;
  for (int i = 0; i < repetitions; ++i) {
    once();
  }
  CALLGRIND_DUMP_STATS_AT(name.c_str());
  if (!stream.good()) {
    (void)std::fprintf(stderr, "%s: failed\n", name.c_str());
    std::exit(1);
  }
}

template <class Block>
void countWriting(const std::string& name, const Block& block) {
  NullBuffer buffer;
  std::ostream os(&buffer);
  count("write " + name, os, [&] { os << block; });
}

template <class Block>
void countReading(const std::string& name, const Block& block) {
  // A zipped block's data follow it.
  BytesBuffer buffer(written(block) + written(block));
  std::istream is(&buffer);
  count("read " + name, is, [&] {
    buffer.rewind();
    const Block read(is);
  });
}

std::string nameOf(const std::string& block, std::size_t count) {
  const std::size_t end = block.find(' ');
  return block.substr(0, end) + (end == std::string::npos ? "/" : "/equal/") +
         std::to_string(count);
}

}  // namespace

int main() {
  mdf_bench::forEachFixedBlock([](const std::string& name, const auto& block) {
    countWriting(name, block);
    countReading(name, block);
  });
  for (const std::size_t entries : {0U, 1U, 16U, 1000U}) {
    const auto countBoth = [&](const std::string& name, const auto& block) {
      countWriting(nameOf(name, entries), block);
      countReading(nameOf(name, entries), block);
    };
    mdf_bench::forEachBlockOfBytes(entries, countBoth);
    mdf_bench::forEachBlockOfEntries(entries, countBoth);
  }
}
