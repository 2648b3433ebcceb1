#include "block_tree.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "reader/blocks/block_fields.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::uint64_t times_for_links = 4;

class TreeWalk {
 public:
  TreeWalk(InputFile& file, const TreeOptions& options, const FindingSink& report,
           const TreeVisitor& visit)
      : file_(file),
        options_(options),
        visit_(visit),
        budget_(file.size(), times_for_links),
        blocks_(walkBlocks(file, report, options.from)),
        states_(blocks_.size(), State::unseen),
        chains_(blocks_.size()) {}

  void walk();

 private:
  enum class State : unsigned char {
    unseen,
    open,      ///< an entry below it is being visited
    seen,      ///< itself and what is below it was visited
    left_out,  ///< counted among those that were left out
  };

  /// A block whose links are being visited.
  struct Level {
    BlockFields block;
    std::uint32_t index;  ///< in the table
    std::size_t depth;
    std::uint64_t links;     ///< how many can be read
    std::uint64_t next = 0;  ///< the first of them that has not been visited
    std::uint64_t in_chain;  ///< blocks of its chain up to it
    std::string_view list;   ///< the list that the latest link belongs to
    std::uint64_t in_list = 0;
  };

  TreeEntry entryFor(const Level& level, std::size_t depth, std::uint64_t link,
                     std::uint64_t target);
  void enter(const RawBlock& raw, std::size_t depth, std::uint32_t chain, std::uint64_t in_chain);
  void followNextLink();
  void follow(const Level& level, std::uint64_t link, std::uint64_t target);
  void leaveOutRestOfList(Level& level, std::uint64_t link);
  void finish();
  void followChain(const Level& level, std::uint64_t target);
  void leaveOutRestOfChain(const Level& level, std::uint64_t target);
  TreeEntry::Kind kindOf(std::uint32_t from, std::uint32_t target, bool in_chain) const;
  void show(const TreeEntry& entry) { is_wanted_ = is_wanted_ && visit_(entry); }

  InputFile& file_;
  const TreeOptions& options_;
  const TreeVisitor& visit_;
  WorkBudget budget_;
  BlockTable blocks_;
  std::vector<State> states_;
  std::vector<std::uint32_t> chains_;  ///< index of the first block of the block's chain
  std::vector<Level> levels_;
  bool is_wanted_ = true;
};

void TreeWalk::walk() {
  const auto root = readRawBlock(file_, options_.from);
  const std::uint32_t index = blocks_.find(options_.from);
  if (!root || index == BlockTable::none) {
    return;
  }
  TreeEntry entry;
  entry.offset = options_.from;
  entry.raw = *root;
  show(entry);
  enter(*root, 0, index, 1);
  while (is_wanted_ && !levels_.empty()) {
    if (levels_.back().next < levels_.back().links) {
      followNextLink();
    } else {
      finish();
    }
  }
}

void TreeWalk::enter(const RawBlock& raw, std::size_t depth, std::uint32_t chain,
                     std::uint64_t in_chain) {
  const std::uint32_t index = blocks_.find(raw.offset);
  states_[index] = State::open;
  chains_[index] = chain;
  std::uint64_t links = linksThere(file_, raw);
  if (depth >= options_.most_depth || !budget_.take(links * RawBlock::link_size)) {
    links = 0;
  }
  levels_.push_back({BlockFields(file_, raw), index, depth, links, 0, in_chain, "", 0});
}

TreeEntry TreeWalk::entryFor(const Level& level, std::size_t depth, std::uint64_t link,
                             std::uint64_t target) {
  TreeEntry entry;
  entry.depth = depth;
  entry.from = level.block.offset();
  entry.role = linkRole(level.block, link).name;
  entry.offset = target;
  if (const auto raw = readRawBlock(file_, target)) {
    entry.raw = *raw;
  }
  return entry;
}

void TreeWalk::followNextLink() {
  Level& level = levels_.back();
  const std::uint64_t link = level.next++;
  const std::uint64_t target = linkAt(file_, level.block.raw(), link);
  if (target == 0) {
    return;
  }
  if (link == next_link && level.block.type().has_next) {
    return;  // once all else below the block is done
  }
  const LinkRole role = linkRole(level.block, link);
  level.in_list = role.layout.role == level.list ? level.in_list + 1 : 1;
  level.list = role.layout.role;
  if (level.in_list > options_.list_limit) {
    leaveOutRestOfList(level, link);
  } else {
    follow(level, link, target);
  }
}

