#ifndef MDF_TOOLS_RECORDING_CPU_SOURCE_H_
#define MDF_TOOLS_RECORDING_CPU_SOURCE_H_

#include <array>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "mdf_v4_10.h"
#include "signal_source.h"
#include "text_file.h"

namespace mdf_tools {

/// How busy a CPU was, from the counters of /proc/stat. They count jiffies, hundredths of a second,
/// so a short span is too coarse: the value changes only when enough of them have passed.
class CpuUsage {
 public:
  /// User, nice, system, idle, iowait, irq, softirq and steal time in jiffies.
  using Counters = std::array<mdf_v4_10::UINT64, 8>;

  /// `shortest_span` is how many jiffies a value is to be taken from at least.
  CpuUsage(const Counters& counters, mdf_v4_10::UINT64 shortest_span);

  /// A counter that went back counts as not moved. When their sum went back, as after a CPU was
  /// taken away and came back, counting starts afresh.
  void update(const Counters& counters);

  /// 0 to 100; 0 as long as too little time has passed.
  float percent() const { return percent_; }

 private:
  Counters reference_;
  mdf_v4_10::UINT64 shortest_span_;
  float percent_ = 0;
};

/// Utilisation of the machine and of each CPU in per cent, from /proc/stat.
class CpuSource : public SignalSource {
 public:
  explicit CpuSource(const std::filesystem::path& root);
  void sample(double seconds) override;

 private:
  std::size_t find(std::string_view label);

  TextFile file_;
  Pace pace_;
  std::vector<std::string> labels_;
  std::vector<CpuUsage> usages_;
  std::size_t next_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_CPU_SOURCE_H_
