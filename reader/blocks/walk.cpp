#include "walk.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "../bytes/input_file.h"
#include "../bytes/printable.h"
#include "../bytes/work_budget.h"
#include "framework/wire.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

/// At least as many links as any type has without counting them. They are followed even where
/// blocks overlap too much to follow all.
constexpr std::uint64_t few_links = 8;

/// Some overlap is allowed, so that a file with a few wrong lengths is followed whole.
constexpr std::uint64_t times = 4;

bool isCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

class Walk {
 public:
  Walk(InputFile& file, const FindingSink& report)
      : file_(file), report_(report), budget_(file.size(), times) {}

  BlockTable from(std::uint64_t offset) {
    if (const auto root = rootAt(offset)) {
      add(*root, {BlockTable::none, 0, false});
      explore();
      // The list grows during the loop.
      for (std::size_t i = 0; i < referring_.size(); ++i) {
        followReferences(referring_[i]);
      }
    }
    closeIntervals();
    return std::move(blocks_);
  }

 private:
  /// A link that is followed.
  struct Step {
    std::uint32_t from;
    std::uint64_t link;
    bool by_reference;
  };

  /// A block whose links are followed.
  struct Level {
    std::uint32_t index;
    std::uint64_t done;  ///< how many of its links were
  };

  /// The block whose links are read just now.
  struct Current {
    std::uint32_t index = BlockTable::none;
    RawBlock raw;
    const BlockType* type = nullptr;
    std::uint64_t links = 0;  ///< how many are followed
    std::array<char, 64 * RawBlock::link_size> bytes{};
    std::uint64_t begin = 0;  ///< the first link in the bytes
    std::uint64_t end = 0;    ///< after the last one
  };

  std::optional<RawBlock> rootAt(std::uint64_t offset);
  std::uint32_t add(const RawBlock& block, const Step& step);
  void explore();
  void followReferences(std::uint32_t index);
  void follow(std::uint64_t target, const Step& step);
  bool makeCurrent(std::uint32_t index);
  std::uint64_t linkOfCurrent(std::uint64_t number);
  void reportLink(Code code, const Step& step, const std::string& expected_found);
  void reportLost(std::uint64_t target, const std::optional<RawBlock>& found, const Step& step);
  void closeIntervals();

  InputFile& file_;
  const FindingSink& report_;
  WorkBudget budget_;
  bool is_budget_told_ = false;
  BlockTable blocks_;
  std::vector<Level> levels_;
  std::vector<std::uint32_t> referring_;  ///< blocks with links that may refer
  Current current_;
};

/// The header block may have another type, or the file another identification, and still there are
/// blocks.
std::optional<RawBlock> Walk::rootAt(std::uint64_t offset) {
  const FindingSink silent = [](const Finding& /*finding*/) {};
  const FindingSink& report = report_ ? report_ : silent;
  if (offset != header_block_offset) {
    return findBlock(file_, offset, report);
  }
  if (const auto finding = identificationFinding(file_)) {
    report(*finding);
  }
  const auto root = readRawBlock(file_, offset);
  if (!root && file_.size() >= header_block_offset) {
    report({Code::header_missing, offset,
            "expected the header block's 24 bytes of common header, " +
                upToTheEnd(file_.sizeFrom(offset))});
  } else if (root && root->name() != "##HD") {
    report({Code::header_missing, offset,
            "expected the header block \"##HD\", found \"" + root->name() + '"'});
  }
  return root && root->hasId() ? root : std::nullopt;
}

