#include <gtest/gtest.h>

#include <string>

#include "datablocks/growable_data_tests.h"
#include "datablocks/plain_data_tests.h"
#include "mdf_v4_10.h"

using namespace mdf_tests;
using mdf_v4_10::DTBLOCK;

namespace {

struct DtBlock {
  using Block = DTBLOCK;
  static constexpr auto data = &DTBLOCK::dt_data;
  static std::string letters() { return "DT"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(DTBLOCK, PlainData, DtBlock, LettersOfKind);
INSTANTIATE_TYPED_TEST_SUITE_P(DTBLOCK, GrowableData, DtBlock, LettersOfKind);

TEST(DTBLOCK, Constants) {
  EXPECT_EQ(DTBLOCK::DTBLOCK_CONSTANT_SIZE, 24U);
  EXPECT_EQ(DTBLOCK::MDF_DT_ID, 0x5444);
}

TEST(DTBLOCK, RowsOfDumpsAreSixteenBytesByDefault) {
  EXPECT_EQ(mdf_v4_10::HEXDUMP_DEFAULT_ROWSIZE, 16U);
}

}  // namespace
