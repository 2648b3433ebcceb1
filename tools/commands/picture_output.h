#ifndef MDF_TOOLS_COMMANDS_PICTURE_OUTPUT_H_
#define MDF_TOOLS_COMMANDS_PICTURE_OUTPUT_H_

#include <functional>
#include <string>

namespace mdf_tools {

/// Draws a picture and writes it to a file, or to standard output for "-". A file appears when it
/// is complete. Returns the exit code, and says on standard error what has gone wrong.
/// @param draw may throw DrawingFailed.
int writePicture(const std::string& path, const std::function<std::string()>& draw);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_PICTURE_OUTPUT_H_