std::uint32_t Walk::add(const RawBlock& block, const Step& step) {
  const std::uint64_t links = linksThere(file_, block);
  BlockEntry entry;
  entry.offset = block.offset;
  entry.parent = step.from;
  entry.link = static_cast<std::uint32_t>(std::min<std::uint64_t>(step.link, UINT32_MAX));
  entry.head = blocks_.size();
  entry.type = {block.id[2], block.id[3]};
  entry.by_reference = step.by_reference;
  entry.has_few_links = links > few_links && !budget_.take(links * RawBlock::link_size);
  if (step.from != BlockTable::none && step.link == next_link && !step.by_reference) {
    const BlockEntry& from = blocks_[step.from];
    if (from.type == entry.type && block.type().has_next) {
      entry.head = from.head;
      entry.position = from.position + 1;
    }
  }
  const std::uint32_t index = blocks_.add(entry);
  if (links > 0) {
    levels_.push_back({index, 0});
    if (block.type().may_refer) {
      referring_.push_back(index);
    }
  }
  if (report_) {
    checkExtent(file_, block, report_);
    if (entry.has_few_links && !is_budget_told_) {
      is_budget_told_ = true;
      reportOverlap(block.offset, report_);
    }
  }
  return index;
}

/// What belongs to a block comes before the next block of its chain, so the link to that is the
/// last one.
void Walk::explore() {
  while (!levels_.empty()) {
    Level& level = levels_.back();
    if (!makeCurrent(level.index) || level.done >= current_.links) {
      levels_.pop_back();  // the file was cut or changed meanwhile
      continue;
    }
    const std::uint64_t done = level.done++;
    const Step step{current_.index, current_.type->has_next ? (done + 1) % current_.links : done,
                    false};
    if (level.done == current_.links) {
      levels_.pop_back();
    }
    if (!current_.type->refers(step.link)) {
      follow(linkOfCurrent(step.link), step);
    }
  }
}

void Walk::followReferences(std::uint32_t index) {
  for (std::uint64_t link = 0; makeCurrent(index) && link < current_.links; ++link) {
    if (current_.type->refers(link)) {
      follow(linkOfCurrent(link), {index, link, true});
      explore();
    }
  }
}

/// False where the file was cut since the block was found.
bool Walk::makeCurrent(std::uint32_t index) {
  if (current_.index == index) {
    return true;
  }
  const BlockEntry& entry = blocks_[index];
  const auto raw = readRawBlock(file_, entry.offset);
  if (!raw) {
    return false;
  }
  current_.index = index;
  current_.raw = *raw;
  current_.type = &typeOf(entry.letters());
  current_.links = linksThere(file_, *raw);
  current_.links = entry.has_few_links ? std::min(current_.links, few_links) : current_.links;
  current_.end = 0;
  return true;
}

std::uint64_t Walk::linkOfCurrent(std::uint64_t number) {
  constexpr std::uint64_t piece = 64;
  if (number < current_.begin || number >= current_.end) {
    current_.begin = number / piece * piece;
    const std::uint64_t count = std::min(piece, current_.links - current_.begin);
    const std::size_t got = file_.readAt(
        current_.raw.offset + RawBlock::header_size + current_.begin * RawBlock::link_size,
        current_.bytes.data(), static_cast<std::size_t>(count) * RawBlock::link_size);
    current_.end = current_.begin + got / RawBlock::link_size;
  }
  return number < current_.end
             ? loadLe<std::uint64_t>(current_.bytes.data() +
                                     (number - current_.begin) * RawBlock::link_size)
             : 0;
}

void Walk::follow(std::uint64_t target, const Step& step) {
  if (target == 0 || blocks_.find(target) != BlockTable::none) {
    return;
  }
  const auto block = target < file_.size() ? readRawBlock(file_, target) : std::nullopt;
  if (block && looksLikeBlock(*block) && target >= header_block_offset) {
    add(*block, step);
  } else if (report_) {
    reportLost(target, block, step);
  }
}

void Walk::reportLost(std::uint64_t target, const std::optional<RawBlock>& found,
                      const Step& step) {
  const std::string place = decimalAndHex(target);
  if (target >= file_.size()) {
    const auto link = static_cast<std::int64_t>(target);
    reportLink(Code::link_outside_file, step,
               "into the file of " + std::to_string(file_.size()) + " bytes, found " +
                   (link < 0 ? std::to_string(link) : place));
  } else if (!found) {
    reportLink(Code::link_outside_file, step,
               "to the 24 bytes of a block header, found only " +
                   std::to_string(file_.sizeFrom(target)) + " at " + place);
  } else if (looksLikeBlock(*found)) {
    reportLink(Code::link_inside_block, step,
               "to a block \"##\", found " + place + " inside the identification");
  } else {
    reportLink(Code::link_to_no_block, step,
               "to a block \"##\", found \"" + found->name() + "\" at " + place);
  }
}

