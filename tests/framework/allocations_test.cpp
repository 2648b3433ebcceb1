#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/golden_blocks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

using Counts = std::vector<std::size_t>;

/// What reading each golden block takes: memory for every list that is filled.
Counts expectedAllocations(const std::string& letters, std::size_t blocks) {
  static const std::map<std::string, Counts> counts = {
      {"ID", {0}},    {"CH", {2, 1}},  // the second one's links are too few for an element
      {"AT", {2}},    {"EV", {3}},    {"CN", {2, 2}},
      {"CC", {3, 4}},  // the second one is too long to be read without memory for its bytes
      {"DL", {2, 2}}, {"HL", {1, 0}},  // the second one counts no link
  };
  const auto found = counts.find(letters);
  return found == counts.end() ? Counts(blocks, 1) : found->second;
}

template <class Block>
class Allocations : public ::testing::Test {};
TYPED_TEST_SUITE(Allocations, EveryBlock, BlockNames);

TYPED_TEST(Allocations, ReaderTakesMemoryOnceForEachList) {
  Counts allocations;
  for (const std::string& bytes : goldenBlocks<TypeParam>()) {
    // A zipped block's data follow it.
    std::istringstream is(bytes + bytes);
    const AllocationMeter meter;
    const TypeParam block(is);
    allocations.push_back(meter.count());
    EXPECT_EQ(is.rdstate(), state_good);
  }
  EXPECT_EQ(allocations, expectedAllocations(lettersOf<TypeParam>(), allocations.size()));
}

}  // namespace
