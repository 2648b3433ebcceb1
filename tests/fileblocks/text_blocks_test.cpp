// The two blocks that carry a text.

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

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
    return header(Kind::letters, 24 + data.size(), link_count) + data;
  }

  static std::string dataOf(const Block& block) { return {block.data.begin(), block.data.end()}; }

  /// A dump, from its size and from what stands between the label of the text and the end banner.
  static std::string dumpWith(std::size_t size, const std::string& shown) {
    return inBanners(std::string(Kind::letters) + "BLOCK",
                     "block size = " + std::to_string(size) + "\ntext data = \n" + shown);
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
  EXPECT_BYTES(written(block), header(TypeParam::letters, 25, 0) + u8(0));
  EXPECT_BYTES(written(block.header), header(TypeParam::letters, 25, 0));
}

TYPED_TEST(TextBlock, WritesTheTextAndATerminatingZero) {
  const typename TestFixture::Block block("abc", 3);
  EXPECT_BYTES(written(block), header(TypeParam::letters, 28, 0) + "abc" + u8(0));
  EXPECT_BYTES(written(block.header), header(TypeParam::letters, 28, 0));
  EXPECT_EQ(block.getSize(), 28U);
}

TYPED_TEST(TextBlock, TheTextIsNotScannedForATerminator) {
  const std::string text("\0a\0\0b", 5);
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
  EXPECT_BYTES(written(block), header(TypeParam::letters, 27, 0, {1, 2, 3, 4}) + u8('x', 'y', 0));
  EXPECT_EQ(block.header.length, 27U);
  block.setup(nullptr, 0);
  EXPECT_EQ(block.header.length, 25U);
  EXPECT_BYTES(this->dataOf(block), std::string(1, '\0'));
}

TYPED_TEST(TextBlock, SetupLeavesTheLinkCount) {
  auto block = this->distinctBlock();
  block.setup("xy", 2);
  EXPECT_BYTES(written(block.header),
               header(TypeParam::letters, 27, 0x1112131415161718, {1, 2, 3, 4}));
}

TYPED_TEST(TextBlock, SetupMayTakeTheBlocksOwnText) {
  auto block = this->blockWith("abcdef");
  block.setup(reinterpret_cast<const char*>(block.data.data()) + 1, 3);
  EXPECT_BYTES(written(block), this->bytesWith(std::string("bcd\0", 4)));
}

TYPED_TEST(TextBlock, WritesTheHeaderAsStoredButForItsLength) {
  const auto block = this->distinctBlock();
  EXPECT_BYTES(written(block), header(TypeParam::letters, 34, 0x1112131415161718, {1, 2, 3, 4}) +
                                   "some text" + u8(0));
  EXPECT_EQ(block.header.length, 9999U);
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
}

TYPED_TEST(TextBlock, DumpOfATextWithoutALastLineFeed) {
  EXPECT_EQ(dumped(this->blockWith("hello")), this->dumpWith(30, "hello" + this->lineEnd()));
  EXPECT_EQ(dumped(this->blockWith("one\ntwo")), this->dumpWith(32, "one\ntwo" + this->lineEnd()));
}

TYPED_TEST(TextBlock, DumpOfATextWithALastLineFeedGetsNoOther) {
  EXPECT_EQ(dumped(this->blockWith("hello\n")), this->dumpWith(31, "hello\n"));
  EXPECT_EQ(dumped(this->blockWith("\n")), this->dumpWith(26, "\n"));
}

TYPED_TEST(TextBlock, DumpShowsEmbeddedZeroBytes) {
  const std::string text("a\0b\xFF\0", 5);
  EXPECT_EQ(dumped(this->blockWith(text)), this->dumpWith(30, text + this->lineEnd()));
}

}  // namespace
