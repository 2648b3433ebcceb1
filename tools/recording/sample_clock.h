#ifndef MDF_TOOLS_RECORDING_SAMPLE_CLOCK_H_
#define MDF_TOOLS_RECORDING_SAMPLE_CLOCK_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "mdf_v4_10.h"

namespace mdf_tools {

/// Which sample is due when: sample k at k periods after the start, so that no error adds up. A
/// sample can be taken until the next one is due; then it is missed. Times are nanoseconds since
/// the start.
class SampleSchedule {
 public:
  /// `rate` in Hz, `duration` in seconds; a duration of 0 has no end.
  SampleSchedule(double rate, double duration);

  /// True when every sample of the duration was taken or missed.
  bool over() const { return next_ == samples_; }

  /// When the next sample is due; when all are over, the end of the duration.
  std::int64_t due() const;

  /// Passes over the samples that are missed now.
  void skipMissed(std::int64_t now);

  /// The next sample is being taken.
  void take() { ++next_; }

  mdf_v4_10::UINT64 missed() const { return missed_; }

 private:
  std::int64_t dueTime(mdf_v4_10::UINT64 sample) const;

  double rate_;
  std::int64_t end_;
  mdf_v4_10::UINT64 samples_;
  mdf_v4_10::UINT64 next_ = 0;
  mdf_v4_10::UINT64 missed_ = 0;
};

/// Waits for one sample after another, of several rates, on a clock that cannot be set.
class SampleClock {
 public:
  /// Time starts now.
  SampleClock(const std::vector<double>& rates, double duration);

  /// Waits until the next sample is to be taken and returns which rate's it is. Nothing when the
  /// duration is over, or at once when the recording is to be stopped.
  /// @param wait waits so many nanoseconds, or less; false ends the recording.
  std::optional<std::size_t> waitForSample(const std::function<bool(std::int64_t)>& wait);

  /// Nanoseconds since the start, more at each call.
  std::int64_t now();

  /// How many samples were missed so far, of all rates.
  mdf_v4_10::UINT64 missed() const;

 private:
  using Clock = std::chrono::steady_clock;

  std::int64_t nanoseconds() const;

  std::vector<SampleSchedule> schedules_;
  Clock::time_point start_ = Clock::now();
  std::int64_t last_ = -1;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_SAMPLE_CLOCK_H_
