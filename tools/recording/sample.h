#ifndef MDF_TOOLS_RECORDING_SAMPLE_H_
#define MDF_TOOLS_RECORDING_SAMPLE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bus/bus_group.h"
#include "mdf_v4_10.h"
#include "signal_source.h"

namespace mdf_tools {

/// Signals that are sampled together: a channel group of the file.
struct SignalGroup {
  std::string name;
  std::vector<Signal> signals;
  bool has_gaps = false;                 ///< values may be missing
  std::optional<BusGroupKind> frames{};  ///< what its samples are in place of values
};

/// A frame with a copy of its data.
struct HeldFrame {
  HeldFrame(const BusFrame& held, std::uint16_t held_number)
      : frame(held), data(held.data), number(held_number) {
    frame.data = data;
    frame.bus = {};
  }
  ~HeldFrame() = default;
  HeldFrame(const HeldFrame&) = delete;
  HeldFrame& operator=(const HeldFrame&) = delete;

  BusFrame frame;  ///< without its bus
  std::string data;
  std::uint16_t number;  ///< in the log, modulo 65536
};

/// A value of each signal of a group at one time.
struct Sample {
  std::size_t group = 0;
  std::int64_t nanoseconds = 0;              ///< since the recording began
  std::vector<mdf_v4_10::UINT64> values;     ///< their bits
  std::vector<std::string> texts{};          ///< in place of those, as many; none without texts
  std::vector<bool> is_missing{};            ///< as many, of a group with gaps
  std::shared_ptr<const HeldFrame> frame{};  ///< of a group of frames, which has no values
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_SAMPLE_H_
