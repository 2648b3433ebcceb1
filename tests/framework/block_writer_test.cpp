#include "framework/block_writer.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "framework/field_list.h"
#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;
using detail::BlockWriter;
using detail::Frame;

namespace {

using Writes = std::vector<std::size_t>;

HeaderSection hdHeader() { return HeaderSection(MDF_Block_ID(0x4448)); }

/// Bytes that differ from their neighbours, and from those a whole frame further on.
std::vector<UINT8> distinctBytes(std::size_t count) {
  std::vector<UINT8> bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<UINT8>(i % 251);
  }
  return bytes;
}

std::string text(const std::vector<UINT8>& bytes) { return {bytes.begin(), bytes.end()}; }

/// Links that differ in every byte from their neighbours.
LinkSection distinctLinks(std::size_t count) {
  LinkSection links;
  for (std::uint64_t i = 1; i <= count; ++i) {
    links.push_back(static_cast<LINK>(i * 0x0101010101010101));
  }
  return links;
}

/// Calls put(writer) and compares what the stream is given, whole and by pieces.
template <class Put>
void expectWrites(Put put, const std::string& bytes, const Writes& writes) {
  RecordingBuffer sink;
  std::ostream os(&sink);
  Frame frame;
  BlockWriter out(os, frame);
  put(out);
  EXPECT_EQ(&out.finish(), &os);
  EXPECT_BYTES(sink.bytes, bytes);
  EXPECT_EQ(sink.writes, writes);
  EXPECT_EQ(os.rdstate(), state_good);
}

/// The same after a header of 24 bytes.
template <class Put>
void expectWritesAfterHeader(Put put, const std::string& bytes, const Writes& writes) {
  expectWrites(
      [&](BlockWriter& out) {
        out.header(hdHeader(), 0);
        put(out);
      },
      header("HD", 0, 0) + bytes, writes);
}

TEST(BlockWriter, WritesNothingWhenNothingWasPut) {
  expectWrites([](BlockWriter&) {}, "", {});
  expectWrites([](BlockWriter& out) { out.bytes({}); }, "", {});
  expectWrites([](BlockWriter& out) { out.numbers(LinkSection()); }, "", {});
}

TEST(BlockWriter, HandsABlockToTheStreamInOneWrite) {
  expectWrites(
      [](BlockWriter& out) {
        out.header(hdHeader(), 0);
        out.numbers(LinkSection{1, -1});
        out.number(UINT16{0x0102});
        out.bytes({7, 8, 9});
      },
      header("HD", 0, 0) + links(1, -1) + u16(0x0102) + u8(7, 8, 9), {45});
}

TEST(BlockWriter, LengthAndLinkCountCanStandInForThoseOfTheHeader) {
  HeaderSection stored = hdHeader();
  setBytes(stored.reserved, {1, 2, 3, 4});
  stored.length = 5;
  stored.link_count = 6;
  expectWrites(
      [&](BlockWriter& out) {
        out.header(stored, stored.length);
        out.header(stored, 77);
        out.header(stored, 88, 99);
      },
      header("HD", 5, 6, {1, 2, 3, 4}) + "##HD" + u8(1, 2, 3, 4) + u64(77, 6) + "##HD" +
          u8(1, 2, 3, 4) + u64(88, 99),
      {72});
  EXPECT_EQ(stored.length, 5U);
  EXPECT_EQ(stored.link_count, 6U);
}

TEST(BlockWriter, FinishingTwiceWritesOnce) {
  expectWrites(
      [](BlockWriter& out) {
        out.number(UINT8{1});
        out.finish();
      },
      "\x01", {1});
}

/// What a list that does not fit the frame after a header comes to. Where the bytes of numbers
/// must be turned round it goes frame by frame, elsewhere straight from its vector.
Writes writesOfLongList(std::size_t list_bytes) {
  if (!detail::host_is_big_endian) {
    return {24, list_bytes};
  }
  const std::size_t bytes = 24 + list_bytes;
  Writes writes(bytes / 1024, 1024);
  if (bytes % 1024 != 0) {
    writes.push_back(bytes % 1024);
  }
  return writes;
}

TEST(BlockWriter, ListsThatFitTheFrameGoWithIt) {
  for (const std::size_t count :
       {0U, 1U, 2U, 3U, 4U, 7U, 8U, 9U, 15U, 16U, 31U, 100U, 124U, 125U}) {
    SCOPED_TRACE(count);
    const LinkSection links = distinctLinks(count);
    expectWritesAfterHeader([&](BlockWriter& out) { out.numbers(links); }, listed(links),
                            {24 + 8 * count});
  }
}

TEST(BlockWriter, ListsThatDoNotFitTheFrame) {
  for (const std::size_t count : {126U, 253U, 254U, 1000U}) {
    SCOPED_TRACE(count);
    const LinkSection links = distinctLinks(count);
    expectWritesAfterHeader([&](BlockWriter& out) { out.numbers(links); }, listed(links),
                            writesOfLongList(8 * count));
  }
}

