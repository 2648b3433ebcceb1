#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/golden_blocks.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// What reading each golden block takes: memory for every list that is filled.
template <class Block>
std::vector<std::size_t> expectedAllocations() {
  return std::vector<std::size_t>(goldenBlocks<Block>().size(), 1);
}
template <>
std::vector<std::size_t> expectedAllocations<IDBLOCK>() {
  return {0};
}
template <>
std::vector<std::size_t> expectedAllocations<CHBLOCK>() {
  // The second one's links are too few for an element.
  return {2, 1};
}
template <>
std::vector<std::size_t> expectedAllocations<ATBLOCK>() {
  return {2};
}
template <>
std::vector<std::size_t> expectedAllocations<EVBLOCK>() {
  return {3};
}
template <>
std::vector<std::size_t> expectedAllocations<CNBLOCK>() {
  return {2, 2};
}
template <>
std::vector<std::size_t> expectedAllocations<CCBLOCK>() {
  // The second one is too long to be read without memory for its bytes.
  return {3, 4};
}
template <>
std::vector<std::size_t> expectedAllocations<DLBLOCK>() {
  return {2, 2};
}
template <>
std::vector<std::size_t> expectedAllocations<HLBLOCK>() {
  // The second one counts no link.
  return {1, 0};
}

template <class Block>
class Allocations : public ::testing::Test {};
TYPED_TEST_SUITE(Allocations, EveryBlock, BlockNames);

TYPED_TEST(Allocations, ReaderTakesMemoryOnceForEachList) {
  std::vector<std::size_t> allocations;
  for (const std::string& bytes : goldenBlocks<TypeParam>()) {
    // A zipped block's data follow it.
    std::istringstream is(bytes + bytes);
    const AllocationMeter meter;
    const TypeParam block(is);
    allocations.push_back(meter.count());
    EXPECT_EQ(is.rdstate(), state_good);
  }
  EXPECT_EQ(allocations, expectedAllocations<TypeParam>());
}

}  // namespace
