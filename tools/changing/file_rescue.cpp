#include "file_rescue.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "block_mending.h"
#include "checking/file_check.h"
#include "copy_failure.h"
#include "file_copy.h"
#include "patching.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/unreadable.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Has the file say that it is not finished, and all open that shows in its data. Whether offsets
/// of values are open does not.
void openAll(InputFile& file, mdf_writer::Output& output) {
  constexpr unsigned all = 0x3f;
  constexpr std::uint64_t flags_at = 60;
  const Identification id = readIdentification(file);
  const unsigned offsets =
      id.isUnfinished() ? id.standard_flags & Identification::variable_length_offsets_open : 0;
  std::string flags(4, '\0');
  flags[0] = static_cast<char>(all | offsets);
  put(output, 0, "UnFinMF ");
  put(output, flags_at, flags);
}

void applyTo(mdf_writer::Output& output, const Finishing& finishing) {
  if (!apply(finishing, output)) {
    failToWrite(output);
  }
}

void change(const std::vector<NumberChange>& changes, mdf_writer::Output& output) {
  for (const NumberChange& each : changes) {
    put(output, each.at, numberBytes(each.number));
  }
}

/// Sets the links to what was found.
void putBack(const Relinking& relinking, mdf_writer::Output& output, const FindingSink& report) {
  for (const Relinking::PutBack& each : relinking.put_back) {
    change({{each.place, each.block.offset}}, output);
  }
  for (const Relinking::Block& block : relinking.lost) {
    report({Code::block_unreachable, block.offset, sentenceOf(block)});
  }
}

}  // namespace

void copyBytes(InputFile& file, mdf_writer::Output& output) {
  std::uint64_t at = 0;
  forEachPiece(file, 0, file.size(), [&](std::string_view piece) {
    put(output, at, piece);
    at += piece.size();
  });
}

void findProblems(InputFile& file, const FindingSink& report,
                  const std::vector<KnownRecords>& known) {
  const FindingSink but_notes = [&](const Finding& finding) {
    if (textOf(finding.code).severity != Severity::note) {
      report(finding);
    }
  };
  checkFile(file, but_notes, known);
}

namespace {

/// Whether lists or blocks of data are wrong, and not just what is in them.
bool isOfDataBlocks(Code code) {
  return (code >= Code::list_count_wrong && code <= Code::zip_type_unknown) ||
         code == Code::cycle_count_wrong || code == Code::data_with_links;
}

/// Copies what can be reached. Data whose blocks are wrong still is put into new ones.
void copyRepaired(InputFile& file, CopyOptions options, const Scratch& output,
                  const FindingSink& report) {
  const NoteSink no_notes = [](const std::string& /*note*/) {};
  std::vector<Finding> losses;
  const FindingSink keep = [&](const Finding& loss) { losses.push_back(loss); };
  copyFile(file, options, output.output, keep, no_notes);
  InputFile copy(output.path);
  bool is_data_right = true;
  findProblems(copy, [&](const Finding& problem) {
    is_data_right = is_data_right && !isOfDataBlocks(problem.code);
    losses.push_back(problem);
  });
  if (!is_data_right) {
    output.output.cut(0);
    options.form = DataForm();
    options.form->zip = Zip::none;
    copyFile(file, options, output.output, report, no_notes);
    losses.clear();
    InputFile again(output.path);
    findProblems(again, keep);
  }
  std::for_each(losses.begin(), losses.end(), report);
}

/// Finds out what a file needs to be finished. What is between records is left out before.
void finishWithoutGaps(const Scratch& scratch, Rescue& rescue, const FindingSink& report) {
  std::vector<Finding> losses;
  const FindingSink keep = [&](const Finding& loss) { losses.push_back(loss); };
  InputFile file(scratch.path);
  rescue.finishing = finishingOf(file, keep);
  if (!rescue.finishing.stuck.empty()) {
    SkippedRecords skipped = skipDamagedRecords(file, rescue.finishing.stuck, scratch.output);
    losses.clear();
    InputFile without_gaps(scratch.path);
    rescue.finishing = finishingOf(without_gaps, keep);
    auto& cuts = rescue.finishing.cuts;
    cuts.insert(cuts.end(), skipped.cuts.begin(), skipped.cuts.end());
    rescue.skipped = std::move(skipped.gaps);
  }
  for (const SkippedRecords::Gap& gap : rescue.skipped) {
    report({Code::bytes_not_read, gap.offset,
            "expected a record, found none in " + std::to_string(gap.bytes) +
                (gap.bytes == 1 ? " byte, which is" : " bytes, which are") + " left out"});
  }
  std::for_each(losses.begin(), losses.end(), report);
}

}  // namespace

Rescue rescueFile(InputFile& file, const Scratch& scratch, const CopyOptions& options,
                  const Scratch& output, const FindingSink& report) {
  Rescue rescue;
  copyBytes(file, scratch.output);
  change(mendedHeaders(file, report), scratch.output);
  InputFile mended(scratch.path);
  rescue.relinking = relinkingOf(mended);
  putBack(rescue.relinking, scratch.output, report);
  InputFile relinked(scratch.path);
  change(mendedLinks(relinked, report), scratch.output);
  openAll(file, scratch.output);
  finishWithoutGaps(scratch, rescue, report);
  if (rescue.finishing.counts.empty()) {
    throw Unreadable(file.name() + ": nothing can be saved: no channel group can be reached",
                     {Code::request_failed, 0, "no channel group"});
  }
  InputFile without_gaps(scratch.path);
  rescue.offsets = setValueOffsets(without_gaps, scratch.output, report);
  applyTo(scratch.output, rescue.finishing);
  InputFile finished(scratch.path);
  copyRepaired(finished, options, output, report);
  return rescue;
}

Rescue finishFile(InputFile& file, const Scratch& scratch, const CopyOptions& options,
                  const Scratch& output, const FindingSink& report) {
  std::vector<Finding> losses;
  bool is_whole = relinkingOf(file).put_back.empty();
  const FindingSink keep = [&](const Finding& loss) { losses.push_back(loss); };
  Finishing finishing;
  std::vector<OffsetsSet> offsets;
  if (is_whole) {
    finishing = finishingOf(file, keep);
    is_whole = finishing.stuck.empty();
  }
  if (is_whole) {
    copyBytes(file, output.output);
    offsets = setValueOffsets(file, output.output, keep);
    applyTo(output.output, finishing);
    InputFile finished(output.path);
    findProblems(finished, [&](const Finding& problem) {
      is_whole = is_whole && textOf(problem.code).severity != Severity::error;
      losses.push_back(problem);
    });
  }
  if (!is_whole) {
    output.output.cut(0);
    return rescueFile(file, scratch, options, output, report);
  }
  std::for_each(losses.begin(), losses.end(), report);
  return {finishing, {}, {}, offsets};
}

Rescue finishInPlace(InputFile& file, const Scratch& same, const FindingSink& report) {
  Rescue rescue;
  rescue.finishing = finishingOf(file, report);
  if (file.sizeNow() != file.size()) {
    throw CopyFailure("the file is still being written");
  }
  rescue.offsets = setValueOffsets(file, same.output, report);
  applyTo(same.output, rescue.finishing);
  InputFile finished(same.path);
  findProblems(finished, report, rescue.finishing.known);
  return rescue;
}

}  // namespace mdf_tools
