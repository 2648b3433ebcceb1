#include "lost_blocks.h"

#include <algorithm>
#include <iterator>

#include "checking/space.h"
#include "mdf_v4_10.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"
#include "reader/data/data_block.h"

namespace mdf_tools {

using namespace mdf_reader;
using namespace mdf_v4_10;

namespace {

/// More than this are not looked at.
constexpr std::size_t most_lost = std::size_t{1} << 20U;

bool isListed(std::string_view letters) { return isAmongTargets("DG CG CN EV AT CH FH", letters); }

bool isDataOrList(const RawBlock& block) {
  return isDataBlock(block) || isDataList(block) ||
         block.type().contents == Contents::list_of_lists;
}

/// Links that are nil only where there is nothing to lead to.
bool isEmptyByException(const RawBlock& block, std::uint64_t index) {
  const std::string_view letters = block.letters();
  return letters == "DG"   ? index == DGBLOCK::dg_cg_first || index == DGBLOCK::dg_data
         : letters == "CG" ? index == CGBLOCK::cg_cn_first
         : letters == "SR" ? index == SRBLOCK::sr_data
                           : letters == "HL";
}

}  // namespace

std::string_view structureTargets(const RawBlock& block, std::uint64_t index) {
  const BlockType& type = block.type();
  if (index >= type.links.size()) {
    return isDataList(block) ? type.more_links.front().links.front().targets : "";
  }
  const LinkLayout& link = type.links[static_cast<std::size_t>(index)];
  const bool is_of_data = block.letters() == "CN" && index == CNBLOCK::cn_data;
  const bool is_text =
      isAmongTargets(link.targets, "TX") || link.targets == "SI" || link.targets == "CC";
  return is_text || (link.refers && !is_of_data) ? "" : link.targets;
}

LostBlocks::LostBlocks(InputFile& file)
    : file_(file), data_file_(file), table_(walkBlocks(file, nullptr)) {
  find();
  if (lost_.empty()) {
    return;
  }
  markLinked();
  for (std::uint32_t i = 0; i < table_.size(); ++i) {
    if (const auto block = readRawBlock(file_, table_[i].offset)) {
      takeList(*block);
      forEachWalkedLink(file_, *block, table_[i], [&](std::uint64_t index, std::uint64_t link) {
        take({*block, index}, link);
      });
    }
  }
}

/// Blocks outside of the others, and those that should be in a list and are just referred to.
void LostBlocks::find() {
  const auto add = [&](const RawBlock& block) {
    if (lost_.size() < most_lost) {
      lost_.emplace(block.offset, Lost{block});
    }
  };
  Space(data_file_, table_).review({[](auto...) {}, add, [](auto...) {}});
  for (std::uint32_t i = 0; i < table_.size(); ++i) {
    const auto block = table_[i].by_reference && isListed(table_[i].letters())
                           ? readRawBlock(file_, table_[i].offset)
                           : std::nullopt;
    if (block) {
      add(*block);
      lost_[block->offset].is_listed = true;
    }
  }
}

void LostBlocks::markLinked() {
  for (auto& [offset, lost] : lost_) {
    const RawBlock& from = lost.block;
    forEachLinkOf(from, [&](std::uint64_t index, std::uint64_t link) {
      const auto to = lost_.find(link);
      if (to != lost_.end() && link != from.offset &&
          (!structureTargets(from, index).empty() || !isListed(to->second.block.letters()))) {
        to->second.is_linked = true;
      }
    });
  }
}

void LostBlocks::forEachLinkOf(const RawBlock& block, const LinkTaker& take) const {
  forEachLink(file_, block, [&](std::uint64_t index, std::int64_t link) {
    const auto changed = put_back_.find(BlockLink{block, index}.place());
    take(index, changed == put_back_.end() ? static_cast<std::uint64_t>(link) : changed->second);
  });
}

bool LostBlocks::isBroken(const BlockLink& link, std::uint64_t offset) const {
  return offset != 0 && !structureTargets(link.block, link.index).empty() && !target(link);
}

std::optional<RawBlock> LostBlocks::target(const BlockLink& link) const {
  const auto changed = put_back_.find(link.place());
  const std::uint64_t offset =
      changed == put_back_.end() ? linkAt(file_, link.block, link.index) : changed->second;
  const bool is_known = table_.find(offset) != BlockTable::none || lost_.count(offset) > 0;
  const auto block = offset == 0 || !is_known ? std::nullopt : readRawBlock(file_, offset);
  return block && isAmongTargets(structureTargets(link.block, link.index), block->letters())
             ? block
             : std::nullopt;
}

void LostBlocks::takeList(const RawBlock& block) {
  if (isDataList(block)) {
    lists_.push_back(block);
  }
}

/// Takes a link of a block that can be reached.
void LostBlocks::take(const BlockLink& link, std::uint64_t offset) {
  if (isBroken(link, offset)) {
    broken_.push_back(link);
  } else if (offset == 0 && isEmptyByException(link.block, link.index)) {
    empty_.push_back(link);
  }
}

void LostBlocks::putBack(const BlockLink& link, const RawBlock& root) {
  put_back_[link.place()] = root.offset;
  std::vector<std::uint64_t> pending = {root.offset};
  while (!pending.empty()) {
    const auto lost = lost_.find(pending.back());
    pending.pop_back();
    if (lost == lost_.end() || lost->second.is_back) {
      continue;
    }
    lost->second.is_back = true;
    if (lost->second.is_listed) {
      continue;  // its links were looked at, as it could be reached
    }
    const RawBlock& block = lost->second.block;
    takeList(block);
    forEachLinkOf(block, [&](std::uint64_t index, std::uint64_t to) {
      take({block, index}, to);
      pending.push_back(to);
    });
  }
}

std::vector<BlockLink> LostBlocks::open(const std::vector<BlockLink>& links) const {
  std::vector<BlockLink> open;
  std::copy_if(links.begin(), links.end(), std::back_inserter(open),
               [&](const BlockLink& link) { return put_back_.count(link.place()) == 0; });
  return open;
}

std::size_t LostBlocks::brokenInLost(std::string_view letters) const {
  std::size_t count = 0;
  for (const auto& [offset, lost] : lost_) {
    const RawBlock& block = lost.block;
    if (!lost.is_back && !lost.is_listed) {
      forEachLinkOf(block, [&](std::uint64_t index, std::uint64_t link) {
        count += isBroken({block, index}, link) &&
                         isAmongTargets(structureTargets(block, index), letters)
                     ? 1U
                     : 0U;
      });
    }
  }
  return count;
}

std::vector<RawBlock> LostBlocks::roots(std::string_view letters) const {
  std::vector<RawBlock> roots;
  for (const auto& [offset, lost] : lost_) {
    if (lost.isRoot() && lost.block.letters() == letters) {
      roots.push_back(lost.block);
    }
  }
  return roots;
}

std::vector<RawBlock> LostBlocks::rootsWithData() const {
  std::vector<RawBlock> roots;
  for (const auto& [offset, lost] : lost_) {
    if (lost.isRoot() && isDataOrList(lost.block)) {
      roots.push_back(lost.block);
    }
  }
  return roots;
}

std::vector<RawBlock> LostBlocks::all() const {
  std::vector<RawBlock> blocks;
  for (const auto& [offset, lost] : lost_) {
    if (!lost.is_back && !lost.is_listed) {
      blocks.push_back(lost.block);
    }
  }
  return blocks;
}

std::optional<RawBlock> LostBlocks::rootAt(std::uint64_t offset) const {
  const auto lost = lost_.find(offset);
  return lost != lost_.end() && lost->second.isRoot() ? std::optional(lost->second.block)
                                                      : std::nullopt;
}

std::optional<RawBlock> LostBlocks::rootBefore(std::uint64_t offset) const {
  const auto after = lost_.lower_bound(offset);
  return after == lost_.begin() ? std::nullopt : rootAt(std::prev(after)->first);
}

}  // namespace mdf_tools
