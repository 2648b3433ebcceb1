#include <gtest/gtest.h>

#include <cstddef>
#include <istream>
#include <new>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "block_making.h"
#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/faulty_buffer.h"
#include "support/golden_blocks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

/// Whether use() runs into a failing allocation. Expects that it then throws, and nothing else.
template <class Use>
bool failsAfter(std::size_t allocations, Use use) {
  bool thrown = false;
  const AllocationFailure failure(allocations);
  try {
    use();
  } catch (const std::bad_alloc&) {
    thrown = true;
  }
  const bool happened = failure.hasHappened();
  EXPECT_EQ(thrown, happened);
  return happened;
}

/// Calls use(object) on fresh objects from make(), each time with a later allocation failing, until
/// it succeeds; after each failure check(object). Expects that all memory is given back. Returns
/// the number of failures.
template <class Make, class Use, class Check>
std::size_t forEachFailure(Make make, Use use, Check check) {
  for (std::size_t allocations = 0;; ++allocations) {
    SCOPED_TRACE("allocations that succeed: " + std::to_string(allocations));
    const AllocationMeter meter;
    bool failed = false;
    {
      auto object = make();
      failed = failsAfter(allocations, [&] { use(object); });
      if (failed) {
        check(object);
      }
    }
    EXPECT_EQ(meter.heldBytes(), 0U);
    if (!failed || testing::Test::HasFailure()) {
      return allocations;
    }
  }
}

/// The same for what needs no object.
template <class Use>
std::size_t forEachFailure(Use use) {
  return forEachFailure([] { return 0; }, [&](int) { use(); }, [](int) {});
}

/// All that a block is.
template <class Block>
std::string shown(const Block& block) {
  return written(block) + dumped(block);
}

/// Expects that a block that an operation left unfinished can be written, dumped, copied and
/// filled.
template <class Block>
void expectUsable(const Block& block) {
  const std::string before = shown(block);
  Block copy(block);
  EXPECT_BYTES(shown(copy), before);
  const BlockMaking<Block> ways = making<Block>();
  copy = ways.constructors.front()();
  EXPECT_BYTES(shown(copy), shown(ways.constructors.front()()));
}

/// Reads the block from bytes that hold all of it; memory that cannot be had is no fault of the
/// stream. Returns the number of failures.
template <class Block>
std::size_t expectReaderThrows(const std::string& stream) {
  FaultyBuffer buffer(stream);
  std::istream is(&buffer);
  return forEachFailure(
      [&] {
        buffer.start({});
        return &is;
      },
      [](std::istream* from) { Block{*from}; },
      [](std::istream* from) { EXPECT_EQ(from->rdstate(), state_good); });
}

/// Expects that each of the changes, made to a block that has no memory to spare, throws and leaves
/// a block that passes the check.
template <class Block, class Check>
void expectChangesThrow(const std::vector<void (*)(Block&)>& changes, const Block& block,
                        Check check) {
  for (std::size_t i = 0; i < changes.size(); ++i) {
    SCOPED_TRACE("change " + std::to_string(i));
    forEachFailure([&] { return Block(block); }, changes[i], check);
  }
}

/// Blocks with entries in their lists and without, and all of them without their links, too, as
/// after a failed read.
template <class Block>
std::vector<Block> changeableBlocks() {
  std::vector<Block> blocks = sampleBlocks<Block>();
  for (const auto construct : making<Block>().constructors) {
    blocks.push_back(construct());
  }
  for (std::size_t i = 0, count = blocks.size(); i < count; ++i) {
    blocks.push_back(blocks[i]);
    blocks.back().links = LinkSection();
  }
  return blocks;
}

template <class Block>
class AllocationFaults : public ::testing::Test {};
TYPED_TEST_SUITE(AllocationFaults, EveryBlock, BlockNames);

/// The identification block alone has neither links nor lists.
template <class Block>
constexpr bool takes_memory = !std::is_same_v<Block, IDBLOCK>;

TYPED_TEST(AllocationFaults, ReaderThrowsAndHoldsNothing) {
  std::size_t failures = 0;
  for (const std::string& stream : goldenStreams<TypeParam>()) {
    failures += expectReaderThrows<TypeParam>(stream);
  }
  EXPECT_EQ(failures > 0, takes_memory<TypeParam>);
}

TYPED_TEST(AllocationFaults, ConstructorThrowsAndHoldsNothing) {
  std::size_t failures = 0;
  for (const auto construct : making<TypeParam>().constructors) {
    failures += forEachFailure([&] { construct(); });
  }
  EXPECT_EQ(failures > 0, takes_memory<TypeParam>);
}

TYPED_TEST(AllocationFaults, CopyThrowsAndHoldsNothing) {
  std::size_t failures = 0;
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    const std::string before = shown(block);
    failures += forEachFailure([&] { const TypeParam copy(block); });
    EXPECT_BYTES(shown(block), before);
  }
  EXPECT_EQ(failures > 0, takes_memory<TypeParam>);
}

TYPED_TEST(AllocationFaults, AssignmentThrowsAndLeavesAUsableBlock) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    const std::string before = shown(block);
    forEachFailure(
        making<TypeParam>().constructors.front(), [&](TypeParam& target) { target = block; },
        expectUsable<TypeParam>);
    EXPECT_BYTES(shown(block), before);
  }
}

TYPED_TEST(AllocationFaults, AdditionThrowsAndLeavesTheBlockAsItWas) {
  for (const TypeParam& block : changeableBlocks<TypeParam>()) {
    const std::string before = shown(block);
    expectChangesThrow(making<TypeParam>().additions, block,
                       [&](const TypeParam& same) { EXPECT_BYTES(shown(same), before); });
  }
}

TYPED_TEST(AllocationFaults, SetupThrowsAndLeavesAUsableBlock) {
  for (const TypeParam& block : changeableBlocks<TypeParam>()) {
    expectChangesThrow(making<TypeParam>().setups, block, expectUsable<TypeParam>);
  }
}

TYPED_TEST(AllocationFaults, WriterAndDumpTakeNoMemory) {
  std::vector<TypeParam> blocks = sampleBlocks<TypeParam>();
  blocks.push_back(largeBlock<TypeParam>());
  for (const TypeParam& block : blocks) {
    FaultyBuffer buffer;
    std::ostream os(&buffer);
    EXPECT_FALSE(failsAfter(0, [&] {
      os << block;
      block.print(os);
    }));
    EXPECT_EQ(os.rdstate(), state_good);
    EXPECT_BYTES(buffer.received, shown(block));
  }
}

TEST(AllocationFailure, IsTheOneAfterSoManyOthers) {
  EXPECT_EQ(forEachFailure([] {
              const std::vector<int> first(5);
              const std::string second(100, 'x');
              ::operator delete(::operator new(1));
            }),
            3U);
  const AllocationFailure failure(1);
  const std::vector<int> first(5);
  EXPECT_FALSE(failure.hasHappened());
  EXPECT_EQ(::operator new(1, std::nothrow), nullptr);
  EXPECT_TRUE(failure.hasHappened());
  const std::vector<int> third(5);
}

TEST(LongBodyAllocationFaults, ReaderThrowsAndHoldsNothing) {
  // Three pieces, the list of them, all of them joined, the links and the content.
  EXPECT_GE(expectReaderThrows<ATBLOCK>(longAttachment()), 7U);
}

}  // namespace
