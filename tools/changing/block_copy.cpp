#include "block_copy.h"

#include <algorithm>
#include <utility>

#include "copy_failure.h"
#include "framework/wire.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"

namespace mdf_tools {

using namespace mdf_reader;
using mdf_v4_10::detail::loadLe;
using mdf_v4_10::detail::storeLe;

namespace {

constexpr std::uint64_t length_at = 8;
constexpr std::size_t piece_bytes = std::size_t{1} << 20U;

}  // namespace

BlockCopy::BlockCopy(InputFile& file, const FindingSink& report)
    : file_(file), table_(walkBlocks(file, report)) {}

void BlockCopy::leaveOut(std::string_view letters) {
  for (std::uint32_t block = 0; block < table_.size(); ++block) {
    if (table_[block].letters() == letters) {
      leaveOut(block);
    }
  }
}

/// The block that a link of the file leads to in the copy, or none.
std::uint32_t BlockCopy::targetOf(Link link, std::uint64_t offset) {
  const std::uint32_t target = table_.find(offset);
  if (target == BlockTable::none || left_out_.count(target) == 0) {
    return target;
  }
  return typeOf(table_[link.block].letters()).refers(link.number) ? BlockTable::none
                                                                  : stayingFrom(target);
}

/// The next block that stays in the list of one that does not; none where the list ends.
std::uint32_t BlockCopy::stayingFrom(std::uint32_t block) {
  std::vector<std::uint32_t> passed;
  while (block != BlockTable::none && left_out_.count(block) > 0) {
    const auto known = staying_.find(block);
    if (known != staying_.end()) {
      block = known->second;
      break;
    }
    passed.push_back(block);
    const BlockEntry& entry = table_[block];
    const auto raw = readRawBlock(file_, entry.offset);
    const std::uint32_t next = raw && typeOf(entry.letters()).has_next
                                   ? table_.find(linkAt(file_, *raw, next_link))
                                   : BlockTable::none;
    const bool is_after = next != BlockTable::none && table_[next].head == entry.head &&
                          table_[next].position > entry.position;
    block = is_after ? next : BlockTable::none;
  }
  for (const std::uint32_t each : passed) {
    staying_[each] = block;
  }
  return block;
}

void BlockCopy::choose(bool has_header) {
  is_copied_.assign(table_.size(), false);
  std::vector<std::uint32_t> pending;
  const auto take = [&](std::uint32_t block) {
    if (block != BlockTable::none && !is_copied_[block]) {
      is_copied_[block] = true;
      pending.push_back(block);
    }
  };
  take(table_.size() == 0 ? BlockTable::none : 0);
  while (!pending.empty()) {
    const std::uint32_t block = pending.back();
    pending.pop_back();
    if (const auto raw = readRawBlock(file_, table_[block].offset)) {
      forEachWalkedLink(file_, *raw, table_[block], [&](std::uint64_t index, std::uint64_t offset) {
        const Link link{block, static_cast<std::uint32_t>(index)};
        if (offset != 0 && links_.count(keyOf(link)) == 0) {
          take(targetOf(link, offset));
        }
      });
    }
  }
  if (!has_header && table_.size() > 0) {
    is_copied_[0] = false;
  }
}

/// The bytes that the copy has of a block: those that are there and, where the file ends within it,
/// zeros for the others, so that it has what each block of its type has. Data becomes shorter.
std::uint64_t BlockCopy::lengthOf(const RawBlock& block) const {
  constexpr std::uint64_t most_zeros = std::uint64_t{1} << 16U;
  const std::uint64_t there = std::max<std::uint64_t>(
      RawBlock::header_size, std::min(block.length, file_.sizeFrom(block.offset)));
  const BlockType& type = block.type();
  if (there >= block.length || type.isData() || !type.isKnown()) {
    return there;
  }
  if (block.length - there <= most_zeros) {
    return block.length;
  }
  const std::uint64_t fixed =
      RawBlock::header_size + RawBlock::link_size * type.links.size() + type.fieldsWidth();
  return std::max(fixed, there + (type.contents == Contents::text ? 1 : 0));
}

void BlockCopy::place(NewBlocks& out) {
  constexpr std::uint64_t times = 4;
  constexpr std::uint64_t always = std::uint64_t{1} << 20U;
  WorkBudget budget(file_.size(), times, always);
  for (std::uint32_t block = 0; block < table_.size(); ++block) {
    if (is_copied_[block]) {
      order_.push_back(block);
    }
  }
  std::sort(order_.begin(), order_.end(), [&](std::uint32_t left, std::uint32_t right) {
    return table_[left].offset < table_[right].offset;
  });
  places_.assign(table_.size(), 0);
  for (const std::uint32_t block : order_) {
    const auto raw = readRawBlock(file_, table_[block].offset);
    const std::uint64_t length = raw ? lengthOf(*raw) : std::uint64_t{RawBlock::header_size};
    if (!budget.take(length)) {
      throw CopyFailure("its blocks overlap so much that their copies would not");
    }
    places_[block] = out.allocate(length);
  }
}

std::uint64_t BlockCopy::placeOf(std::uint32_t block) const {
  return block < places_.size() ? places_[block] : 0;
}

std::uint64_t BlockCopy::newLink(Link link) {
  const auto raw = readRawBlock(file_, table_[link.block].offset);
  return raw ? translated(*raw, link, linkAt(file_, *raw, link.number)) : 0;
}

std::uint64_t BlockCopy::translated(const RawBlock& block, Link link, std::uint64_t offset) {
  const auto set = links_.find(keyOf(link));
  if (set != links_.end()) {
    return set->second;
  }
  const std::uint32_t stated = offset == 0 ? BlockTable::none : table_.find(offset);
  if (stated == BlockTable::none) {
    return 0;
  }
  const std::string_view letters = block.letters();
  if (letters == "CH" && !left_out_.empty() && leadsElementOut(block, link.number)) {
    return 0;
  }
  if (!moved_groups_.empty() && table_[stated].letters() == "DG" && letters != "DG" &&
      letters != "HD") {
    const auto moved =
        moved_groups_.find(table_.find(linkAt(file_, block, std::uint64_t{link.number} + 1)));
    if (moved != moved_groups_.end()) {
      return moved->second;
    }
  }
  const auto elsewhere = elsewhere_.find(stated);
  if (elsewhere != elsewhere_.end() && typeOf(letters).refers(link.number)) {
    return elsewhere->second;
  }
  const std::uint32_t target = targetOf(link, offset);
  return target == BlockTable::none ? 0 : places_[target];
}

/// Whether a link is one of an element of a hierarchy that names what is left out.
bool BlockCopy::leadsElementOut(const RawBlock& block, std::uint64_t number) {
  constexpr std::uint64_t parts = 3;
  const std::uint64_t own = block.type().links.size();
  if (number < own) {
    return false;
  }
  const std::uint64_t first = number - (number - own) % parts;
  bool is_out = false;
  for (std::uint64_t part = first; part < first + parts; ++part) {
    is_out = is_out || isLeftOut(linkAt(file_, block, part));
  }
  return is_out;
}

void BlockCopy::setField(std::uint32_t block, std::string_view name, std::uint64_t value) {
  const auto raw = block < table_.size() ? readRawBlock(file_, table_[block].offset) : std::nullopt;
  if (!raw) {
    return;
  }
  const BlockFields fields(file_, *raw);
  for (const FieldLayout& field : fields.type().fields) {
    if (field.name == name) {
      std::string bytes(sizeof value, '\0');
      storeLe(bytes.data(), value);
      changes_[block].push_back(
          {fields.fieldsAt() + field.offset - raw->offset, bytes.substr(0, field.width)});
    }
  }
}

void BlockCopy::write(NewBlocks& out) {
  for (const std::uint32_t block : order_) {
    write(out, block);
  }
}

void BlockCopy::write(NewBlocks& out, std::uint32_t block) {
  const auto raw = readRawBlock(file_, table_[block].offset);
  if (!raw) {
    throw CopyFailure("it became shorter while it was copied");
  }
  const std::uint64_t length = lengthOf(*raw);
  const std::uint64_t there = file_.sizeFrom(raw->offset);
  std::string bytes;
  for (std::uint64_t at = 0; at < length; at += bytes.size()) {
    bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(piece_bytes, length - at)));
    const std::uint64_t wanted = std::min<std::uint64_t>(bytes.size(), there - std::min(at, there));
    const auto count = static_cast<std::size_t>(wanted);
    if (file_.readAt(raw->offset + at, bytes.data(), count) < count) {
      throw CopyFailure("it became shorter while it was copied");
    }
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(count), bytes.end(), '\0');
    writePiece(out, *raw, block, at, bytes);
  }
}

