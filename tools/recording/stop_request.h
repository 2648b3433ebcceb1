#ifndef MDF_TOOLS_RECORDING_STOP_REQUEST_H_
#define MDF_TOOLS_RECORDING_STOP_REQUEST_H_

namespace mdf_tools {

/// From now on Ctrl-C (SIGINT), SIGTERM and a closed terminal (SIGHUP, unless it is ignored as
/// under nohup) do not end the program but ask it to stop, and SIGUSR1 asks for a marker. A file
/// that grows beyond the allowed size and a pipe that nobody reads do not end it either: the write
/// fails.
void watchForRequests();

bool stopRequested();

/// Whether a marker was asked for since the last call.
bool takeMarkerRequest();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_STOP_REQUEST_H_
