#include "framework/block_reader.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "framework/field_list.h"
#include "mdf_v4_10.h"
#include "support/allocation_counter.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;
using detail::BlockBody;
using detail::BodyForm;
using detail::ShortRead;

namespace {

constexpr auto every_exception =
    std::ios_base::badbit | std::ios_base::failbit | std::ios_base::eofbit;

/// A block of 24 + 2 * 8 + 6 = 46 bytes.
struct Sample : GENERALBLOCK {
  static constexpr std::size_t size = 46;
  Sample() : GENERALBLOCK(0x5958) {}
  UINT16 number = 0;
  UINT32 other = 0;
};

constexpr auto sample_fields = detail::fieldList(detail::field<&Sample::number>("number"),
                                                 detail::field<&Sample::other>("other"));

std::string sampleBytes(std::uint64_t link_count) {
  return header("??", 0x1234, link_count) + links(11, 12) + u16(0x0102) + u32(0x03040506);
}

Sample readSample(std::istream& is, ShortRead rule) {
  Sample block;
  detail::readFixedBlock<Sample::size>(is, block, sample_fields, rule);
  return block;
}

TEST(ReadFixedBlock, TakesLengthLinksAndFields) {
  for (const ShortRead rule : {ShortRead::makes_bad, ShortRead::left_as_read}) {
    std::istringstream is(sampleBytes(2) + "after");
    const Sample block = readSample(is, rule);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 46);
    EXPECT_BYTES(written(block.header), header("XY", 0x1234, 2));
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12}));
    EXPECT_EQ(block.number, 0x0102);
    EXPECT_EQ(block.other, 0x03040506U);
  }
}

TEST(ReadFixedBlock, AppendsToTheLinksThatTheBlockHas) {
  std::istringstream is(sampleBytes(2));
  Sample block;
  block.links = {0, 7};
  detail::readFixedBlock<Sample::size>(is, block, sample_fields, ShortRead::makes_bad);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 7, 11, 12}));
}

TEST(ReadFixedBlock, NilLinksAsManyAsTheBlockCountsStandInFront) {
  const struct {
    std::string bytes;
    std::vector<LINK> links;
  } cases[] = {{sampleBytes(2), {0, 0, 0, 11, 12}},
               {sampleBytes(0), {0, 0, 0}},
               {sampleBytes(3), {0, 0, 0}},
               {sampleBytes(2).substr(0, 45), {0, 0, 0}},
               {"", {0, 0, 0}}};
  for (const auto& [bytes, links] : cases) {
    SCOPED_TRACE(bytes.size());
    std::istringstream is(bytes);
    Sample block;
    block.header.link_count = 3;
    const AllocationMeter meter;
    detail::readFixedBlock<Sample::size>(is, block, sample_fields, ShortRead::left_as_read);
    const std::size_t allocations = meter.count();
    EXPECT_EQ(linksOf(block), links);
    EXPECT_EQ(allocations, 1U);
  }
}

TEST(ReadFixedBlock, FieldsFollowTheLastLink) {
  std::istringstream is(header("??", 46, 1) + links(11) + u16(0x0102) + u32(0x03040506) + zeros(8));
  const Sample block = readSample(is, ShortRead::makes_bad);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11}));
  EXPECT_EQ(block.number, 0x0102);
  EXPECT_EQ(block.other, 0x03040506U);
}

/// Bytes that differ from their neighbours, and from those a piece further on.
std::string distinctBytes(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<char>(i % 251);
  }
  return bytes;
}

/// A block's body together with the base that its header and links go to.
struct VariableBlock {
  explicit VariableBlock(std::istream& is, std::size_t fields_width = 0,
                         BodyForm form = BodyForm::all_64)
      : body(is, base, fields_width, form), taken(body.isReadable()) {
    body.links.appendTo(base.links, 0);
  }

  std::string rest() const { return {body.in.position(), body.in.remaining()}; }

  GENERALBLOCK base{0x5958};
  BlockBody body;
  bool taken;
};

/// What is held on the heap while a body is read may be twice what arrived, and one first piece.
void expectModestPeak(std::size_t peak, std::size_t arrived) {
  constexpr std::size_t first_piece = 64 * 1024;
  constexpr std::size_t slack = 2 * 1024;
  EXPECT_LE(peak, 2 * arrived + first_piece + slack);
}

