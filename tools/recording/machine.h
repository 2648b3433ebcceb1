#ifndef MDF_TOOLS_RECORDING_MACHINE_H_
#define MDF_TOOLS_RECORDING_MACHINE_H_

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "sample.h"
#include "signal_source.h"

namespace mdf_tools {

/// Which signals of a machine are recorded, and how often.
struct MachineOptions {
  double rate = 100;                    ///< in Hz
  std::map<std::string, double> rates;  ///< of single sources, by their names
  std::vector<std::string> patterns;    ///< for names of signals; all signals where there are none
};

/// All signals that a Linux machine offers under /proc and /sys, sampled in groups: one for each
/// source that has a rate of its own, and one for all others.
class Machine {
 public:
  static const std::vector<std::string>& sourceNames();

  /// `root` is the folder that holds proc and sys.
  /// @throws BadOption where a pattern matches no signal.
  explicit Machine(const MachineOptions& options, const std::filesystem::path& root = "/");

  /// What is recorded; no two signals have the same name. There is a group, if only an empty one.
  std::vector<SignalGroup> groups() const;

  /// Of each group, in Hz.
  std::vector<double> rates() const;

  /// The values of a group's signals, sampled now, until the next call. `seconds` is as for
  /// SignalSource.
  const std::vector<mdf_v4_10::UINT64>& sample(std::size_t group, double seconds);

  /// Name, system and processor architecture of the machine that the program runs on.
  static std::string description();

 private:
  struct Source {
    std::unique_ptr<SignalSource> source;
    std::vector<std::size_t> chosen;  ///< of its signals
  };

  struct Group {
    SignalGroup channels;
    double rate;
    std::vector<Source> sources;
  };

  void dropEmptyGroups();

  std::vector<Group> groups_;
  std::vector<mdf_v4_10::UINT64> values_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_MACHINE_H_
