// The blocks that carry raw bytes and nothing else.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/recording_buffer.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

struct DtBlock {
  using Block = DTBLOCK;
  static constexpr auto data = &DTBLOCK::dt_data;
  static std::string letters() { return "DT"; }
};

struct RdBlock {
  using Block = RDBLOCK;
  static constexpr auto data = &RDBLOCK::rd_data;
  static std::string letters() { return "RD"; }
};

struct SdBlock {
  using Block = SDBLOCK;
  static constexpr auto data = &SDBLOCK::sd_data;
  static std::string letters() { return "SD"; }
};

/// Names the tests after the letters instead of a number.
struct LettersOfKind {
  template <class Kind>
  static std::string GetName(int /*index*/) {
    return Kind::letters();
  }
};

template <class Block>
std::string dataOf(const Block& block) {
  return {block.getData().begin(), block.getData().end()};
}

/// `count` bytes that do not repeat within 251.
std::string countingBytes(std::size_t count) {
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) {
    bytes += static_cast<char>(i % 251);
  }
  return bytes;
}

template <class Kind>
class PlainData : public testing::Test {
 protected:
  static auto blockOf(const std::string& data) {
    return typename Kind::Block(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
  }
  static auto readBlock(const std::string& bytes) { return readBack<typename Kind::Block>(bytes); }

  /// A block of this type as it stands in a file, its link count 0 unless said otherwise.
  static std::string fileBytes(const std::string& data, std::uint64_t link_count = 0) {
    return header(Kind::letters(), 24 + data.size(), link_count) + data;
  }

  static void expectEmptyBlock(const typename Kind::Block& block) {
    EXPECT_BYTES(written(block.header), fileBytes(""));
    EXPECT_BYTES(written(block), fileBytes(""));
    EXPECT_EQ(block.getSize(), 24U);
  }

  static std::string dumpText(const std::string& block_size, const std::string& data_size,
                              const std::string& data) {
    return inBanners(Kind::letters() + "BLOCK", "block size = " + block_size + "\ndata size = " +
                                                    data_size + "\ndata hex dump: " + data);
  }
};

using PlainKinds = testing::Types<DtBlock, RdBlock, SdBlock>;
TYPED_TEST_SUITE(PlainData, PlainKinds, LettersOfKind);

TYPED_TEST(PlainData, GivesItsData) {
  const auto block = this->blockOf("x");
  EXPECT_EQ(&block.getData(), &(block.*TypeParam::data));
}

TYPED_TEST(PlainData, BlockOfNoBytesIsTheEmptyBlock) {
  this->expectEmptyBlock(typename TypeParam::Block(nullptr, 0));
}

TYPED_TEST(PlainData, NewBlockHoldsACopyOfItsBytes) {
  std::array<std::uint8_t, 5> bytes = {10, 20, 30, 40, 50};
  const typename TypeParam::Block block(bytes.data(), bytes.size());
  bytes.fill(9);
  EXPECT_EQ(block.getSize(), 29U);
  EXPECT_BYTES(written(block), header(TypeParam::letters(), 29, 0) + u8(10, 20, 30, 40, 50));
  EXPECT_BYTES(written(block.header), header(TypeParam::letters(), 24, 0));
}

TYPED_TEST(PlainData, WritesTheStoredHeaderWithAnotherLengthAndNoLinks) {
  auto block = this->blockOf("abc");
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.header.length = 9999;
  block.header.link_count = 0x1112131415161718;
  block.links = {1, 2};
  EXPECT_BYTES(written(block),
               header(TypeParam::letters(), 27, 0x1112131415161718, {1, 2, 3, 4}) + "abc");
  EXPECT_EQ(block.header.length, 9999U);
}

TYPED_TEST(PlainData, EverySizeIsWrittenAndReadBack) {
  for (const std::size_t size : {0U, 1U, 7U, 8U, 256U, 999U, 1000U, 1001U, 1023U, 1024U, 1025U,
                                 65511U, 65512U, 65513U, 200000U}) {
    SCOPED_TRACE(size);
    const std::string data = countingBytes(size);
    const std::string bytes = written(this->blockOf(data));
    EXPECT_TRUE(bytes == this->fileBytes(data));
    EXPECT_TRUE(written(this->readBlock(bytes)) == bytes);
  }
}

TYPED_TEST(PlainData, DataMovesInOneCall) {
  const std::string data = countingBytes(100000);
  RecordingBuffer written_to;
  std::ostream os(&written_to);
  EXPECT_EQ(&(os << this->blockOf(data)), &os);
  EXPECT_EQ(written_to.writes, (std::vector<std::size_t>{24, 100000}));

  RecordingBuffer read_from(this->fileBytes(data));
  std::istream is(&read_from);
  const typename TypeParam::Block block(is);
  EXPECT_EQ(read_from.reads, (std::vector<std::size_t>{24, 100000}));
  EXPECT_TRUE(dataOf(block) == data);
}

TYPED_TEST(PlainData, SetupReplacesTheDataAndLeavesTheHeader) {
  auto block = this->blockOf("something longer");
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.header.length = 77;
  block.header.link_count = 3;
  const std::array<std::uint8_t, 2> bytes = {5, 6};
  block.setup(bytes.data(), bytes.size());
  EXPECT_EQ(block.header.length, 77U);
  EXPECT_EQ(block.getSize(), 26U);
  EXPECT_BYTES(written(block), header(TypeParam::letters(), 26, 3, {1, 2, 3, 4}) + u8(5, 6));
}

TYPED_TEST(PlainData, SetupWithNoBytesEmptiesTheBlock) {
  const std::uint8_t byte = 5;
  for (const std::uint8_t* bytes : {&byte, static_cast<const std::uint8_t*>(nullptr)}) {
    auto block = this->blockOf("abc");
    block.setup(bytes, 0);
    this->expectEmptyBlock(block);
  }
}

TYPED_TEST(PlainData, SetupTakesAPartOfItsOwnData) {
  auto block = this->blockOf("abcdef");
  block.setup(block.getData().data() + 2, 3);
  EXPECT_BYTES(dataOf(block), "cde");
}

TYPED_TEST(PlainData, DumpShowsTheDataAsCharacters) {
  auto block = this->blockOf("\x41\x42");
  block.header.length = 9999;
  EXPECT_EQ(dumped(block), this->dumpText("26", "2", "AB"));
}

TYPED_TEST(PlainData, SecondDumpShowsItsSizesInHexadecimal) {
  const std::string data = countingBytes(29);
  std::ostringstream os;
  this->blockOf("AB").print(os);
  EXPECT_EQ(os.flags() & std::ios_base::basefield, std::ios_base::hex);
  os.str("");
  this->blockOf(data).print(os);
  EXPECT_BYTES(os.str(), this->dumpText("35", "1d", data));
}

TYPED_TEST(PlainData, DumpOfAnEmptyBlockLeavesTheFlags) {
  std::ostringstream os;
  typename TypeParam::Block(nullptr, 0).print(os);
  EXPECT_EQ(os.str(), this->dumpText("24", "0", ""));
  EXPECT_EQ(os.flags(), std::ostringstream().flags());
}

/// What those have in common that start empty and grow byte by byte.
template <class Kind>
class GrowableData : public PlainData<Kind> {};

using GrowableKinds = testing::Types<DtBlock, SdBlock>;
TYPED_TEST_SUITE(GrowableData, GrowableKinds, LettersOfKind);

TYPED_TEST(GrowableData, DefaultBlockIsTheEmptyBlock) {
  this->expectEmptyBlock(typename TypeParam::Block());
}

TYPED_TEST(GrowableData, BytesAreAddedAtTheEnd) {
  typename TypeParam::Block block;
  block.addData(0);
  block.addData(255);
  block.addData(1);
  EXPECT_EQ(block.header.length, 24U);
  EXPECT_EQ(block.getSize(), 27U);
  EXPECT_BYTES(written(block), header(TypeParam::letters(), 27, 0) + u8(0, 255, 1));
}

TYPED_TEST(GrowableData, ClearingRemovesTheDataAndLeavesTheHeader) {
  auto block = this->readBlock(this->fileBytes("abc", 2));
  block.clearData();
  EXPECT_EQ(block.header.length, 27U);
  EXPECT_EQ(block.getSize(), 24U);
  EXPECT_TRUE(block.getData().empty());
  EXPECT_BYTES(written(block), this->fileBytes("", 2));
  block.clearData();
  block.addData('e');
  EXPECT_BYTES(written(block), this->fileBytes("e", 2));
}

}  // namespace