/// Pieces begin at multiples of 8, as links do.
void BlockCopy::writePiece(NewBlocks& out, const RawBlock& raw, std::uint32_t block,
                           std::uint64_t at, std::string& bytes) {
  if (at == 0) {
    storeLe(&bytes[length_at], lengthOf(raw));
  }
  // A link that the file cuts off is none.
  const std::uint64_t there = linksThere(file_, raw);
  const std::uint64_t count = isWhole(file_, raw) ? there : raw.linkCount();
  for (std::uint64_t place = std::max<std::uint64_t>(at, RawBlock::header_size);
       place + RawBlock::link_size <= at + bytes.size(); place += RawBlock::link_size) {
    const std::uint64_t number = (place - RawBlock::header_size) / RawBlock::link_size;
    if (number >= count) {
      break;
    }
    char* const link = &bytes[static_cast<std::size_t>(place - at)];
    const std::uint64_t target = number < there ? loadLe<std::uint64_t>(link) : 0;
    storeLe(link, translated(raw, {block, static_cast<std::uint32_t>(number)}, target));
  }
  const auto changes = changes_.find(block);
  if (changes != changes_.end()) {
    for (const Change& change : changes->second) {
      if (change.at >= at && change.at + change.bytes.size() <= at + bytes.size()) {
        bytes.replace(static_cast<std::size_t>(change.at - at), change.bytes.size(), change.bytes);
      }
    }
  }
  out.write(places_[block] + at, bytes);
}

}  // namespace mdf_tools
