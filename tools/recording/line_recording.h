#ifndef MDF_TOOLS_RECORDING_LINE_RECORDING_H_
#define MDF_TOOLS_RECORDING_LINE_RECORDING_H_

#include <cstdint>
#include <memory>
#include <string>

#include "recorder.h"
#include "sample_lines.h"

namespace mdf_tools {

/// Records what comes in lines on standard input, until its end. SIGUSR1 becomes a marker. Without
/// times of their own, samples have the times at which they came.
/// @param duration in seconds; 0 for no end.
/// @returns how many lines were left out; the first of them was complained of.
std::uint64_t recordLines(std::unique_ptr<SampleLines> source, double duration,
                          RecorderOptions options, const std::string& tool_version);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_LINE_RECORDING_H_
