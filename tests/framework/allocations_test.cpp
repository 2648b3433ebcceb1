#include <gtest/gtest.h>

#include <cstddef>
#include <istream>
#include <ostream>
#include <string>

#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/golden_blocks.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// The lists that a block of the class fills when it is read.
template <class Block>
constexpr std::size_t lists = 1;
/// No links, and no data but its fields.
template <>
constexpr std::size_t lists<IDBLOCK> = 0;
template <>
constexpr std::size_t lists<CHBLOCK> = 2;
template <>
constexpr std::size_t lists<ATBLOCK> = 2;
template <>
constexpr std::size_t lists<EVBLOCK> = 3;
template <>
constexpr std::size_t lists<CNBLOCK> = 2;
template <>
constexpr std::size_t lists<CCBLOCK> = 3;
template <>
constexpr std::size_t lists<DLBLOCK> = 2;

/// The body of a block this long is read through memory from the heap.
constexpr std::size_t long_block = 24 + 512;

template <class Block>
class Allocations : public ::testing::Test {};
TYPED_TEST_SUITE(Allocations, EveryBlock, BlockNames);

TYPED_TEST(Allocations, ReaderTakesMemoryOnceForEachList) {
  for (const std::string& bytes : goldenBlocks<TypeParam>()) {
    SCOPED_TRACE(bytes.size());
    // A zipped block's data follow it.
    RecordingBuffer buffer(bytes + bytes);
    std::istream is(&buffer);
    const AllocationMeter meter;
    const TypeParam block(is);
    const std::size_t allocations = meter.count();
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(allocations, lists<TypeParam> + (bytes.size() > long_block ? 1 : 0));
  }
}

TYPED_TEST(Allocations, WriterTakesNoMemory) {
  for (const std::string& bytes : goldenBlocks<TypeParam>()) {
    SCOPED_TRACE(bytes.size());
    RecordingBuffer from(bytes + bytes);
    std::istream is(&from);
    const TypeParam block(is);
    RecordingBuffer to;
    std::ostream os(&to);
    const AllocationMeter meter;
    os << block;
    const std::size_t allocations = meter.count();
    EXPECT_EQ(os.rdstate(), state_good);
    EXPECT_FALSE(to.bytes.empty());
    EXPECT_EQ(allocations, 0U);
  }
}

}  // namespace
