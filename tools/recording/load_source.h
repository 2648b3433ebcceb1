#ifndef MDF_TOOLS_RECORDING_LOAD_SOURCE_H_
#define MDF_TOOLS_RECORDING_LOAD_SOURCE_H_

#include <filesystem>

#include "signal_source.h"
#include "text_file.h"

namespace mdf_tools {

/// How many tasks run or wait to run, averaged over 1, 5 and 15 minutes, from /proc/loadavg.
class LoadSource : public SignalSource {
 public:
  explicit LoadSource(const std::filesystem::path& root);
  void sample(double seconds) override;

 private:
  TextFile file_;
  Pace pace_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_LOAD_SOURCE_H_
