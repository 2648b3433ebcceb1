#include "pictures/engineering_unit.h"

#include <gtest/gtest.h>

#include <string>

using mdf_tools::AxisUnit;
using mdf_tools::axisUnitFor;
using mdf_tools::baseUnitFor;

namespace {

struct Expected {
  const char* unit;
  double largest;
  double shown;  ///< on the axis
  const char* shown_unit;
  bool has_prefix;
};

TEST(EngineeringUnit, NumbersHaveOneToThreeDigits) {
  const Expected all[] = {
      {"KiB", 25000000, 25.6, "GB", true},
      {"bytes/s", 1500, 1.5, "kB/s", true},
      {"mV", 3900, 3.9, "V", true},
      {"V", 0.02, 20, "mV", true},
      {"A", 3e-5, 30, "\u00B5A", true},
      {"uA", 40, 40, "\u00B5A", true},
      {"Hz", 999, 999, "Hz", true},
      {"Hz", 1000, 1, "kHz", true},
      {"kW", 0, 0, "kW", true},
      {"\u2126", 2200, 2.2, "k\u03A9", true},
  };
  for (const Expected& each : all) {
    const AxisUnit unit = axisUnitFor(each.unit, each.largest);
    EXPECT_EQ(unit.unit, each.shown_unit) << each.unit;
    EXPECT_DOUBLE_EQ(each.largest * unit.factor, each.shown) << each.unit;
    EXPECT_EQ(unit.has_prefix, each.has_prefix) << each.unit;
  }
}

TEST(EngineeringUnit, NoUnitsThatNobodyUses) {
  EXPECT_EQ(axisUnitFor("s", 86400).unit, "s");
  EXPECT_EQ(axisUnitFor("s", 0.02).unit, "ms");
  EXPECT_EQ(axisUnitFor("m", 5e7).unit, "km");
  EXPECT_EQ(axisUnitFor("kg", 5000).unit, "kg");
  EXPECT_EQ(axisUnitFor("B", 0.5).unit, "B");
}

TEST(EngineeringUnit, UnitsWithoutPrefixStayAsTheyAre) {
  for (const char* unit : {"\u00B0C", "%", "km/h", "rpm", "Nm", "min", "dB", "hPa", "", "KV"}) {
    const AxisUnit shown = axisUnitFor(unit, 120000);
    EXPECT_EQ(shown.unit, unit);
    EXPECT_EQ(shown.factor, 1);
    EXPECT_FALSE(shown.has_prefix);
  }
}

TEST(EngineeringUnit, TheirLongNumbersGetAPowerOfTen) {
  EXPECT_EQ(axisUnitFor("rpm", 25e6).unit, "10\u2076 rpm");
  EXPECT_DOUBLE_EQ(axisUnitFor("rpm", 25e6).factor, 1e-6);
  EXPECT_EQ(axisUnitFor("", 2e12).unit, "10\u00B9\u00B2");
  EXPECT_EQ(axisUnitFor("%", 0.0002).unit, "10\u207B\u2076 %");
  EXPECT_EQ(axisUnitFor("%", 0).unit, "%");
}

TEST(EngineeringUnit, OfALogarithmicAxis) {
  EXPECT_EQ(baseUnitFor("KiB").unit, "B");
  EXPECT_EQ(baseUnitFor("KiB").factor, 1024);
  EXPECT_EQ(baseUnitFor("rpm").unit, "rpm");
  EXPECT_EQ(baseUnitFor("rpm").factor, 1);
}

}  // namespace
