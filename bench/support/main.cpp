#include <benchmark/benchmark.h>

#include <cstdio>
#include <string_view>

#include "support/comparison.h"
#include "support/settings.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc > 1) {
    if (argc > 2 || std::string_view(argv[1]) != "--quick") {
      (void)std::fprintf(stderr, "%s: unknown argument %s\n", argv[0], argv[1]);
      return 2;
    }
    mdf_bench::settings = mdf_bench::quick;
  }
  mdf_bench::registerCases();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
