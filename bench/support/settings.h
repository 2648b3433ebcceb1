#ifndef MDF_BENCH_SUPPORT_SETTINGS_H_
#define MDF_BENCH_SUPPORT_SETTINGS_H_

namespace mdf_bench {

/// How long is measured.
struct Settings {
  int rounds;                ///< of each side of a comparison; medians need nine
  double round_nanoseconds;  ///< at least
};

inline constexpr Settings thorough = {15, 5e6};
inline constexpr Settings quick = {9, 1e6};

/// As the command line says, which is read before anything is registered.
inline Settings settings = thorough;

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_SETTINGS_H_
