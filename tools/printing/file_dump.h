#ifndef MDF_TOOLS_PRINTING_FILE_DUMP_H_
#define MDF_TOOLS_PRINTING_FILE_DUMP_H_

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "annotated_bytes.h"
#include "reader/blocks/finding.h"
#include "reader/blocks/raw_block.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Which blocks of a file are wanted.
struct BlockSelection {
  /// Letters of the types, "ID" for the identification; none for all types.
  std::vector<std::string> types;
  /// Offsets of blocks, 0 for the identification; none for all that the walk finds.
  std::vector<std::uint64_t> offsets;

  bool takes(std::string_view letters) const;
};

/// What is done with the selected blocks. Either may be called only when the file has the bytes.
struct BlockWork {
  std::function<void()> on_identification;
  std::function<void(const RawBlock&)> on_block;
};

/// Does the work on the identification and on every selected block in file order, or in the order
/// of the offsets, and reports what is wrong with the file: the walk's findings when all blocks are
/// wanted, and offsets where no block is. It ends early when the output fails.
void workOnBlocks(InputFile& file, const BlockSelection& selection, const BlockWork& work,
                  const std::ostream& os, const FindingSink& report);

/// Writes the library's dump of the selected blocks.
void dumpFile(InputFile& file, std::ostream& os, const FindingSink& report,
              const BlockSelection& selection = {});

/// Writes the fields of the selected blocks as the format has them; see annotateBlock().
void annotateFile(InputFile& file, std::ostream& os, const BlockForm& form,
                  const FindingSink& report, const BlockSelection& selection = {});

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_FILE_DUMP_H_
