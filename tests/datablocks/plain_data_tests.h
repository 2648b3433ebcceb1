#ifndef MDF_TESTS_DATABLOCKS_PLAIN_DATA_TESTS_H_
#define MDF_TESTS_DATABLOCKS_PLAIN_DATA_TESTS_H_

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/recording_buffer.h"

/// What the blocks that carry raw bytes and nothing else have in common. A test file instantiates
/// the tests with a description of its class:
///
///     struct DtBlock {
///       using Block = mdf_v4_10::DTBLOCK;
///       static constexpr auto data = &Block::dt_data;
///       static std::string letters() { return "DT"; }
///     };
namespace mdf_tests {

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
inline std::string countingBytes(std::size_t count) {
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
    return Bytes().header(Kind::letters(), 24 + data.size(), link_count).text(data);
  }

  static void expectEmptyBlock(const typename Kind::Block& block) {
    EXPECT_EQ(block.header.length, 24U);
    EXPECT_TRUE(block.links.empty());
    EXPECT_EQ(block.getPadding(), 0);
    EXPECT_EQ(block.getSize(), 24U);
    EXPECT_BYTES(dataOf(block), "");
    EXPECT_BYTES(written(block), fileBytes(""));
  }

  static std::string banner(const std::string& prefix = "") {
    return "[DEBUG] ==================== " + prefix + Kind::letters() +
           "BLOCK ===================\n";
  }
  static std::string dumpText(const std::string& block_size, const std::string& data_size,
                              const std::string& data) {
    return banner() + "block size = " + block_size + "\ndata size = " + data_size +
           "\ndata hex dump: " + data + banner("End of ");
  }
};

TYPED_TEST_SUITE_P(PlainData);

TYPED_TEST_P(PlainData, ResultTypes) {
  using Block = typename TypeParam::Block;
  static_assert(std::is_base_of_v<mdf_v4_10::GENERALBLOCK, Block>);
  static_assert(!std::is_polymorphic_v<Block>);
  static_assert(std::is_same_v<decltype(std::declval<const Block&>().getSize()), std::uint64_t>);
  static_assert(std::is_same_v<decltype(std::declval<const Block&>().getData()),
                               const std::vector<mdf_v4_10::UINT8>&>);
  const auto block = this->blockOf("x");
  EXPECT_EQ(&block.getData(), &(block.*TypeParam::data));
}

TYPED_TEST_P(PlainData, BlockOfNoBytesIsTheEmptyBlock) {
  this->expectEmptyBlock(typename TypeParam::Block(nullptr, 0));
}

TYPED_TEST_P(PlainData, FiveBytesWriteTwentyNineWithoutFill) {
  const std::array<std::uint8_t, 5> bytes = {10, 20, 30, 40, 50};
  const typename TypeParam::Block block(bytes.data(), bytes.size());
  EXPECT_EQ(block.header.length, 24U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(block.getSize(), 29U);
  EXPECT_EQ(block.getData(), (std::vector<mdf_v4_10::UINT8>{10, 20, 30, 40, 50}));
  EXPECT_BYTES(written(block),
               Bytes().header(TypeParam::letters(), 29, 0).u8s({10, 20, 30, 40, 50}));
}

TYPED_TEST_P(PlainData, BytesAreCopied) {
  std::array<std::uint8_t, 3> bytes = {1, 2, 3};
  const typename TypeParam::Block block(bytes.data(), bytes.size());
  bytes.fill(9);
  EXPECT_EQ(block.getData(), (std::vector<mdf_v4_10::UINT8>{1, 2, 3}));
}

TYPED_TEST_P(PlainData, WritesTheStoredHeaderWithAnotherLength) {
  auto block = this->blockOf("abc");
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.header.length = 9999;
  block.header.link_count = 0x1112131415161718;
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##" + TypeParam::letters())
                                   .u8s({1, 2, 3, 4})
                                   .u64(27)
                                   .u64(0x1112131415161718)
                                   .text("abc"));
  EXPECT_EQ(block.header.length, 9999U);
  EXPECT_EQ(block.getSize(), 27U);
}

