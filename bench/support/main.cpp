#include <benchmark/benchmark.h>

#include <cstdio>
#include <string_view>

#include "support/comparison.h"
#include "support/settings.h"

namespace mdf_bench {

namespace {

constexpr Settings thorough = {15, 5e6};
constexpr Settings quick = {9, 1e6};
bool is_quick = false;

}  // namespace

const Settings& settings() { return is_quick ? quick : thorough; }

}  // namespace mdf_bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  mdf_bench::is_quick = argc == 2 && std::string_view(argv[1]) == "--quick";
  if (argc > 1 && !mdf_bench::is_quick) {
    (void)std::fprintf(stderr, "%s: unknown argument %s\n", argv[0], argv[1]);
    return 2;
  }
  mdf_bench::registerCases();
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
}
