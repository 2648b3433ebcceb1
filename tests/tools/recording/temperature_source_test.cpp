#include "recording/temperature_source.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

TEST(TemperatureSource, HasTheSensorsOfEachChipInOrder) {
  const ScratchFolder root;
  root.write("sys/class/hwmon/hwmon10/name", "nvme\n");
  root.write("sys/class/hwmon/hwmon10/temp1_input", "-5250\n");
  root.write("sys/class/hwmon/hwmon2/name", "coretemp\n");
  root.write("sys/class/hwmon/hwmon2/temp10_input", "45000\n");
  root.write("sys/class/hwmon/hwmon2/temp2_input", "41500\n");
  root.write("sys/class/hwmon/hwmon2/temp2_label", "Core 0\n");
  root.write("sys/class/hwmon/hwmon2/temp2_max", "100000\n");
  root.write("sys/class/hwmon/hwmon2/fan1_input", "1200\n");
  root.write("sys/class/hwmon/hwmon3/temp1_input", "20000\n");
  const TemperatureSource source(root.path());
  EXPECT_EQ(linesOf(source.signals()),
            "temp_coretemp_Core_0 [°C] float4\n"
            "temp_coretemp_temp10 [°C] float4\n"
            "temp_hwmon3_temp1 [°C] float4\n"
            "temp_nvme_temp1 [°C] float4\n");
  EXPECT_EQ(valuesOf(source),
            "temp_coretemp_Core_0 41.5\n"
            "temp_coretemp_temp10 45\n"
            "temp_hwmon3_temp1 20\n"
            "temp_nvme_temp1 -5.25\n");
}

TEST(TemperatureSource, HasThermalZonesThatAreNoChipsAsWell) {
  const ScratchFolder root;
  root.write("sys/class/thermal/thermal_zone0/type", "x86_pkg_temp\n");
  root.write("sys/class/thermal/thermal_zone0/temp", "50000\n");
  root.write("sys/class/thermal/thermal_zone1/type", "acpitz\n");
  root.write("sys/class/thermal/thermal_zone1/temp", "30000\n");
  root.write("sys/class/thermal/thermal_zone1/hwmon4/name", "acpitz\n");
  root.write("sys/class/thermal/thermal_zone2/temp", "31000\n");
  root.write("sys/class/thermal/cooling_device0/type", "Processor\n");
  EXPECT_EQ(valuesOf(TemperatureSource(root.path())),
            "temp_x86_pkg_temp_zone0 50\ntemp_thermal_zone2 31\n");
}

TEST(TemperatureSource, LeavesOutSensorsThatCannotBeRead) {
  const ScratchFolder root;
  root.write("sys/class/hwmon/hwmon0/temp1_input", "");
  root.write("sys/class/hwmon/hwmon0/temp2_input", "hot\n");
  root.write("sys/class/hwmon/hwmon0/temp3_input/folder", "");
  root.write("sys/class/thermal/thermal_zone0/type", "no temperature\n");
  EXPECT_EQ(valuesOf(TemperatureSource(root.path())), "");
  EXPECT_EQ(valuesOf(TemperatureSource(root / "missing")), "");
}

TEST(TemperatureSource, SensorThatVanishesKeepsItsLastValue) {
  expectSampled<TemperatureSource>(
      "sys/class/hwmon/hwmon0/temp1_input", "1000",
      {{0, "", "temp_hwmon0_temp1 1\n"}, {1, "2000", "temp_hwmon0_temp1 2\n"}});
}

TEST(TemperatureSource, ReadsEachSensorTenTimesASecondAtMostAndNotAllAtOnce) {
  const ScratchFolder root;
  root.write("sys/class/hwmon/hwmon0/temp1_input", "1000");
  root.write("sys/class/hwmon/hwmon0/temp2_input", "1000");
  TemperatureSource source(root.path());
  root.write("sys/class/hwmon/hwmon0/temp1_input", "2000");
  root.write("sys/class/hwmon/hwmon0/temp2_input", "2000");
  source.sample(0);
  EXPECT_EQ(valuesOf(source), "temp_hwmon0_temp1 2\ntemp_hwmon0_temp2 1\n");
  root.write("sys/class/hwmon/hwmon0/temp1_input", "3000");
  source.sample(0.05);
  EXPECT_EQ(valuesOf(source), "temp_hwmon0_temp1 2\ntemp_hwmon0_temp2 2\n");
  source.sample(0.1);
  EXPECT_EQ(valuesOf(source), "temp_hwmon0_temp1 3\ntemp_hwmon0_temp2 2\n");
}

}  // namespace