TEST(BlockWriter, ColumnsGoInFrames) {
  const struct {
    std::size_t entries;
    Writes writes;
  } cases[] = {{0, {24}},        {1, {32}},           {124, {1016}},         {125, {1024}},
               {126, {1024, 8}}, {253, {1024, 1024}}, {254, {1024, 1024, 8}}};
  for (const auto& [count, writes] : cases) {
    SCOPED_TRACE(count);
    const LinkSection links = distinctLinks(count);
    std::vector<std::pair<LINK, UINT64>> pairs;
    for (const LINK link : links) {
      pairs.emplace_back(-link, static_cast<UINT64>(link));
    }
    expectWritesAfterHeader(
        [&, &all = pairs](BlockWriter& out) { out.column(all, &std::pair<LINK, UINT64>::second); },
        listed(links), writes);
  }
}

/// Two links in the order of the file.
struct TwoLinks {
  LINK first = 0;
  LINK second = 0;
};

/// The same for entries of 16 bytes. A big-endian host puts their numbers one by one, and no entry
/// is cut in two there.
Writes writesOfLongEntries(std::size_t bytes) {
  if constexpr (!detail::host_is_big_endian) {
    return writesOfLongList(bytes);
  }
  Writes writes = {24 + 62 * 16};
  for (bytes -= 62 * 16; bytes > 1024; bytes -= 1024) {
    writes.push_back(1024);
  }
  writes.push_back(bytes);
  return writes;
}

TEST(BlockWriter, EntriesOfLinksGoLikeLinks) {
  constexpr auto fields = detail::fieldList(detail::field<&TwoLinks::first>("first"),
                                            detail::field<&TwoLinks::second>("second"));
  for (const std::size_t count : {0U, 1U, 62U, 63U, 500U}) {
    SCOPED_TRACE(count);
    const LinkSection links = distinctLinks(2 * count);
    std::vector<TwoLinks> entries;
    for (std::size_t i = 0; i < count; ++i) {
      entries.push_back({links[2 * i], links[2 * i + 1]});
    }
    expectWritesAfterHeader([&](BlockWriter& out) { out.entries(fields, entries); }, listed(links),
                            count < 63 ? Writes{24 + 16 * count} : writesOfLongEntries(16 * count));
  }
}

TEST(BlockWriter, NumbersThatDoNotFitTheRestOfAFrameStayWhole) {
  expectWrites(
      [](BlockWriter& out) {
        out.bytes(distinctBytes(1017));
        out.number(UINT64{0x0102030405060708});
      },
      text(distinctBytes(1017)) + u64(0x0102030405060708), {1017, 8});
}

TEST(BlockWriter, BytesThatFitTheFrameGoWithIt) {
  for (const std::size_t count : {0U, 1U, 999U, 1000U}) {
    SCOPED_TRACE(count);
    expectWritesAfterHeader([&](BlockWriter& out) { out.bytes(distinctBytes(count)); },
                            text(distinctBytes(count)), {24 + count});
  }
}

TEST(BlockWriter, BytesThatDoNotFitTheFrameGoStraightFromTheirVector) {
  for (const std::size_t count : {1001U, 1024U, 1025U, 100000U}) {
    SCOPED_TRACE(count);
    expectWritesAfterHeader(
        [&](BlockWriter& out) {
          out.bytes(distinctBytes(count));
          out.number(UINT8{7});
        },
        text(distinctBytes(count)) + u8(7), {24, count, 1});
  }
}

TEST(BlockWriter, BytesInAnEmptyFrame) {
  const struct {
    std::size_t count;
    Writes writes;
  } cases[] = {{1023, {1024}}, {1024, {1024, 1}}, {1025, {1025, 1}}};
  for (const auto& [count, writes] : cases) {
    SCOPED_TRACE(count);
    const std::vector<UINT8> bytes = distinctBytes(count);
    expectWrites(
        [&](BlockWriter& out) {
          out.bytes(bytes);
          out.number(UINT8{7});
        },
        text(bytes) + u8(7), writes);
  }
}

TEST(AllocationMeter, CountsEveryKindOfAllocation) {
  const AllocationMeter meter;
  ::operator delete(::operator new(1));
  ::operator delete[](::operator new[](1));
  ::operator delete(::operator new(1, std::nothrow), std::nothrow);
  ::operator delete[](::operator new[](1, std::nothrow), std::nothrow);
  const std::vector<int> vector(5);
  EXPECT_EQ(meter.count(), 5U);
}

TEST(AllocationMeter, KnowsThePeak) {
  const std::vector<char> before(5000);
  const AllocationMeter meter;
  { const std::vector<char> larger(100000); }
  { const std::vector<char> smaller(50000); }
  EXPECT_GE(meter.peakBytes(), 100000U);
  EXPECT_LT(meter.peakBytes(), 105000U);
  EXPECT_LT(AllocationMeter().peakBytes(), 1U);
}

}  // namespace
