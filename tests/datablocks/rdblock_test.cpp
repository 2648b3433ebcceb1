#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

#include "datablocks/plain_data_tests.h"
#include "mdf_v4_10.h"

using namespace mdf_tests;
using mdf_v4_10::DTBLOCK;
using mdf_v4_10::RDBLOCK;

namespace {

struct RdBlock {
  using Block = RDBLOCK;
  static constexpr auto data = &RDBLOCK::rd_data;
  static std::string letters() { return "RD"; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(RDBLOCK, PlainData, RdBlock, LettersOfKind);

TEST(RDBLOCK, Constants) {
  EXPECT_EQ(RDBLOCK::RDBLOCK_CONSTANT_SIZE, 24U);
  EXPECT_EQ(RDBLOCK::MDF_RD_ID, 0x4452);
}

template <class Block, class = void>
struct CanAddData : std::false_type {};
template <class Block>
struct CanAddData<Block, std::void_t<decltype(std::declval<Block&>().addData(0))>>
    : std::true_type {};

template <class Block, class = void>
struct CanClearData : std::false_type {};
template <class Block>
struct CanClearData<Block, std::void_t<decltype(std::declval<Block&>().clearData())>>
    : std::true_type {};

// A reduction data block is made whole and changed as a whole. The data block shows that the
// questions are the right ones.
static_assert(!std::is_default_constructible_v<RDBLOCK>);
static_assert(!CanAddData<RDBLOCK>::value);
static_assert(!CanClearData<RDBLOCK>::value);
static_assert(std::is_default_constructible_v<DTBLOCK>);
static_assert(CanAddData<DTBLOCK>::value);
static_assert(CanClearData<DTBLOCK>::value);

}  // namespace
