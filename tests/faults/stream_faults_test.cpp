#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ios>
#include <istream>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
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

using State = std::ios_base::iostate;

/// What a stream may be told to throw for.
constexpr State every_mask[] = {state_good, state_bad, state_bad | std::ios_base::failbit,
                                state_bad | std::ios_base::failbit | std::ios_base::eofbit};

enum class Thrown { nothing, stream_failure, buffer_failure };

/// What the caller of an operation on a stream gets to see.
struct Outcome {
  Thrown thrown;
  State state;

  friend bool operator==(const Outcome& a, const Outcome& b) {
    return a.thrown == b.thrown && a.state == b.state;
  }
  friend std::ostream& operator<<(std::ostream& os, const Outcome& outcome) {
    static const char* const thrown[] = {"nothing", "the stream's failure", "the buffer's failure"};
    return os << "thrown: " << thrown[static_cast<int>(outcome.thrown)]
              << ", state: " << outcome.state;
  }
};

constexpr Outcome success = {Thrown::nothing, state_good};

template <class Stream, class Use>
Outcome outcomeOf(FaultyBuffer& buffer, State mask, Use use) {
  Stream stream(&buffer);
  stream.exceptions(mask);
  Thrown thrown = Thrown::nothing;
  try {
    use(stream);
  } catch (const std::ios_base::failure&) {
    thrown = Thrown::stream_failure;
  } catch (const BufferFailure&) {
    thrown = Thrown::buffer_failure;
  }
  return {thrown, stream.rdstate()};
}

/// A fault, the bytes that are moved before it, and the call that meets it.
struct FaultyTransfer {
  Fault fault;
  std::size_t bytes_before;
  std::size_t call;

  bool throws() const { return fault.manner == Fault::Manner::throws; }
};

/// Calls check(transfer) for a fault at each call and at each byte of a transfer that went well, or
/// at each of the bytes that so many lie between.
template <class Check>
void forEachFault(std::size_t bytes, const std::vector<std::size_t>& call_starts, Check check,
                  std::size_t byte_step = 1) {
  for (const Fault::Manner manner : {Fault::Manner::refuses, Fault::Manner::throws}) {
    SCOPED_TRACE(manner == Fault::Manner::throws ? "the buffer throws" : "the buffer refuses");
    for (std::size_t byte = 0; byte < bytes && !testing::Test::HasFailure(); byte += byte_step) {
      SCOPED_TRACE("at byte " + std::to_string(byte));
      const auto after = std::upper_bound(call_starts.begin(), call_starts.end(), byte);
      const auto call = static_cast<std::size_t>(after - call_starts.begin()) - 1;
      check(FaultyTransfer{{Fault::Unit::byte, manner, byte}, byte, call});
    }
    for (std::size_t call = 0; call < call_starts.size() && !testing::Test::HasFailure(); ++call) {
      SCOPED_TRACE("at call " + std::to_string(call));
      check(FaultyTransfer{{Fault::Unit::call, manner, call}, call_starts[call], call});
    }
  }
}

/// A fault makes the stream bad. A stream that may throw does so at once; one that may not has its
/// fail bit set by whatever is inserted afterwards.
Outcome expectedOutput(const FaultyTransfer& transfer, State mask) {
  if (mask == state_good) {
    return {Thrown::nothing, state_bad};
  }
  return {transfer.throws() ? Thrown::buffer_failure : Thrown::stream_failure, state_bad};
}

/// Expects of put(stream) that at any fault the caller sees that the stream failed, and that what
/// came before the fault, and nothing else, is in the stream.
template <class Put>
void expectOutputFaultsAreSeen(Put put) {
  FaultyBuffer buffer;
  for (const State mask : every_mask) {
    buffer.start({});
    EXPECT_EQ(outcomeOf<std::ostream>(buffer, mask, put), success);
  }
  const std::string whole = buffer.received;
  const std::vector<std::size_t> call_starts = buffer.call_starts;
  forEachFault(whole.size(), call_starts, [&](const FaultyTransfer& transfer) {
    const bool more_calls = transfer.call + 1 < call_starts.size();
    for (const State mask : every_mask) {
      buffer.start(transfer.fault);
      Outcome outcome = outcomeOf<std::ostream>(buffer, mask, put);
      if (mask == state_good && more_calls) {
        outcome.state &= ~std::ios_base::failbit;
      }
      EXPECT_EQ(outcome, expectedOutput(transfer, mask)) << "exceptions: " << mask;
      EXPECT_EQ(whole.compare(0, transfer.bytes_before, buffer.received), 0) << buffer.received;
    }
  });
}

