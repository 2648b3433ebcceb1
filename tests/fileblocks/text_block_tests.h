#ifndef MDF_TESTS_FILEBLOCKS_TEXT_BLOCK_TESTS_H_
#define MDF_TESTS_FILEBLOCKS_TEXT_BLOCK_TESTS_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

/// What holds for both blocks that carry a text. `Kind` says which one it is: its class `Block`,
/// its two `letters`, and whether its dump `ends_the_last_line`.
namespace mdf_tests {

template <class Kind>
class TextBlock : public testing::Test {
 protected:
  using Block = typename Kind::Block;

  static Block blockWith(const std::string& text) { return Block(text.data(), text.size()); }

  static Block distinctBlock() {
    Block block = blockWith("some text");
    setBytes(block.header.reserved, {1, 2, 3, 4});
    block.header.length = 9999;
    block.header.link_count = 0x1112131415161718;
    block.links = {100, 200};
    return block;
  }

  /// A whole block as it stands in a file.
  static std::string bytesWith(const std::string& data, std::uint64_t link_count = 0) {
    return Bytes().header(Kind::letters, 24 + data.size(), link_count).text(data);
  }

  /// A block of 44 bytes whose link count field can be told from zeros.
  static std::string fileBytes() {
    return Bytes()
        .text("##??")
        .u8s({91, 92, 93, 94})
        .u64(44)
        .u8s({11, 12, 13, 14, 15, 16, 17, 18})
        .text("abcdefghijklmnopqrs")
        .u8(0);
  }

  /// The 20 bytes that a reader takes of it.
  static std::string dataOfFileBytes() {
    return Bytes().u8s({11, 12, 13, 14, 15, 16, 17, 18}).text("abcdefghijkl");
  }

  static std::string dataOf(const Block& block) { return {block.data.begin(), block.data.end()}; }

  /// Expects a block with these data, otherwise as a reader leaves it.
  static void expectRead(const Block& block, const std::string& data, std::uint64_t length) {
    EXPECT_BYTES(dataOf(block), data);
    EXPECT_BYTES(written(block.header), Bytes().header(Kind::letters, length, 0));
    EXPECT_TRUE(block.links.empty());
    EXPECT_EQ(block.getPadding(), 0);
  }

  /// A dump, from its size and from what stands between the label of the text and the end banner.
  static std::string dumpWith(std::size_t size, const std::string& shown) {
    const std::string name = std::string(Kind::letters) + "BLOCK";
    return "[DEBUG] ==================== " + name + " ===================\n" +
           "block size = " + std::to_string(size) + "\n" + "text data = \n" + shown +
           "[DEBUG] ==================== End of " + name + " ===================\n";
  }

