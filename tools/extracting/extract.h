#ifndef MDF_TOOLS_EXTRACTING_EXTRACT_H_
#define MDF_TOOLS_EXTRACTING_EXTRACT_H_

#include <cstddef>
#include <ostream>
#include <string>

#include "reader/blocks/finding.h"

namespace mdf_reader {
class InputFile;
}  // namespace mdf_reader

namespace mdf_tools {

using namespace mdf_reader;

struct ExtractOptions {
  std::string folder = ".";
  std::string name_pattern;  ///< with * ? [...] as in a shell, for stored names; "" for any
  bool replaces = false;     ///< existing files of the same name
  bool as_json = false;      ///< an object on each line of output
};

struct Extracted {
  std::size_t chosen = 0;   ///< attachments that the options choose
  bool is_complete = true;  ///< whether all of them that are in the file have been written
};

/// Writes the attachments that are embedded in a file to a folder, uncompressed, and a line for
/// each to `out`. Whatever the stored name says, the file is made in that folder; attachments with
/// the same name get numbers. What is damaged is reported and not written.
/// @throws Unwritable
Extracted extractAttachments(InputFile& file, const ExtractOptions& options, std::ostream& out,
                             const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_EXTRACTING_EXTRACT_H_
