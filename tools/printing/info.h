#ifndef MDF_TOOLS_PRINTING_INFO_H_
#define MDF_TOOLS_PRINTING_INFO_H_

#include <ostream>

#include "json_output.h"
#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// What a file is and what is in it, from its headers alone: data sections are not read. As a page
/// for people, and as an object for programs.
void printInfo(InputFile& file, std::ostream& out, const FindingSink& report);
Json infoAsJson(InputFile& file, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_INFO_H_
