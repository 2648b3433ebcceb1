#include "block_mending.h"

#include <optional>
#include <string>

#include "checking/subject.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/block_table.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_block.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::uint64_t length_at = 8;
constexpr std::uint64_t link_count_at = 16;

/// Whether a block has all that its type has. Data and texts may end anywhere, and lists have those
/// links that are there.
bool isUsable(InputFile& file, const RawBlock& block) {
  const Contents contents = block.type().contents;
  return (contents != Contents::description && contents != Contents::zipped_data) ||
         (block.holdsItsLinks() && BlockFields(file, block).isComplete());
}

/// Whether a block has links and fields alone, and the same number of links as a rule.
bool hasUsualSize(const BlockType& type) {
  return type.isKnown() && type.contents == Contents::description && type.bytes.empty() &&
         type.numbers.empty() && type.link_count == LinkCount::right;
}

std::optional<NumberChange> mended(InputFile& file, const RawBlock& block) {
  const BlockType& type = block.type();
  const bool has_no_links = type.contents == Contents::text || isPlainData(block);
  if (has_no_links && block.link_count > 0 && block.length >= RawBlock::header_size) {
    return NumberChange{block.offset + link_count_at, 0};
  }
  const std::uint64_t links = type.links.size();
  const std::uint64_t length =
      RawBlock::header_size + RawBlock::link_size * links + type.fieldsWidth();
  if (!hasUsualSize(type) || isUsable(file, block) || length > file.sizeFrom(block.offset)) {
    return std::nullopt;
  }
  if (block.link_count == links) {
    return NumberChange{block.offset + length_at, length};
  }
  return block.length == length ? std::optional(NumberChange{block.offset + link_count_at, links})
                                : std::nullopt;
}

/// Finds the links of a file's blocks that do not lead where they should.
class LinkMender {
 public:
  LinkMender(InputFile& file, const FindingSink& report)
      : file_(file), report_(report), table_(walkBlocks(file, nullptr)) {}

  std::vector<NumberChange> mend() {
    for (std::uint32_t i = 0; i < table_.size(); ++i) {
      if (const auto block = readRawBlock(file_, table_[i].offset)) {
        const BlockFields fields(file_, *block);
        forEachWalkedLink(file_, *block, table_[i], [&](std::uint64_t index, std::uint64_t link) {
          take(fields, index, link);
        });
      }
    }
    return std::move(changes_);
  }

 private:
  void take(const BlockFields& from, std::uint64_t index, std::uint64_t link) {
    const std::string_view targets = linkTargets(from, index);
    const auto target = targets.empty() ? std::nullopt : blockAt(link);
    if (!target || isRight(*target, targets)) {
      return;
    }
    changes_.push_back({from.offset() + RawBlock::header_size + RawBlock::link_size * index,
                        nextOf(*target, targets)});
    const bool is_cut = isAmongTargets(targets, target->letters());
    report_({is_cut ? Code::length_too_small : Code::link_wrong_type, from.offset(),
             "expected " + linkRole(from, index).name + " to lead to " +
                 (is_cut ? "a whole block" : std::string(targets)) + ", found " +
                 nameAt(target->letters(), target->offset) + ", which is left out"});
  }

  std::optional<RawBlock> blockAt(std::uint64_t offset) {
    return table_.find(offset) == BlockTable::none ? std::nullopt : readRawBlock(file_, offset);
  }
  bool isRight(const RawBlock& block, std::string_view targets) {
    return isAmongTargets(targets, block.letters()) && isUsable(file_, block);
  }

  /// A list goes on after a block that is cut off, as its links come first.
  std::uint64_t nextOf(const RawBlock& block, std::string_view targets) {
    constexpr int most = 100;
    std::optional<RawBlock> next = block;
    for (int i = 0; next && i < most && isAmongTargets(targets, next->letters()); ++i) {
      if (isUsable(file_, *next)) {
        return next->offset;
      }
      next = next->type().has_next ? blockAt(linkAt(file_, *next, next_link)) : std::nullopt;
    }
    return 0;
  }

  InputFile& file_;
  const FindingSink& report_;
  BlockTable table_;
  std::vector<NumberChange> changes_;
};

}  // namespace

std::vector<NumberChange> mendedHeaders(InputFile& file, const FindingSink& report) {
  const BlockTable table = walkBlocks(file, nullptr);
  std::vector<NumberChange> changes;
  for (std::uint32_t i = 0; i < table.size(); ++i) {
    const auto block = readRawBlock(file, table[i].offset);
    const auto change = block ? mended(file, *block) : std::nullopt;
    if (change) {
      const bool is_length = change->at == block->offset + length_at;
      changes.push_back(*change);
      report({is_length ? Code::length_too_small : Code::link_count_wrong, block->offset,
              std::string("expected the ") + (is_length ? "length " : "link count ") +
                  std::to_string(change->number) + " of " + block->name() + ", found " +
                  std::to_string(is_length ? block->length : block->link_count) +
                  "; it is set to that"});
    }
  }
  return changes;
}

std::vector<NumberChange> mendedLinks(InputFile& file, const FindingSink& report) {
  return LinkMender(file, report).mend();
}

}  // namespace mdf_tools
