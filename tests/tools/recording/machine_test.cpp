#include "recording/machine.h"

#include <gtest/gtest.h>

#include <sstream>

#include "recording/quantity.h"
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
  Machine machine({}, root.path());
  root.write("proc/stat", "cpu 5 0 0 5\n");
  root.write("proc/meminfo", "MemFree: 6 kB\n");
  EXPECT_EQ(valuesOf(machine.groups().at(0).signals, machine.sample(0, 0)),
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
  Machine machine({}, root.path());
  EXPECT_EQ(valuesOf(machine.groups().at(0).signals, machine.sample(0, 0)),
            "temp_hwmon0_core_1 1\n"
            "temp_hwmon0_core_1_2 2\n"
            "temp_hwmon0_core_1_2_2 3\n"
            "temp_hwmon0_core_1_3 4\n");
}

TEST(Machine, HasNothingWhereThereIsNothing) {
  const ScratchFolder root;
  Machine machine({}, root.path());
  ASSERT_EQ(machine.groups().size(), 1U);
  EXPECT_EQ(valuesOf(machine.groups().at(0).signals, machine.sample(0, 0)), "");
}

/// Of each group its name, its rate and its signals with their values.
std::string groupsOf(const ScratchFolder& root, const MachineOptions& options) {
  std::ostringstream lines;
  try {
    Machine machine(options, root.path());
    for (std::size_t i = 0; i < machine.groups().size(); ++i) {
      const SignalGroup group = machine.groups()[i];
      lines << group.name << " at " << machine.rates()[i] << " Hz\n"
            << valuesOf(group.signals, machine.sample(i, 0));
    }
  } catch (const BadOption& error) {
    lines << error.what() << '\n';
  }
  return lines.str();
}

TEST(Machine, SourcesWithARateOfTheirOwnAreGroupsAndPatternsChooseSignals) {
  const ScratchFolder root;
  root.write("proc/loadavg", "1 2 3 1/1 1\n");
  root.write("proc/meminfo", "MemTotal: 4 kB\nMemFree: 5 kB\nCached: 6 kB\n");
  EXPECT_EQ(groupsOf(root, {10, {{"memory", 50}, {"network", 5}}, {"mem_*e*", "load_1*"}}),
            "system signals at 10 Hz\nload_1min 1\nload_15min 3\n"
            "memory at 50 Hz\nmem_free 5\nmem_cached 6\n");
  EXPECT_EQ(groupsOf(root, {10, {{"memory", 50}}, {"mem_free"}}), "memory at 50 Hz\nmem_free 5\n");
  EXPECT_EQ(groupsOf(root, {10, {}, {"mem_free", "cpu*"}}),
            "no signal of this machine matches \"cpu*\"\n");
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
