#ifndef MDF_TOOLS_RECORDING_NETWORK_SOURCE_H_
#define MDF_TOOLS_RECORDING_NETWORK_SOURCE_H_

#include <filesystem>
#include <string>
#include <vector>

#include "signal_source.h"
#include "text_file.h"

namespace mdf_tools {

/// Bytes and packets that each network interface has received and sent, from /proc/net/dev.
class NetworkSource : public SignalSource {
 public:
  explicit NetworkSource(const std::filesystem::path& root);
  void sample(double seconds) override;

 private:
  TextFile file_;
  std::vector<std::string> interfaces_;  ///< each has four signals
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_NETWORK_SOURCE_H_
