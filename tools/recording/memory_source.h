#ifndef MDF_TOOLS_RECORDING_MEMORY_SOURCE_H_
#define MDF_TOOLS_RECORDING_MEMORY_SOURCE_H_

#include <filesystem>
#include <string_view>
#include <vector>

#include "signal_source.h"
#include "text_file.h"

namespace mdf_tools {

/// Memory and swap space in KiB, from /proc/meminfo.
class MemorySource : public SignalSource {
 public:
  explicit MemorySource(const std::filesystem::path& root);
  void sample(double seconds) override;

 private:
  TextFile file_;
  std::vector<std::string_view> keys_;  ///< what /proc/meminfo calls each signal
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_MEMORY_SOURCE_H_
