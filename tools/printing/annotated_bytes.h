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

/// Writes the line that dumpIdentification() begins with, then a line for each field: offset in the
/// file, bytes, name and value.
void annotateIdentification(InputFile& file, std::ostream& os);

/// Writes the line that dumpBlock() begins with, then a line for each field of the header, each
/// link and each field of the data section: offset in the file, bytes, name and value. Then comes
/// what follows the fields, an element or 16 bytes a line, up to `most_bytes`. Of a block that is
/// cut off, everything that is there is shown.
void annotateBlock(InputFile& file, const RawBlock& block, std::uint64_t most_bytes,
                   std::ostream& os);

/// What an element after the fields is: the name with its index, and how its bytes are understood.
struct TailElement {
  std::string name;
  FieldKind kind;
};

/// The element at an index of a type whose tail has elements of 8 bytes.
TailElement tailElement(const BlockFields& block, std::uint64_t index);

/// A number of 8 bytes as its kind says: "0.5", "12".
std::string shownElement(const char* bytes, FieldKind kind);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_ANNOTATED_BYTES_H_
