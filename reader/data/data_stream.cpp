#include "data_stream.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "../bytes/input_file.h"
#include "datablocks/dzblock.h"

namespace mdf_reader {

using mdf_v4_10::DZBLOCK;

namespace {

constexpr std::size_t most_read_ahead = std::size_t{1} << 18U;
constexpr std::size_t least_read_ahead = std::size_t{1} << 13U;

/// What of a block tells how much data it holds.
constexpr std::size_t longest_head = DZBLOCK::DZBLOCK_CONSTANT_SIZE;

}  // namespace

DataStream::DataStream(DataFile& file, DataLink link, Access access, const FindingSink& report)
    : file_(file),
      report_(report),
      link_(link),
      access_(access),
      links_(file.bytes(), link, report),
      budget_(file.bytes().size()),
      unzipper_(file.bytes(), access == Access::forward ? file.threads() : 1, file.roomAhead()) {
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
  file_.bytes().expect(part->data, longest_head);
  const auto block = readRawBlock(file_.bytes(), part->data);
  if (!block || !isDataBlock(*block)) {
    endAt(size_, {Code::link_wrong_type, part->list,
                  "expected data at " + decimalAndHex(part->data) + ", found none"});
    return false;
  }
  append(*block);
  return true;
}

void DataStream::append(const RawBlock& block) {
  const DataBlock data = findData(file_, block);
  if (!data.problem.empty()) {
    is_damaged_ = true;
    report_({data.code, block.offset, data.problem});
  }
  // Blocks that do not overlap take no more than the file. Others must not turn a small file into
  // long data.
  if (!budget_.spend(RawBlock::header_size + data.stored)) {
    endAt(size_,
          {Code::work_limited, block.offset,
           "expected data blocks that do not overlap, found more bytes in them than in the file"});
  } else if (data.original > 0) {
    pieces_.push_back({size_, block.offset});
    size_ += data.original;
  }
}

/// Bytes of data in the blocks that were not looked for yet.
std::uint64_t DataStream::bytesToCome() {
  std::uint64_t bytes = 0;
  WorkBudget budget = budget_;
  for (auto part = links_.next(); part && !budget.isOverspent(); part = links_.next()) {
    const auto block = readRawBlock(file_.bytes(), part->data);
    if (block && isDataBlock(*block)) {
      const DataBlock data = findData(file_, *block);
      budget.spend(RawBlock::header_size + data.stored);
      bytes += data.original;
    }
  }
  return bytes;
}

/// Reports why the stream has no more bytes than up to here, and how many these are.
void DataStream::endAt(std::uint64_t end, const Finding& why) {
  const std::uint64_t rest = size_ - end + bytesToCome();
  report_({why.code, why.offset, why.sentence + notRead(rest)});
  links_.stop();
  is_damaged_ = true;
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

bool DataStream::isZipped() {
  const auto block = reaches(1) ? readRawBlock(file_.bytes(), pieces_.front().block) : std::nullopt;
  return block && findData(file_, *block).is_zipped;
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

std::uint64_t DataStream::placeOf(std::uint64_t offset) {
  if (pieces_.empty()) {
    return link_.from;
  }
  const std::size_t piece = offset < size_ ? pieceWith(offset) : pieces_.size() - 1;
  const auto block = readRawBlock(file_.bytes(), pieces_[piece].block);
  if (!block) {
    return link_.from;
  }
  const DataBlock data = findData(file_, *block);
  if (data.is_zipped) {
    return offset < size_ ? block->offset : data.at + data.stored;
  }
  return std::min(data.at + (offset - pieces_[piece].begin), data.at + data.stored);
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
  const auto block = readRawBlock(file_.bytes(), piece.block);
  if (!block) {
    return false;
  }
  const DataBlock data = findData(file_, *block);
  return data.is_zipped ? showZipped(data, piece, offset)
                        : showPlain(data, piece.begin, offset, count);
}

bool DataStream::showPlain(const DataBlock& block, std::uint64_t begin, std::uint64_t offset,
                           std::size_t count) {
  const bool goes_forward = access_ == Access::forward && offset == window_begin_ + window_.size();
  const std::size_t ahead = goes_forward ? std::min(most_read_ahead, 2 * window_.size()) : 0;
  const std::uint64_t wanted = std::max({count, ahead, least_read_ahead});
  const std::uint64_t rest = endOf(last_piece_) - offset;
  plain_.resize(static_cast<std::size_t>(std::min(wanted, rest)));
  plain_.resize(file_.bytes().readAt(block.at + (offset - begin), plain_.data(), plain_.size()));
  window_ = plain_;
  window_begin_ = offset;
  return !window_.empty();
}

/// Scattered values may cause a block to be unzipped for each of them.
bool DataStream::mayUnzip(const DataBlock& block, const Piece& piece) {
  constexpr std::uint64_t always = std::uint64_t{1} << 28U;
  constexpr std::uint64_t times = 16;
  unzipped_bytes_ += block.original;
  if (access_ == Access::scattered && !WorkBudget(size_, times, always).take(unzipped_bytes_)) {
    endAt(0, {Code::work_limited, piece.block,
              "expected values in the order of their records, found them too scattered over zipped "
              "blocks to go on"});
    return false;
  }
  return true;
}

bool DataStream::showZipped(const DataBlock& block, const Piece& piece, std::uint64_t offset) {
  if (unzipped_block_ != piece.block) {
    if (!mayUnzip(block, piece)) {
      return false;
    }
    unzipAhead();
    window_ = {};
    unzipped_block_ = 0;
    Unzipped data = unzipper_.take(block, std::move(unzipped_));
    if (!data.problem.empty()) {
      endAt(piece.begin + data.bytes.size(), {data.code, piece.block, data.problem});
    }
    unzipped_ = std::move(data.bytes);
    unzipped_block_ = piece.block;
  }
  window_ = unzipped_;
  window_begin_ = piece.begin;
  return offset - window_begin_ < window_.size();
}

/// Begins with the next blocks for whoever goes from one block to the next.
void DataStream::unzipAhead() {
  constexpr std::size_t enough = 2;
  const bool is_next = last_piece_ == std::exchange(unzipped_piece_, last_piece_) + 1;
  pieces_in_row_ = is_next ? pieces_in_row_ + 1 : 0;
  if (pieces_in_row_ < enough) {
    return;
  }
  for (std::size_t next = last_piece_ + unzipper_.pending(); next < pieces_.size(); ++next) {
    const auto block = readRawBlock(file_.bytes(), pieces_[next].block);
    const DataBlock data = block ? findData(file_, *block) : DataBlock();
    if (!data.is_zipped || !unzipper_.hasRoomFor(data)) {
      return;
    }
    unzipper_.begin(data);
  }
}

}  // namespace mdf_reader
