#ifndef MDF_TOOLS_PRINTING_INFO_H_
#define MDF_TOOLS_PRINTING_INFO_H_

#include <ostream>

#include "file_summary.h"
#include "json_output.h"
#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// What a file is and what is in it: as a page for people, and as an object for programs.
void printInfo(InputFile& file, Depth depth, std::ostream& out, const FindingSink& report);
Json infoAsJson(InputFile& file, Depth depth, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_INFO_H_
