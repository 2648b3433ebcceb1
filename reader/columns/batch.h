#ifndef MDF_READER_COLUMNS_BATCH_H_
#define MDF_READER_COLUMNS_BATCH_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "../model/description.h"
#include "column_data.h"

namespace mdf_reader {

/// What is known of a column before its values.
struct ColumnHead {
  std::string name;  ///< its channel's, which no other column of the table has
  std::string unit;  ///< of the physical values; "" for none
  ColumnType type = ColumnType::bytes;
  const Channel* channel = nullptr;
  /// How many decimal places suffice for its values, which are integers times a decimal factor;
  /// nothing for others.
  std::optional<int> decimals = std::nullopt;
};

/// What is known of a table before its rows: a channel group, or one element of an array in it
/// whose elements have records of their own, with a column for each wanted channel.
struct TableHead {
  const ChannelGroup* group = nullptr;  ///< null for rows at a rate, which are of no group
  std::vector<ColumnHead> columns;
  bool has_master = false;         ///< the first column is the master channel's
  std::uint64_t record_bytes = 0;  ///< in the file, with its record id; 0 before it was looked at
};

/// Records of a table that follow one another, or at equal distances, as columns. It owns its
/// values, names and units; its channel group and channels belong to what it was read by.
class Batch {
 public:
  /// @param head what is known of the table.
  /// @param rows how many to make room for.
  explicit Batch(std::shared_ptr<const TableHead> head, std::size_t rows = 0)
      : head_(std::move(head)) {
    for (const ColumnHead& column : head_->columns) {
      columns_.emplace_back(column.type);
      columns_.back().reserve(rows);
    }
  }

  const TableHead& head() const { return *head_; }
  const ChannelGroup& group() const { return *head_->group; }
  std::size_t rows() const { return rows_; }
  /// The number of a row's record in its group, from 0 on.
  std::uint64_t record(std::size_t row) const { return first_ + row * stride_; }

  /// Bytes of memory that the values take.
  std::size_t size() const {
    return std::accumulate(
        columns_.begin(), columns_.end(), std::size_t{0},
        [](std::size_t sum, const ColumnData& column) { return sum + column.size(); });
  }

  std::size_t columnCount() const { return columns_.size(); }
  const ColumnData& column(std::size_t index) const { return columns_[index]; }
  const std::string& name(std::size_t index) const { return head_->columns[index].name; }
  const std::string& unit(std::size_t index) const { return head_->columns[index].unit; }

 private:
  friend class FrameColumns;
  friend class Table;
  friend class JoinedTable;

  void clear() {
    std::for_each(columns_.begin(), columns_.end(), [](ColumnData& column) { column.clear(); });
    rows_ = 0;
  }

  std::shared_ptr<const TableHead> head_;
  std::vector<ColumnData> columns_;
  std::size_t rows_ = 0;
  std::uint64_t first_ = 0;
  std::size_t stride_ = 1;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_BATCH_H_
