#ifndef MDF_BENCH_SUPPORT_COMPARISON_H_
#define MDF_BENCH_SUPPORT_COMPARISON_H_

#ifndef __OPTIMIZE__
#error "figures of a build without optimisation say nothing: use the preset bench"
#endif

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace mdf_bench {

/// Does a thing so many times in a row.
using Batch = std::function<void(std::size_t times)>;

/// Two ways of doing the same. What they need is made before, and grows no more.
struct Sides {
  Batch subject;
  Batch baseline;
  /// Whether both have done what they should; called once before and once after all rounds.
  std::function<bool()> is_right;
  /// What is counted as one in the nanoseconds that are reported: the blocks of one time.
  std::size_t units = 1;
};

/// What a comparison's limit is for: the ratio of the two times, or the subject's time itself.
enum class Limit { times, nanoseconds };

struct Case {
  std::string name;      ///< "group/case"
  std::string baseline;  ///< in words; for a figure without one, its unit in parentheses
  double limit;          ///< that the figure must not exceed
  Limit kind = Limit::times;
};

/// Registers a comparison. `make` is called when its turn comes, and what it made is gone before
/// the next one's turn. The two sides alternate, and the median of each side's rounds counts; the
/// time is the CPU time of the thread, so that other work on the machine disturbs as little as
/// possible.
void compare(const Case& what, const std::function<Sides()>& make);

/// Registers a figure with a limit of its own, in place of a baseline.
void measure(const Case& what, const std::function<double()>& take);

double median(std::vector<double> values);

/// What each program registers.
void registerCases();

/// CPU time that the calling thread has had, in nanoseconds.
double threadTime();

/// Ends the program with a message when a result is not what it should be.
void require(bool right, const std::string& what);

}  // namespace mdf_bench

#endif  // MDF_BENCH_SUPPORT_COMPARISON_H_
