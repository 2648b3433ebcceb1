#ifndef MDF_TOOLS_RECORDING_MACHINE_H_
#define MDF_TOOLS_RECORDING_MACHINE_H_

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "mdf_v4_10.h"
#include "signal_source.h"

namespace mdf_tools {

/// All signals that a Linux machine offers under /proc and /sys.
class Machine {
 public:
  /// `root` is the folder that holds proc and sys.
  explicit Machine(const std::filesystem::path& root = "/");

  /// No two signals have the same name.
  const std::vector<Signal>& signals() const { return signals_; }

  /// The bits of each signal's value, sampled now. `seconds` is as for SignalSource.
  const std::vector<mdf_v4_10::UINT64>& sample(double seconds);

  /// Name, system and processor architecture of the machine that the program runs on.
  static std::string description();

 private:
  std::vector<std::unique_ptr<SignalSource>> sources_;
  std::vector<Signal> signals_;
  std::vector<mdf_v4_10::UINT64> values_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_MACHINE_H_
