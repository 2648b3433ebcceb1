#ifndef MDF_TOOLS_PRINTING_BLOCK_JSON_H_
#define MDF_TOOLS_PRINTING_BLOCK_JSON_H_

#include <cstdint>
#include <ostream>

#include "file_dump.h"
#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Writes the selected blocks as JSON, each on a line of its own, with up to `most_bytes` of text
/// and of values.
void writeBlocksAsJson(InputFile& file, std::ostream& os, std::uint64_t most_bytes,
                       const FindingSink& report, const BlockSelection& selection = {});

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_BLOCK_JSON_H_
