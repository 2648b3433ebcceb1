#ifndef MDF_TOOLS_CHANGING_JOIN_REPORT_H_
#define MDF_TOOLS_CHANGING_JOIN_REPORT_H_

#include <string>

#include "file_join.h"

namespace mdf_tools {

/// What was joined, in lines: the new file, then the files in their order, each with where its
/// times are and what is between it and the files before; then the notes.
std::string joinText(const std::string& output, const JoinSummary& summary);

/// The same as a line of JSON.
std::string joinJson(const std::string& output, const JoinSummary& summary);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOIN_REPORT_H_