constexpr std::size_t body_sizes[] = {0,     1,     511,    512,    513,    65535,
                                      65536, 65537, 131072, 131073, 200000, 1000000};

TEST(BlockBody, HoldsTheBytesAfterTheHeader) {
  for (const std::size_t size : body_sizes) {
    SCOPED_TRACE(size);
    const std::string bytes = distinctBytes(size);
    std::istringstream is(header("??", 24 + size, 0) + bytes + "after");
    const AllocationMeter meter;
    const VariableBlock block(is);
    const std::size_t peak = meter.peakBytes();
    ASSERT_TRUE(block.taken);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(static_cast<std::size_t>(is.tellg()), 24 + size);
    EXPECT_BYTES(written(block.base.header), header("XY", 24 + size, 0));
    EXPECT_TRUE(block.rest() == bytes);
    expectModestPeak(peak, size);
  }
}

TEST(BlockBody, SmallBodiesNeedNoMemoryFromTheHeap) {
  std::istringstream is(header("??", 24 + 512, 0) + zeros(512));
  const AllocationMeter meter;
  const VariableBlock block(is);
  const std::size_t allocations = meter.count();
  EXPECT_EQ(allocations, 0U);
  EXPECT_EQ(block.body.in.remaining(), 512U);
}

TEST(BlockBody, OnlyTheLowBitsOfALengthMayCount) {
  const std::uint64_t high = std::uint64_t{0xFFFFFFFF} << 32U;
  std::istringstream is(header("??", high + 30, 0) + "abcdefgh");
  const VariableBlock block(is, 0, BodyForm::low_32);
  EXPECT_TRUE(block.taken);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(block.rest(), "abcdef");
  EXPECT_EQ(block.base.header.length, high + 30);

  std::istringstream low_bits_too_small(header("??", high + 23, 0) + zeros(100));
  EXPECT_FALSE(VariableBlock(low_bits_too_small, 0, BodyForm::low_32).taken);
  EXPECT_EQ(low_bits_too_small.rdstate(), state_bad);
}

TEST(BlockBody, ALyingLengthTakesNoMoreMemoryThanAboutTwiceWhatArrives) {
  for (const std::size_t arrived : {0U, 100U, 65536U, 65537U, 200U * 1024U, 1000000U}) {
    for (const std::uint64_t length :
         {std::uint64_t{arrived} + 25, std::uint64_t{arrived} + 400000, std::uint64_t{1} << 31U,
          std::uint64_t{UINT32_MAX}, std::uint64_t{1} << 63U, UINT64_MAX}) {
      SCOPED_TRACE(std::to_string(length) + " said, arrived " + std::to_string(arrived));
      std::istringstream is(header("??", length, 0) + zeros(arrived));
      const AllocationMeter meter;
      const VariableBlock block(is);
      const std::size_t peak = meter.peakBytes();
      EXPECT_FALSE(block.taken);
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      expectModestPeak(peak, arrived);
    }
  }
}

TEST(BlockBody, TakesTheLinksAndStopsAtTheFields) {
  std::istringstream is(header("??", 24 + 22, 2) + links(11, -12) + "fields");
  const VariableBlock block(is, 6);
  ASSERT_TRUE(block.taken);
  EXPECT_EQ(linksOf(block.base), (std::vector<LINK>{11, -12}));
  EXPECT_EQ(block.rest(), "fields");
}

std::string threeLinks() { return links(11, -12, 13); }

TEST(FileLinks, AreAppendedToAListAfterNilOnes) {
  const std::string bytes = threeLinks();
  const detail::FileLinks links(bytes.data(), 3);
  std::vector<LINK> list{7};
  const AllocationMeter meter;
  links.appendTo(list, 2);
  const std::size_t allocations = meter.count();
  EXPECT_EQ(list, (std::vector<LINK>{7, 0, 0, 11, -12, 13}));
  EXPECT_EQ(allocations, 1U);
  detail::FileLinks().appendTo(list, 0);
  EXPECT_EQ(list.size(), 6U);
  detail::FileLinks().appendTo(list, 1);
  EXPECT_EQ(list, (std::vector<LINK>{7, 0, 0, 11, -12, 13, 0}));
}

