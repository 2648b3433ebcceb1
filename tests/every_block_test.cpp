// What holds for the objects of every block class, however they came to be.

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "faults/block_making.h"
#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/golden_blocks.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

template <class Block>
class EveryBlockClass : public ::testing::Test {};
TYPED_TEST_SUITE(EveryBlockClass, EveryBlock, BlockNames);

/// Whether the class's reader compares what came of its first bytes with what it asked for.
template <class Block>
constexpr bool makes_bad = is_one_of<Block, IDBLOCK, TXBLOCK, MDBLOCK, DGBLOCK, CGBLOCK, SIBLOCK>;

TYPED_TEST(EveryBlockClass, IsNotReadFromAFailedStream) {
  std::istringstream nothing;
  const std::string unread = written(TypeParam(nothing));
  for (const auto state : failed_states) {
    std::istringstream is(goldenStreams<TypeParam>().front());
    is.setstate(state);
    const TypeParam block(is);
    EXPECT_EQ(is.rdstate(), makes_bad<TypeParam> ? state_bad : state | std::ios_base::failbit);
    EXPECT_BYTES(written(block), unread);
    is.clear();
    EXPECT_EQ(is.tellg(), 0);
  }
}

TYPED_TEST(EveryBlockClass, IsNotWrittenToAFailedStream) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    std::ostringstream os;
    os.setstate(std::ios_base::failbit);
    EXPECT_EQ(&(os << block), &os);
    EXPECT_EQ(os.rdstate() & ~std::ios_base::badbit, std::ios_base::failbit);
    EXPECT_EQ(os.str(), "");
  }
}

TYPED_TEST(EveryBlockClass, CopiesAreIndependent) {
  const BlockMaking<TypeParam> ways = making<TypeParam>();
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    const std::string before = written(block) + dumped(block);
    TypeParam assigned = ways.constructors.front()();
    assigned = block;
    TypeParam copy = block;
    for (const auto& changes : {ways.additions, ways.setups}) {
      for (const auto change : changes) {
        change(copy);
      }
    }
    EXPECT_BYTES(written(block) + dumped(block), before);
    EXPECT_BYTES(written(assigned) + dumped(assigned), before);
  }
}

TYPED_TEST(EveryBlockClass, PaddingIsZeroUntilAskedFor) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    EXPECT_EQ(block.getPadding(), 0);
  }
}

TYPED_TEST(EveryBlockClass, DumpFlushesTheStreamAtEveryLineEnd) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    RecordingBuffer sink;
    std::ostream os(&sink);
    block.print(os);
    std::vector<std::size_t> line_ends;
    for (std::size_t i = 0; i < sink.bytes.size(); ++i) {
      if (sink.bytes[i] == '\n') {
        line_ends.push_back(i + 1);
      }
    }
    EXPECT_FALSE(line_ends.empty());
    EXPECT_EQ(sink.flushes, line_ends) << sink.bytes;
  }
}

// But for the base: raw data leave the stream in hexadecimal mode.
TYPED_TEST(EveryBlockClass, DumpLeavesTheFormatOfTheStream) {
  constexpr auto may_change = is_one_of<TypeParam, DTBLOCK, RDBLOCK, SDBLOCK, DZBLOCK>
                                  ? std::ios_base::basefield
                                  : std::ios_base::fmtflags{};
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    std::ostringstream os;
    os << std::oct << std::showbase << std::boolalpha << std::scientific << std::setprecision(3);
    const std::ios_base::fmtflags before = os.flags();
    block.print(os);
    EXPECT_EQ(os.flags() & ~may_change, before & ~may_change);
    EXPECT_EQ(os.precision(), 3);
  }
}

TYPED_TEST(EveryBlockClass, AWidthPadsTheFirstLineOfADumpAlone) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    const std::string dump = dumped(block);
    const std::size_t line_end = dump.find('\n');
    ASSERT_LT(line_end, 90U);
    const std::string padding(90 - line_end, '*');
    std::ostringstream left;
    left << std::setfill('*') << std::left << std::setw(90);
    block.print(left);
    EXPECT_EQ(left.str(), dump.substr(0, line_end) + padding + dump.substr(line_end));
    std::ostringstream right;
    right << std::setfill('*') << std::right << std::setw(90);
    block.print(right);
    EXPECT_EQ(right.str(), padding + dump);
  }
}

}  // namespace