TYPED_TEST_P(PlainData, WritesExtremeValues) {
  auto block = this->blockOf(std::string(8, '\xFF'));
  fillBytes(block.header.reserved, 255);
  block.header.length = UINT64_MAX;
  block.header.link_count = UINT64_MAX;
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##" + TypeParam::letters())
                                   .u32(UINT32_MAX)
                                   .u64(32)
                                   .u64(UINT64_MAX)
                                   .u64(UINT64_MAX));
}

TYPED_TEST_P(PlainData, WritesNoLinks) {
  auto block = this->blockOf("abc");
  block.links = {1, 2};
  EXPECT_BYTES(written(block), this->fileBytes("abc"));
}

TYPED_TEST_P(PlainData, EverySizeIsWrittenAndReadBack) {
  for (const std::size_t size : {0U, 1U, 7U, 8U, 256U, 999U, 1000U, 1001U, 1023U, 1024U, 1025U,
                                 65511U, 65512U, 65513U, 200000U}) {
    SCOPED_TRACE(size);
    const std::string data = countingBytes(size);
    const std::string bytes = written(this->blockOf(data));
    EXPECT_TRUE(bytes == this->fileBytes(data));
    EXPECT_TRUE(written(this->readBlock(bytes)) == bytes);
  }
}

TYPED_TEST_P(PlainData, DataMovesInOneCall) {
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

TYPED_TEST_P(PlainData, NothingIsWrittenToAFailedStream) {
  for (const std::size_t size : {0U, 5U, 5000U}) {
    std::ostringstream os;
    os.setstate(std::ios_base::failbit);
    os << this->blockOf(countingBytes(size));
    EXPECT_BYTES(os.str(), "");
    EXPECT_TRUE(os.fail());
  }
}

TYPED_TEST_P(PlainData, SetupReplacesTheDataAndLeavesTheHeader) {
  auto block = this->blockOf("something longer");
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.header.length = 77;
  block.header.link_count = 3;
  const std::array<std::uint8_t, 2> bytes = {5, 6};
  block.setup(bytes.data(), bytes.size());
  EXPECT_EQ(block.header.length, 77U);
  EXPECT_EQ(block.getSize(), 26U);
  EXPECT_BYTES(
      written(block),
      Bytes().text("##" + TypeParam::letters()).u8s({1, 2, 3, 4}).u64(26).u64(3).u8s({5, 6}));
}

TYPED_TEST_P(PlainData, SetupWithNoBytesEmptiesTheBlock) {
  const std::uint8_t byte = 5;
  for (const std::uint8_t* bytes : {&byte, static_cast<const std::uint8_t*>(nullptr)}) {
    auto block = this->blockOf("abc");
    block.setup(bytes, 0);
    this->expectEmptyBlock(block);
  }
}

TYPED_TEST_P(PlainData, SetupTakesAPartOfItsOwnData) {
  auto block = this->blockOf("abcdef");
  block.setup(block.getData().data() + 2, 3);
  EXPECT_BYTES(dataOf(block), "cde");
}

TYPED_TEST_P(PlainData, CopiesAreIndependent) {
  auto block = this->blockOf("abc");
  block.header.link_count = 2;
  const auto copy = block;
  auto assigned = this->blockOf("other");
  assigned = block;
  block.setup(nullptr, 0);
  block.header.link_count = 7;
  EXPECT_BYTES(written(copy), this->fileBytes("abc", 2));
  EXPECT_BYTES(written(assigned), this->fileBytes("abc", 2));
}

TYPED_TEST_P(PlainData, DumpShowsTheDataAsCharacters) {
  auto block = this->blockOf("\x41\x42");
  block.header.length = 9999;
  EXPECT_EQ(dumped(block), this->dumpText("26", "2", "AB"));
}

TYPED_TEST_P(PlainData, DumpShowsEveryByteRaw) {
  std::string data;
  for (int byte = 0; byte < 256; ++byte) {
    data += static_cast<char>(byte);
  }
  EXPECT_BYTES(dumped(this->blockOf(data)), this->dumpText("280", "256", data));
}

TYPED_TEST_P(PlainData, DumpOfABlockThatWasReadShowsTheSizeOfItsData) {
  auto block = this->readBlock(this->fileBytes("abc", 2));
  block.setup(nullptr, 0);
  EXPECT_EQ(dumped(block), this->dumpText("24", "0", ""));
}

TYPED_TEST_P(PlainData, SecondDumpShowsItsSizesInHexadecimal) {
  const std::string data = countingBytes(29);
  std::ostringstream os;
  this->blockOf("AB").print(os);
  EXPECT_EQ(os.flags() & std::ios_base::basefield, std::ios_base::hex);
  os.str("");
  this->blockOf(data).print(os);
  EXPECT_BYTES(os.str(), this->dumpText("35", "1d", data));
}

TYPED_TEST_P(PlainData, DumpLeavesHexadecimalModeWhateverTheBaseWas) {
  std::ostringstream os;
  os << std::oct << std::showbase << std::uppercase;
  const auto other_flags = os.flags() & ~std::ios_base::basefield;
  this->blockOf("A").print(os);
  EXPECT_EQ(os.str(), this->dumpText("031", "01", "A"));
  EXPECT_EQ(os.flags(), other_flags | std::ios_base::hex);
}

TYPED_TEST_P(PlainData, DumpOfAnEmptyBlockLeavesTheFlags) {
  for (const auto base : {std::ios_base::dec, std::ios_base::oct, std::ios_base::hex}) {
    std::ostringstream os;
    os.setf(base, std::ios_base::basefield);
    const auto before = os.flags();
    typename TypeParam::Block(nullptr, 0).print(os);
    EXPECT_EQ(os.flags(), before);
  }
  EXPECT_EQ(dumped(typename TypeParam::Block(nullptr, 0)), this->dumpText("24", "0", ""));
}

TYPED_TEST_P(PlainData, DumpFlushesAtEveryLineEnd) {
  RecordingBuffer buffer;
  std::ostream os(&buffer);
  this->blockOf("A\nB").print(os);
  EXPECT_EQ(buffer.flushes.size(), 4);
}

TYPED_TEST_P(PlainData, ReadsAWrittenBlock) {
  const auto block = this->readBlock(this->fileBytes("hello"));
  EXPECT_EQ(block.header.length, 29U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_TRUE(block.links.empty());
  EXPECT_BYTES(dataOf(block), "hello");
  EXPECT_BYTES(written(block), this->fileBytes("hello"));
}

TYPED_TEST_P(PlainData, ReadsABlockWithoutData) {
  this->expectEmptyBlock(this->readBlock(this->fileBytes("")));
}

TYPED_TEST_P(PlainData, ReadLengthStaysWhenTheDataChanges) {
  auto block = this->readBlock(this->fileBytes("hello"));
  block.setup(nullptr, 0);
  EXPECT_EQ(block.header.length, 29U);
  EXPECT_BYTES(written(block), this->fileBytes(""));
}

TYPED_TEST_P(PlainData, LinksAreReadAsData) {
  const std::string bytes =
      Bytes().header(TypeParam::letters(), 45, 2).links({0x1112, 0x2122}).text("hello");
  const auto block = this->readBlock(bytes);
  EXPECT_EQ(block.header.link_count, 2U);
  EXPECT_TRUE(block.links.empty());
  EXPECT_BYTES(dataOf(block), Bytes().links({0x1112, 0x2122}).text("hello"));
  EXPECT_BYTES(written(block), bytes);
}

TYPED_TEST_P(PlainData, LinkCountIsKeptAndNotUsed) {
  for (const std::uint64_t link_count : {std::uint64_t{1}, std::uint64_t{1} << 61U, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    const auto block = this->readBlock(this->fileBytes("hello", link_count));
    EXPECT_BYTES(written(block), this->fileBytes("hello", link_count));
  }
}

TYPED_TEST_P(PlainData, BlockOfAnotherTypeIsReadAsData) {
  const std::string body = Bytes().links({100, 200, 300, 400}).u8(3).zeros(7);
  const auto block =
      this->readBlock(Bytes().text("##DG").u8s({1, 2, 3, 4}).u64(64).u64(4).text(body));
  EXPECT_BYTES(dataOf(block), body);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<mdf_v4_10::UINT8, 4>{}));
  EXPECT_BYTES(written(block), this->fileBytes(body, 4));
}

TYPED_TEST_P(PlainData, ReadsAtThePositionOfTheStreamAndStopsBehindTheBlock) {
  std::istringstream is("in front" + this->fileBytes("hello") + "behind");
  is.seekg(8);
  const typename TypeParam::Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 8 + 29);
  EXPECT_BYTES(dataOf(block), "hello");
}

