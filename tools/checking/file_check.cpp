#include "file_check.h"

#include <array>
#include <string>
#include <string_view>

#include "array_check.h"
#include "block_check.h"
#include "data_check.h"
#include "field_check.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/survey.h"
#include "reader/blocks/walker.h"
#include "reader/bytes/input_file.h"
#include "reader/model/description.h"
#include "record_check.h"
#include "space.h"
#include "subject.h"
#include "text_check.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

bool hasHeaderBlock(InputFile& file) {
  const auto block = readRawBlock(file, header_block_offset);
  return block && block->name() == "##HD";
}

/// What the flags of an unfinished file say was left open, in words.
std::string openThings(const Identification& id) {
  struct Thing {
    unsigned flag;
    std::string_view words;
  };
  constexpr std::array<Thing, 7> things = {
      Thing{Identification::cycle_counters_open, "cycle counters"},
      Thing{Identification::reduction_counters_open, "cycle counters of sample reductions"},
      Thing{Identification::last_data_open, "length of the last data block"},
      Thing{Identification::last_reduction_open, "length of the last reduction data block"},
      Thing{Identification::last_list_open, "last data list"},
      Thing{Identification::variable_length_sizes_open, "sizes of variable-length data"},
      Thing{Identification::variable_length_offsets_open, "offsets into variable-length data"}};
  std::string words;
  for (const Thing& thing : things) {
    if ((id.standard_flags & thing.flag) != 0) {
      words += (words.empty() ? "" : ", ") + std::string(thing.words);
    }
  }
  return words.empty() ? "nothing that the standard flags name" : words;
}

void checkVersion(const Identification& id, const ProblemSink& report) {
  constexpr unsigned first = 400;
  constexpr unsigned last = 499;
  if (id.version < first || id.version > last) {
    report({Code::version_wrong, 0, "",
            "expected a version number from 400 to 499, found " + std::to_string(id.version)});
    return;
  }
  const std::string digits = std::to_string(id.version);
  const std::string text = digits.substr(0, 1) + '.' + digits.substr(1);
  if (id.version_text.substr(0, text.size()) != text) {
    report({Code::version_text_wrong, 0, "",
            "expected the version text " + quoted(text) + " for the version number " + digits +
                ", found " + quoted(id.version_text)});
  }
}

/// Whether there is a header block to go on from.
bool checkIdentification(InputFile& file, const ProblemSink& report) {
  if (const auto refusal = refusalOf(file)) {
    const Code code = refusal->is_other_version ? Code::version_wrong : Code::not_mdf;
    report({code, 0, "", refusal->sentence});
    return false;
  }
  const Identification id = readIdentification(file);
  const bool has_header = hasHeaderBlock(file);
  if (id.file_word != "MDF     " && !id.isUnfinished()) {
    report(
        {Code::not_mdf, 0, "",
         "expected \"MDF     \" or \"UnFinMF \" at the beginning, found " + quoted(id.file_word)});
    return has_header;
  }
  checkVersion(id, report);
  if (id.isUnfinished()) {
    report({Code::file_unfinished, 0, "",
            "expected a finished file, found an unfinished one; still open: " + openThings(id)});
  }
  // Files of other versions have something else there.
  if (!has_header && id.version >= 400 && id.version <= 499) {
    std::array<char, 4> bytes{};
    const std::size_t count = file.readAt(header_block_offset, bytes.data(), bytes.size());
    report({Code::header_missing, header_block_offset, "",
            "expected the header block \"##HD\", found " + quoted({bytes.data(), count})});
  }
  return has_header;
}

void checkBlock(Subject& subject, RecordCheck& records, std::uint32_t index) {
  const auto raw = readRawBlock(subject.file, subject.blocks[index].offset);
  if (!raw) {
    return;
  }
  const BlockFields block(subject.file, *raw);
  checkLinks(subject, block, index);
  const bool is_readable = checkShape(subject, block, index);
  const std::string_view type = raw->letters();
  if (subject.blocks[index].by_reference) {
    records.leave();
  }
  if (!is_readable) {
    return;
  }
  checkFields(subject, block, index);
  if (type == "TX" || type == "MD") {
    checkText(subject, *raw, index);
  } else if (type == "CN" || type == "CG" || type == "DG" || type == "SR") {
    records.take(block, index);
  } else if (type == "CA") {
    if (const auto elements = checkArray(subject, block, index)) {
      records.takeArray(block, index, *elements);
    }
  } else if (type == "DZ") {
    checkZippedData(subject, block, index);
  } else if (type == "DL") {
    checkDataList(subject, block, index);
  } else if (type == "AT") {
    checkAttachment(subject, block, index);
  }
}

void checkSpace(const Subject& subject) {
  const BlockTable& blocks = subject.blocks;
  const auto overlap = [&](std::uint64_t offset, std::uint64_t reached) {
    subject.report(Code::blocks_overlap, blocks.find(offset),
                   "expected the block to end before the next one, found " +
                       nameAt(blocks[blocks.find(reached)].letters(), reached) + " inside it");
  };
  const auto lost = [&](const RawBlock& block) {
    subject.sink({Code::block_unreachable, block.offset, "",
                  "expected a link to each block, found none to " +
                      nameAt(block.letters(), block.offset) + " of " +
                      std::to_string(block.length) + " bytes"});
  };
  const auto stray = [&](std::uint64_t offset, std::uint64_t count) {
    subject.sink({Code::bytes_outside_blocks, offset, "",
                  "expected each byte in a block, found " + std::to_string(count) +
                      (count == 1 ? " byte" : " bytes") + " outside"});
  };
  subject.space.review({overlap, lost, stray});
}

}  // namespace

std::uint64_t checkFile(InputFile& file, const ProblemSink& report) {
  if (!checkIdentification(file, report)) {
    return 0;
  }
  const BlockTable blocks = surveyBlocks(file);
  const bool is_unfinished = readIdentification(file).isUnfinished();
  const Space space(file, blocks, is_unfinished);
  Subject subject{file, blocks, space, is_unfinished, report, Allowance(file.size())};
  RecordCheck records(subject);
  for (std::uint32_t index = 0; index < blocks.size(); ++index) {
    checkBlock(subject, records, index);
  }
  records.leave();
  checkSpace(subject);
  return blocks.size();
}

}  // namespace mdf_tools
