#include "framework/dump.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"

using namespace mdf_tests;
using namespace mdf_v4_10;
using detail::Dump;

namespace {

/// What `show(dump)` adds to a dump whose banners are left out.
template <class Show>
std::string shown(Show show) {
  std::ostringstream os;
  Dump dump(os, "X");
  os.str("");
  show(dump);
  return os.str();
}

template <class Value>
std::string lineWith(Value value) {
  return shown([&](Dump& dump) { dump.line("v = ", value); });
}

TEST(Dump, FramesItsLinesWithBanners) {
  std::ostringstream os;
  Dump dump(os, "XYBLOCK");
  dump.line("size = ", 5);
  dump.end();
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== XYBLOCK ===================\n"
            "size = 5\n"
            "[DEBUG] ==================== End of XYBLOCK ===================\n");
}

TEST(Dump, AWidthPadsAWholeBanner) {
  const std::string begin = "[DEBUG] ==================== XYBLOCK ===================";
  const std::string end = "[DEBUG] ==================== End of XYBLOCK ===================";
  std::ostringstream os;
  os << std::setfill('*') << std::right << std::setw(70);
  Dump dump(os, "XYBLOCK");
  EXPECT_EQ(os.width(), 0);
  os << std::left << std::setw(80);
  dump.end();
  EXPECT_EQ(os.str(), std::string(70 - begin.size(), '*') + begin + "\n" + end +
                          std::string(80 - end.size(), '*') + "\n");
}

TEST(Dump, ShowsIntegersInDecimal) {
  EXPECT_EQ(lineWith(UINT64_MAX), "v = 18446744073709551615\n");
  EXPECT_EQ(lineWith(LINK{INT64_MIN}), "v = -9223372036854775808\n");
  EXPECT_EQ(lineWith(UINT32{4294967295}), "v = 4294967295\n");
  EXPECT_EQ(lineWith(UINT16{65535}), "v = 65535\n");
  EXPECT_EQ(lineWith(INT16{-32768}), "v = -32768\n");
}

TEST(Dump, ShowsEightBitValuesAsNumbers) {
  EXPECT_EQ(lineWith(UINT8{0}), "v = 0\n");
  EXPECT_EQ(lineWith(UINT8{65}), "v = 65\n");
  EXPECT_EQ(lineWith(UINT8{255}), "v = 255\n");
}

TEST(Dump, ShowsFlagsAsOneAndZero) {
  EXPECT_EQ(lineWith(true), "v = 1\n");
  EXPECT_EQ(lineWith(false), "v = 0\n");
}

TEST(Dump, ShowsRealsInTheDefaultForm) {
  using Limits = std::numeric_limits<REAL>;
  EXPECT_EQ(lineWith(0.0), "v = 0\n");
  EXPECT_EQ(lineWith(-0.0), "v = -0\n");
  EXPECT_EQ(lineWith(1.5), "v = 1.5\n");
  EXPECT_EQ(lineWith(1.0 / 3), "v = 0.333333\n");
  EXPECT_EQ(lineWith(123456.0), "v = 123456\n");
  EXPECT_EQ(lineWith(1234567.0), "v = 1.23457e+06\n");
  EXPECT_EQ(lineWith(0.0001), "v = 0.0001\n");
  EXPECT_EQ(lineWith(0.00001), "v = 1e-05\n");
  EXPECT_EQ(lineWith(-Limits::max()), "v = -1.79769e+308\n");
  EXPECT_EQ(lineWith(Limits::infinity()), "v = inf\n");
}

TEST(Dump, ShowsAllCharactersOfAFixedText) {
  EXPECT_EQ(shown([](Dump& dump) { dump.line("v = ", "a\0\n", 3); }),
            std::string("v = a\0\n\n", 8));
}

TEST(Dump, PutsALineTogetherFromParts) {
  EXPECT_EQ(shown([](Dump& dump) {
              dump.part("flags : a(", true);
              dump.part("), b(", UINT8{66});
              dump.part(")");
              dump.endLine();
            }),
            "flags : a(1), b(66)\n");
}

TEST(Dump, ShowsRawBytesAsTheyAre) {
  const std::vector<UINT8> bytes{'a', 0, 255, '\n', 'b'};
  EXPECT_EQ(shown([&](Dump& dump) { dump.raw(bytes.data(), bytes.size()); }),
            std::string("a\0\xFF\nb", 5));
  EXPECT_EQ(shown([&](Dump& dump) { dump.raw(nullptr, 0); }), "");
}

TEST(Dump, HexDumpShowsCharactersWithoutALineEnd) {
  EXPECT_EQ(shown([](Dump& dump) { dump.hexDump({0x41, 0x42}); }), "data hex dump: AB");
  EXPECT_EQ(shown([](Dump& dump) { dump.hexDump({}); }), "data hex dump: ");
}

TEST(Dump, HexDumpLeavesTheStreamInHexadecimalMode) {
  std::ostringstream os;
  Dump(os, "X").hexDump({0x41});
  os << ' ' << 29;
  EXPECT_EQ(os.str(), "[DEBUG] ==================== X ===================\ndata hex dump: A 1d");
}

TEST(Dump, HexDumpOfNothingLeavesTheStreamInDecimalMode) {
  std::ostringstream os;
  const std::ios_base::fmtflags flags = os.flags();
  Dump(os, "X").hexDump({});
  EXPECT_EQ(os.flags(), flags);
}

TEST(Dump, LeavesTheFormatOfTheStreamAsItWas) {
  std::ostringstream os;
  const std::ios_base::fmtflags flags = os.flags();
  HDBLOCK(1, 2, 3, 4, HDBLOCK::TIME_LOCAL_PC, 0, 0).print(os);
  EXPECT_EQ(os.flags(), flags);
  EXPECT_EQ(os.precision(), 6);
  EXPECT_EQ(os.fill(), ' ');
}

}  // namespace
