#include "space.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "reader/data/data_block.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr std::uint64_t alignment = 8;

std::uint64_t aligned(std::uint64_t offset) {
  return (offset + alignment - 1) / alignment * alignment;
}

bool mayBeBlock(const std::array<char, alignment>& bytes) {
  return bytes[0] == '#' && bytes[1] == '#';
}

/// Those that are not zero, from the first to the last.
class StrayBytes {
 public:
  explicit StrayBytes(const SpaceVisitor& visitor) : visitor_(visitor) {}

  void take(std::uint64_t offset, std::string_view bytes) {
    for (const char byte : bytes) {
      if (byte != 0) {
        first_ = end_ == 0 ? offset : first_;
        end_ = offset + 1;
      }
      ++offset;
    }
  }

  /// What comes next is a block, or the file's end.
  void end() {
    if (end_ != 0) {
      visitor_.on_stray_bytes(first_, end_ - first_);
    }
    end_ = 0;
  }

 private:
  const SpaceVisitor& visitor_;
  std::uint64_t first_ = 0;
  std::uint64_t end_ = 0;  ///< 0 while there are none
};

}  // namespace

Space::Space(DataFile& file, const BlockTable& blocks) : file_(file), offsets_(blocks.offsets()) {}

std::uint64_t Space::blockAround(std::uint64_t offset) const {
  const auto after = std::upper_bound(offsets_.begin(), offsets_.end(), offset);
  if (after == offsets_.begin()) {
    return 0;
  }
  const auto block = readRawBlock(file_.bytes(), *(after - 1));
  return block && offset < file_.endOf(*block) ? block->offset : 0;
}

/// Where the bytes of a block end. A length beyond the file's end does not tell; such a block goes
/// on to the next one.
std::uint64_t Space::coveredUpTo(std::size_t index) const {
  const auto block = readRawBlock(file_.bytes(), offsets_[index]);
  if (block && (isWhole(file_.bytes(), *block) || file_.isOpen(*block))) {
    return file_.endOf(*block);
  }
  return index + 1 < offsets_.size() ? offsets_[index + 1] : file_.bytes().size();
}

void Space::review(const SpaceVisitor& visitor) const {
  std::uint64_t covered = header_block_offset;
  for (std::size_t index = 0; index < offsets_.size(); ++index) {
    const std::uint64_t offset = offsets_[index];
    searchGap(covered, offset, visitor);
    const std::uint64_t end = coveredUpTo(index);
    if (index + 1 < offsets_.size() && end > offsets_[index + 1]) {
      visitor.on_overlap(offset, offsets_[index + 1]);
    }
    covered = std::max(covered, end);
  }
  searchGap(covered, file_.bytes().size(), visitor);
}

/// Bytes after a data block of an unfinished file that no link leads to may be its data.
void Space::searchGap(std::uint64_t from, std::uint64_t to, const SpaceVisitor& visitor) const {
  StrayBytes stray(visitor);
  bool is_open = false;
  std::uint64_t at = aligned(from);
  while (at < to) {
    std::array<char, alignment> bytes{};
    const std::size_t count = file_.bytes().readAt(
        at, bytes.data(), static_cast<std::size_t>(std::min<std::uint64_t>(to - at, alignment)));
    const auto block = mayBeBlock(bytes) ? readRawBlock(file_.bytes(), at) : std::nullopt;
    is_open = is_open || (file_.isUnfinished() && block && isPlainData(*block));
    if (block && looksLikeBlock(*block) && block->holdsItsLinks() && block->length <= to - at) {
      stray.end();
      visitor.on_lost_block(*block);
      at += aligned(block->length);
      continue;
    }
    if (!is_open) {
      stray.take(at, {bytes.data(), count});
    }
    at += alignment;
  }
  stray.end();
}

}  // namespace mdf_tools
