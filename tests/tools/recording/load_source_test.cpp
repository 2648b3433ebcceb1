#include "recording/load_source.h"

#include <gtest/gtest.h>

#include "tools/support/scratch_folder.h"
#include "tools/support/signals.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

TEST(LoadSource, HasThreeAveragesWithoutAUnit) {
  const ScratchFolder root;
  root.write("proc/loadavg", "0.25 1.50 12.00 3/107 9217\n");
  const LoadSource source(root.path());
  EXPECT_EQ(linesOf(source.signals()),
            "load_1min [] float4\n"
            "load_5min [] float4\n"
            "load_15min [] float4\n");
  EXPECT_EQ(valuesOf(source), "load_1min 0.25\nload_5min 1.5\nload_15min 12\n");
}

TEST(LoadSource, SamplesTwiceASecondAtMost) {
  const std::string first = "load_1min 4\nload_5min 5\nload_15min 6\n";
  expectSampled<LoadSource>("proc/loadavg", "1 2 3 1/1 1\n",
                            {{0, "4 5 6 1/1 1\n", first},
                             {0.4, "7 8 9 1/1 1\n", first},
                             {0.5, "7 8 9 1/1 1\n", "load_1min 7\nload_5min 8\nload_15min 9\n"}});
}

TEST(LoadSource, KeepsTheLastValuesWhenTheFileIsMalformed) {
  const std::string before = "load_1min 1\nload_5min 2\nload_15min 3\n";
  expectSampled<LoadSource>(
      "proc/loadavg", "1 2 3 1/1 1\n",
      {{1, "", before}, {2, "4 5", before}, {3, "4 x 6", before}, {4, "nan 5 6", before}});
}

TEST(LoadSource, HasNothingWithoutTheFile) {
  const ScratchFolder root;
  LoadSource source(root.path());
  root.write("proc/loadavg", "1 2 3 1/1 1\n");
  source.sample(0);
  EXPECT_EQ(valuesOf(source), "");
  root.write("proc/loadavg", "1 2\n");
  EXPECT_EQ(valuesOf(LoadSource(root.path())), "");
}

}  // namespace
