#include "recording/cpu_source.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

//                          user nice system idle iowait irq softirq steal
constexpr CpuUsage::Counters start = {100, 100, 100, 100, 100, 100, 100, 100};

TEST(CpuUsage, IsTheShareOfTheTimeThatWasNotIdle) {
  CpuUsage usage(start, 10);
  EXPECT_EQ(usage.percent(), 0.0F);
  usage.update({110, 100, 105, 175, 110, 100, 100, 100});
  EXPECT_EQ(usage.percent(), 15.0F);
}

TEST(CpuUsage, EveryKindOfWorkCounts) {
  CpuUsage usage(start, 10);
  usage.update({101, 102, 104, 120, 149, 108, 116, 100});
  EXPECT_EQ(usage.percent(), 31.0F);
  usage.update({101, 102, 104, 120, 149, 108, 116, 200});
  EXPECT_EQ(usage.percent(), 100.0F);
}

TEST(CpuUsage, WaitsUntilTheSpanIsLongEnough) {
  CpuUsage usage({0, 0, 0, 0, 0, 0, 0, 0}, 10);
  usage.update({5, 0, 0, 4, 0, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 0.0F) << "9 jiffies say nothing";
  usage.update({5, 0, 0, 5, 0, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 50.0F) << "10 do, counted from the start";
  usage.update({6, 0, 0, 5, 0, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 50.0F) << "and again";
}

TEST(CpuUsage, CounterThatGoesBackCountsAsNotMoved) {
  CpuUsage usage(start, 10);
  usage.update({110, 100, 100, 110, 99, 100, 100, 100});
  EXPECT_EQ(usage.percent(), 50.0F);
}

TEST(CpuUsage, CountsAfreshWhenAllInAllTheCountersWentBack) {
  CpuUsage usage(start, 10);
  usage.update({110, 100, 100, 110, 100, 100, 100, 100});
  usage.update({0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 50.0F) << "the last value stays";
  usage.update({5, 0, 0, 15, 0, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 25.0F);
}

TEST(CpuUsage, StaysWithin0And100WhateverTheCounters) {
  CpuUsage usage({0, 0, 0, 0, 0, 0, 0, 0}, 10);
  usage.update({UINT64_MAX, UINT64_MAX, 0, UINT64_MAX, UINT64_MAX, 0, 0, 0});
  EXPECT_EQ(usage.percent(), 50.0F);
}

constexpr const char* two_cpus =
    "cpu  30 0 30 140 0 0 0 0 0 0\n"
    "cpu0 10 0 10 80 0 0 0 0 0 0\n"
    "cpu1 20 0 20 60 0 0 0 0 0 0\n"
    "intr 12345 0 0\n"
    "ctxt 99\n";

TEST(CpuSource, HasTheMachineAndEachCpu) {
  const ScratchFolder root;
  root.write("proc/stat", two_cpus);
  const CpuSource source(root.path());
  EXPECT_EQ(linesOf(source.signals()),
            "cpu_total [%] float4\n"
            "cpu0 [%] float4\n"
            "cpu1 [%] float4\n");
  EXPECT_EQ(valuesOf(source), "cpu_total 0\ncpu0 0\ncpu1 0\n");
}

TEST(CpuSource, SamplesTheUtilisationSinceTheSampleBefore) {
  expectSampled<CpuSource>("proc/stat", two_cpus,
                           {{0,
                             "cpu  35 0 35 230 0 0 0 0 0 0\n"
                             "cpu0 15 0 10 125 0 0 0 0 0 0\n"
                             "cpu1 20 0 25 105 0 0 0 0 0 0\n",
                             "cpu_total 10\ncpu0 10\ncpu1 10\n"},
                            {1,
                             "cpu  60 0 35 255 0 0 0 0 0 0\n"
                             "cpu0 40 0 10 125 0 0 0 0 0 0\n"
                             "cpu1 20 0 25 130 0 0 0 0 0 0\n",
                             "cpu_total 50\ncpu0 100\ncpu1 0\n"}});
}

TEST(CpuSource, MachineNeedsAsManyJiffiesMoreAsItHasCpus) {
  expectSampled<CpuSource>(
      "proc/stat", "cpu 0 0 0 0\ncpu0 0 0 0 0\ncpu1 0 0 0 0\n",
      {{0, "cpu 19 0 0 0\ncpu0 10 0 0 0\ncpu1 9 0 0 0\n", "cpu_total 0\ncpu0 100\ncpu1 0\n"},
       {1, "cpu 20 0 0 0\ncpu0 10 0 0 0\ncpu1 10 0 0 0\n", "cpu_total 100\ncpu0 100\ncpu1 100\n"}});
}

TEST(CpuSource, LooksAtTheCountersFiftyTimesASecondAtMost) {
  expectSampled<CpuSource>("proc/stat", "cpu 0 0 0 0\n",
                           {{0, "cpu 0 0 0 0\n", "cpu_total 0\n"},
                            {0.019, "cpu 10 0 0 0\n", "cpu_total 0\n"},
                            {0.02, "cpu 10 0 0 0\n", "cpu_total 100\n"}});
}

TEST(CpuSource, CpuThatVanishesKeepsItsLastValue) {
  expectSampled<CpuSource>("proc/stat", "cpu 0 0 0 0\ncpu0 0 0 0 0\ncpu1 0 0 0 0\ncpu2 0 0 0 0\n",
                           {{1, "cpu 30 0 0 30\ncpu0 10 0 0 10\ncpu1 10 0 0 10\ncpu2 10 0 0 10\n",
                             "cpu_total 50\ncpu0 50\ncpu1 50\ncpu2 50\n"},
                            {2, "cpu 60 0 0 30\ncpu0 20 0 0 10\ncpu2 10 0 0 20\n",
                             "cpu_total 100\ncpu0 100\ncpu1 50\ncpu2 0\n"}});
}

TEST(CpuSource, CpuThatAppearsIsPassedOver) {
  expectSampled<CpuSource>(
      "proc/stat", "cpu 0 0 0 0\ncpu1 0 0 0 0\n",
      {{1, "cpu 30 0 0 30\ncpu0 0 0 0 10\ncpu1 10 0 0 10\n", "cpu_total 50\ncpu1 50\n"}});
}

TEST(CpuSource, TakesTheFourCountersOfOldKernelsAndPassesOverMalformedLines) {
  const std::string text = "cpu 1 2 3 4\ncpu0 1 2 3\ncpu1 1 x 3 4\ncpu2\ncpu3 1 2 3 4 5";
  expectSampled<CpuSource>(
      "proc/stat", text,
      {{0, text, "cpu_total 0\ncpu3 0\n"}, {1, "cpu 1 2 3 4\ncpu3 x\n", "cpu_total 0\ncpu3 0\n"}});
}

TEST(CpuSource, HasNothingWhereTheFileIsSomethingElse) {
  const ScratchFolder root;
  root.write("proc/stat", "nonsense\ncpu 1 2 3 4\n");
  EXPECT_EQ(linesOf(CpuSource(root.path()).signals()), "");
}

}  // namespace
