#ifndef MDF_TOOLS_IMPORTING_LOG_IMPORT_H_
#define MDF_TOOLS_IMPORTING_LOG_IMPORT_H_

#include <deque>

#include "importer.h"
#include "log_source.h"

namespace mdf_tools {

/// Makes a measurement file of logs of buses, one after another, that starts with the first frame.
/// Memory does not grow with their length.
/// @throws ImportFailure
Imported importLogs(std::deque<LineReader>& files, const ImportOptions& options,
                    mdf_writer::Plan& plan, mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_LOG_IMPORT_H_
