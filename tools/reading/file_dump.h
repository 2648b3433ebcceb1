#ifndef MDF_TOOLS_READING_FILE_DUMP_H_
#define MDF_TOOLS_READING_FILE_DUMP_H_

#include "finding.h"

namespace mdf_tools {

class InputFile;
class OutputBuffer;

/// Writes the identification and every block that the walk finds, in file order, and reports what
/// is wrong with the file. It ends early when the output fails.
void dumpFile(InputFile& file, OutputBuffer& output, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_READING_FILE_DUMP_H_
