#include "recording/memory_source.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

constexpr const char* all_entries =
    "MemTotal:       16384000 kB\n"
    "MemFree:         1000 kB\n"
    "MemAvailable:    5000 kB\n"
    "Buffers:          200 kB\n"
    "Cached:          3000 kB\n"
    "SwapCached:         7 kB\n"
    "SwapTotal:       9000 kB\n"
    "SwapFree:        8000 kB\n"
    "HugePages_Total:    0\n";

TEST(MemorySource, HasMemoryAndSwapInKibibytes) {
  const ScratchFolder root;
  root.write("proc/meminfo", all_entries);
  const MemorySource source(root.path());
  EXPECT_EQ(linesOf(source.signals()),
            "mem_total [KiB] unsigned8\n"
            "mem_free [KiB] unsigned8\n"
            "mem_available [KiB] unsigned8\n"
            "mem_buffers [KiB] unsigned8\n"
            "mem_cached [KiB] unsigned8\n"
            "swap_free [KiB] unsigned8\n");
  EXPECT_EQ(valuesOf(source),
            "mem_total 16384000\n"
            "mem_free 1000\n"
            "mem_available 5000\n"
            "mem_buffers 200\n"
            "mem_cached 3000\n"
            "swap_free 8000\n");
}

TEST(MemorySource, SamplesEachTimeAndKeepsWhatIsMissingOrMalformed) {
  const ScratchFolder root;
  root.write("proc/meminfo", all_entries);
  MemorySource source(root.path());
  root.write("proc/meminfo",
             "MemFree: 1001 kB\nMemAvailable: x kB\nBuffers:\nCached: -1 kB\n\nMemTotal 1 kB\n");
  source.sample(0);
  EXPECT_EQ(valuesOf(source),
            "mem_total 16384000\n"
            "mem_free 1001\n"
            "mem_available 5000\n"
            "mem_buffers 200\n"
            "mem_cached 3000\n"
            "swap_free 8000\n");
  root.write("proc/meminfo", "MemFree: 1002 kB");
  source.sample(0.001);
  EXPECT_EQ(valuesOf(source).substr(0, 35), "mem_total 16384000\nmem_free 1002\nme");
}

TEST(MemorySource, HasOnlyWhatTheKernelSays) {
  const ScratchFolder root;
  EXPECT_EQ(valuesOf(MemorySource(root.path())), "");
  root.write("proc/meminfo", "Cached: 5 kB\nMemTotal: 18446744073709551615 kB\n");
  EXPECT_EQ(valuesOf(MemorySource(root.path())), "mem_cached 5\nmem_total 18446744073709551615\n");
}

}  // namespace
