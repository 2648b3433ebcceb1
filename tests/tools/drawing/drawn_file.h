#ifndef MDF_TESTS_TOOLS_DRAWING_DRAWN_FILE_H_
#define MDF_TESTS_TOOLS_DRAWING_DRAWN_FILE_H_

#include <functional>
#include <ostream>
#include <sstream>
#include <string>

#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"
#include "tools/support/dumped.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {

/// What is written about a file with these bytes, and what is reported.
inline Dumped drawn(const std::string& bytes,
                    const std::function<void(mdf_reader::InputFile& file, std::ostream& os,
                                             const mdf_reader::FindingSink& report)>& draw) {
  const TempFile file(bytes);
  mdf_reader::InputFile input(file.path());
  std::ostringstream os;
  Dumped result;
  draw(input, os,
       [&](const mdf_reader::Finding& finding) { result.findings += findingLine(finding); });
  result.output = os.str();
  return result;
}

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_DRAWING_DRAWN_FILE_H_
