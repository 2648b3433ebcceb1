#include "support/comparison.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "support/settings.h"

namespace mdf_bench {

namespace {

double timeOf(const Batch& batch, std::size_t times) {
  const double start = threadTime();
  batch(times);
  return threadTime() - start;
}

/// Often enough for the clock's own time not to matter.
std::size_t timesPerRound(const Sides& sides) {
  std::size_t times = 1;
  while (timeOf(sides.baseline, times) < settings.round_nanoseconds) {
    times *= 2;
  }
  sides.subject(times);
  return times;
}

void checkSides(const Sides& sides, const std::string& name) {
  sides.baseline(1);
  sides.subject(1);
  require(sides.is_right(), name);
}

void report(benchmark::State& state, const Case& what, double subject, double baseline) {
  state.counters["nanoseconds"] = subject;
  state.counters["baseline"] = baseline;
  state.counters["measured"] = what.kind == Limit::times ? subject / baseline : subject;
  state.counters["limit"] = what.limit;
  state.SetLabel(what.baseline);
}

void runRounds(benchmark::State& state, const Case& what, const Sides& sides) {
  checkSides(sides, what.name);
  const std::size_t times = timesPerRound(sides);
  std::vector<double> subject;
  std::vector<double> baseline;
  for (auto round : state) {
    (void)round;
    const bool subject_first = subject.size() % 2 == 0;
    if (subject_first) {
      subject.push_back(timeOf(sides.subject, times));
    }
    baseline.push_back(timeOf(sides.baseline, times));
    if (!subject_first) {
      subject.push_back(timeOf(sides.subject, times));
    }
    state.SetIterationTime(subject.back() * 1e-9);
  }
  checkSides(sides, what.name);
  const double units = static_cast<double>(times * sides.units);
  report(state, what, median(subject) / units, median(baseline) / units);
}

}  // namespace

double threadTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void require(bool right, const std::string& what) {
  if (!right) {
    (void)std::fprintf(stderr, "%s: the result is wrong\n", what.c_str());
    std::exit(1);
  }
}

void compare(const Case& what, const std::function<Sides()>& make) {
  benchmark::RegisterBenchmark(
      what.name.c_str(), [what, make](benchmark::State& state) { runRounds(state, what, make()); })
      ->UseManualTime()
      ->Iterations(settings.rounds);
}

void measure(const Case& what, const std::function<double()>& take) {
  benchmark::RegisterBenchmark(what.name.c_str(), [what, take](benchmark::State& state) {
    double figure = 0;
    for (auto once : state) {
      (void)once;
      figure = take();
    }
    state.counters["measured"] = figure;
    state.counters["limit"] = what.limit;
    state.SetLabel(what.baseline);
  })->Iterations(1);
}

}  // namespace mdf_bench
