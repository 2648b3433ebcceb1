// The two blocks that carry a text.

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;

namespace {

struct PlainText {
  using Block = mdf_v4_10::TXBLOCK;
  static constexpr const char* letters = "TX";
  static constexpr bool ends_the_last_line = true;
};

struct Metadata {
  using Block = mdf_v4_10::MDBLOCK;
  static constexpr const char* letters = "MD";
  static constexpr bool ends_the_last_line = false;
};

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

using TextKinds = testing::Types<PlainText, Metadata>;
TYPED_TEST_SUITE(TextBlock, TextKinds, KindName);

TYPED_TEST(TextBlock, EmptyTextIsTheTerminatingZero) {
  const typename TestFixture::Block block;
  EXPECT_BYTES(written(block), Bytes().header(TypeParam::letters, 25, 0).u8(0));
  this->expectRead(block, std::string(1, '\0'), 25);
  EXPECT_EQ(block.getSize(), 25U);
}

TYPED_TEST(TextBlock, WritesTheTextAndATerminatingZero) {
  const typename TestFixture::Block block("abc", 3);
  EXPECT_BYTES(written(block), Bytes().header(TypeParam::letters, 28, 0).u8s({'a', 'b', 'c', 0}));
  this->expectRead(block, std::string("abc\0", 4), 28);
  EXPECT_EQ(block.getSize(), 28U);
}

TYPED_TEST(TextBlock, NoFillFollowsTheBlock) {
  std::ostringstream os;
  os << this->blockWith("abc") << 'X';
  EXPECT_BYTES(os.str(), this->bytesWith(std::string("abc\0", 4)) + "X");
}

TYPED_TEST(TextBlock, ATerminatorOfTheCallerIsKept) {
  const typename TestFixture::Block block("abc", 4);
  EXPECT_BYTES(written(block), this->bytesWith(std::string("abc\0\0", 5)));
  EXPECT_EQ(block.header.length, 29U);
}

TYPED_TEST(TextBlock, TheTextIsNotScannedForATerminator) {
  const std::string text("\0a\0\0b", 5);
  EXPECT_BYTES(written(this->blockWith(text)), this->bytesWith(text + '\0'));
}

TYPED_TEST(TextBlock, AnyByteMayStandInAText) {
  std::string text;
  for (int byte = 0; byte < 256; ++byte) {
    text += static_cast<char>(byte);
  }
  EXPECT_BYTES(written(this->blockWith(text)), this->bytesWith(text + '\0'));
}

TYPED_TEST(TextBlock, LongTextsAreWrittenWhole) {
  for (const std::size_t count : {998U, 999U, 1000U, 100000U}) {
    const std::string text(count, 'x');
    EXPECT_TRUE(written(this->blockWith(text)) == this->bytesWith(text + '\0')) << count;
  }
}

TYPED_TEST(TextBlock, SetupReplacesTheText) {
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

TYPED_TEST(TextBlock, SetupLeavesTheLinkCount) {
  auto block = this->distinctBlock();
  block.setup("xy", 2);
  EXPECT_EQ(block.header.length, 27U);
  EXPECT_EQ(block.header.link_count, 0x1112131415161718U);
  EXPECT_EQ(linksOf(block), (std::vector<mdf_v4_10::LINK>{100, 200}));
}

TYPED_TEST(TextBlock, SetupMayTakeTheBlocksOwnText) {
  auto block = this->blockWith("abcdef");
  block.setup(reinterpret_cast<const char*>(block.data.data()) + 1, 3);
  EXPECT_BYTES(written(block), this->bytesWith(std::string("bcd\0", 4)));
}

TYPED_TEST(TextBlock, WritesTheHeaderAsStoredButForItsLength) {
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

TYPED_TEST(TextBlock, WritesExtremeValues) {
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

TYPED_TEST(TextBlock, WithoutDataTheHeaderAloneIsWritten) {
  typename TestFixture::Block block;
  block.data.clear();
  EXPECT_BYTES(written(block), this->bytesWith(""));
  EXPECT_EQ(block.getSize(), 24U);
}

TYPED_TEST(TextBlock, GivesItsDataAndSize) {
  const auto block = this->distinctBlock();
  EXPECT_EQ(&block.getData(), &block.data);
  EXPECT_EQ(block.getSize(), 34U);
  EXPECT_TRUE((std::is_same_v<decltype(block.getSize()), std::uint64_t>));
}

TYPED_TEST(TextBlock, DumpOfATextWithoutALastLineFeed) {
  EXPECT_EQ(dumped(this->blockWith("hello")), this->dumpWith(30, "hello" + this->lineEnd()));
  EXPECT_EQ(dumped(this->blockWith("one\ntwo")), this->dumpWith(32, "one\ntwo" + this->lineEnd()));
}

TYPED_TEST(TextBlock, DumpOfATextWithALastLineFeedGetsNoOther) {
  EXPECT_EQ(dumped(this->blockWith("hello\n")), this->dumpWith(31, "hello\n"));
  EXPECT_EQ(dumped(this->blockWith("\n")), this->dumpWith(26, "\n"));
}

TYPED_TEST(TextBlock, DumpOfAnEmptyText) {
  EXPECT_EQ(dumped(typename TestFixture::Block()), this->dumpWith(25, this->lineEnd()));
}

TYPED_TEST(TextBlock, DumpShowsEmbeddedZeroBytes) {
  const std::string text("a\0b\xFF\0", 5);
  EXPECT_EQ(dumped(this->blockWith(text)), this->dumpWith(30, text + this->lineEnd()));
}

TYPED_TEST(TextBlock, DumpShowsTheSizeOfTheData) {
  EXPECT_EQ(dumped(this->distinctBlock()), this->dumpWith(34, "some text" + this->lineEnd()));
}

TYPED_TEST(TextBlock, ReaderTakesTheLinkCountFieldForText) {
  std::istringstream is(this->fileBytes() + "behind");
  const typename TestFixture::Block block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(is.tellg(), 44 - 8);
  this->expectRead(block, this->dataOfFileBytes(), 44);
}

}  // namespace
