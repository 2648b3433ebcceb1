#include "frame_columns.h"

#include <cstdint>
#include <string_view>

namespace mdf_reader {

namespace {

TableHead framesHead() {
  TableHead head;
  const auto add = [&](const char* name, ColumnType type, const char* unit = "") {
    head.columns.push_back({name, unit, type});
  };
  add("time", ColumnType::float64, "s");
  add("bus", ColumnType::text);
  add("frame", ColumnType::text);
  add("id", ColumnType::uint32);
  add("extended", ColumnType::uint8);
  add("direction", ColumnType::text);
  add("fd", ColumnType::uint8);
  add("brs", ColumnType::uint8);
  add("esi", ColumnType::uint8);
  add("error", ColumnType::text);
  add("length", ColumnType::uint64);
  add("data", ColumnType::bytes);
  return head;
}

/// Adds values to the columns of a row, from the first one on.
class RowAdder {
 public:
  explicit RowAdder(std::vector<ColumnData>& columns) : next_(columns.begin()) {}

  template <class Number>
  void add(Number number, bool is_known = true) {
    ColumnData& column = *next_++;
    *column.extend<Number>(1) = is_known ? number : 0;
    if (!is_known) {
      column.setNull(column.rows() - 1);
    }
  }
  void addFlag(bool is_set, bool is_known = true) { add<std::uint8_t>(is_set ? 1 : 0, is_known); }
  void addBytes(std::string_view bytes) { (next_++)->add(bytes); }
  /// "" is no value.
  void addText(std::string_view text) {
    ColumnData& column = *next_++;
    if (text.empty()) {
      column.addNulls(1);
    } else {
      column.add(text);
    }
  }

 private:
  std::vector<ColumnData>::iterator next_;
};

}  // namespace

FrameColumns::FrameColumns() : head_(std::make_shared<const TableHead>(framesHead())) {}

void FrameColumns::add(const BusFrame& frame, std::vector<ColumnData>& columns) {
  RowAdder row(columns);
  row.add(frame.time);
  row.addText(frame.bus);
  row.addText(kindName(frame));
  row.add(frame.id, frame.hasId());
  row.addFlag(frame.is_extended, frame.hasId());
  row.addText(directionName(frame));
  row.addFlag(frame.is_fd);
  row.addFlag(frame.has_bit_rate_switch);
  row.addFlag(frame.has_error_state);
  row.addText(errorName(frame));
  row.add(frame.length);
  row.addBytes(frame.data);
}

std::unique_ptr<const Batch> FrameColumns::next(BusFrames& frames, std::size_t rows) const {
  auto batch = std::make_unique<Batch>(head_, rows);
  while (batch->rows_ < rows) {
    const BusFrame* const frame = frames.next();
    if (frame == nullptr) {
      break;
    }
    add(*frame, batch->columns_);
    ++batch->rows_;
  }
  return batch->rows_ > 0 ? std::move(batch) : nullptr;
}

}  // namespace mdf_reader
