#include "data_links.h"

#include <algorithm>

#include "../blocks/block_fields.h"
#include "../blocks/later_types.h"
#include "../bytes/input_file.h"
#include "data_block.h"
#include "datablocks/hlblock.h"

namespace mdf_reader {

using mdf_v4_10::HLBLOCK;

namespace {

bool isHeaderList(const RawBlock& block) {
  return block.type().contents == Contents::list_of_lists;
}

}  // namespace

DataLinks::DataLinks(InputFile& file, DataLink link, const FindingSink& report)
    : file_(file), report_(report) {
  if (link.to != 0) {
    enter(link);
  }
}

void DataLinks::fail(const Finding& finding) {
  have_failed_ = true;
  report_(finding);
}

/// Takes the block that the link to the data leads to: data, a list, or a header of lists.
void DataLinks::enter(DataLink link) {
  auto block = readRawBlock(file_, link.to);
  if (block && isHeaderList(*block)) {
    const std::uint64_t first = linkAt(file_, *block, HLBLOCK::hl_dl_first);
    if (first == 0) {
      return;
    }
    block = readRawBlock(file_, first);
    if (block && !isDataList(*block)) {
      block.reset();
    }
  }
  if (block && isDataList(*block)) {
    enterList(*block);
  } else if (block && isDataBlock(*block)) {
    single_ = DataPart{block->offset, 0, block->offset, false};
  } else {
    fail({Code::link_wrong_type, link.from,
          "expected a block with data at " + decimalAndHex(link.to) + ", found none"});
  }
}

void DataLinks::enterList(const RawBlock& block) {
  if (lists_.contains(block.offset)) {
    list_.reset();
    fail({Code::chain_endless, block.offset,
          "expected the chain of lists to end, found this one again"});
    return;
  }
  lists_.insert(block.offset);
  list_ = block;
  next_link_ = next_link + 1;
  end_link_ = linksThere(file_, block);
  if (block.link_count > end_link_) {
    fail({Code::count_too_large, block.offset,
          "expected the " + std::to_string(block.link_count) + " links of ##" +
              std::string(block.letters()) + ", found " + std::to_string(end_link_)});
  }
  has_invalidation_ = false;
  if (block.letters() == "LD") {
    // Links to data come first; as many to invalidation data may follow them.
    const BlockFields fields(file_, block);
    end_link_ = std::min(end_link_, next_link_ + fields.number("ld_count"));
    has_invalidation_ = fields.hasFlag("ld_flags", LDBLOCK::has_invalidation_data);
  }
}

void DataLinks::enterNextList() {
  const RawBlock list = *list_;
  const std::uint64_t next = linkAt(file_, list, next_link);
  list_.reset();
  const auto block = next == 0 ? std::nullopt : readRawBlock(file_, next);
  if (block && isDataList(*block)) {
    enterList(*block);
  } else if (next != 0) {
    fail({Code::link_wrong_type, list.offset,
          "expected a list at " + decimalAndHex(next) + ", found none"});
  }
}

DataPart DataLinks::partAt(std::uint64_t index) {
  DataPart part{linkAt(file_, *list_, index), 0, list_->offset, false};
  if (has_invalidation_) {
    const std::uint64_t beside = index + (end_link_ - 1);
    part.invalidation = linkAt(file_, *list_, beside);
    part.lacks_invalidation = beside >= linksThere(file_, *list_);
  }
  return part;
}

/// Lists that were made in advance have links that lead nowhere.
std::optional<DataPart> DataLinks::next() {
  if (single_) {
    const DataPart part = *single_;
    single_.reset();
    return part;
  }
  while (list_) {
    while (next_link_ < end_link_) {
      const DataPart part = partAt(next_link_++);
      if (part.data != 0) {
        return part;
      }
    }
    enterNextList();
  }
  return std::nullopt;
}

void DataLinks::stop() {
  single_.reset();
  list_.reset();
}

}  // namespace mdf_reader
