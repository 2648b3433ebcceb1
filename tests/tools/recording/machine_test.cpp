#include "recording/machine.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

TEST(Machine, HasTheSignalsOfEverySourceInOrder) {
  const ScratchFolder root;
  root.write("proc/stat", "cpu 0 0 0 0\n");
  root.write("proc/loadavg", "1 2 3 1/1 1\n");
  root.write("proc/meminfo", "MemFree: 5 kB\n");
  root.write("proc/net/dev", "lo: 1 2 0 0 0 0 0 0 3 4 0 0 0 0 0 0\n");
  root.write("sys/class/hwmon/hwmon0/temp1_input", "1000");
  Machine machine(root.path());
  root.write("proc/stat", "cpu 5 0 0 5\n");
  root.write("proc/meminfo", "MemFree: 6 kB\n");
  EXPECT_EQ(valuesOf(machine.signals(), machine.sample(0)),
            "cpu_total 50\n"
            "load_1min 1\n"
            "load_5min 2\n"
            "load_15min 3\n"
            "mem_free 6\n"
            "net_lo_rx_bytes 1\n"
            "net_lo_rx_packets 2\n"
            "net_lo_tx_bytes 3\n"
            "net_lo_tx_packets 4\n"
            "temp_hwmon0_temp1 1\n");
}

TEST(Machine, GivesEachSignalANameOfItsOwn) {
  const ScratchFolder root;
  root.write("sys/class/hwmon/hwmon0/temp1_input", "1000");
  root.write("sys/class/hwmon/hwmon0/temp1_label", "core 1");
  root.write("sys/class/hwmon/hwmon0/temp2_input", "2000");
  root.write("sys/class/hwmon/hwmon0/temp2_label", "core:1");
  root.write("sys/class/hwmon/hwmon0/temp3_input", "3000");
  root.write("sys/class/hwmon/hwmon0/temp3_label", "core_1_2");
  root.write("sys/class/hwmon/hwmon0/temp4_input", "4000");
  root.write("sys/class/hwmon/hwmon0/temp4_label", "core 1");
  Machine machine(root.path());
  EXPECT_EQ(valuesOf(machine.signals(), machine.sample(0)),
            "temp_hwmon0_core_1 1\n"
            "temp_hwmon0_core_1_2 2\n"
            "temp_hwmon0_core_1_2_2 3\n"
            "temp_hwmon0_core_1_3 4\n");
}

TEST(Machine, HasNothingWhereThereIsNothing) {
  const ScratchFolder root;
  Machine machine(root.path());
  EXPECT_TRUE(machine.signals().empty());
  EXPECT_TRUE(machine.sample(0).empty());
}

TEST(SignalSource, NamePartsAreLettersDigitsDotsAndMinuses) {
  EXPECT_EQ(namePart("aZ09.-_"), "aZ09.-_");
  EXPECT_EQ(namePart("Core 0/µ\n"), "Core_0____");
  EXPECT_EQ(namePart(""), "");
}

TEST(SignalSource, BitsOfValuesAreTheLowBytes) {
  EXPECT_EQ(bitsOf(1.0F), 0x3F800000U);
  EXPECT_EQ(bitsOf(-1.0F), 0xBF800000U);
  EXPECT_EQ(bitsOf(1.0), 0x3FF0000000000000U);
}

}  // namespace
