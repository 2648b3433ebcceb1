#ifndef MDF_TOOLS_CHANGING_FILE_COPY_H_
#define MDF_TOOLS_CHANGING_FILE_COPY_H_

#include <mdf_writer/files/output.h>

#include <cstdint>

#include "copy_options.h"
#include "reader/blocks/finding.h"
#include "reader/columns/tables.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Writes a measurement file again: all that can be reached from its header block, as it stands but
/// for what the options ask for. What was not finished becomes a finished file of what can be read.
/// Returns the bytes of the copy. Memory does not grow with the data.
/// @throws CopyFailure
std::uint64_t copyFile(InputFile& file, const CopyOptions& options, mdf_writer::Output& output,
                       const FindingSink& report, const NoteSink& note);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_COPY_H_
