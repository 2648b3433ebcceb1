#include "hierarchy.h"

#include "../blocks/block_fields.h"
#include "../blocks/identification.h"
#include "../bytes/input_file.h"
#include "../bytes/offset_set.h"
#include "fileblocks/chblock.h"

namespace mdf_reader {

using mdf_v4_10::CHBLOCK;

namespace {

std::vector<HierarchyElement> elementsOf(InputFile& file, const BlockFields& block) {
  constexpr std::uint64_t first = CHBLOCK::ch_md_comment + 1;
  constexpr std::uint64_t links_of_each = 3;
  std::vector<HierarchyElement> elements;
  forEachLink(file, block.raw(), [&](std::uint64_t index, std::int64_t link) {
    const auto target = static_cast<std::uint64_t>(link);
    switch (index < first ? links_of_each : (index - first) % links_of_each) {
      case 0:
        elements.push_back({target, 0, 0});
        break;
      case 1:
        elements.back().channel_group = target;
        break;
      case 2:
        elements.back().channel = target;
        break;
      default:
        break;
    }
  });
  return elements;
}

/// A link that is still to be followed.
struct Pending {
  std::uint64_t from;
  std::uint64_t target;
  std::size_t depth;
};

}  // namespace

std::vector<HierarchyEntry> readHierarchy(InputFile& file, std::uint64_t first, Texts& texts,
                                          const FindingSink& report) {
  std::vector<HierarchyEntry> entries;
  OffsetSet seen;
  std::vector<Pending> pending{{header_block_offset, first, 0}};
  while (!pending.empty()) {
    const Pending next = pending.back();
    pending.pop_back();
    if (next.target == 0) {
      continue;
    }
    const auto block = readFields(file, next.target, "CH");
    if (!block || seen.contains(next.target)) {
      report({block ? Code::chain_endless : Code::link_wrong_type, next.from,
              "expected a link to a new block \"##CH\" at " + decimalAndHex(next.target) +
                  ", found " + (block ? "one that was visited before" : "none")});
      continue;
    }
    seen.insert(next.target);
    entries.push_back({next.target, next.depth, static_cast<unsigned>(block->number("ch_type")),
                       texts.at(file, block->link(CHBLOCK::ch_tx_name)),
                       texts.commentAt(file, block->link(CHBLOCK::ch_md_comment)),
                       elementsOf(file, *block)});
    // The entries below come before the next one beside.
    pending.push_back({next.target, block->link(CHBLOCK::ch_ch_next), next.depth});
    pending.push_back({next.target, block->link(CHBLOCK::ch_ch_first), next.depth + 1});
  }
  return entries;
}

}  // namespace mdf_reader
