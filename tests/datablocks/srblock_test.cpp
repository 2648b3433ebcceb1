#include <gtest/gtest.h>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

namespace {

SRBLOCK distinctBlock() {
  SRBLOCK block(1000, 0.25, SRBLOCK::SR_SYNCTYPE_DISTANCE_METER, 200, 100);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.sr_flags = 0xAB;
  setBytes(block.sr_reserved, {11, 12, 13, 14, 15, 16});
  return block;
}

TEST(SRBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(SRBLOCK(100, 0.5, SRBLOCK::SR_SYNCTYPE_TIME_SECONDS, 512, 0)),
               header("SR", 64, 2) + links(0, 512) + u64(100) + f64(0.5) + u8(1, 0) + zeros(6));
}

TEST(SRBLOCK, WritesEveryFieldAndTheHeaderAsItIsStored) {
  SRBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 7;
  block.links.push_back(300);
  EXPECT_BYTES(written(block), header("SR", 999, 7, {1, 2, 3, 4}) + links(100, 200, 300) +
                                   u64(1000) + f64(0.25) + u8(3, 0xAB, 11, 12, 13, 14, 15, 16));
}

TEST(SRBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("SRBLOCK",
                                               "block size = 64\n"
                                               "next sr block = 100\n"
                                               "data block = 200\n"
                                               "cycle count = 1000\n"
                                               "interval = 0.25\n"
                                               "sync type = 3\n"
                                               "invalidationByteFlag = 1\n"));
}

TEST(SRBLOCK, DumpOfExtremeValuesShowsTheConstantSizeAndZeroForMissingLinks) {
  SRBLOCK block(UINT64_MAX, 12345678.9, static_cast<SRBLOCK::MDF_SR_SYNCTYPE_t>(255), 5, INT64_MIN);
  block.header.length = 9999;
  block.links.resize(1);
  block.sr_flags = 0xFE;
  EXPECT_EQ(shownValues(block), "64 -9223372036854775808 0 18446744073709551615 1.23457e+07 255 0");
}

TEST(SRBLOCK, DumpFollowsTheFormatOfTheStream) {
  EXPECT_EQ(shownValues(distinctBlock(), std::hex, std::boolalpha, std::fixed),
            "40 64 c8 3e8 0.250000 3 true");
}

TEST(SRBLOCK, SyncTypeIsShownAsASignedNumber) {
  EXPECT_EQ(shownValues(distinctBlock(), std::showpos), "64 +100 +200 1000 +0.25 +3 +1");
}

}  // namespace
