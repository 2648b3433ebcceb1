#include <gtest/gtest.h>

#include <string>

#include "datablocks/growable_data_tests.h"
#include "datablocks/plain_data_tests.h"
#include "mdf_v4_10.h"

using namespace mdf_tests;
using mdf_v4_10::SDBLOCK;

namespace {

struct SdBlock {
  using Block = SDBLOCK;
  static constexpr auto data = &SDBLOCK::sd_data;
  static std::string letters() { return "SD"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(SDBLOCK, PlainData, SdBlock, LettersOfKind);
INSTANTIATE_TYPED_TEST_SUITE_P(SDBLOCK, GrowableData, SdBlock, LettersOfKind);

TEST(SDBLOCK, Constants) {
  EXPECT_EQ(SDBLOCK::SDBLOCK_CONSTANT_SIZE, 24U);
  EXPECT_EQ(SDBLOCK::MDF_SD_ID, 0x4453);
}

}  // namespace
