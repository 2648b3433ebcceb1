#ifndef MDF_BENCH_SUPPORT_SETTINGS_H_
#define MDF_BENCH_SUPPORT_SETTINGS_H_

namespace mdf_bench {

/// How long is measured.
struct Settings {
  int rounds;                ///< of each side of a comparison; medians need nine
  double round_nanoseconds;  ///< at least
};

/// As the command line says, which is read before anything is registered.
const Settings& settings();

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_SETTINGS_H_
