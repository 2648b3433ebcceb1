#include "dumped.h"

#include <ostream>

#include "c_file.h"
#include "printing/file_dump.h"
#include "printing/output_buffer.h"
#include "reader/bytes/input_file.h"
#include "support/allocation_counter.h"
#include "temp_file.h"

namespace mdf_tests {

std::string findingLine(const mdf_reader::Finding& finding) {
  return std::to_string(finding.offset) + ": " + finding.sentence + "\n";
}

Dumped dumpedFile(const std::string& path, std::size_t allocation_limit) {
  const CFile printed = temporaryFile();
  mdf_reader::InputFile file(path);
  mdf_tools::OutputBuffer output(printed.get(), mdf_tools::OutputBuffer::Bytes::as_they_are);
  std::ostream os(&output);
  Dumped result;
  {
    const AllocationLimit limit(allocation_limit);
    mdf_tools::dumpFile(file, os, [&](const mdf_reader::Finding& finding) {
      result.findings += findingLine(finding);
    });
  }
  output.flush();
  result.output = contentOf(printed.get());
  return result;
}

Dumped dumpedBytes(const std::string& bytes) {
  const TempFile file(bytes);
  return dumpedFile(file.path(), 1 << 20);
}

}  // namespace mdf_tests