  /// What the dump adds to a text that ends in no line feed.
  static std::string lineEnd() { return Kind::ends_the_last_line ? "\n" : ""; }
};

struct KindName {
  template <class Kind>
  static std::string GetName(int) {
    return Kind::letters;
  }
};

TYPED_TEST_SUITE_P(TextBlock);

TYPED_TEST_P(TextBlock, EmptyTextIsTheTerminatingZero) {
  const typename TestFixture::Block block;
  EXPECT_BYTES(written(block), Bytes().header(TypeParam::letters, 25, 0).u8(0));
  this->expectRead(block, std::string(1, '\0'), 25);
  EXPECT_EQ(block.getSize(), 25U);
}

TYPED_TEST_P(TextBlock, WritesTheTextAndATerminatingZero) {
  const typename TestFixture::Block block("abc", 3);
  EXPECT_BYTES(written(block), Bytes().header(TypeParam::letters, 28, 0).u8s({'a', 'b', 'c', 0}));
  this->expectRead(block, std::string("abc\0", 4), 28);
  EXPECT_EQ(block.getSize(), 28U);
}

TYPED_TEST_P(TextBlock, NoFillFollowsTheBlock) {
  std::ostringstream os;
  os << this->blockWith("abc") << 'X';
  EXPECT_BYTES(os.str(), this->bytesWith(std::string("abc\0", 4)) + "X");
}

TYPED_TEST_P(TextBlock, ATerminatorOfTheCallerIsKept) {
  const typename TestFixture::Block block("abc", 4);
  EXPECT_BYTES(written(block), this->bytesWith(std::string("abc\0\0", 5)));
  EXPECT_EQ(block.header.length, 29U);
}

TYPED_TEST_P(TextBlock, TheTextIsNotScannedForATerminator) {
  const std::string text("\0a\0\0b", 5);
  EXPECT_BYTES(written(this->blockWith(text)), this->bytesWith(text + '\0'));
}

TYPED_TEST_P(TextBlock, AnyByteMayStandInAText) {
  std::string text;
  for (int byte = 0; byte < 256; ++byte) {
    text += static_cast<char>(byte);
  }
  EXPECT_BYTES(written(this->blockWith(text)), this->bytesWith(text + '\0'));
}

TYPED_TEST_P(TextBlock, LongTextsAreWrittenWhole) {
  for (const std::size_t count : {998U, 999U, 1000U, 100000U}) {
    const std::string text(count, 'x');
    EXPECT_TRUE(written(this->blockWith(text)) == this->bytesWith(text + '\0')) << count;
  }
}

TYPED_TEST_P(TextBlock, SetupReplacesTheText) {
  auto block = this->blockWith("a text to be replaced");
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.setup("xy", 2);
  EXPECT_BYTES(written(block), Bytes()
                                   .text(std::string("##") + TypeParam::letters)
                                   .u8s({1, 2, 3, 4})
                                   .u64(27)
                                   .u64(0)
                                   .u8s({'x', 'y', 0}));
  EXPECT_EQ(block.header.length, 27U);
  block.setup(nullptr, 0);
  EXPECT_EQ(block.header.length, 25U);
  EXPECT_BYTES(this->dataOf(block), std::string(1, '\0'));
}

TYPED_TEST_P(TextBlock, SetupLeavesTheLinkCount) {
  auto block = this->distinctBlock();
  block.setup("xy", 2);
  EXPECT_EQ(block.header.length, 27U);
  EXPECT_EQ(block.header.link_count, 0x1112131415161718U);
  EXPECT_EQ(linksOf(block), (std::vector<mdf_v4_10::LINK>{100, 200}));
}

TYPED_TEST_P(TextBlock, SetupMayTakeTheBlocksOwnText) {
  auto block = this->blockWith("abcdef");
  block.setup(reinterpret_cast<const char*>(block.data.data()) + 1, 3);
  EXPECT_BYTES(written(block), this->bytesWith(std::string("bcd\0", 4)));
}

TYPED_TEST_P(TextBlock, WritesTheHeaderAsStoredButForItsLength) {
  const auto block = this->distinctBlock();
  EXPECT_BYTES(written(block), Bytes()
                                   .text(std::string("##") + TypeParam::letters)
                                   .u8s({1, 2, 3, 4})
                                   .u64(34)
                                   .u64(0x1112131415161718)
                                   .text("some text")
                                   .u8(0));
  EXPECT_EQ(block.header.length, 9999U);
}

TYPED_TEST_P(TextBlock, WritesExtremeValues) {
  typename TestFixture::Block block;
  fillBytes(block.header.reserved, 255);
  block.header.length = block.header.link_count = UINT64_MAX;
  block.data.assign(3, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .text(std::string("##") + TypeParam::letters)
                                   .u8s({255, 255, 255, 255})
                                   .u64(27)
                                   .u64(UINT64_MAX)
                                   .u8s({255, 255, 255}));
}

TYPED_TEST_P(TextBlock, WithoutDataTheHeaderAloneIsWritten) {
  typename TestFixture::Block block;
  block.data.clear();
  EXPECT_BYTES(written(block), this->bytesWith(""));
  EXPECT_EQ(block.getSize(), 24U);
}

TYPED_TEST_P(TextBlock, GivesItsDataAndSize) {
  const auto block = this->distinctBlock();
  EXPECT_EQ(&block.getData(), &block.data);
  EXPECT_EQ(block.getSize(), 34U);
  EXPECT_TRUE((std::is_same_v<decltype(block.getSize()), std::uint64_t>));
}

TYPED_TEST_P(TextBlock, DumpOfATextWithoutALastLineFeed) {
  EXPECT_EQ(dumped(this->blockWith("hello")), this->dumpWith(30, "hello" + this->lineEnd()));
  EXPECT_EQ(dumped(this->blockWith("one\ntwo")), this->dumpWith(32, "one\ntwo" + this->lineEnd()));
}

TYPED_TEST_P(TextBlock, DumpOfATextWithALastLineFeedGetsNoOther) {
  EXPECT_EQ(dumped(this->blockWith("hello\n")), this->dumpWith(31, "hello\n"));
  EXPECT_EQ(dumped(this->blockWith("\n")), this->dumpWith(26, "\n"));
}

TYPED_TEST_P(TextBlock, DumpOfAnEmptyText) {
  EXPECT_EQ(dumped(typename TestFixture::Block()), this->dumpWith(25, this->lineEnd()));
}

TYPED_TEST_P(TextBlock, DumpShowsEmbeddedZeroBytes) {
  const std::string text("a\0b\xFF\0", 5);
  EXPECT_EQ(dumped(this->blockWith(text)), this->dumpWith(30, text + this->lineEnd()));
}

TYPED_TEST_P(TextBlock, DumpShowsTheSizeOfTheData) {
  EXPECT_EQ(dumped(this->distinctBlock()), this->dumpWith(34, "some text" + this->lineEnd()));
}

TYPED_TEST_P(TextBlock, DumpOfABlockThatWasReadLacksTheLastByteOfData) {
  std::istringstream is(this->fileBytes());
  const typename TestFixture::Block block(is);
  EXPECT_EQ(dumped(block), this->dumpWith(44,
                                          "\x0B\x0C\x0D\x0E\x0F\x10\x11\x12"
                                          "abcdefghijk" +
                                              this->lineEnd()));
}

TYPED_TEST_P(TextBlock, DumpOfAFailedReadShowsNoText) {
  std::istringstream is;
  EXPECT_EQ(dumped(typename TestFixture::Block(is)), this->dumpWith(24, this->lineEnd()));
}

TYPED_TEST_P(TextBlock, ReaderTakesTheLinkCountFieldForText) {
  std::istringstream is(this->fileBytes() + "behind");
  const typename TestFixture::Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(is.tellg(), 44 - 8);
  this->expectRead(block, this->dataOfFileBytes(), 44);
}

TYPED_TEST_P(TextBlock, AShortTextComesBackAsZeros) {
  std::istringstream is(this->bytesWith(std::string("abc\0", 4)));
  const typename TestFixture::Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(is.tellg(), 20);
  this->expectRead(block, std::string(4, '\0'), 28);
}

TYPED_TEST_P(TextBlock, WritingABlockThatWasReadWritesTheShiftedText) {
  std::istringstream is(this->fileBytes());
  EXPECT_BYTES(written(typename TestFixture::Block(is)), this->bytesWith(this->dataOfFileBytes()));
}

TYPED_TEST_P(TextBlock, StreamCutInFrontOfTheDataBecomesBad) {
  forEachPrefix(this->fileBytes().substr(0, 16), [](std::istream& is, std::size_t) {
    const typename TestFixture::Block block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    TestFixture::expectRead(block, "", 0);
  });
}

TYPED_TEST_P(TextBlock, StreamCutInTheDataBecomesBadAndLeavesZeros) {
  for (std::size_t length = 16; length < 36; ++length) {
    SCOPED_TRACE(length);
    std::istringstream is(this->fileBytes().substr(0, length));
    const typename TestFixture::Block block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    std::string data = this->dataOfFileBytes().substr(0, length - 16);
    data.resize(20, '\0');
    this->expectRead(block, data, 44);
  }
}

TYPED_TEST_P(TextBlock, StreamCutInTheLastEightBytesIsNotNoticed) {
  for (std::size_t length = 36; length <= 44; ++length) {
    SCOPED_TRACE(length);
    std::istringstream is(this->fileBytes().substr(0, length));
    const typename TestFixture::Block block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 36);
    this->expectRead(block, this->dataOfFileBytes(), 44);
  }
}

