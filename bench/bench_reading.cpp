// Reading blocks from memory.

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/sample_blocks.h"

namespace mdf_bench {

namespace {

using mdf_v4_10::HeaderSection;
using mdf_v4_10::LINK;

/// A string stream that holds the same block many times and is read again and again.
class Source {
 public:
  explicit Source(const std::string& block) {
    std::string blocks;
    for (std::size_t i = 0; i < room; ++i) {
      blocks += block;
    }
    stream_.str(blocks);
  }

  std::istream& next() {
    if (blocks_ == room) {
      stream_.seekg(0);
      blocks_ = 0;
    }
    ++blocks_;
    return stream_;
  }

 private:
  static constexpr std::size_t room = 64;

  std::size_t blocks_ = 0;
  std::istringstream stream_;
};

/// A block with the least work: its fields where they were copied to, its links in a vector, and in
/// another one what a reader puts into a list of its own.
struct PlainBlock {
  std::array<char, 160> fields;
  std::vector<LINK> links;
  std::vector<LINK> list;
};

/// The bytes of a block's sections.
struct Layout {
  std::size_t links;
  std::size_t data;

  std::size_t size() const { return HeaderSection::HEADER_SIZE + links + data; }
};

void takeSections(const char* frame, const Layout& layout, PlainBlock& block) {
  const char* const links = frame + HeaderSection::HEADER_SIZE;
  block.links.resize(layout.links / sizeof(LINK));
  std::memcpy(block.links.data(), links, layout.links);
  std::memcpy(block.fields.data(), links + layout.links, layout.data);
}

constexpr auto readPlain = [](std::istream& is, const Layout& layout) {
  std::array<char, 512> frame;
  is.read(frame.data(), static_cast<std::streamsize>(layout.size()));
  PlainBlock block;
  takeSections(frame.data(), layout, block);
  return block;
};

/// The same for a block whose size is known when its header has been read.
template <bool HasList>
constexpr auto readInTwo = [](std::istream& is, const Layout& layout) {
  std::array<char, 512> frame;
  is.read(frame.data(), HeaderSection::HEADER_SIZE);
  is.read(frame.data() + HeaderSection::HEADER_SIZE,
          static_cast<std::streamsize>(layout.size() - HeaderSection::HEADER_SIZE));
  PlainBlock block;
  takeSections(frame.data(), layout, block);
  if (HasList) {
    block.list.assign(1, block.links.front());
  }
  return block;
};

/// The bytes that come back from reading and writing again: of a channel's data section, the part
/// after the number of attachments, which reading changes.
std::string endOf(const std::string& bytes, const Layout& layout) {
  constexpr std::size_t after_counts = 48;
  return bytes.substr(bytes.size() - std::min(layout.data, after_counts));
}

template <class Block, class ReadBaseline>
Sides sidesOf(const Block& block, ReadBaseline readBaseline) {
  const std::string bytes = written(block);
  const std::size_t link_bytes = block.header.link_count * sizeof(LINK);
  const Layout layout = {link_bytes, bytes.size() - HeaderSection::HEADER_SIZE - link_bytes};
  const auto subject = std::make_shared<Source>(bytes);
  const auto baseline = std::make_shared<Source>(bytes);
  return {[subject](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              Block read(subject->next());
              benchmark::DoNotOptimize(&read);
              benchmark::ClobberMemory();
            }
          },
          [baseline, layout, readBaseline](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
              PlainBlock read = readBaseline(baseline->next(), layout);
              benchmark::DoNotOptimize(&read);
              benchmark::ClobberMemory();
            }
          },
          [subject, baseline, layout, bytes, readBaseline] {
            const std::size_t data = bytes.size() - layout.data;
            const std::string read = written(Block(subject->next()));
            const PlainBlock plain = readBaseline(baseline->next(), layout);
            return endOf(read, layout) == endOf(bytes, layout) &&
                   bytes.compare(data, layout.data, plain.fields.data(), layout.data) == 0;
          }};
}

}  // namespace

void registerCases() {
  const auto add = [](const std::string& name, double limit, const auto& block) {
    compare({"read a block/" + name, "one read, memcpy of the fields, one vector of links", limit},
            [block] { return sidesOf(block, readPlain); });
  };
  add("CNBLOCK", 1.3, sampleChannel());
  add("HDBLOCK", 1.2, sampleHeader());
  add("DGBLOCK", 1.2, sampleDataGroup());
  add("CGBLOCK", 1.2, sampleChannelGroup());
  add("SIBLOCK", 1.2, sampleSource());
  add("CCBLOCK", 1.3, sampleConversion(0));
  add("EVBLOCK", 1.3, sampleEvent(0));

  const auto addVariable = [](const std::string& name, const std::string& vectors,
                              const auto& block, auto readBaseline) {
    compare({"read a block of variable size/" + name,
             "read of the header, read of the rest, memcpy of the fields, " + vectors, 1.3},
            [block, readBaseline] { return sidesOf(block, readBaseline); });
  };
  addVariable("CNBLOCK", "two vectors", sampleChannel(), readInTwo<true>);
  addVariable("CCBLOCK", "one vector", sampleConversion(0), readInTwo<false>);
  addVariable("EVBLOCK", "one vector", sampleEvent(0), readInTwo<false>);
}

}  // namespace mdf_bench
