#include "walker.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "../bytes/input_file.h"
#include "../bytes/offset_set.h"
#include "raw_block.h"
#include "reading_limit.h"

namespace mdf_reader {

namespace {

class Walker {
 public:
  Walker(InputFile& file, const FindingSink& report)
      : file_(file), report_(report), limit_(file.size(), report) {}

  std::vector<std::uint64_t> walk(std::uint64_t from) {
    const bool is_rooted =
        from == header_block_offset ? hasIdentification() && hasHeaderBlock() : hasBlock(from);
    if (is_rooted) {
      // The list grows during the loop.
      for (std::size_t i = 0; i < offsets_.size(); ++i) {
        followLinksAt(offsets_[i]);
      }
    }
    std::sort(offsets_.begin(), offsets_.end());
    return std::move(offsets_);
  }

 private:
  bool hasIdentification();
  bool hasHeaderBlock();
  bool hasBlock(std::uint64_t offset);
  void followLinksAt(std::uint64_t offset);
  void follow(const RawBlock& from, std::uint64_t index, std::int64_t link);
  void reportLink(Code code, const RawBlock& from, std::uint64_t index,
                  const std::string& expected_found);

  void add(const RawBlock& block) {
    seen_.insert(block.offset);
    offsets_.push_back(block.offset);
  }

  InputFile& file_;
  const FindingSink& report_;
  ReadingLimit limit_;
  std::vector<std::uint64_t> offsets_;
  OffsetSet seen_;
};

/// A file without the right identification may still have blocks; one that ends here has none.
bool Walker::hasIdentification() {
  if (const auto finding = identificationFinding(file_)) {
    report_(*finding);
  }
  return file_.size() >= header_block_offset;
}

bool Walker::hasHeaderBlock() {
  const auto root = readRawBlock(file_, header_block_offset);
  if (!root) {
    report_({Code::header_missing, header_block_offset,
             "expected the header block's 24 bytes of common header, " +
                 upToTheEnd(file_.sizeFrom(header_block_offset))});
    return false;
  }
  if (root->name() != "##HD") {
    report_({Code::header_missing, header_block_offset,
             "expected the header block \"##HD\", found \"" + root->name() + '"'});
  }
  if (root->hasId()) {
    add(*root);
  }
  return root->hasId();
}

bool Walker::hasBlock(std::uint64_t offset) {
  const auto root = findBlock(file_, offset, report_);
  if (root) {
    add(*root);
  }
  return root.has_value();
}

void Walker::followLinksAt(std::uint64_t offset) {
  // The header was there before; a file that has been cut meanwhile is reported at the end.
  if (const auto block = readRawBlock(file_, offset)) {
    checkExtent(file_, *block, report_);
    if (!limit_.allows(*block, linksThere(file_, *block) * RawBlock::link_size)) {
      return;
    }
    forEachLink(file_, *block,
                [&](std::uint64_t index, std::int64_t link) { follow(*block, index, link); });
  }
}

void Walker::follow(const RawBlock& from, std::uint64_t index, std::int64_t link) {
  const auto target = static_cast<std::uint64_t>(link);
  if (link == 0 || seen_.contains(target)) {
    return;
  }
  if (link < 0 || target >= file_.size()) {
    reportLink(Code::link_outside_file, from, index,
               "into the file of " + std::to_string(file_.size()) + " bytes, found " +
                   (link < 0 ? std::to_string(link) : decimalAndHex(target)));
    return;
  }
  const auto block = readRawBlock(file_, target);
  if (!block) {
    reportLink(Code::link_outside_file, from, index,
               "to the 24 bytes of a block header, found only " +
                   std::to_string(file_.sizeFrom(target)) + " at " + decimalAndHex(target));
  } else if (!block->hasId()) {
    reportLink(Code::link_to_no_block, from, index,
               "to a block \"##\", found \"" + block->name() + "\" at " + decimalAndHex(target));
  } else {
    add(*block);
  }
}

void Walker::reportLink(Code code, const RawBlock& from, std::uint64_t index,
                        const std::string& expected_found) {
  report_({code, from.offset,
           "expected link " + std::to_string(index) + " of " + from.name() + " to lead " +
               expected_found});
}

}  // namespace

std::vector<std::uint64_t> walkBlocks(InputFile& file, const FindingSink& report,
                                      std::uint64_t from) {
  return Walker(file, report).walk(from);
}

std::optional<RawBlock> findBlock(InputFile& file, std::uint64_t offset,
                                  const FindingSink& report) {
  const auto block = readRawBlock(file, offset);
  if (block && block->hasId()) {
    return block;
  }
  const std::uint64_t where = std::min(offset, file.size());
  report({Code::request_failed, where,
          "expected a block \"##\" at " + decimalAndHex(offset) + ", found " +
              (block ? quoted({block->id.data(), block->id.size()})
                     : "only " + std::to_string(file.sizeFrom(offset)) +
                           " bytes up to the file's end")});
  return std::nullopt;
}

void checkExtent(const InputFile& file, const RawBlock& block, const FindingSink& report) {
  if (!block.holdsItsLinks()) {
    report({Code::length_too_small, block.offset,
            "expected the length of " + block.name() + " to hold its header and " +
                std::to_string(block.linkCount()) + " links, found " +
                std::to_string(block.length)});
  }
  if (!isWhole(file, block)) {
    report({Code::length_past_end, block.offset,
            "expected the " + std::to_string(block.length) + " bytes of " + block.name() + ", " +
                upToTheEnd(file.sizeFrom(block.offset))});
  }
}

}  // namespace mdf_reader
