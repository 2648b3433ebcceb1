#include "reader/blocks/finding.h"

#include <gtest/gtest.h>

#include <string>

using mdf_reader::decimalAndHex;
using mdf_reader::printable;

namespace {

TEST(Finding, NumbersAreShownInDecimalAndHexadecimal) {
  EXPECT_EQ(decimalAndHex(0), "0 (0x0)");
  EXPECT_EQ(decimalAndHex(64), "64 (0x40)");
  EXPECT_EQ(decimalAndHex(UINT64_MAX), "18446744073709551615 (0xffffffffffffffff)");
}

TEST(Finding, BytesAreShownOnOneLine) {
  EXPECT_EQ(printable("##HD ~"), "##HD ~");
  EXPECT_EQ(printable(std::string("\0\n\x1b\x7f\x80\xff", 6)), "\\x00\\x0a\\x1b\\x7f\\x80\\xff");
  EXPECT_EQ(printable(""), "");
}

}  // namespace
