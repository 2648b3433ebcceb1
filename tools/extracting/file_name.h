#ifndef MDF_TOOLS_EXTRACTING_FILE_NAME_H_
#define MDF_TOOLS_EXTRACTING_FILE_NAME_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace mdf_tools {

/// A file name made of a name or path that stands in a measurement file and may be anything: what
/// follows the last '/' or '\', without control characters, and cut to the length that a file's
/// name may have. It is "attachment" when nothing is left, or only points.
std::string safeFileName(std::string_view stored);

/// A name that stands in a measurement file as a part of a file name: what separates folders, what
/// some file systems forbid and what controls a terminal is replaced, and a long name is cut.
std::string safeNamePart(std::string_view stored);

/// The same name with a number in front of its suffix: "log (2).txt".
std::string numbered(const std::string& name, std::size_t number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_EXTRACTING_FILE_NAME_H_