TYPED_TEST_P(TextBlock, FailedStreamIsNotRead) {
  for (const auto state : failed_states) {
    std::istringstream is(this->fileBytes());
    is.setstate(state);
    const typename TestFixture::Block block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    this->expectRead(block, "", 0);
  }
}

TYPED_TEST_P(TextBlock, LengthWithoutRoomForDataGivesNone) {
  const std::uint64_t high = std::uint64_t{1} << 32U;
  for (const std::uint64_t length :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{23}, std::uint64_t{24},
        std::uint64_t{0x80000000}, std::uint64_t{0x80000017}, std::uint64_t{0x80000018},
        std::uint64_t{0x80000019}, std::uint64_t{0xFFFFFFFF}, high, high + 24, high << 31U,
        UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::istringstream is(Bytes().header(TypeParam::letters, length, 0).zeros(100));
    const typename TestFixture::Block block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 16);
    this->expectRead(block, "", 0);
  }
}

TYPED_TEST_P(TextBlock, OnlyTheLowBitsOfTheLengthCount) {
  for (const std::uint64_t high : {0x00000000U, 0x00000001U, 0x80000000U, 0xFFFFFFFFU}) {
    for (const std::size_t low : {25U, 30U}) {
      SCOPED_TRACE(high << 32U | low);
      std::istringstream is(
          Bytes().header(TypeParam::letters, high << 32U | low, 0x1817161514131211).zeros(100));
      const typename TestFixture::Block block(is);
      EXPECT_EQ(is.rdstate(), state_good);
      EXPECT_EQ(static_cast<std::uint64_t>(is.tellg()), 16 + (low - 24));
      this->expectRead(block, std::string("\x11\x12\x13\x14\x15\x16").substr(0, low - 24), low);
    }
  }
}

