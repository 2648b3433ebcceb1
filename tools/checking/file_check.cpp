#include "file_check.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "array_check.h"
#include "block_check.h"
#include "data_check.h"
#include "field_check.h"
#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/offset_set.h"
#include "reader/data/data_file.h"
#include "reader/values/conversion.h"
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

std::string openThings(const Identification& id) {
  std::string words;
  for (const std::string& part : id.openParts()) {
    words += (words.empty() ? "" : ", ") + part;
  }
  if (words.empty()) {
    words = "nothing that the standard flags name";
  }
  return id.custom_flags == 0 ? words : words + "; custom flags " + std::to_string(id.custom_flags);
}

void checkVersion(const Identification& id, const FindingSink& report) {
  if (!id.isVersion4()) {
    report({Code::version_wrong, 0,
            "expected a version number from 400 to 499, found " + std::to_string(id.version)});
    return;
  }
  const std::string digits = std::to_string(id.version);
  const std::string text = digits.substr(0, 1) + '.' + digits.substr(1);
  if (id.version_text.substr(0, text.size()) != text) {
    report({Code::version_text_wrong, 0,
            "expected the version text " + quoted(text) + " for the version number " + digits +
                ", found " + quoted(id.version_text)});
  }
}

/// Whether there is a header block to go on from.
bool checkIdentification(InputFile& file, const FindingSink& report) {
  if (const auto refusal = refusalOf(file)) {
    report(refusal->finding());
    return false;
  }
  const Identification id = readIdentification(file);
  const bool has_header = hasHeaderBlock(file);
  if (!id.isFinished() && !id.isUnfinished()) {
    report(
        {Code::not_mdf, 0,
         "expected \"MDF     \" or \"UnFinMF \" at the beginning, found " + quoted(id.file_word)});
    return has_header;
  }
  checkVersion(id, report);
  if (id.isUnfinished()) {
    report({Code::file_unfinished, 0,
            "expected a finished file, found an unfinished one; still open: " + openThings(id)});
  }
  // Files of other versions have something else there.
  if (!has_header && id.isVersion4()) {
    std::array<char, 4> bytes{};
    const std::size_t count = file.readAt(header_block_offset, bytes.data(), bytes.size());
    report({Code::header_missing, header_block_offset,
            "expected the header block \"##HD\", found " + quoted({bytes.data(), count})});
  }
  return has_header;
}

/// Lets every finding through but those of readers that tell of a block once more what its rules
/// have told.
class Reports {
 public:
  explicit Reports(const FindingSink& out)
      : out_(out), sink_([this](const Finding& finding) { take(finding); }) {}
  ~Reports() = default;
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;

  const FindingSink& sink() const { return sink_; }

  void takeFromReader(const Finding& finding, const Subject& subject) {
    if (!told_.contains(keyOf(finding)) && isAboutData(finding.code) &&
        !(isAboutArrays(finding.code) && hasToldBelow(subject, finding.offset))) {
      take(finding);
    }
  }

 private:
  /// What else readers find, the blocks' own rules say.
  static bool isAboutData(Code code) {
    return (code >= Code::record_id_size_wrong && code <= Code::remote_master_missing) ||
           code == Code::zip_type_unknown || code == Code::work_limited;
  }

  static bool isAboutArrays(Code code) {
    return code == Code::channel_outside_record || code == Code::array_unreadable;
  }

  /// Whether something was told of one of the first blocks below a channel.
  bool hasToldBelow(const Subject& subject, std::uint64_t channel) const {
    constexpr std::uint32_t most = 16;
    const std::uint32_t index = subject.blocks.find(channel);
    if (index == BlockTable::none) {
      return false;
    }
    const std::uint32_t end = std::min(subject.blocks[index].end, index + most);
    for (std::uint32_t i = index + 1; i < end; ++i) {
      if (told_.contains(keyOf(subject.blocks[i].offset))) {
        return true;
      }
    }
    return false;
  }

  static std::uint64_t keyOf(std::uint64_t offset) { return 1 + 256 * offset; }
  static std::uint64_t keyOf(const Finding& finding) {
    return keyOf(finding.offset) + 1 + static_cast<std::uint64_t>(finding.code);
  }

  void take(const Finding& finding) {
    told_.insert(keyOf(finding.offset));
    told_.insert(keyOf(finding));
    out_(finding);
  }

  const FindingSink& out_;
  FindingSink sink_;
  OffsetSet told_;  ///< offsets, and offsets with codes
};

/// Whether a conversion is that of a channel, and neither inverse nor a part of another.
bool isOfChannel(const Subject& subject, std::uint32_t index) {
  const std::uint32_t parent = subject.blocks[index].parent;
  return parent != BlockTable::none && subject.blocks[parent].letters() == "CN";
}

/// How a block is reached, or the one around a byte of data.
std::string pathTo(const Subject& subject, std::uint64_t offset) {
  const std::uint32_t index = subject.blocks.find(offset);
  const std::uint64_t around = index == BlockTable::none ? subject.space.blockAround(offset) : 0;
  const std::uint32_t found = around == 0 ? index : subject.blocks.find(around);
  return found == BlockTable::none ? "" : pathOf(subject.file, subject.blocks, found);
}

void checkBlock(Subject& subject, RecordCheck& records, Conversions& conversions,
                std::uint32_t index) {
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
    records.readWhatIsThere();
    return;
  }
  checkFields(subject, block, index);
  if (raw->type().contents == Contents::text) {
    checkText(subject, *raw, index);
  } else if (type == "CN" || type == "CG" || type == "DG" || type == "SR") {
    records.take(block, index);
  } else if (type == "CA") {
    if (const auto elements = checkArray(subject, block, index)) {
      records.takeArray(block, index, *elements);
    }
  } else if (raw->type().contents == Contents::zipped_data) {
    checkZippedData(subject, block, index);
  } else if (type == "DL") {
    checkDataList(subject, block, index);
  } else if (type == "AT") {
    checkAttachment(subject, block, index);
  } else if (type == "CC" && isOfChannel(subject, index)) {
    conversions.at(block.offset());
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
    subject.sink({Code::block_unreachable, block.offset,
                  "expected a link to each block, found none to " +
                      nameAt(block.letters(), block.offset) + " of " +
                      std::to_string(block.length) + " bytes"});
  };
  const auto stray = [&](std::uint64_t offset, std::uint64_t count) {
    subject.sink({Code::bytes_outside_blocks, offset,
                  "expected each byte in a block, found " + std::to_string(count) +
                      (count == 1 ? " byte" : " bytes") + " outside"});
  };
  subject.space.review({overlap, lost, stray});
}

}  // namespace

std::uint64_t checkFile(InputFile& file, const FindingSink& report,
                        const std::vector<KnownRecords>& known) {
  if (!checkIdentification(file, report)) {
    return 0;
  }
  const BlockTable blocks = walkBlocks(file, nullptr);
  DataFile data_file(file);
  const Space space(data_file, blocks);
  Reports reports(report);
  Subject subject{file, blocks, data_file, space, reports.sink(), WorkBudget(file.size())};
  const FindingSink from_readers = [&](const Finding& finding) {
    reports.takeFromReader(
        {finding.code, finding.offset, finding.sentence, pathTo(subject, finding.offset)}, subject);
  };
  RecordCheck records(subject);
  Conversions conversions(file, from_readers);
  for (std::uint32_t index = 0; index < blocks.size(); ++index) {
    checkBlock(subject, records, conversions, index);
  }
  records.leave();
  records.checkRecords(from_readers, known);
  checkSpace(subject);
  return blocks.size();
}

}  // namespace mdf_tools
