#ifndef MDF_TOOLS_CHANGING_RECORD_RESCUE_H_
#define MDF_TOOLS_CHANGING_RECORD_RESCUE_H_

#include <mdf_writer/files/output.h>

#include <cstdint>
#include <vector>

#include "finishing.h"

namespace mdf_tools {

/// What of some data was left out.
struct SkippedRecords {
  /// Bytes between records that are none themselves.
  struct Gap {
    std::uint64_t offset;  ///< in the file
    std::uint64_t bytes;
  };
  std::vector<Gap> gaps;
  std::vector<Finishing::Cut> cuts;
};

/// Writes data whose records cannot be read to their end once more after the end of the file,
/// without what lies between the records, and has its link lead there.
/// @param output the same file.
/// @throws CopyFailure where it takes no more.
SkippedRecords skipDamagedRecords(InputFile& file, const std::vector<Finishing::Stuck>& stuck,
                                  mdf_writer::Output& output);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_RECORD_RESCUE_H_