/// How many calls it takes to write to a stream buffer.
template <class Value>
std::size_t callsToWrite(const Value& value) {
  FaultyBuffer buffer;
  std::ostream(&buffer) << value;
  return buffer.call_starts.size();
}

template <class Value>
void expectWritingFaultsAreSeen(const Value& value) {
  expectOutputFaultsAreSeen([&](std::ostream& os) { os << value; });
}

template <class Value>
void expectDumpingFaultsAreSeen(const Value& value) {
  expectOutputFaultsAreSeen([&](std::ostream& os) { value.print(os); });
}

/// Whether the class has lists or bytes without a limit.
template <class Block>
constexpr bool is_variable =
    !is_one_of<Block, IDBLOCK, HDBLOCK, FHBLOCK, DGBLOCK, CGBLOCK, SIBLOCK, HLBLOCK, SRBLOCK>;

/// The byte from which on the class's reader compares the number of bytes that came with the number
/// that it asked for.
template <class Block>
std::size_t firstComparedByte(std::size_t block_size) {
  if (is_one_of<Block, IDBLOCK, TXBLOCK, MDBLOCK, DGBLOCK, CGBLOCK, SIBLOCK>) {
    return 0;
  }
  if (is_one_of<Block, DTBLOCK, RDBLOCK, SDBLOCK>) {
    return HeaderSection::HEADER_SIZE;
  }
  return is_one_of<Block, DZBLOCK> ? block_size : SIZE_MAX;
}

/// What a reader's caller sees when the stream throws or ends. What the stream may throw for the
/// end comes before any comparison, and so leaves the state of the end.
Outcome expectedInput(const FaultyTransfer& transfer, State mask, bool compared) {
  if (transfer.throws()) {
    return {mask == state_good ? Thrown::nothing : Thrown::buffer_failure, state_bad};
  }
  if ((mask & std::ios_base::failbit) != 0) {
    return {Thrown::stream_failure, state_eof_fail};
  }
  if (!compared) {
    return {Thrown::nothing, state_eof_fail};
  }
  return {mask == state_good ? Thrown::nothing : Thrown::stream_failure, state_bad};
}

template <class Block>
std::string writtenWhenReadFrom(const std::string& bytes) {
  std::istringstream is(bytes);
  return written(Block(is));
}

/// Reads the block with a fault, and expects what the caller sees, that nothing is taken from
/// after the fault, and that the block is as when the stream ends there. All memory is given back.
template <class Block>
void expectFaultIsSeen(FaultyBuffer& buffer, const std::string& stream,
                       const FaultyTransfer& transfer, bool compared) {
  const AllocationMeter meter;
  const std::string cut = writtenWhenReadFrom<Block>(stream.substr(0, transfer.bytes_before));
  const std::size_t held = meter.heldBytes();
  for (const State mask : every_mask) {
    buffer.start(transfer.fault);
    std::optional<Block> block;
    const Outcome outcome =
        outcomeOf<std::istream>(buffer, mask, [&](std::istream& is) { block.emplace(is); });
    EXPECT_EQ(outcome, expectedInput(transfer, mask, compared)) << "exceptions: " << mask;
    EXPECT_EQ(buffer.moved, transfer.bytes_before) << "exceptions: " << mask;
    EXPECT_EQ(block.has_value(), outcome.thrown == Thrown::nothing);
    if (block) {
      EXPECT_BYTES(written(*block), cut);
    }
  }
  EXPECT_EQ(meter.heldBytes(), held);
}

/// Reads the block without a fault, with every mask, and leaves the buffer with what that took.
template <class Block>
void expectNoFaultIsSeen(FaultyBuffer& buffer) {
  for (const State mask : every_mask) {
    buffer.start({});
    const auto read = [](std::istream& is) { Block{is}; };
    EXPECT_EQ(outcomeOf<std::istream>(buffer, mask, read), success);
  }
}

template <class Block>
void expectReadingFaultsAreSeen(const std::string& stream, std::size_t block_size,
                                std::size_t byte_step = 1) {
  FaultyBuffer buffer(stream);
  expectNoFaultIsSeen<Block>(buffer);
  const std::vector<std::size_t> call_starts = buffer.call_starts;
  forEachFault(
      buffer.moved, call_starts,
      [&](const FaultyTransfer& transfer) {
        const bool compared = call_starts[transfer.call] >= firstComparedByte<Block>(block_size);
        expectFaultIsSeen<Block>(buffer, stream, transfer, compared);
      },
      byte_step);
}

