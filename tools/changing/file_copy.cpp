#include "file_copy.h"

#include <string>

#include "block_copy.h"
#include "copy_failure.h"
#include "data_copy.h"
#include "event_choice.h"
#include "file_frame.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

std::uint64_t copyFile(InputFile& file, const CopyOptions& options, mdf_writer::Output& output,
                       const FindingSink& report, const NoteSink& note) {
  const EachOnce each_once(report);
  BlockCopy blocks(file, each_once.sink());
  if (blocks.table().size() == 0) {
    throw CopyFailure("it has no header block");
  }
  for (const std::string& letters : options.without) {
    blocks.leaveOut(letters);
  }
  if (options.limits.from || options.limits.to) {
    leaveOutEvents(blocks, options.limits, each_once.sink());
  }
  DataCopy data(blocks, options, each_once.sink(), note);
  data.plan();
  leaveOutEventsOfNothing(blocks);
  blocks.choose();
  NewBlocks out(output);
  out.add(identificationOf(file));
  blocks.place(out);
  BlockWriter block_writer(out, options.form.value_or(DataForm()));
  data.write(block_writer);
  addHistory(blocks, {options.time, options.history, options.version}, out);
  blocks.write(out);
  out.flush();
  return out.end();
}

}  // namespace mdf_tools
