// Writing blocks of every class into memory.

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/sample_blocks.h"
#include "support/sinks.h"

namespace mdf_bench {

namespace {

/// The sinks of the two sides, so that both are written from their first byte on.
template <class Sink>
struct Pair {
  explicit Pair(std::string block_bytes)
      : bytes(std::move(block_bytes)),
        frame(bytes.size()),
        subject(bytes.size()),
        baseline(bytes.size()) {}

  bool isRight() const { return subject.holds(bytes) && baseline.holds(bytes); }

  std::string bytes;
  std::vector<char> frame;
  Sink subject;
  Sink baseline;
};

template <class Sink, class Block>
Batch writeBlock(const std::shared_ptr<Pair<Sink>>& pair, const Block& block) {
  return [pair, block](std::size_t times) {
    for (std::size_t i = 0; i < times; ++i) {
      pair->subject.next();
      pair->subject.stream() << block;
    }
  };
}

template <class Sink>
Batch copyAndWrite(const std::shared_ptr<Pair<Sink>>& pair) {
  return [pair](std::size_t times) {
    for (std::size_t i = 0; i < times; ++i) {
      pair->baseline.next();
      std::memcpy(pair->frame.data(), pair->bytes.data(), pair->bytes.size());
      benchmark::ClobberMemory();
      pair->baseline.stream().write(pair->frame.data(),
                                    static_cast<std::streamsize>(pair->bytes.size()));
    }
  };
}

/// A channel block, field by field: header, links, data section.
template <class Sink>
Batch writeFields(const std::shared_ptr<Pair<Sink>>& pair) {
  static const std::vector<int> widths = {4, 4, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8, 1, 1, 1,
                                          1, 4, 4, 4, 4, 1, 1, 2, 8, 8, 8, 8, 8, 8};
  return [pair](std::size_t times) {
    for (std::size_t i = 0; i < times; ++i) {
      pair->baseline.next();
      const char* at = pair->bytes.data();
      for (const int width : widths) {
        pair->baseline.stream().write(at, width);
        at += width;
      }
    }
  };
}

template <class Sink, class Block>
void compareWithCopy(const std::string& name, double limit, const Block& block) {
  compare({name, "memcpy of the same bytes and one write", limit}, [block] {
    const auto pair = std::make_shared<Pair<Sink>>(written(block));
    return Sides{writeBlock(pair, block), copyAndWrite(pair), [pair] { return pair->isRight(); }};
  });
}

template <class Sink>
void registerChannel(const std::string& sink_name) {
  const std::string group = "write a channel, " + sink_name + "/";
  compareWithCopy<Sink>(group + "CNBLOCK", 1.15, sampleChannel());
  compare({group + "CNBLOCK against its fields", "29 writes, one for each field", 1.0 / 14}, [] {
    const auto pair = std::make_shared<Pair<Sink>>(written(sampleChannel()));
    return Sides{writeBlock(pair, sampleChannel()), writeFields(pair),
                 [pair] { return pair->isRight(); }};
  });
}

template <class Sink>
void registerEveryClass(const std::string& sink_name) {
  constexpr double limit = 1.25;
  const std::string group = "write each class, " + sink_name + "/";
  forEachFixedBlock([&](const std::string& name, const auto& block) {
    compareWithCopy<Sink>(group + name, limit, block);
  });
  for (const std::size_t count : {0U, 1U, 16U, 1000U}) {
    const std::string bytes = ", " + std::to_string(count) + " bytes";
    const std::string entries = ", " + std::to_string(count) + " entries";
    forEachBlockOfBytes(count, [&](std::string name, const auto& block) {
      compareWithCopy<Sink>(name.append(bytes).insert(0, group), limit, block);
    });
    forEachBlockOfEntries(count, [&](std::string name, const auto& block) {
      // Long lists go straight from their vector, except a data list's, which are pairs in memory.
      const bool goes_straight = count == 1000 && name.compare(0, 2, "DL") != 0;
      compareWithCopy<Sink>(name.append(entries).insert(0, group), goes_straight ? 1.1 : limit,
                            block);
    });
  }
}

}  // namespace

void registerCases() {
  registerChannel<NullSink>("null stream");
  registerChannel<StringSink>("string stream");
  registerEveryClass<NullSink>("null stream");
  registerEveryClass<StringSink>("string stream");
}

}  // namespace mdf_bench
