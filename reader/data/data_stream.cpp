#include "data_stream.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

constexpr std::size_t most_read_ahead = std::size_t{1} << 18U;
constexpr std::size_t least_read_ahead = std::size_t{1} << 13U;

}  // namespace

DataStream::DataStream(InputFile& file, std::uint64_t link, bool is_unfinished, Access access,
                       const FindingSink& report)
    : file_(file),
      report_(report),
      is_unfinished_(is_unfinished),
      access_(access),
      links_(file, link, report) {
  if (!links_.isInLists()) {
    extend();
  }
}

/// Looks for one more block; false at the end.
bool DataStream::extend() {
  const auto part = links_.next();
  if (!part) {
    return false;
  }
  const auto block = readRawBlock(file_, part->data);
  if (!block || !isDataBlock(*block)) {
    endAt(size_, part->list, "expected data at " + decimalAndHex(part->data) + ", found none");
    return false;
  }
  append(*block);
  return true;
}

void DataStream::append(const RawBlock& block) {
  const DataBlock data = findData(file_, block, is_unfinished_);
  if (!data.problem.empty()) {
    report_({block.offset, data.problem});
  }
  // Blocks that do not overlap take no more than the file. Others must not turn a small file into
  // long data.
  stored_ += RawBlock::header_size + data.stored;
  if (stored_ > file_.size()) {
    endAt(size_, block.offset,
          "expected data blocks that do not overlap, found more bytes in them than in the file");
  } else if (data.original > 0) {
    pieces_.push_back({size_, block.offset});
    size_ += data.original;
  }
}

/// Reports why the stream has no more bytes than up to here.
void DataStream::endAt(std::uint64_t end, std::uint64_t offset, const std::string& sentence) {
  report_({offset, sentence});
  links_.stop();
  size_ = end;
  while (!pieces_.empty() && pieces_.back().begin >= end) {
    pieces_.pop_back();
  }
}

bool DataStream::reaches(std::uint64_t end) {
  while (size_ < end) {
    if (!extend()) {
      return false;
    }
  }
  return true;
}

std::uint64_t DataStream::size() {
  while (extend()) {
  }
  return size_;
}

std::uint64_t DataStream::endOf(std::size_t piece) const {
  return piece + 1 < pieces_.size() ? pieces_[piece + 1].begin : size_;
}

std::size_t DataStream::pieceWith(std::uint64_t offset) const {
  for (std::size_t piece = last_piece_; piece < pieces_.size() && piece < last_piece_ + 2;
       ++piece) {
    if (pieces_[piece].begin <= offset && offset < endOf(piece)) {
      return piece;
    }
  }
  const auto after =
      std::upper_bound(pieces_.begin(), pieces_.end(), offset,
                       [](std::uint64_t at, const Piece& piece) { return at < piece.begin; });
  return static_cast<std::size_t>(after - pieces_.begin()) - 1;
}

std::string_view DataStream::outsideTheWindow(std::uint64_t offset, std::size_t count) {
  const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() - offset;
  if (count > most || !reaches(offset + count)) {
    count = offset < size_ ? static_cast<std::size_t>(size_ - offset) : 0;
  }
  if (count == 0 || !show(offset, count)) {
    return {};
  }
  const auto skipped = static_cast<std::size_t>(offset - window_begin_);
  return count <= window_.size() - skipped ? window_.substr(skipped, count) : joined(offset, count);
}

/// Bytes from several blocks.
std::string_view DataStream::joined(std::uint64_t offset, std::size_t count) {
  std::string bytes;
  while (bytes.size() < count && show(offset + bytes.size(), count - bytes.size())) {
    const auto skipped = static_cast<std::size_t>(offset + bytes.size() - window_begin_);
    bytes += window_.substr(skipped, count - bytes.size());
  }
  joined_ = std::move(bytes);
  return joined_;
}

/// Brings the window to where there is at least one byte from an offset on.
bool DataStream::show(std::uint64_t offset, std::size_t count) {
  if (offset >= size_) {
    return false;  // unzipping has failed meanwhile
  }
  if (offset >= window_begin_ && offset - window_begin_ < window_.size()) {
    return true;
  }
  last_piece_ = pieceWith(offset);
  const Piece piece = pieces_[last_piece_];
  const auto block = readRawBlock(file_, piece.block);
  if (!block) {
    return false;
  }
  const DataBlock data = findData(file_, *block, is_unfinished_);
  return data.is_zipped ? showZipped(data, piece, offset)
                        : showPlain(data, piece.begin, offset, count);
}

bool DataStream::showPlain(const DataBlock& block, std::uint64_t begin, std::uint64_t offset,
                           std::size_t count) {
  const bool goes_forward = access_ == Access::forward && offset == window_begin_ + window_.size();
  const std::uint64_t wanted = std::max(count, goes_forward ? most_read_ahead : least_read_ahead);
  const std::uint64_t rest = endOf(last_piece_) - offset;
  plain_.resize(static_cast<std::size_t>(std::min(wanted, rest)));
  plain_.resize(file_.readAt(block.at + (offset - begin), plain_.data(), plain_.size()));
  window_ = plain_;
  window_begin_ = offset;
  return !window_.empty();
}

/// Scattered values may cause a block to be unzipped for each of them.
bool DataStream::mayUnzip(const DataBlock& block, const Piece& piece) {
  constexpr std::uint64_t always = std::uint64_t{1} << 28U;
  constexpr std::uint64_t times = 16;
  unzipped_bytes_ += block.original;
  if (access_ == Access::scattered && unzipped_bytes_ > always && unzipped_bytes_ / times > size_) {
    endAt(0, piece.block,
          "expected values in the order of their records, found them too scattered "
          "over zipped blocks to go on");
    return false;
  }
  return true;
}

bool DataStream::showZipped(const DataBlock& block, const Piece& piece, std::uint64_t offset) {
  if (unzipped_block_ != piece.block) {
    if (!mayUnzip(block, piece)) {
      return false;
    }
    Unzipped data = unzip(file_, block);
    if (!data.problem.empty()) {
      endAt(piece.begin + data.bytes.size(), piece.block, data.problem);
    }
    unzipped_ = std::move(data.bytes);
    unzipped_block_ = piece.block;
  }
  window_ = unzipped_;
  window_begin_ = piece.begin;
  return offset - window_begin_ < window_.size();
}

}  // namespace mdf_reader
