#ifndef MDF_TOOLS_RECORDING_MARKERS_H_
#define MDF_TOOLS_RECORDING_MARKERS_H_

#include <cstdint>
#include <string>

#include "line_input.h"
#include "recorder.h"

namespace mdf_tools {

/// Markers that are set while a recording runs: each line on a descriptor, and SIGUSR1.
class Markers {
 public:
  /// @param descriptor -1 for signals alone.
  explicit Markers(int descriptor) : lines_(descriptor) {}

  /// Waits so many nanoseconds at most for a marker.
  void wait(std::int64_t nanoseconds) { lines_.wait(nanoseconds); }

  /// Adds those that have come to a recording.
  void add(Recorder& recorder, std::int64_t now);

 private:
  void add(Recorder& recorder, std::int64_t now, std::string name, mdf_writer::Event::Cause cause);

  LineInput lines_;
  std::uint64_t count_ = 0;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_MARKERS_H_
