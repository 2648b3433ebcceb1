#ifndef MDF_TOOLS_CHECKING_FILE_CHECK_H_
#define MDF_TOOLS_CHECKING_FILE_CHECK_H_

#include <cstdint>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Checks a file of any version of MDF 4, by any program, and reports what is wrong as it is found.
/// Returns how many blocks it has checked. Time and memory are proportional to the file and to what
/// its zipped data holds.
std::uint64_t checkFile(InputFile& file, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_FILE_CHECK_H_