TEST(FileLinks, APartEndsWhereTheLinksEnd) {
  const std::string bytes = threeLinks();
  const detail::FileLinks links(bytes.data(), 3);
  const struct {
    std::size_t first;
    std::size_t count;
    std::vector<LINK> part;
  } cases[] = {{0, 0, {}},           {0, 2, {11, -12}}, {1, 1, {-12}}, {1, SIZE_MAX, {-12, 13}},
               {2, 2, {13}},         {3, 1, {}},        {4, 1, {}},    {SIZE_MAX, SIZE_MAX, {}},
               {0, 4, {11, -12, 13}}};
  for (const auto& [first, count, part] : cases) {
    SCOPED_TRACE(std::to_string(first) + " " + std::to_string(count));
    std::vector<LINK> list;
    links.appendPartTo(list, first, count);
    EXPECT_EQ(list, part);
  }
}

TEST(FileLinks, FillAListOfAnyLength) {
  const std::string bytes = threeLinks();
  const detail::FileLinks links(bytes.data(), 3);
  std::vector<LINK> list;
  links.fill(list, 2);
  EXPECT_EQ(list, (std::vector<LINK>{11, -12}));
  links.fill(list, 5);
  EXPECT_EQ(list, (std::vector<LINK>{11, -12, 13, 0, 0}));
  links.fill(list, 0);
  EXPECT_TRUE(list.empty());
}

TEST(FileLinks, AreCountedFromTheEndAndNilBeforeTheFirst) {
  const std::string bytes = threeLinks();
  const detail::FileLinks links(bytes.data(), 3);
  EXPECT_EQ(links.fromEnd(1), 13);
  EXPECT_EQ(links.fromEnd(3), 11);
  EXPECT_EQ(links.fromEnd(4), 0);
  EXPECT_EQ(detail::FileLinks().fromEnd(1), 0);
}

TEST(BlockBody, TakesAsMuchOfAListAsThereIs) {
  const struct {
    std::uint64_t count;
    std::vector<REAL> reals;
    std::string rest;
  } cases[] = {{0, {}, std::string(f64(0.5, -2) + "end")},
               {1, {0.5}, std::string(f64(-2) + "end")},
               {2, {0.5, -2}, "end"},
               {3, {0.5, -2}, "end"},
               {UINT64_MAX, {0.5, -2}, "end"}};
  for (const auto& [count, reals, rest] : cases) {
    SCOPED_TRACE(count);
    std::istringstream is(header("??", 24 + 19, 0) + f64(0.5, -2) + "end");
    VariableBlock block(is);
    std::vector<REAL> list;
    block.body.takeList(detail::hostSize(count), list);
    EXPECT_EQ(list, reals);
    EXPECT_BYTES(block.rest(), rest);
  }
}

TEST(BlockBody, WithoutLinksTheFieldsFollowTheHeader) {
  for (const std::uint64_t link_count : {std::uint64_t{0}, std::uint64_t{1}, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(header("??", 24 + 10, link_count) + "fieldsrest");
    GENERALBLOCK base(0x5958);
    BlockBody body(is, base, 6, BodyForm::without_links);
    ASSERT_TRUE(body.isReadable());
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_BYTES(written(base.header), header("XY", 24 + 10, link_count));
    EXPECT_TRUE(base.links.empty());
    EXPECT_EQ(std::string(body.in.position(), body.in.remaining()), "fieldsrest");
  }
}

TEST(BlockBody, AStreamThatThrowsMayThrowForALyingBlock) {
  std::istringstream length(header("??", 23, 0));
  length.exceptions(every_exception);
  EXPECT_THROW(VariableBlock{length}, std::ios_base::failure);
  EXPECT_EQ(length.rdstate(), state_bad);
  std::istringstream link_count(header("??", 32, 2) + zeros(8));
  link_count.exceptions(every_exception);
  EXPECT_THROW(VariableBlock{link_count}, std::ios_base::failure);
  EXPECT_EQ(link_count.rdstate(), state_bad);
  std::istringstream fixed_size(sampleBytes(3));
  fixed_size.exceptions(every_exception);
  EXPECT_THROW(readSample(fixed_size, ShortRead::left_as_read), std::ios_base::failure);
  EXPECT_EQ(fixed_size.rdstate(), state_bad);
}

}  // namespace