/// Links whose names differ only in an index are a list; it may hold nil links.
void TreeWalk::leaveOutRestOfList(Level& level, std::uint64_t link) {
  std::uint64_t count = 1;
  for (; level.next < level.links; ++level.next) {
    if (linkRole(level.block, level.next).layout.role != level.list) {
      break;
    }
    count += linkAt(file_, level.block.raw(), level.next) == 0 ? 0U : 1U;
  }
  TreeEntry entry = entryFor(level, level.depth + 1, link, linkAt(file_, level.block.raw(), link));
  entry.kind = TreeEntry::left_out;
  entry.count = count;
  show(entry);
}

TreeEntry::Kind TreeWalk::kindOf(std::uint32_t from, std::uint32_t target, bool in_chain) const {
  if (target == BlockTable::none) {
    return TreeEntry::nothing;
  }
  switch (states_[target]) {
    case State::unseen:
      return TreeEntry::block;
    case State::open:
      return TreeEntry::cycle;
    case State::seen:
    case State::left_out:
      break;
  }
  return in_chain && chains_[target] == chains_[from] ? TreeEntry::cycle : TreeEntry::shared;
}

void TreeWalk::follow(const Level& level, std::uint64_t link, std::uint64_t target) {
  TreeEntry entry = entryFor(level, level.depth + 1, link, target);
  const std::uint32_t index = blocks_.find(target);
  if (index != BlockTable::none && !options_.with_texts &&
      entry.raw.type().contents == Contents::text) {
    return;
  }
  entry.kind = kindOf(level.index, index, false);
  entry.was_left_out = index != BlockTable::none && states_[index] == State::left_out;
  show(entry);
  if (entry.kind == TreeEntry::block) {
    enter(entry.raw, entry.depth, index, 1);
  }
}

/// Goes on to the block's sibling, which takes its place.
void TreeWalk::finish() {
  const Level level = std::move(levels_.back());
  levels_.pop_back();
  states_[level.index] = State::seen;
  const bool has_next = linksThere(file_, level.block.raw()) > 0 && level.block.type().has_next;
  const std::uint64_t target = has_next ? linkAt(file_, level.block.raw(), next_link) : 0;
  if (target != 0 && (level.depth > 0 || options_.from == header_block_offset)) {
    followChain(level, target);
  }
}

void TreeWalk::followChain(const Level& level, std::uint64_t target) {
  const std::uint32_t index = blocks_.find(target);
  TreeEntry entry = entryFor(level, level.depth, next_link, target);
  entry.kind = kindOf(level.index, index, true);
  entry.was_left_out = index != BlockTable::none && states_[index] == State::left_out;
  if (entry.kind == TreeEntry::block && level.in_chain >= options_.list_limit) {
    leaveOutRestOfChain(level, target);
    return;
  }
  show(entry);
  if (entry.kind == TreeEntry::block) {
    enter(entry.raw, entry.depth, chains_[level.index], level.in_chain + 1);
  }
}

void TreeWalk::leaveOutRestOfChain(const Level& level, std::uint64_t target) {
  TreeEntry entry = entryFor(level, level.depth, next_link, target);
  entry.kind = TreeEntry::left_out;
  std::uint32_t from = level.index;
  for (std::uint32_t index = blocks_.find(target);
       index != BlockTable::none && states_[index] == State::unseen; index = blocks_.find(target)) {
    ++entry.count;
    states_[index] = State::left_out;
    chains_[index] = chains_[level.index];
    from = index;
    const auto raw = readRawBlock(file_, blocks_[index].offset);
    target = 0;
    if (!raw || linksThere(file_, *raw) == 0) {
      break;
    }
    if (!raw->type().has_next) {
      break;
    }
    target = linkAt(file_, *raw, next_link);
  }
  show(entry);
  if (target != 0) {
    TreeEntry last = entryFor(level, level.depth, next_link, target);
    last.from = blocks_[from].offset;
    last.kind = kindOf(from, blocks_.find(target), true);
    show(last);
  }
}

}  // namespace

void walkTree(InputFile& file, const TreeOptions& options, const FindingSink& report,
              const TreeVisitor& visit) {
  TreeWalk(file, options, report, visit).walk();
}

}  // namespace mdf_tools