TYPED_TEST_P(PlainData, StreamCutInTheHeaderGivesTheEmptyBlock) {
  const std::string bytes = Bytes().header("XY", 0x0101010101010101, 0x0202020202020202);
  forEachPrefix(bytes, [this](std::istream& is, std::size_t) {
    const typename TypeParam::Block block(is);
    EXPECT_EQ(is.rdstate(), state_eof_fail);
    this->expectEmptyBlock(block);
  });
}

TYPED_TEST_P(PlainData, StreamCutInTheDataBecomesBadAndLeavesZerosBehind) {
  const std::string data = countingBytes(40);
  for (std::size_t length = 0; length < data.size(); ++length) {
    SCOPED_TRACE(length);
    std::istringstream is(this->fileBytes(data, 2).substr(0, 24 + length));
    const typename TypeParam::Block block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_EQ(block.header.length, 64U);
    EXPECT_EQ(block.header.link_count, 2U);
    EXPECT_BYTES(dataOf(block), Bytes().text(data.substr(0, length)).zeros(40 - length));
  }
}

TYPED_TEST_P(PlainData, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::eofbit, std::ios_base::badbit}) {
    std::istringstream is(this->fileBytes("hello", 2));
    is.setstate(state);
    const typename TypeParam::Block block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    this->expectEmptyBlock(block);
  }
}

