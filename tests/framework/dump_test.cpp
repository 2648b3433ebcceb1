#include "framework/dump.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
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

TEST(Dump, ShowsValuesOfAllTypes) {
  using Limits = std::numeric_limits<REAL>;
  EXPECT_EQ(lineWith(UINT64_MAX), "v = 18446744073709551615\n");
  EXPECT_EQ(lineWith(LINK{INT64_MIN}), "v = -9223372036854775808\n");
  EXPECT_EQ(lineWith(UINT32{4294967295}), "v = 4294967295\n");
  EXPECT_EQ(lineWith(UINT16{65535}), "v = 65535\n");
  EXPECT_EQ(lineWith(INT16{-32768}), "v = -32768\n");
  EXPECT_EQ(lineWith(UINT8{65}), "v = 65\n");
  EXPECT_EQ(lineWith(UINT8{255}), "v = 255\n");
  EXPECT_EQ(lineWith(true), "v = 1\n");
  EXPECT_EQ(lineWith(-0.0), "v = -0\n");
  EXPECT_EQ(lineWith(1.0 / 3), "v = 0.333333\n");
  EXPECT_EQ(lineWith(1234567.0), "v = 1.23457e+06\n");
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

}  // namespace