TYPED_TEST_P(TextBlock, CopiesAreIndependent) {
  auto block = this->blockWith("abc");
  const auto copy = block;
  block.setup("other", 5);
  EXPECT_BYTES(written(copy), this->bytesWith(std::string("abc\0", 4)));
}

REGISTER_TYPED_TEST_SUITE_P(
    TextBlock, EmptyTextIsTheTerminatingZero, WritesTheTextAndATerminatingZero,
    NoFillFollowsTheBlock, ATerminatorOfTheCallerIsKept, TheTextIsNotScannedForATerminator,
    AnyByteMayStandInAText, LongTextsAreWrittenWhole, SetupReplacesTheText, SetupLeavesTheLinkCount,
    SetupMayTakeTheBlocksOwnText, WritesTheHeaderAsStoredButForItsLength, WritesExtremeValues,
    WithoutDataTheHeaderAloneIsWritten, GivesItsDataAndSize, DumpOfATextWithoutALastLineFeed,
    DumpOfATextWithALastLineFeedGetsNoOther, DumpOfAnEmptyText, DumpShowsEmbeddedZeroBytes,
    DumpShowsTheSizeOfTheData, DumpOfABlockThatWasReadLacksTheLastByteOfData,
    DumpOfAFailedReadShowsNoText, ReaderTakesTheLinkCountFieldForText, AShortTextComesBackAsZeros,
    WritingABlockThatWasReadWritesTheShiftedText, StreamCutInFrontOfTheDataBecomesBad,
    StreamCutInTheDataBecomesBadAndLeavesZeros, StreamCutInTheLastEightBytesIsNotNoticed,
    FailedStreamIsNotRead, LengthWithoutRoomForDataGivesNone, OnlyTheLowBitsOfTheLengthCount,
    CopiesAreIndependent);

}  // namespace mdf_tests

#endif  // MDF_TESTS_FILEBLOCKS_TEXT_BLOCK_TESTS_H_
