#include "reporting/packed_numbers.h"

#include <gtest/gtest.h>

#include <limits>

#include "reporting/base64.h"

namespace mdf_tests {

using namespace mdf_tools;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

struct Packing {
  std::vector<double> numbers;
  std::string type;
  std::string bytes;
};

void PrintTo(const Packing& packing, std::ostream* os) {
  *os << packing.numbers.size() << " as " << packing.type;
}

class PackedNumbersTest : public testing::TestWithParam<Packing> {};

}  // namespace

TEST_P(PackedNumbersTest, AreAsNarrowAsTheyCanBe) {
  const PackedNumbers packed = pack(GetParam().numbers);
  EXPECT_EQ(packed.type, GetParam().type);
  EXPECT_EQ(packed.count, GetParam().numbers.size());
  EXPECT_EQ(packed.bytes, GetParam().bytes);
}

using namespace std::string_literals;

INSTANTIATE_TEST_SUITE_P(
    Each, PackedNumbersTest,
    testing::Values(
        Packing{{}, "same", ""}, Packing{{1.5, 1.5}, "same", ""}, Packing{{nan, nan}, "same", ""},
        Packing{{1, -2}, "i1", "\x01\xFE"s}, Packing{{127, -128}, "i1", "\x7F\x80"s},
        Packing{{128, 1}, "i2", "\x80\x00\x01\x00"s},
        Packing{{32768, -1}, "i4", "\x00\x80\x00\x00\xFF\xFF\xFF\xFF"s},
        Packing{{0, 0.5}, "f4", "\x00\x00\x00\x00\x00\x00\x00\x3F"s},
        Packing{{0, -0.0}, "f4", "\x00\x00\x00\x00\x00\x00\x00\x80"s},
        Packing{{1, nan}, "f4", "\x00\x00\x80\x3F\x00\x00\xC0\x7F"s},
        Packing{{1, infinity}, "f4", "\x00\x00\x80\x3F\x00\x00\x80\x7F"s},
        Packing{
            {0, 0.1}, "f8", "\x00\x00\x00\x00\x00\x00\x00\x00\x9A\x99\x99\x99\x99\x99\xB9\x3F"s},
        Packing{
            {0, 1e300}, "f8", "\x00\x00\x00\x00\x00\x00\x00\x00\x9C\x75\x00\x88\x3C\xE4\x37\x7E"s},
        Packing{{4294967296.0, 1}, "f4", "\x00\x00\x80\x4F\x00\x00\x80\x3F"s}));

TEST(PackedNumbers, AreRoundedWhereTheyMayBe) {
  EXPECT_EQ(packRounded({0, 0.1}).bytes, "\x00\x00\x00\x00\xCD\xCC\xCC\x3D"s);
  EXPECT_EQ(packRounded({0, 1e300}).type, "f8");
}

TEST(Base64, HasFourCharactersForThreeBytes) {
  EXPECT_EQ(base64Of(""), "");
  EXPECT_EQ(base64Of("M"), "TQ==");
  EXPECT_EQ(base64Of("Ma"), "TWE=");
  EXPECT_EQ(base64Of("Man"), "TWFu");
  EXPECT_EQ(base64Of("\xFF\xFE\x00\x80"s), "//4AgA==");
  EXPECT_EQ(base64Size(0), 0U);
  EXPECT_EQ(base64Size(4), 8U);
}

}  // namespace mdf_tests
