#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "reading_oracle/expected_reading.h"
#include "support/actual_reading.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/golden_blocks.h"

using namespace mdf_tests;
using namespace mdf_tests::oracle;

namespace {

/// Bytes after a block, none of them like its neighbours.
std::string bytesAfter(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<char>((i * 7 + 13) % 251);
  }
  return bytes;
}

constexpr std::size_t few_after = 40;
constexpr std::size_t many_after = 100000;

/// More than there are in any stream here.
constexpr std::size_t data_limit = std::size_t{1} << 20U;

constexpr Number length_field = {8, 8};
constexpr Number link_count_field = {16, 8};

/// Counts and lengths that a file may give, near where something ends and far from it.
std::set<std::uint64_t> lies(std::size_t block_size, std::size_t stream_size, std::size_t width) {
  const std::uint64_t one = 1;
  std::set<std::uint64_t> values = {block_size - 1,   block_size + 1,   stream_size - 1,
                                    stream_size,      stream_size + 1,  (one << 31U) - 1,
                                    one << 31U,       (one << 32U) - 1, (one << 32U) + 24,
                                    (one << 63U) - 1, one << 63U,       ~std::uint64_t{0}};
  for (std::uint64_t small = 0; small <= 40; ++small) {
    values.insert(small);
  }
  std::set<std::uint64_t> cut;
  for (const std::uint64_t value : values) {
    cut.insert(width == 8 ? value : value & ((one << 8 * width) - 1));
  }
  return cut;
}

/// A class under test, with its type out of the way.
struct Subject {
  std::string letters;
  std::vector<std::string> blocks;
  Reading (*read)(const std::string& bytes, std::size_t heap_bytes, std::string& dump);
};

template <class Block>
Reading readAndDump(const std::string& bytes, std::size_t heap_bytes, std::string& dump) {
  const ActualReading<Block> actual = readBlock<Block>(bytes, heap_bytes);
  if (actual.block) {
    dump = dumped(*actual.block);
  }
  return actual.reading;
}

template <class Block>
Subject subjectOf() {
  return {lettersOf<Block>(), goldenBlocks<Block>(), readAndDump<Block>};
}

/// Reads hostile bytes with one class. After the first fault the rest is left alone.
class HostileReader {
 public:
  explicit HostileReader(const Subject& subject) : subject_(subject) {}

  template <class... What>
  void check(const std::string& bytes, const What&... what) const {
    if (testing::Test::HasFailure()) {
      return;
    }
    const ExpectedReading expected = expectedReading(subject_.letters, bytes, data_limit);
    std::string dump;
    const Reading found = subject_.read(bytes, expected.heap_bytes, dump);
    const std::string difference = differenceOf(expected, found);
    const bool is_dumped = !found.thrown.empty() || isFramed(dump, subject_.letters + "BLOCK");
    if (!difference.empty() || !is_dumped) {
      std::ostringstream os;
      (os << ... << what);
      ADD_FAILURE() << os.str() << "\nexpected " << difference
                    << (is_dumped ? "" : "\ndump without its banners: " + dump);
      EXPECT_BYTES(found.written, expected.written);
    }
  }

 private:
  const Subject& subject_;
};

void checkEveryPrefix(const Subject& subject) {
  const HostileReader reader(subject);
  for (const std::string& block : subject.blocks) {
    const std::string bytes = block + bytesAfter(few_after);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
      reader.check(bytes.substr(0, length), "stream of ", length, " bytes");
    }
  }
}

/// Every number of the block, one at a time, with every lie.
void checkLyingNumbers(const HostileReader& reader, const std::vector<Number>& numbers,
                       std::size_t block_size, const std::string& bytes) {
  for (const Number& number : numbers) {
    for (const std::uint64_t lie : lies(block_size, bytes.size(), number.width)) {
      std::string lying = bytes;
      setNumber(lying, number, lie);
      reader.check(lying, lie, " at offset ", number.offset, " in ", bytes.size(), " bytes");
    }
  }
}

void checkLyingNumbers(const Subject& subject) {
  const HostileReader reader(subject);
  for (const std::string& block : subject.blocks) {
    const std::vector<Number> numbers = numbersOf(subject.letters, block);
    for (const std::size_t after : {std::size_t{0}, few_after, many_after}) {
      std::string bytes = block + bytesAfter(after);
      checkLyingNumbers(reader, numbers, block.size(), bytes);
      setNumber(bytes, length_field, bytes.size());
      checkLyingNumbers(reader, numbers, block.size(), bytes);
    }
  }
}

void checkEveryLengthWithEveryLinkCount(const Subject& subject) {
  const HostileReader reader(subject);
  // More than fit in any block but the one with many values.
  constexpr std::size_t most_links = 24;
  for (const std::string& block : subject.blocks) {
    std::string bytes = block + bytesAfter(few_after);
    for (std::size_t length = 0; length <= block.size() + 8; ++length) {
      setNumber(bytes, length_field, length);
      for (std::size_t link_count = 0; link_count <= most_links; ++link_count) {
        setNumber(bytes, link_count_field, link_count);
        reader.check(bytes, "length ", length, ", link count ", link_count);
      }
    }
  }
}

void checkAsManyLinksAsFit(const Subject& subject) {
  const HostileReader reader(subject);
  // A header, and the largest set of fixed fields.
  constexpr std::size_t other_bytes = 24 + 72;
  for (const std::string& block : subject.blocks) {
    std::string bytes = block + bytesAfter(many_after);
    setNumber(bytes, length_field, bytes.size());
    const std::size_t most = bytes.size() / 8;
    for (std::size_t link_count = most - other_bytes / 8; link_count <= most; ++link_count) {
      setNumber(bytes, link_count_field, link_count);
      reader.check(bytes, "link count ", link_count);
    }
  }
}

void checkFlippedBytes(const Subject& subject) {
  const HostileReader reader(subject);
  for (const std::string& block : subject.blocks) {
    for (const std::size_t after : {std::size_t{0}, few_after}) {
      std::string bytes = block + bytesAfter(after);
      for (std::size_t offset = 0; offset < block.size(); ++offset) {
        for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
          bytes[offset] = static_cast<char>(static_cast<unsigned char>(block[offset]) ^ flip);
          reader.check(bytes, "byte ", offset, " flipped with ", flip, ", ", after, " after");
        }
        bytes[offset] = block[offset];
      }
    }
  }
}

template <class Block>
class HostileInput : public testing::Test {
 protected:
  const Subject subject = subjectOf<Block>();
};

TYPED_TEST_SUITE(HostileInput, EveryBlock, BlockNames);

TYPED_TEST(HostileInput, PrefixesAreReadAsFarAsTheyGo) { checkEveryPrefix(this->subject); }

TYPED_TEST(HostileInput, LyingLengthsAndCountsYieldNoMoreThanThereIs) {
  checkLyingNumbers(this->subject);
}

TYPED_TEST(HostileInput, LinksAndFieldsMustFitInWhatTheLengthSays) {
  checkEveryLengthWithEveryLinkCount(this->subject);
}

TYPED_TEST(HostileInput, AsManyLinksAsFitAreTaken) { checkAsManyLinksAsFit(this->subject); }

TYPED_TEST(HostileInput, FlippedBytesAreTakenAsTheyStand) { checkFlippedBytes(this->subject); }

}  // namespace
