#ifndef MDF_TOOLS_RECORDING_STOP_REQUEST_H_
#define MDF_TOOLS_RECORDING_STOP_REQUEST_H_

namespace mdf_tools {

/// From now on Ctrl-C (SIGINT), SIGTERM and a closed terminal (SIGHUP, unless it is ignored as
/// under nohup) do not end the program but ask it to stop. A file that grows beyond the allowed
/// size does not end it either: the write fails.
void watchForStopRequest();

bool stopRequested();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_STOP_REQUEST_H_
