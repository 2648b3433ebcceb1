#include "gathered_records.h"

#include <algorithm>

namespace mdf_reader {

class GatheredRecords::Cursor : public RecordCursor {
 public:
  Cursor(const Part& part, std::uint64_t count) : part_(part), count_(count) {}

  RecordSpan next(std::size_t most) override {
    const std::size_t size = part_.record_bytes;
    RecordSpan span{nullptr, size, size, most, number_, 1};
    if (size > 0 && rest() > 0) {
      const Piece& piece = part_.pieces[piece_];
      span.bytes = piece.bytes.get() + in_piece_ * size;
      span.count = std::min(most, piece.records - in_piece_);
    }
    span.count = static_cast<std::size_t>(std::min<std::uint64_t>(span.count, rest()));
    skip(span.count);
    return span;
  }

  std::uint64_t rest() override { return count_ - number_; }

  void skip(std::uint64_t count) override {
    count = std::min(count, rest());
    number_ += count;
    count += in_piece_;
    while (piece_ < part_.pieces.size() && count >= part_.pieces[piece_].records) {
      count -= part_.pieces[piece_++].records;
    }
    in_piece_ = static_cast<std::size_t>(count);
  }

 private:
  const Part& part_;
  std::uint64_t count_;
  std::uint64_t number_ = 0;
  std::size_t piece_ = 0;
  std::size_t in_piece_ = 0;  ///< records of it that were read
};

/// Adds a piece twice as large as the one before, so that few records take little memory.
bool GatheredRecords::extend(Part& part) {
  constexpr std::size_t fewest = 16;
  constexpr std::size_t most_bytes = std::size_t{1} << 18U;
  const std::size_t fit = std::max<std::size_t>(1, most_bytes / part.record_bytes);
  const std::size_t records =
      std::min(fit, part.pieces.empty() ? fewest : 2 * part.pieces.back().records);
  if (records * part.record_bytes > left_) {
    return false;
  }
  part.room = records * part.record_bytes;
  left_ -= part.room;
  part.pieces.push_back({std::unique_ptr<char[]>(new char[part.room]), records});
  part.next = part.pieces.back().bytes.get();
  return true;
}

std::unique_ptr<RecordCursor> GatheredRecords::read(std::size_t group, std::uint64_t count) const {
  return std::make_unique<Cursor>(parts_[group], count);
}

}  // namespace mdf_reader