void Walk::reportLink(Code code, const Step& step, const std::string& expected_found) {
  const BlockEntry& from = blocks_[step.from];
  report_({code, from.offset,
           "expected link " + std::to_string(step.link) + " of " +
               printable("##" + std::string(from.letters())) + " to lead " + expected_found});
}

/// A block comes after the one that it belongs to: going backwards, all that belongs to a block is
/// known before the block itself.
void Walk::closeIntervals() {
  for (std::uint32_t index = blocks_.size(); index-- > 0;) {
    BlockEntry& entry = blocks_[index];
    entry.end = std::max(entry.end, index + 1);
    if (entry.parent != BlockTable::none && !entry.by_reference) {
      BlockEntry& parent = blocks_[entry.parent];
      parent.end = std::max(parent.end, entry.end);
    }
  }
}

}  // namespace

BlockTable walkBlocks(InputFile& file, const FindingSink& report, std::uint64_t from) {
  return Walk(file, report).from(from);
}

bool looksLikeBlock(const RawBlock& block) {
  return block.hasId() && isCapital(block.id[2]) && isCapital(block.id[3]);
}

void forEachWalkedLink(InputFile& file, const RawBlock& block, const BlockEntry& entry,
                       const std::function<void(std::uint64_t index, std::uint64_t link)>& visit) {
  const std::uint64_t count = linksThere(file, block);
  if (count > few_links && !entry.has_few_links) {
    forEachLink(file, block, [&](std::uint64_t index, std::int64_t link) {
      visit(index, static_cast<std::uint64_t>(link));
    });
    return;
  }
  std::array<char, few_links * RawBlock::link_size> bytes;
  const auto wanted = static_cast<std::size_t>(std::min(count, few_links)) * RawBlock::link_size;
  const std::size_t got = file.readAt(block.offset + RawBlock::header_size, bytes.data(), wanted);
  for (std::size_t at = 0; at + RawBlock::link_size <= got; at += RawBlock::link_size) {
    visit(at / RawBlock::link_size, loadLe<std::uint64_t>(bytes.data() + at));
  }
}

std::optional<RawBlock> findBlock(InputFile& file, std::uint64_t offset,
                                  const FindingSink& report) {
  const auto block = readRawBlock(file, offset);
  if (block && block->hasId()) {
    return block;
  }
  const std::uint64_t where = std::min(offset, file.size());
  report({Code::request_failed, where,
          "expected a block \"##\" at " + decimalAndHex(offset) + ", found " +
              (block ? quoted({block->id.data(), block->id.size()})
                     : "only " + std::to_string(file.sizeFrom(offset)) +
                           " bytes up to the file's end")});
  return std::nullopt;
}

void reportOverlap(std::uint64_t offset, const FindingSink& report) {
  report({Code::work_limited, offset,
          "expected blocks that do not overlap, found several times the file's bytes in "
          "overlapping blocks; some of them are skipped"});
}

void checkExtent(const InputFile& file, const RawBlock& block, const FindingSink& report) {
  if (!block.holdsItsLinks()) {
    report({Code::length_too_small, block.offset,
            "expected the length of " + block.name() + " to hold its header and " +
                std::to_string(block.linkCount()) + " links, found " +
                std::to_string(block.length)});
  }
  if (!isWhole(file, block)) {
    report({Code::length_past_end, block.offset,
            "expected the " + std::to_string(block.length) + " bytes of " + block.name() + ", " +
                upToTheEnd(file.sizeFrom(block.offset))});
  }
}

}  // namespace mdf_reader
