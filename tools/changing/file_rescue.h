#ifndef MDF_TOOLS_CHANGING_FILE_RESCUE_H_
#define MDF_TOOLS_CHANGING_FILE_RESCUE_H_

#include <mdf_writer/files/output.h>

#include <string>
#include <vector>

#include "copy_options.h"
#include "finishing.h"
#include "reader/blocks/finding.h"
#include "record_rescue.h"
#include "relinking.h"
#include "value_offsets.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// An empty file that can be read by its path while it is written.
struct Scratch {
  mdf_writer::Output& output;
  std::string path;
};

/// What was done to a damaged file.
struct Rescue {
  Finishing finishing;
  Relinking relinking = {};
  std::vector<SkippedRecords::Gap> skipped = {};  ///< bytes between records
  std::vector<OffsetsSet> offsets = {};
};

/// Writes a file of what there is in a damaged one. Blocks that no link leads to are put back where
/// they belong. Then it goes by what the data shows instead of what the blocks state of it, as if
/// the file had not been finished, and copies what can be reached. Reports what is lost, and what
/// is still wrong with the new file. The scratch holds the file's bytes meanwhile.
/// @throws CopyFailure where the outputs take no more, or the blocks are too many for a copy.
/// @throws Unreadable where nothing can be saved; then nothing was written to the output.
Rescue rescueFile(InputFile& file, const Scratch& scratch, const CopyOptions& options,
                  const Scratch& output, const FindingSink& report);

/// Writes a finished file of one that was not finished. Where that alone would not make it whole,
/// it is rescued. Reports what is lost, and what is still wrong with the new file.
/// @throws CopyFailure, Unreadable as rescueFile().
Rescue finishFile(InputFile& file, const Scratch& scratch, const CopyOptions& options,
                  const Scratch& output, const FindingSink& report);

/// The same in the file itself, as far as that is certain: it can be interrupted and done again.
/// Its data is read once, unless values of variable length stand apart from their records.
Rescue finishInPlace(InputFile& file, const Scratch& same, const FindingSink& report);

/// Reports what is wrong with a file, but for notes.
/// @param known see checkFile().
void findProblems(InputFile& file, const FindingSink& report,
                  const std::vector<KnownRecords>& known = {});

/// Writes all bytes of a file.
/// @throws CopyFailure where the output takes no more.
void copyBytes(InputFile& file, mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_FILE_RESCUE_H_
