#include "space.h"

#include <algorithm>
#include <cstring>

#include "reader/blocks/raw_block.h"
#include "reader/blocks/survey.h"
#include "reader/blocks/walker.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

bool isData(std::string_view letters) {
  return letters == "DT" || letters == "SD" || letters == "RD" || letters == "DV";
}

}  // namespace

Space::Space(InputFile& file, const BlockTable& blocks, bool last_data_open) : file_(file) {
  offsets_.reserve(blocks.size());
  for (std::uint32_t index = 0; index < blocks.size(); ++index) {
    offsets_.push_back(blocks[index].offset);
  }
  if (!std::is_sorted(offsets_.begin(), offsets_.end())) {
    std::sort(offsets_.begin(), offsets_.end());
  }
  const auto last = offsets_.empty() ? std::nullopt : readRawBlock(file, offsets_.back());
  if (last_data_open && last && isData(last->letters()) &&
      (last->length == 0 || last->length == RawBlock::header_size)) {
    open_block_ = last->offset;
  }
}

std::uint64_t Space::endOf(const RawBlock& block) const {
  return isWhole(file_, block) && !isOpen(block) ? block.offset + block.length : file_.size();
}

std::uint64_t Space::blockAround(std::uint64_t offset) const {
  const auto after = std::upper_bound(offsets_.begin(), offsets_.end(), offset);
  if (after == offsets_.begin()) {
    return 0;
  }
  const auto block = readRawBlock(file_, *(after - 1));
  return block && offset < endOf(*block) ? block->offset : 0;
}

/// Where the bytes of a block end. A length beyond the file's end does not tell; such a block goes
/// on to the next one.
std::uint64_t Space::coveredUpTo(std::size_t index) const {
  const auto block = readRawBlock(file_, offsets_[index]);
  if (block && isWhole(file_, *block) && !isOpen(*block)) {
    return block->offset + block->length;
  }
  return index + 1 < offsets_.size() ? offsets_[index + 1] : file_.size();
}

void Space::review(const OverlapVisitor& overlap, const LostBlockVisitor& lost) const {
  std::uint64_t covered = header_block_offset;
  for (std::size_t index = 0; index < offsets_.size(); ++index) {
    if (offsets_[index] > covered) {
      searchGap(covered, offsets_[index], lost);
    }
    const std::uint64_t end = coveredUpTo(index);
    if (index + 1 < offsets_.size() && end > offsets_[index + 1]) {
      overlap(offsets_[index], offsets_[index + 1]);
    }
    covered = std::max(covered, end);
  }
  searchGap(covered, file_.size(), lost);
}

void Space::searchGap(std::uint64_t from, std::uint64_t to, const LostBlockVisitor& lost) const {
  constexpr std::uint64_t alignment = 8;
  std::uint64_t at = (from + alignment - 1) / alignment * alignment;
  while (at + RawBlock::header_size <= to) {
    const auto block = readRawBlock(file_, at);
    if (!block) {
      return;
    }
    if (looksLikeBlock(*block) && block->holdsItsLinks() && block->length <= to - at) {
      lost(*block);
      at += (block->length + alignment - 1) / alignment * alignment;
    } else {
      at += alignment;
    }
  }
}

}  // namespace mdf_tools
