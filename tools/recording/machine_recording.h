#ifndef MDF_TOOLS_RECORDING_MACHINE_RECORDING_H_
#define MDF_TOOLS_RECORDING_MACHINE_RECORDING_H_

#include "machine.h"
#include "recorder.h"

namespace mdf_tools {

/// Records the signals of this machine. Lines on standard input and SIGUSR1 become markers, and
/// what was missed an event.
/// @param duration in seconds; 0 for until it is asked to stop.
void recordMachine(const MachineOptions& machine_options, double duration, RecorderOptions options,
                   const std::string& tool_version);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_MACHINE_RECORDING_H_
