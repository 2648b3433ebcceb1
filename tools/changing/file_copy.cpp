#include "file_copy.h"

#include <mdf_writer/plan/texts.h>
#include <mdf_writer/stream/blocks.h>

#include <array>
#include <string>

#include "block_copy.h"
#include "content_choice.h"
#include "copy_contents.h"
#include "copy_failure.h"
#include "data_copy.h"
#include "event_choice.h"
#include "fileblocks/fhblock.h"
#include "fileblocks/hdblock.h"
#include "framework/wire.h"
#include "new_reductions.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/offset_set.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::FHBLOCK;
using mdf_v4_10::HDBLOCK;
using mdf_v4_10::detail::storeLe;

namespace {

/// The walk over the blocks and the readers of the description find the same problems.
class EachOnce {
 public:
  explicit EachOnce(const FindingSink& report)
      : sink_([this, &report](const Finding& finding) {
          constexpr std::uint64_t codes = 256;
          const std::uint64_t key =
              1 + codes * finding.offset + static_cast<std::uint64_t>(finding.code);
          if (!told_.contains(key)) {
            told_.insert(key);
            report(finding);
          }
        }) {}

  const FindingSink& sink() const { return sink_; }

 private:
  OffsetSet told_;
  FindingSink sink_;
};

/// The identification of a finished file of the same version.
void writeIdentification(InputFile& file, NewBlocks& out) {
  constexpr std::size_t flags_at = 60;
  std::array<char, header_block_offset> bytes{};
  file.readAt(0, bytes.data(), bytes.size());
  std::string identification(bytes.data(), bytes.size());
  if (readIdentification(file).isUnfinished()) {
    identification.replace(0, 8, "MDF     ");
    storeLe(&identification[flags_at], std::uint32_t{0});
  }
  out.add(identification);
}

/// Where the next entry of the history is linked to: by the last one, or by the header block.
BlockCopy::Link endOfHistory(const BlockCopy& blocks) {
  BlockCopy::Link end{0, HDBLOCK::hd_fh_first};
  const BlockTable& table = blocks.table();
  std::uint32_t head = BlockTable::none;
  for (std::uint32_t block = 0; block < table.size(); ++block) {
    const BlockEntry& entry = table[block];
    if (entry.parent == 0 && entry.link == HDBLOCK::hd_fh_first && entry.letters() == "FH") {
      head = block;
    }
    if (head != BlockTable::none && entry.head == head) {
      end = {block, next_link};
    }
  }
  return end;
}

void addHistory(BlockCopy& blocks, const CopyOptions& options, NewBlocks& out) {
  using namespace mdf_writer;
  const BlockCopy::Link end = endOfHistory(blocks);
  const auto header = readRawBlock(blocks.file(), blocks.table()[end.block].offset);
  if (!header || linksThere(blocks.file(), *header) <= end.number) {
    return;
  }
  Blocks added(out.end());
  const auto comment = added.addXml(
      xmlComment("FHcomment", xmlElement("TX", options.history) + xmlElement("tool_id", "mdf") +
                                  xmlElement("tool_vendor", "") +
                                  xmlElement("tool_version", options.version)));
  const auto entry = added.add(FHBLOCK(comment, options.time, 0, 0));
  out.add(added.bytes());
  blocks.setLink(end, static_cast<std::uint64_t>(entry));
}

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
  writeIdentification(file, out);
  blocks.place(out);
  BlockWriter block_writer(out, options.form.value_or(DataForm()));
  data.write(block_writer);
  reductions.write(block_writer);
  addHistory(blocks, options, out);
  blocks.write(out);
  out.flush();
  return out.end();
}

}  // namespace mdf_tools
