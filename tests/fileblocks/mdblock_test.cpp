#include <gtest/gtest.h>

#include <sstream>

#include "fileblocks/text_block_tests.h"
#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using mdf_v4_10::MDBLOCK;

namespace mdf_tests {

struct Metadata {
  using Block = MDBLOCK;
  static constexpr const char* letters = "MD";
  static constexpr bool ends_the_last_line = false;
};

INSTANTIATE_TYPED_TEST_SUITE_P(MDBLOCK, TextBlock, Metadata, KindName);

TEST(MDBLOCK, Constants) {
  EXPECT_EQ(MDBLOCK::MDBLOCK_CONSTANT_SIZE, 24U);
  EXPECT_EQ(MDBLOCK::MDF_MD_ID, 0x444D);
}

TEST(MDBLOCK, DumpPutsTheEndBannerBehindTheText) {
  EXPECT_EQ(dumped(MDBLOCK("hello", 5)),
            "[DEBUG] ==================== MDBLOCK ===================\n"
            "block size = 30\n"
            "text data = \n"
            "hello[DEBUG] ==================== End of MDBLOCK ===================\n");
}

TEST(MDBLOCK, ATextBlockIsReadAsMetadata) {
  std::istringstream is(Bytes().header("TX", 34, 0).text("a text").zeros(4));
  const MDBLOCK block(is);
  EXPECT_BYTES(written(block), Bytes().header("MD", 34, 0).zeros(8).text("a "));
}

}  // namespace mdf_tests