TYPED_TEST_P(PlainData, LengthBelowTheHeadersSizeThrowsAsSizingTheDataDoes) {
  constexpr std::uint64_t beyond_any_vector = (std::uint64_t{1} << 63U) + 24;
  for (const std::uint64_t length :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{23}, beyond_any_vector, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header(TypeParam::letters(), length, 0).zeros(100).str());
    EXPECT_THROW(typename TypeParam::Block{is}, std::length_error);
  }
}

REGISTER_TYPED_TEST_SUITE_P(
    PlainData, ResultTypes, BlockOfNoBytesIsTheEmptyBlock, FiveBytesWriteTwentyNineWithoutFill,
    BytesAreCopied, WritesTheStoredHeaderWithAnotherLength, WritesExtremeValues, WritesNoLinks,
    EverySizeIsWrittenAndReadBack, DataMovesInOneCall, NothingIsWrittenToAFailedStream,
    SetupReplacesTheDataAndLeavesTheHeader, SetupWithNoBytesEmptiesTheBlock,
    SetupTakesAPartOfItsOwnData, CopiesAreIndependent, DumpShowsTheDataAsCharacters,
    DumpShowsEveryByteRaw, DumpOfABlockThatWasReadShowsTheSizeOfItsData,
    SecondDumpShowsItsSizesInHexadecimal, DumpLeavesHexadecimalModeWhateverTheBaseWas,
    DumpOfAnEmptyBlockLeavesTheFlags, DumpFlushesAtEveryLineEnd, ReadsAWrittenBlock,
    ReadsABlockWithoutData, ReadLengthStaysWhenTheDataChanges, LinksAreReadAsData,
    LinkCountIsKeptAndNotUsed, BlockOfAnotherTypeIsReadAsData,
    ReadsAtThePositionOfTheStreamAndStopsBehindTheBlock, StreamCutInTheHeaderGivesTheEmptyBlock,
    StreamCutInTheDataBecomesBadAndLeavesZerosBehind, FailedStreamIsNotRead,
    LengthBelowTheHeadersSizeThrowsAsSizingTheDataDoes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_DATABLOCKS_PLAIN_DATA_TESTS_H_
