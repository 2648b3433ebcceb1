// Writes and reads blocks and appends records many times, each between two requests to the tool
// that counts instructions; without that tool the requests do nothing.

#include <valgrind/callgrind.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <utility>
#include <vector>

#include "../writer/mdf_writer.h"
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

/// A file that nobody reads.
class NullOutput : public mdf_writer::Output {
 public:
  bool isSeekable() const override { return true; }
  std::size_t write(std::uint64_t /*offset*/, const char* /*bytes*/, std::size_t count) override {
    return count;
  }
  bool cut(std::uint64_t /*size*/) override { return true; }
  bool publish() override { return true; }
  bool sync() override { return true; }
  std::string cause() const override { return ""; }
};

bool isGood(const std::ios& stream) { return stream.good(); }
bool isGood(const mdf_writer::Recording& recording) { return recording.good(); }

/// `target` is a stream or a recording.
template <class Target, class Once>
void count(const std::string& name, const Target& target, Once once) {
  once();
  CALLGRIND_ZERO_STATS;
  for (int i = 0; i < repetitions; ++i) {
    once();
  }
  CALLGRIND_DUMP_STATS_AT(name.c_str());
  if (!isGood(target)) {
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

/// Records of 26 bytes, set and appended within a block of the file, and what they may have
/// besides.
void countAppending(const std::string& name, bool is_unsorted, bool has_text,
                    std::vector<double> reductions) {
  mdf_writer::Plan plan;
  mdf_writer::Group& group = plan.addGroup("g");
  group.reductions = std::move(reductions);
  const auto real = group.addChannel<double>("real");
  const auto small = group.addChannel<float>("small");
  const auto word = group.addChannel<std::int16_t>("word");
  const auto counter = group.addChannel<std::uint32_t>("counter");
  const auto text = has_text ? group.addText("text") : mdf_writer::VariableChannel{};
  mdf_writer::Options options;
  options.block_bytes = std::size_t{1} << 20U;
  options.is_unsorted = is_unsorted;
  options.flush_interval = 0;
  NullOutput output;
  mdf_writer::Recording recording(output, plan, options);
  std::int64_t nanoseconds = 0;
  count("append " + name, recording, [&] {
    group.set(real, 1.5);
    group.set(small, 2.5F);
    group.set(word, std::int16_t{3});
    group.set(counter, 4U);
    if (has_text) {
      group.set(text, "sixteen letters.");
    }
    recording.append(group, ++nanoseconds);
  });
}

}  // namespace

int main() {
  countAppending("record", false, false, {});
  countAppending("record/unsorted", true, false, {});
  countAppending("record/text", false, true, {});
  countAppending("record/reduced", false, false, {1});
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
