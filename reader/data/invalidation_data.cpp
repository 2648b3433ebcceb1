#include "invalidation_data.h"

#include "../bytes/input_file.h"
#include "data_block.h"

namespace mdf_reader {

InvalidationData::InvalidationData(DataFile& file, DataLink link, const ChannelGroup& group,
                                   const FindingSink& report)
    : file_(file),
      group_(group),
      report_(report),
      silent_([](const Finding& /*finding*/) {}),
      links_(file.bytes(), link, silent_),
      budget_(file.bytes().size()) {}

void InvalidationData::examine(std::uint64_t records) {
  while (end_ < records && enterNextPart()) {
  }
}

std::string_view InvalidationData::at(std::uint64_t record) {
  while (record >= end_) {
    if (!enterNextPart()) {
      return {};
    }
  }
  const std::uint64_t width = group_.invalidation_bytes;
  return bytes_ == nullptr ? std::string_view()
                           : bytes_->at((record - begin_) * width, static_cast<std::size_t>(width));
}

/// A record belongs to the part where it begins.
bool InvalidationData::enterNextPart() {
  bytes_.reset();
  const auto part = links_.next();
  const auto block = part ? readRawBlock(file_.bytes(), part->data) : std::nullopt;
  if (!block || !isDataBlock(*block)) {
    return false;
  }
  data_bytes_ += findData(file_, *block).original;
  begin_ = end_;
  end_ = data_bytes_ / group_.data_bytes + (data_bytes_ % group_.data_bytes == 0 ? 0 : 1);
  if (part->lacks_invalidation) {
    tell(part->list,
         "expected as many links to invalidation data as to data in the list, found fewer; records "
         "without one are taken as valid");
  }
  if (part->invalidation != 0) {
    open(*part);
  }
  return true;
}

void InvalidationData::open(const DataPart& part) {
  const std::string there = "invalidation data at " + decimalAndHex(part.invalidation);
  const auto block = readRawBlock(file_.bytes(), part.invalidation);
  if (!block || originalType(file_.bytes(), *block) != "DI") {
    tell(part.list, "expected " + there + ", found none; its records are taken as valid");
    return;
  }
  bytes_ = std::make_unique<DataStream>(file_, DataLink{part.list, part.invalidation},
                                        DataStream::Access::forward, report_);
  compareLength(part);
  // Blocks that do not overlap take no more than the file. Others must not turn a small file into
  // long data.
  if (!budget_.spend(bytes_->storedBytes())) {
    tell(part.list,
         "expected invalidation data blocks that do not overlap, found more bytes in them than in "
         "the file; further records are taken as valid");
    bytes_.reset();
    links_.stop();
    end_ = UINT64_MAX;
  }
}

void InvalidationData::compareLength(const DataPart& part) {
  const std::uint64_t records = end_ - begin_;
  const std::uint64_t expected = records * group_.invalidation_bytes;
  const std::uint64_t found = bytes_->size();
  if (found != expected && !file_.isUnfinished()) {
    tell(part.invalidation, "expected " + std::to_string(expected) +
                                " bytes of invalidation data for the " + std::to_string(records) +
                                " records in the data at " + decimalAndHex(part.data) + ", found " +
                                std::to_string(found));
  }
}

/// Reports the first problem only: every part may have it.
void InvalidationData::tell(std::uint64_t offset, const std::string& sentence) {
  if (!has_told_) {
    report_({Code::invalidation_data_wrong, offset, sentence});
    has_told_ = true;
  }
}

}  // namespace mdf_reader
