#ifndef MDF_TOOLS_PRINTING_ANNOTATED_BYTES_H_
#define MDF_TOOLS_PRINTING_ANNOTATED_BYTES_H_

#include <cstdint>
#include <ostream>
#include <string>

#include "reader/blocks/block_fields.h"
#include "reader/blocks/raw_block.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// How blocks are shown.
struct BlockForm {
  bool with_bytes = true;          ///< each value next to its offset and its bytes
  std::uint64_t most_bytes = 256;  ///< of what follows the fields
};

/// Writes the line that dumpIdentification() begins with, then a line for each field.
void annotateIdentification(InputFile& file, const BlockForm& form, std::ostream& os);

/// Writes a line about the block, then one for each field of the header, each link and each field
/// of the data section, in the places where the format has them. What follows the fields comes
/// next: an element or 16 bytes a line, or a text. Of a block that is cut off everything is shown
/// that is there. Without the bytes the header is left to the first line, except for its reserved
/// bytes.
void annotateBlock(InputFile& file, const RawBlock& block, const BlockForm& form, std::ostream& os);

/// A number of 8 bytes as its kind says: "0.5", "12".
std::string shownElement(const char* bytes, FieldKind kind);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_ANNOTATED_BYTES_H_
