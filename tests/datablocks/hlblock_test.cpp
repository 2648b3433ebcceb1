#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

HLBLOCK distinctBlock() {
  HLBLOCK block(300, true, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.hl_flags = 0xABCD;
  setBytes(block.hl_reserved, {11, 12, 13, 14, 15});
  return block;
}

TEST(HLBLOCK, WritesItsLinkWithALinkCountOfZero) {
  EXPECT_BYTES(written(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               header("HL", 40, 0) + links(4096) + u16(1) + u8(0) + zeros(5));
}

TEST(HLBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(HLBLOCK(0, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               header("HL", 40, 0) + zeros(16));
  EXPECT_BYTES(written(HLBLOCK(-2, false, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE)),
               header("HL", 40, 0) + links(-2) + u16(0) + u8(1) + zeros(5));
}

TEST(HLBLOCK, NewBlockCountsNoLink) {
  const HLBLOCK block(7, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  EXPECT_BYTES(written(block.header), header("HL", 40, 0));
}

TEST(HLBLOCK, WritesEveryFieldAndEveryStoredLinkWithALengthAndLinkCountOfItsOwn) {
  HLBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 1;
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), header("HL", 40, 0, {1, 2, 3, 4}) + links(5, 6, 7) + u16(0xABCD) +
                                   u8(1, 11, 12, 13, 14, 15));
  EXPECT_BYTES(written(block.header), header("HL", 999, 1, {1, 2, 3, 4}));
}

TEST(HLBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("HLBLOCK",
                                               "block size = 40\n"
                                               "first dl block = 300\n"
                                               "equal length = 1\n"
                                               "zip type = 1\n"));
}

TEST(HLBLOCK, DumpShowsTheConstantSizeAndANilLinkWithoutLinks) {
  HLBLOCK block(5, false, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(255));
  block.header.length = 9999;
  block.links.clear();
  EXPECT_EQ(shownValues(block), "40 0 0 255");
}

TEST(HLBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlock(), std::hex, std::boolalpha), "28 12c true 1");
}

TEST(HLBLOCK, ZipTypeIsShownAsASignedNumber) {
  EXPECT_EQ(shownValues(distinctBlock(), std::showpos), "40 +300 +1 +1");
}

}  // namespace
