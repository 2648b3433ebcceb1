#include "arrow_array.h"

#include <cmath>
#include <utility>
#include <vector>

namespace mdf_reader {

namespace {

/// What an array points to. Its children may be moved away, and last on their own.
struct ArrayOwner {
  explicit ArrayOwner(std::size_t child_count) : children(child_count) {
    for (ArrowArray& child : children) {
      pointers.push_back(&child);
    }
  }
  ~ArrayOwner() {
    for (ArrowArray& child : children) {
      if (child.release != nullptr) {
        child.release(&child);
      }
    }
  }
  ArrayOwner(const ArrayOwner&) = delete;
  ArrayOwner& operator=(const ArrayOwner&) = delete;

  std::shared_ptr<const void> values;  ///< what the buffers are in
  std::vector<const void*> buffers;
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> pointers;
};

void release(ArrowArray* array) {
  const std::unique_ptr<ArrayOwner> owner(static_cast<ArrayOwner*>(array->private_data));
  array->release = nullptr;
}

void handOver(std::unique_ptr<ArrayOwner> owner, std::size_t rows, std::size_t null_count,
              ArrowArray& out) {
  out = {};
  out.length = static_cast<std::int64_t>(rows);
  out.null_count = static_cast<std::int64_t>(null_count);
  out.n_buffers = static_cast<std::int64_t>(owner->buffers.size());
  out.n_children = static_cast<std::int64_t>(owner->children.size());
  out.buffers = owner->buffers.data();
  out.children = owner->pointers.data();
  out.release = release;
  out.private_data = owner.release();
}

/// @param owner keeps the column.
void exportColumn(std::shared_ptr<const void> owner, const ColumnData& column, ArrowArray& out) {
  static constexpr std::int64_t nothing = 0;  // for texts that are all empty: never a null pointer
  auto array = std::make_unique<ArrayOwner>(0);
  array->values = std::move(owner);
  array->buffers.push_back(column.validity());
  if (!isNumber(column.type())) {
    array->buffers.push_back(column.offsets());
  }
  const char* const bytes = column.bytes();
  array->buffers.push_back(bytes == nullptr ? static_cast<const void*>(&nothing) : bytes);
  handOver(std::move(array), column.rows(), column.nullCount(), out);
}

/// Nanoseconds since 1970; nothing for a time that these cannot say.
std::optional<std::int64_t> timestampOf(double seconds, std::int64_t start) {
  constexpr double limit = 9.2e18;  // below 2^63
  const double nanoseconds = std::round(seconds * 1e9);
  if (!(std::fabs(nanoseconds) < limit)) {
    return std::nullopt;
  }
  const auto count = static_cast<std::int64_t>(nanoseconds);
  // Times of measurements begin after 1970, so that there is only one end to go beyond.
  if (count > INT64_MAX - start) {
    return std::nullopt;
  }
  return start + count;
}

std::shared_ptr<const ColumnData> timestamps(const ColumnData& seconds, std::int64_t start) {
  auto column = std::make_shared<ColumnData>(ColumnType::int64);
  auto* const times = column->extend<std::int64_t>(seconds.rows());
  for (std::size_t row = 0; row < seconds.rows(); ++row) {
    const auto time = timestampOf(seconds.real(row), start);
    times[row] = time.value_or(0);
    if (!time) {
      column->setNull(row);
    }
  }
  return column;
}

/// Each row with a text of its own.
std::shared_ptr<const ColumnData> withoutCodes(const ColumnData& coded) {
  auto column = std::make_shared<ColumnData>(ColumnType::text);
  column->append(coded, 0, coded.rows());
  return column;
}

}  // namespace

void exportBatch(const std::shared_ptr<const Batch>& batch, std::optional<std::int64_t> start,
                 ArrowArray& out) {
  auto array = std::make_unique<ArrayOwner>(batch->columnCount());
  array->buffers.push_back(nullptr);
  for (std::size_t i = 0; i < batch->columnCount(); ++i) {
    if (i == 0 && start) {
      const auto times = timestamps(batch->column(0), *start);
      exportColumn(times, *times, array->children[0]);
    } else if (batch->column(i).codes() != nullptr) {
      const auto texts = withoutCodes(batch->column(i));
      exportColumn(texts, *texts, array->children[i]);
    } else {
      exportColumn(batch, batch->column(i), array->children[i]);
    }
  }
  handOver(std::move(array), batch->rows(), 0, out);
}

}  // namespace mdf_reader
