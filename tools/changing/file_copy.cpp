#include "file_copy.h"

#include <string>

#include "block_copy.h"
#include "content_choice.h"
#include "copy_contents.h"
#include "copy_failure.h"
#include "data_copy.h"
#include "event_choice.h"
#include "file_frame.h"
#include "new_reductions.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// What the file's end cuts off of these makes no sense any more, unlike texts and links.
void leaveOutWhatIsTorn(BlockCopy& blocks) {
  constexpr std::string_view types = "AT EV MD CG CN CC CA SR";
  for (std::uint32_t block = 0; block < blocks.table().size(); ++block) {
    const BlockEntry& entry = blocks.table()[block];
    const auto raw = isAmongTargets(types, entry.letters())
                         ? readRawBlock(blocks.file(), entry.offset)
                         : std::nullopt;
    if (raw && !isWhole(blocks.file(), *raw)) {
      blocks.leaveOut(block);
    }
  }
}

}  // namespace

std::uint64_t copyFile(InputFile& file, const CopyOptions& options, mdf_writer::Output& output,
                       const FindingSink& report, const NoteSink& note) {
  const EachOnce each_once(report);
  BlockCopy blocks(file, each_once.sink());
  if (blocks.table().size() == 0) {
    throw CopyFailure("it has no header block");
  }
  leaveOutWhatIsTorn(blocks);
  for (const std::string& letters : options.without) {
    blocks.leaveOut(letters);
  }
  if (options.limits.from || options.limits.to) {
    leaveOutEvents(blocks, options.limits, each_once.sink());
  }
  CopyContents contents(blocks, options, each_once.sink(), note);
  contents.choose();
  DataCopy data(blocks, contents, options, each_once.sink(), note);
  data.plan();
  NewReductions reductions(blocks, contents, options, each_once.sink(), note);
  if (!options.reductions.empty()) {
    reductions.plan();
  }
  leaveOutEventsOfNothing(blocks);
  blocks.choose();
  if (contents.hasChoice()) {
    leaveOutAttachmentsOfNothing(blocks);
    blocks.choose();
  }
  NewBlocks out(output);
  out.add(identificationOf(file));
  blocks.place(out);
  BlockWriter block_writer(out, options.form.value_or(DataForm()));
  data.write(block_writer);
  reductions.write(block_writer);
  addHistory(blocks, {options.time, options.history, options.version}, out);
  blocks.write(out);
  out.flush();
  return out.end();
}

}  // namespace mdf_tools
