#include "reader/bytes/offset_set.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/allocation_counter.h"

using namespace mdf_tests;
using mdf_reader::OffsetSet;

namespace {

TEST(OffsetSet, HoldsWhatWasInserted) {
  OffsetSet set;
  EXPECT_FALSE(set.contains(64));
  set.insert(64);
  set.insert(UINT64_MAX);
  set.insert(1);
  set.insert(64);
  for (const std::uint64_t there : {std::uint64_t{1}, std::uint64_t{64}, UINT64_MAX}) {
    EXPECT_TRUE(set.contains(there)) << there;
  }
  for (const std::uint64_t other : {std::uint64_t{2}, std::uint64_t{63}, std::uint64_t{65},
                                    UINT64_MAX - 1, std::uint64_t{1} << 32U}) {
    EXPECT_FALSE(set.contains(other)) << other;
  }
}

/// The offsets of so many blocks, a step apart.
void expectToHold(std::uint64_t count, std::uint64_t step) {
  SCOPED_TRACE(step);
  OffsetSet set;
  for (std::uint64_t i = 1; i <= count; ++i) {
    set.insert(i * step);
  }
  for (std::uint64_t i = 1; i <= count; ++i) {
    ASSERT_TRUE(set.contains(i * step)) << i;
    ASSERT_FALSE(set.contains(i * step + 1)) << i;
  }
}

TEST(OffsetSet, BlocksMayBeAnyDistanceApart) {
  for (const std::uint64_t step : {2U, 8U, 24U, 255U, 256U, 257U, 4096U, 1U << 31U}) {
    expectToHold(1000, step);
  }
  expectToHold(1000, std::uint64_t{1} << 50U);
}

TEST(OffsetSet, WhatIsInsertedAgainNeedsNoMemory) {
  OffsetSet set;
  set.insert(8);
  const AllocationMeter meter;
  for (int i = 0; i < 1000; ++i) {
    set.insert(8);
  }
  EXPECT_EQ(meter.count(), 0U);
}

TEST(OffsetSet, OffsetNeedsFewBytes) {
  OffsetSet set;
  const AllocationMeter meter;
  for (std::uint64_t i = 1; i <= 100000; ++i) {
    set.insert(32 * i);
    ASSERT_LE(meter.peakBytes(), 1000 + 33 * i);
  }
  EXPECT_LE(meter.heldBytes(), 22 * 100000U);
}

}  // namespace
