#ifndef MDF_TOOLS_PRINTING_INFO_H_
#define MDF_TOOLS_PRINTING_INFO_H_

#include <ostream>

#include "reader/blocks/finding.h"
#include "reader/summary/file_summary.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

/// Prints what a file is and what is in it as a page for people; for programs see fileAsJson().
void printInfo(InputFile& file, Depth depth, std::ostream& out, const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_INFO_H_
