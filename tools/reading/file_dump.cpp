#include "file_dump.h"

#include <ostream>
#include <vector>

#include "block_dump.h"
#include "input_file.h"
#include "output_buffer.h"
#include "walker.h"

namespace mdf_tools {

void dumpFile(InputFile& file, OutputBuffer& output, const FindingSink& report) {
  const std::vector<RawBlock> blocks = walkBlocks(file, report);
  std::ostream identification(&output);
  dumpIdentification(file, identification);
  for (const RawBlock& block : blocks) {
    if (output.error() != 0) {
      return;
    }
    std::ostream os(&output);
    dumpBlock(file, block, os, report);
  }
  output.flush();
}

}  // namespace mdf_tools
