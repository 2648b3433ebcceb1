#ifndef MDF_TOOLS_DRAWING_BLOCK_JSON_H_
#define MDF_TOOLS_DRAWING_BLOCK_JSON_H_

#include <cstdint>
#include <ostream>

#include "reading/file_dump.h"
#include "reading/finding.h"

namespace mdf_tools {

class InputFile;

/// Writes the selected blocks as JSON, each on a line of its own, with up to `most_bytes` of text
/// and of values.
void writeBlocksAsJson(InputFile& file, std::ostream& os, std::uint64_t most_bytes,
                       const FindingSink& report, const BlockSelection& selection = {});

}  // namespace mdf_tools

#endif  // MDF_TOOLS_DRAWING_BLOCK_JSON_H_
