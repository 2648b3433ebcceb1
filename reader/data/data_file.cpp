#include "data_file.h"

#include <algorithm>
#include <thread>

#include "../blocks/walk.h"
#include "../bytes/input_file.h"
#include "data_block.h"

namespace mdf_reader {

namespace {

constexpr std::uint64_t times_for_data = 4;

std::uint64_t headOf(const RawBlock& block) {
  return RawBlock::header_size + block.link_count * RawBlock::link_size;
}

}  // namespace

DataFile::DataFile(InputFile& file, std::size_t threads)
    : file_(file),
      threads_(threads == 0 ? std::thread::hardware_concurrency() : threads),
      id_(readIdentification(file)),
      budget_(file.size(), times_for_data) {}

bool DataFile::areCountsFinal() const {
  return !isUnfinished() || (id_.standard_flags & Identification::cycle_counters_open) == 0;
}

bool DataFile::isCountFinal(const ChannelGroup& group) const {
  return areCountsFinal() && (group.cycles > 0 || !isUnfinished());
}

bool DataFile::isOpen(const RawBlock& block) {
  return isUnfinished() && isPlainData(block) &&
         block.link_count <= file_.size() / RawBlock::link_size && isCalledOpen(block) &&
         !(block.length >= headOf(block) && leadsOn(block.offset + block.length)) &&
         isLastOfItsType(block);
}

bool DataFile::isCalledOpen(const RawBlock& block) const {
  return (id_.standard_flags & block.type().open_flag) != 0 || block.length <= headOf(block);
}

/// Whether a block may end at an offset, with another one or nothing behind it.
bool DataFile::leadsOn(std::uint64_t end) {
  if (end == file_.size()) {
    return true;
  }
  const auto next = end < file_.size() ? readRawBlock(file_, (end + 7) / 8 * 8) : std::nullopt;
  return next && looksLikeBlock(*next) &&
         (next->length >= RawBlock::header_size || isPlainData(*next));
}

bool DataFile::isLastOfItsType(const RawBlock& block) {
  lookForBlocks();
  const auto last = last_.find(std::string(block.letters()));
  return last != last_.end() && last->second == block.offset;
}

std::uint64_t DataFile::endOf(const RawBlock& block) {
  if (!isOpen(block)) {
    return isWhole(file_, block) ? block.offset + block.length : file_.size();
  }
  const std::uint64_t begin = block.offset + headOf(block);
  const auto next = std::lower_bound(blocks_.begin(), blocks_.end(), begin);
  return next == blocks_.end() ? file_.size() : *next;
}

/// Of a block that no link leads to nobody asks.
void DataFile::lookForBlocks() {
  if (!blocks_.empty()) {
    return;
  }
  blocks_ = walkBlocks(file_, nullptr).offsets();
  for (const std::uint64_t offset : blocks_) {
    const auto block = readRawBlock(file_, offset);
    if (block && isPlainData(*block)) {
      last_[std::string(block->letters())] = offset;
    }
  }
}

bool DataFile::mayGoOnAfter(std::uint64_t stored_bytes) { return budget_.spend(stored_bytes); }

}  // namespace mdf_reader
