// The entry point that libFuzzer calls, for the target that MDF_FUZZ_TARGET names.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const mdf_fuzz::Target target = mdf_fuzz::findTarget(MDF_FUZZ_TARGET);
  try {
    target({reinterpret_cast<const char*>(data), size});
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: expected %s\n", MDF_FUZZ_TARGET, error.what());
    std::abort();
  }
  return 0;
}
