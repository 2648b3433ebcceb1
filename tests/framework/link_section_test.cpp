#include <gtest/gtest.h>

#include <sstream>
#include <utility>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::LINK;
using mdf_v4_10::LinkSection;

namespace {

TEST(LinkSection, IsMadeFromAVector) {
  std::vector<LINK> offsets{1, 0, -2};
  const LinkSection copied = offsets;
  EXPECT_EQ(copied, (LinkSection{1, 0, -2}));
  const LINK* const memory = offsets.data();
  const LinkSection moved(std::move(offsets));
  EXPECT_EQ(moved, copied);
  EXPECT_EQ(moved.data(), memory);
}

TEST(LinkSection, IsAssignedFromAVector) {
  std::vector<LINK> offsets{1, 0, -2};
  LinkSection links{9};
  links = offsets;
  EXPECT_EQ(links, (LinkSection{1, 0, -2}));
  EXPECT_EQ(offsets.size(), 3U);
  const LINK* const memory = offsets.data();
  links = std::move(offsets);
  EXPECT_EQ(links, (LinkSection{1, 0, -2}));
  EXPECT_EQ(links.data(), memory);
  links = {5, 6};
  EXPECT_EQ(links, (LinkSection{5, 6}));
  links = {};
  EXPECT_TRUE(links.empty());
}

TEST(LinkSection, CountsTheLinksThatAreSet) {
  EXPECT_EQ((LinkSection{0, 5, 0, 7}.getValidLinkLength()), 2U);
  EXPECT_EQ((LinkSection{0, 5, 0, 7, 0, 0}.getValidLinkLength()), 2U);
  EXPECT_EQ((LinkSection{-1, INT64_MIN, INT64_MAX}.getValidLinkLength()), 3U);
  EXPECT_EQ((LinkSection{0, 0, 0}.getValidLinkLength()), 0U);
  EXPECT_EQ(LinkSection{}.getValidLinkLength(), 0U);
}

TEST(LinkSection, WritesEveryLinkInItsOrder) {
  EXPECT_BYTES(
      written(LinkSection{0x0102030405060708, 0, -2, INT64_MAX, INT64_MIN}),
      u8(8, 7, 6, 5, 4, 3, 2, 1) + zeros(8) + u8(0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF) +
          u8(0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F) + u8(0, 0, 0, 0, 0, 0, 0, 0x80));
}

TEST(LinkSection, WritesNothingWhenEmpty) { EXPECT_BYTES(written(LinkSection{}), ""); }

TEST(LinkSection, WriterReturnsTheStream) {
  std::ostringstream os;
  EXPECT_EQ(&(os << LinkSection{1}), &os);
}

}  // namespace
