#include "survey.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "../bytes/allowance.h"
#include "../bytes/input_file.h"
#include "framework/wire.h"
#include "raw_block.h"
#include "walker.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

/// At least as many links as any type has without counting them.
constexpr std::uint64_t few_links = 8;

bool isCapital(char letter) { return letter >= 'A' && letter <= 'Z'; }

class Survey {
 public:
  explicit Survey(InputFile& file) : file_(file), allowance_(file.size()) {}

  BlockTable run() {
    visit({header_block_offset, BlockTable::none, 0, false});
    explore();
    // The list grows during the loop.
    for (std::size_t i = 0; i < referring_.size(); ++i) {
      followReferences(referring_[i]);
      explore();
    }
    closeIntervals();
    return std::move(blocks_);
  }

 private:
  /// A link that is still to be followed.
  struct Step {
    std::uint64_t target;
    std::uint32_t from;
    std::uint32_t link;
    bool by_reference;
  };

  void explore() {
    while (!pending_.empty()) {
      const Step step = pending_.back();
      pending_.pop_back();
      visit(step);
    }
  }

  void visit(const Step& step);
  BlockEntry entryFor(const Step& step, const RawBlock& block);
  void followOwnLinks(std::uint32_t index, const RawBlock& block);
  void followReferences(std::uint32_t index);
  void closeIntervals();

  bool mayBeBlock(std::uint64_t offset) const {
    return offset >= header_block_offset && file_.sizeFrom(offset) >= RawBlock::header_size;
  }

  InputFile& file_;
  Allowance allowance_;
  BlockTable blocks_;
  std::vector<Step> pending_;
  std::vector<std::uint32_t> referring_;  ///< blocks with links that refer
};

void Survey::visit(const Step& step) {
  if (blocks_.find(step.target) != BlockTable::none) {
    return;
  }
  const auto block = readRawBlock(file_, step.target);
  if (block && looksLikeBlock(*block)) {
    followOwnLinks(blocks_.add(entryFor(step, *block)), *block);
  }
}

BlockEntry Survey::entryFor(const Step& step, const RawBlock& block) {
  BlockEntry entry;
  entry.offset = block.offset;
  entry.parent = step.from;
  entry.link = step.link;
  entry.head = blocks_.size();
  entry.type = {block.id[2], block.id[3]};
  entry.by_reference = step.by_reference;
  entry.has_few_links = linksThere(file_, block) > few_links &&
                        !allowance_.take(linksThere(file_, block) * RawBlock::link_size);
  if (step.from != BlockTable::none && step.link == next_link && !step.by_reference) {
    const BlockEntry& from = blocks_[step.from];
    if (from.type == entry.type && typeOf(entry.letters()).has_next) {
      entry.head = from.head;
      entry.position = from.position + 1;
    }
  }
  return entry;
}

/// What belongs to a block comes before the next block of its chain, so the link to that goes to
/// the bottom of the stack.
void Survey::followOwnLinks(std::uint32_t index, const RawBlock& block) {
  const BlockType& type = typeOf(block.letters());
  const auto before = static_cast<std::ptrdiff_t>(pending_.size());
  bool has_next = false;
  bool refers = false;
  forEachSurveyedLink(
      file_, block, blocks_[index], [&](std::uint64_t number, std::uint64_t target) {
        if (!mayBeBlock(target)) {
          return;
        }
        if (type.refers(number)) {
          refers = true;
          return;
        }
        const auto link = static_cast<std::uint32_t>(std::min<std::uint64_t>(number, UINT32_MAX));
        pending_.push_back({target, index, link, false});
        has_next = has_next || (number == next_link && type.has_next);
      });
  std::reverse(pending_.begin() + before + (has_next ? 1 : 0), pending_.end());
  if (refers) {
    referring_.push_back(index);
  }
}

void Survey::followReferences(std::uint32_t index) {
  const auto block = readRawBlock(file_, blocks_[index].offset);
  if (!block) {
    return;
  }
  const BlockType& type = typeOf(blocks_[index].letters());
  const BlockEntry entry = blocks_[index];
  forEachSurveyedLink(file_, *block, entry, [&](std::uint64_t number, std::uint64_t target) {
    if (type.refers(number) && mayBeBlock(target)) {
      const auto link = static_cast<std::uint32_t>(std::min<std::uint64_t>(number, UINT32_MAX));
      pending_.push_back({target, index, link, true});
    }
  });
  std::reverse(pending_.begin(), pending_.end());
}

/// A block comes after the one that it belongs to: going backwards, all that belongs to a block is
/// known before the block itself.
void Survey::closeIntervals() {
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

bool looksLikeBlock(const RawBlock& block) {
  return block.hasId() && isCapital(block.id[2]) && isCapital(block.id[3]);
}

BlockTable surveyBlocks(InputFile& file) { return Survey(file).run(); }

void forEachSurveyedLink(
    InputFile& file, const RawBlock& block, const BlockEntry& entry,
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

}  // namespace mdf_reader
