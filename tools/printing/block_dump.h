#ifndef MDF_TOOLS_PRINTING_BLOCK_DUMP_H_
#define MDF_TOOLS_PRINTING_BLOCK_DUMP_H_

#include <ostream>

#include "reader/blocks/block_fields.h"
#include "reader/blocks/finding.h"
#include "reader/blocks/raw_block.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Writes a line with offset and length of the identification, and the library's dump of it. Writes
/// nothing for a file that is too short for it.
void dumpIdentification(InputFile& file, std::ostream& os);

/// Writes a line with a block's offset, identifier, length and link count.
void writeHeadline(const BlockFields& fields, std::ostream& os);

/// Writes a line with a block's offset, identifier, length, link count and links as they are
/// stored, each with the format's name for it where there is one: "dg_data=744".
void writeHeadlineWithLinks(InputFile& file, const BlockFields& fields, std::ostream& os);
void writeIdentificationLine(std::ostream& os);

/// Writes the block's line, then the library's dump of the block, if the library knows its type and
/// the file holds all that its class reads. A header that does not fit its type is reported.
///
/// The dump of data leaves the stream in hexadecimal mode.
void dumpBlock(InputFile& file, const RawBlock& block, std::ostream& os, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_BLOCK_DUMP_H_
