#ifndef MDF_TOOLS_RECORDING_CANDUMP_SOURCE_H_
#define MDF_TOOLS_RECORDING_CANDUMP_SOURCE_H_

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "bus/bus_group.h"
#include "bus/candump_line.h"
#include "sample_lines.h"

namespace mdf_tools {

/// Makes samples from the lines of candump's log. Each kind of frame on each bus is a group.
class CandumpSource : public SampleLines {
 public:
  bool take(std::string_view line) override;
  Sample& sample() override { return sample_; }
  const std::vector<SignalGroup>& groups() const override { return groups_; }
  bool canBringGroups() const override { return true; }
  bool hasTimes() const override { return true; }
  std::optional<std::uint64_t> start() const override {
    return static_cast<std::uint64_t>(start_.value_or(0));
  }

 private:
  CandumpLine line_;
  BusGroupKinds kinds_;
  std::vector<SignalGroup> groups_;
  std::optional<std::int64_t> start_;
  std::uint16_t number_ = 0;  ///< of the frames so far
  Sample sample_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_CANDUMP_SOURCE_H_
