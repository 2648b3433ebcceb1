#include "file_dump.h"

#include <algorithm>

#include "block_dump.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// What was cut off while it was read may have been shown as zeros, without any other finding.
void checkThatNothingWasCutOff(InputFile& file, const FindingSink& report) {
  const std::uint64_t size = file.sizeNow();
  if (size < file.size()) {
    report({Code::file_shrunk, size,
            "expected the file to keep its " + std::to_string(file.size()) +
                " bytes while it is read, found " + std::to_string(size)});
  }
}

void workOnIdentification(InputFile& file, const BlockSelection& selection, const BlockWork& work) {
  if (file.size() >= header_block_offset && selection.takes("ID")) {
    work.on_identification();
  }
}

}  // namespace

bool BlockSelection::takes(std::string_view letters) const {
  return types.empty() || std::find(types.begin(), types.end(), letters) != types.end();
}

void workOnBlocks(InputFile& file, const BlockSelection& selection, const BlockWork& work,
                  const std::ostream& os, const FindingSink& report) {
  const bool are_named = !selection.offsets.empty();
  const auto offsets = are_named ? selection.offsets : walkBlocks(file, report).offsets();
  if (!are_named) {
    workOnIdentification(file, selection, work);
  }
  constexpr std::uint64_t times = 4;
  WorkBudget budget(file.size(), times);
  bool is_told = false;
  for (const std::uint64_t offset : offsets) {
    if (!os.good()) {
      return;
    }
    if (offset == 0) {
      workOnIdentification(file, selection, work);
      continue;
    }
    const auto block = are_named ? findBlock(file, offset, report) : readRawBlock(file, offset);
    if (!block || !selection.takes(block->letters())) {
      continue;
    }
    if (are_named) {
      checkExtent(file, *block, report);
    }
    if (are_named || budget.take(std::min(block->length, file.sizeFrom(offset)))) {
      work.on_block(*block);
    } else if (!is_told) {
      is_told = true;
      reportOverlap(offset, report);
    }
  }
  checkThatNothingWasCutOff(file, report);
}

void dumpFile(InputFile& file, std::ostream& os, const FindingSink& report,
              const BlockSelection& selection) {
  const std::ios_base::fmtflags format = os.flags();
  workOnBlocks(file, selection,
               {[&] { dumpIdentification(file, os); },
                [&](const RawBlock& block) {
                  os.flags(format);
                  dumpBlock(file, block, os, report);
                }},
               os, report);
  os.flags(format);
}

void annotateFile(InputFile& file, std::ostream& os, const BlockForm& form,
                  const FindingSink& report, const BlockSelection& selection) {
  workOnBlocks(file, selection,
               {[&] { annotateIdentification(file, form, os); },
                [&](const RawBlock& block) { annotateBlock(file, block, form, os); }},
               os, report);
}

}  // namespace mdf_tools
