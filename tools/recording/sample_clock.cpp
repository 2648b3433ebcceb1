#include "sample_clock.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "stop_request.h"

namespace mdf_tools {

using mdf_v4_10::UINT64;

namespace {

constexpr double nanoseconds_per_second = 1e9;

/// A sample due at the very end of the duration no longer belongs to it, nor one that rounding puts
/// just before the end.
UINT64 samplesIn(double duration, double rate) {
  if (duration == 0) {
    return std::numeric_limits<UINT64>::max();
  }
  return static_cast<UINT64>(std::max(1.0, std::ceil(duration * rate - 1e-6)));
}

}  // namespace

SampleSchedule::SampleSchedule(double rate, double duration)
    : rate_(rate),
      end_(std::llround(duration * nanoseconds_per_second)),
      samples_(samplesIn(duration, rate)) {}

std::int64_t SampleSchedule::due() const { return over() ? end_ : dueTime(next_); }

std::int64_t SampleSchedule::dueTime(UINT64 sample) const {
  return std::llround(static_cast<double>(sample) / rate_ * nanoseconds_per_second);
}

void SampleSchedule::skipMissed(std::int64_t now) {
  const auto estimate =
      static_cast<UINT64>(static_cast<double>(now) / nanoseconds_per_second * rate_);
  UINT64 newest = std::clamp(estimate, next_, samples_);
  while (newest > next_ && dueTime(newest) > now) {
    --newest;
  }
  while (newest < samples_ && dueTime(newest + 1) <= now) {
    ++newest;
  }
  missed_ += newest - next_;
  next_ = newest;
}

SampleClock::SampleClock(const std::vector<double>& rates, double duration) {
  for (const double rate : rates) {
    schedules_.emplace_back(rate, duration);
  }
}

std::optional<std::size_t> SampleClock::waitForSample(
    const std::function<bool(std::int64_t)>& wait) {
  while (!stopRequested()) {
    const auto next = std::min_element(
        schedules_.begin(), schedules_.end(), [](const SampleSchedule& a, const SampleSchedule& b) {
          return std::make_pair(a.over(), a.due()) < std::make_pair(b.over(), b.due());
        });
    const std::int64_t now = nanoseconds();
    if (now < next->due()) {
      if (!wait(next->due() - now)) {
        return std::nullopt;
      }
    } else if (next->over()) {
      return std::nullopt;
    } else {
      next->skipMissed(now);
      if (!next->over()) {
        next->take();
        return static_cast<std::size_t>(next - schedules_.begin());
      }
    }
  }
  return std::nullopt;
}

std::int64_t SampleClock::now() {
  last_ = std::max(nanoseconds(), last_ + 1);
  return last_;
}

UINT64 SampleClock::missed() const {
  UINT64 missed = 0;
  for (const SampleSchedule& schedule : schedules_) {
    missed += schedule.missed();
  }
  return missed;
}

std::int64_t SampleClock::nanoseconds() const {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start_).count();
}

}  // namespace mdf_tools
