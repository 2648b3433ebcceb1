#include "block_check.h"

#include <string>
#include <string_view>

#include "reader/blocks/walk.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::uint64_t alignment = 8;

/// Whether the length holds header, links and fields.
bool checkLength(const Subject& subject, const BlockFields& block, std::uint32_t index) {
  const RawBlock& raw = block.raw();
  const std::size_t fields = block.type().fieldsWidth();
  const std::uint64_t links = raw.linkCount() * RawBlock::link_size;
  if (raw.holdsItsLinks() && raw.length - RawBlock::header_size - links >= fields) {
    return true;
  }
  subject.report(Code::length_too_small, index,
                 "expected a length that holds the header, " + std::to_string(raw.linkCount()) +
                     " links and " + std::to_string(fields) + " bytes of fields, found " +
                     std::to_string(raw.length));
  return false;
}

/// Checks links of one block.
class LinkCheck {
 public:
  LinkCheck(const Subject& subject, const BlockFields& block, std::uint32_t index)
      : subject_(subject), block_(block), index_(index), type_(typeOf(block.raw().letters())) {}

  void check(std::uint64_t number, std::uint64_t target) const {
    if (target == 0) {
      return;
    }
    const std::uint32_t found = subject_.blocks.find(target);
    if (found == BlockTable::none) {
      checkLost(number, target);
    } else {
      checkFound(number, found);
    }
  }

 private:
  void checkFound(std::uint64_t number, std::uint32_t found) const;
  void checkLost(std::uint64_t number, std::uint64_t target) const;
  bool isShared(const BlockEntry& target, std::uint64_t number) const;

  void report(Code code, std::uint64_t number, const std::string& expected_found) const {
    subject_.report(code, index_,
                    "expected " + linkRole(block_, number).name + " to lead " + expected_found);
  }

  const Subject& subject_;
  const BlockFields& block_;
  std::uint32_t index_;
  const BlockType& type_;
};

void LinkCheck::checkFound(std::uint64_t number, std::uint32_t found) const {
  const BlockEntry& target = subject_.blocks[found];
  const std::string_view targets = linkTargets(block_, number);
  const auto found_block = [&] { return ", found " + nameAt(target.letters(), target.offset); };
  if (!isAmongTargets(targets, target.letters())) {
    const bool is_known = typeOf(target.letters()).isKnown();
    if (is_known || !type_.refers(number)) {
      report(is_known ? Code::link_wrong_type : Code::link_unknown_type, number,
             "to " + std::string(targets) + found_block());
    }
  } else if (type_.refers(number)) {
    return;
  } else if (found <= index_ && index_ < target.end) {
    report(Code::chain_endless, number,
           "on to the end of its list or tree" + found_block() + ", which leads here");
  } else if (isShared(target, number)) {
    const BlockEntry& owner = subject_.blocks[target.parent];
    report(Code::chain_shared, number,
           "to a block of its own" + found_block() + ", which " +
               nameAt(owner.letters(), owner.offset) + " leads to");
  }
}

/// Whether a block that belongs in one list or tree has its place in another. Texts, sources,
/// arrays, conversions and data may have several that lead to them.
bool LinkCheck::isShared(const BlockEntry& target, std::uint64_t number) const {
  const BlockType& type = typeOf(target.letters());
  return type.has_next && type.contents == Contents::description && !target.by_reference &&
         (target.parent != index_ || target.link != number);
}

void LinkCheck::checkLost(std::uint64_t number, std::uint64_t target) const {
  const InputFile& file = subject_.file;
  const std::uint64_t around = target < file.size() ? subject_.space.blockAround(target) : 0;
  if (file.sizeFrom(target) < RawBlock::header_size) {
    report(Code::link_outside_file, number,
           "to a block in the file of " + std::to_string(file.size()) + " bytes, found " +
               decimalAndHex(target));
  } else if (target % alignment != 0) {
    report(Code::link_misaligned, number,
           "to a block on a multiple of 8, found " + decimalAndHex(target));
  } else if (target < header_block_offset) {
    report(Code::link_inside_block, number,
           "to a block, found " + decimalAndHex(target) + " inside the identification");
  } else if (around != 0) {
    const std::uint32_t found = subject_.blocks.find(around);
    report(Code::link_inside_block, number,
           "to a block, found " + decimalAndHex(target) + " inside " +
               nameAt(subject_.blocks[found].letters(), around));
  } else {
    report(Code::link_to_no_block, number, "to a block, found none at " + decimalAndHex(target));
  }
}

}  // namespace

bool checkShape(const Subject& subject, const BlockFields& block, std::uint32_t index) {
  const RawBlock& raw = block.raw();
  if (raw.offset % alignment != 0) {
    subject.report(
        Code::block_misaligned, index,
        "expected the block to stand on a multiple of 8, found " + decimalAndHex(raw.offset));
  }
  if (subject.data_file.isOpen(raw)) {
    return false;
  }
  const bool is_whole = isWhole(subject.file, raw);
  if (!is_whole) {
    subject.report(Code::length_past_end, index,
                   "expected the " + std::to_string(raw.length) + " bytes of the block, found " +
                       std::to_string(subject.file.sizeFrom(raw.offset)) +
                       " up to the end of the file");
  }
  const std::size_t own_links = block.type().links.size();
  if (raw.linkCount() < own_links) {
    subject.report(Code::links_missing, index,
                   "expected at least " + std::to_string(own_links) + " links, found " +
                       std::to_string(raw.linkCount()));
    return false;
  }
  if (!checkLength(subject, block, index) || !is_whole || !block.type().isKnown()) {
    return false;
  }
  checkMoreLinks(subject, block, index, promisedLinks(block));
  const PromisedNumbers numbers = promisedNumbers(block);
  checkNumbers(subject, block, index, numbers.count_field, numbers.count);
  return true;
}

void checkMoreLinks(const Subject& subject, const BlockFields& block, std::uint32_t index,
                    std::uint64_t promised) {
  const std::uint64_t own = block.type().links.size();
  const std::uint64_t there = block.raw().linkCount() - own;
  if (promised > there) {
    subject.report(Code::links_missing, index,
                   "expected " + countText(promised) + " links after the first " +
                       std::to_string(own) + ", as its counts and flags say, found " +
                       std::to_string(there));
  }
}

void checkNumbers(const Subject& subject, const BlockFields& block, std::uint32_t index,
                  std::string_view fields, std::uint64_t promised) {
  const std::uint64_t room = block.tailBytes() / 8;
  if (promised > room) {
    subject.report(Code::count_too_large, index,
                   "expected room for the " + countText(promised) + " numbers of 8 bytes of " +
                       std::string(fields) + ", found room for " + std::to_string(room));
  }
}

void checkLinks(const Subject& subject, const BlockFields& block, std::uint32_t index) {
  const LinkCheck check(subject, block, index);
  forEachWalkedLink(
      subject.file, block.raw(), subject.blocks[index],
      [&](std::uint64_t number, std::uint64_t target) { check.check(number, target); });
}

}  // namespace mdf_tools
