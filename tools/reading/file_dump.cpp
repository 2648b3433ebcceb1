#include "file_dump.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "block_dump.h"
#include "input_file.h"
#include "output_buffer.h"
#include "raw_block.h"
#include "walker.h"

namespace mdf_tools {

namespace {

/// What was cut off while it was read may have been dumped as zeros, without any other finding.
void checkThatNothingWasCutOff(InputFile& file, const FindingSink& report) {
  const std::uint64_t size = file.sizeNow();
  if (size < file.size()) {
    report({size, "expected the file to keep its " + std::to_string(file.size()) +
                      " bytes while it is read, found " + std::to_string(size)});
  }
}

}  // namespace

void dumpFile(InputFile& file, OutputBuffer& output, const FindingSink& report) {
  const std::vector<std::uint64_t> offsets = walkBlocks(file, report);
  std::ostream os(&output);
  dumpIdentification(file, os);
  const std::ios_base::fmtflags format = os.flags();
  for (const std::uint64_t offset : offsets) {
    if (output.error() != 0) {
      return;
    }
    if (const auto block = readRawBlock(file, offset)) {
      os.flags(format);
      dumpBlock(file, *block, os, report);
    }
  }
  output.flush();
  checkThatNothingWasCutOff(file, report);
}

}  // namespace mdf_tools
