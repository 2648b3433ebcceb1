#ifndef MDF_TOOLS_CHECKING_FILE_CHECK_H_
#define MDF_TOOLS_CHECKING_FILE_CHECK_H_

#include <cstdint>
#include <vector>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// What was found out of the records of a data group by reading all its data.
struct KnownRecords {
  std::uint64_t data_group;
  std::uint64_t bytes;                ///< of the data, all of it whole records
  std::vector<std::uint64_t> counts;  ///< of each channel group
};

/// Checks a file of any version of MDF 4, by any program, and reports what is wrong as it is found.
/// Returns how many blocks it has checked. Time and memory are proportional to the file and to what
/// its zipped data holds.
/// @param known records that are not read again where the file states of them what was found.
std::uint64_t checkFile(InputFile& file, const FindingSink& report,
                        const std::vector<KnownRecords>& known = {});

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_FILE_CHECK_H_