TEST(FaultyBuffer, MeetsItsFaultOnce) {
  FaultyBuffer buffer("abcdefgh");
  std::string taken(3, '-');
  buffer.start({Fault::Unit::byte, Fault::Manner::refuses, 4});
  EXPECT_EQ(buffer.sgetn(taken.data(), 3), 3);
  EXPECT_EQ(buffer.sgetn(taken.data(), 3), 1);
  EXPECT_EQ(buffer.sgetn(taken.data(), 3), 3);
  EXPECT_EQ(taken, "efg");
  EXPECT_EQ(buffer.call_starts, (std::vector<std::size_t>{0, 3, 4}));

  buffer.start({Fault::Unit::call, Fault::Manner::refuses, 1});
  EXPECT_EQ(buffer.sputc('x'), 'x');
  EXPECT_EQ(buffer.pubsync(), -1);
  EXPECT_EQ(buffer.pubsync(), 0);

  buffer.start({Fault::Unit::byte, Fault::Manner::throws, 2});
  EXPECT_THROW(buffer.sputn("xyz", 3), BufferFailure);
  EXPECT_EQ(buffer.sputn("zz", 2), 2);
  EXPECT_EQ(buffer.received, "xyzz");
}

template <class Block>
class StreamFaults : public ::testing::Test {};
TYPED_TEST_SUITE(StreamFaults, EveryBlock, BlockNames);

TYPED_TEST(StreamFaults, ReaderLeavesThemToTheCaller) {
  for (const std::string& block : goldenBlocks<TypeParam>()) {
    expectReadingFaultsAreSeen<TypeParam>(block + block, block.size());
  }
}

TYPED_TEST(StreamFaults, WriterLeavesThemToTheCaller) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    expectWritingFaultsAreSeen(block);
  }
}

TYPED_TEST(StreamFaults, WriterOfALargeBlockLeavesThemToTheCaller) {
  const TypeParam block = largeBlock<TypeParam>();
  EXPECT_EQ(callsToWrite(block) > 1, is_variable<TypeParam>);
  expectWritingFaultsAreSeen(block);
}

TYPED_TEST(StreamFaults, SmallBlockIsOneWrite) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    ASSERT_LE(written(block).size(), largest_write);
    EXPECT_EQ(callsToWrite(block), 1U);
  }
}

TYPED_TEST(StreamFaults, DumpLeavesThemToTheCaller) {
  for (const TypeParam& block : sampleBlocks<TypeParam>()) {
    expectDumpingFaultsAreSeen(block);
  }
}

TEST(LongBodyStreamFaults, ReaderLeavesThemToTheCaller) {
  const std::string attachment = longAttachment();
  expectReadingFaultsAreSeen<ATBLOCK>(attachment, attachment.size(), 4099);
}

/// Gives the tests the primitive that is meant for block classes.
struct Primitives : GENERALBLOCK {
  using GENERALBLOCK::writex;
};

TEST(FrameworkStreamFaults, AreLeftToTheCaller) {
  expectOutputFaultsAreSeen([](std::ostream& os) { Primitives::writex(os, "bytes", 5); });
  HeaderSection header{MDF_Block_ID(0x4448)};
  setBytes(header.reserved, {1, 2, 3, 4});
  header.length = 0x1112131415161718;
  header.link_count = 0x2122232425262728;
  expectWritingFaultsAreSeen(header.mdfID);
  expectWritingFaultsAreSeen(header);
  expectDumpingFaultsAreSeen(header);
  expectWritingFaultsAreSeen(LinkSection{1, -2, 3});
  expectWritingFaultsAreSeen(LinkSection(300, 0x3132333435363738));
}

TEST(RecordElementStreamFaults, AreLeftToTheCaller) {
  expectWritingFaultsAreSeen(IDTSDATABLOCK(1, 0x02030405));
  expectWritingFaultsAreSeen(IDTSDATABLOCK64(0x0102, 0x030405060708090A));
  for (const std::uint32_t size : {1U, 3U, 8U}) {
    expectWritingFaultsAreSeen(VALUEDATABLOCK(0x0102030405060708, size));
  }
}

}  // namespace
