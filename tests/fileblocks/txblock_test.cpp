#include <gtest/gtest.h>

#include <sstream>

#include "fileblocks/text_block_tests.h"
#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using mdf_v4_10::TXBLOCK;

namespace mdf_tests {

struct PlainText {
  using Block = TXBLOCK;
  static constexpr const char* letters = "TX";
  static constexpr bool ends_the_last_line = true;
};

INSTANTIATE_TYPED_TEST_SUITE_P(TXBLOCK, TextBlock, PlainText, KindName);

TEST(TXBLOCK, Constants) {
  EXPECT_EQ(TXBLOCK::TXBLOCK_CONSTANT_SIZE, 24U);
  EXPECT_EQ(TXBLOCK::MDF_TX_ID, 0x5854);
}

TEST(TXBLOCK, DumpPutsTheEndBannerOnItsOwnLine) {
  EXPECT_EQ(dumped(TXBLOCK("hello", 5)),
            "[DEBUG] ==================== TXBLOCK ===================\n"
            "block size = 30\n"
            "text data = \n"
            "hello\n"
            "[DEBUG] ==================== End of TXBLOCK ===================\n");
}

TEST(TXBLOCK, AMetadataBlockIsReadAsText) {
  std::istringstream is(Bytes().header("MD", 34, 0).text("<xml/>").zeros(4));
  const TXBLOCK block(is);
  EXPECT_BYTES(written(block), Bytes().header("TX", 34, 0).zeros(8).text("<x"));
}

}  // namespace mdf_tests
