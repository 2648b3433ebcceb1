#include "sample_track.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace mdf_reader {

namespace {

/// What lies between two numbers; just the first one where both are alike.
double between(double left, double right, double fraction) {
  const double difference = right - left;
  return std::isfinite(difference) ? left + difference * fraction
                                   : left * (1 - fraction) + right * fraction;
}

/// A number of a column of this very type.
template <class T>
T numberAt(const Batch& batch, std::size_t column, std::size_t row) {
  T number;
  std::memcpy(&number, batch.column(column).bytes() + row * sizeof number, sizeof number);
  return number;
}

std::string records(std::uint64_t count, const std::string& which) {
  return std::to_string(count) + (count == 1 ? " record" : " records") + which +
         (count == 1 ? " is" : " are") + " left out";
}

}  // namespace

const std::size_t SampleTrack::row_bytes = sizeof(SampleTrack::Row);

Decimals::Decimals(std::optional<int> places) : scale_(places ? std::pow(10, *places) : 0) {}

double Decimals::nearest(double number) const {
  constexpr double exact = 9007199254740992;  // beyond it a double does not hold each integer
  const double scaled = number * scale_;
  return scale_ > 0 && std::abs(scaled) < exact ? std::nearbyint(scaled) / scale_ : number;
}

SampleTrack::SampleTrack(std::unique_ptr<Table> table, Between between)
    : table_(std::move(table)),
      between_(between),
      decimals_(table_->head().columns.front().decimals) {
  readNext();
}

bool SampleTrack::isInterpolated(std::size_t column) const {
  return between_ == Between::linear && column > 0 && isNumber(head().columns[column].type);
}

std::vector<ColumnHead> SampleTrack::columns() const {
  std::vector<ColumnHead> columns(head().columns.begin() + 1, head().columns.end());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    columns[i].type = isInterpolated(i + 1) ? ColumnType::float64 : columns[i].type;
  }
  return columns;
}

void SampleTrack::writeTo(ColumnData* to, ColumnData* master) {
  to_ = to;
  master_ = master;
  for (std::size_t i = 1; i < head().columns.size(); ++i) {
    if (!isNumber(head().columns[i].type)) {
      texts_.push_back(i);
    }
  }
}

bool SampleTrack::goOn() {
  if (next_.batch == nullptr) {
    return false;
  }
  here_ = next_;
  readNext();
  return true;
}

/// Finds the next sample whose time can be used.
void SampleTrack::readNext() {
  while (row_ < times_.size() || readBatch()) {
    const std::size_t row = row_++;
    const double time = times_[row];
    if (!std::isfinite(time)) {
      ++not_finite_;
    } else if (latest_ && time < *latest_) {
      first_backwards_ = backwards_++ == 0 ? batch_->record(row) : first_backwards_;
    } else {
      latest_ = time;
      next_ = {batch_.get(), row, time};
      return;
    }
  }
  next_.batch = nullptr;
}

/// Reads the next batch. Rows that were added are written before the batch they are of goes.
bool SampleTrack::readBatch() {
  if (here_.batch == batch_.get()) {
    write();
    last_ = std::move(batch_);
  }
  if (table_->next() == nullptr) {
    return false;
  }
  batch_ = table_->take();
  times_ = batch_->column(0).reals();
  for (double& time : times_) {
    time = decimals_.nearest(time);
  }
  row_ = 0;
  return true;
}

std::size_t SampleTrack::addRow(double time) {
  const bool is_before_first = here_.batch == nullptr;
  const bool is_at_last = next_.batch == nullptr && isUpTo(time, here_.time);
  if (is_before_first || (next_.batch == nullptr && !is_at_last)) {
    return add({nullptr, 0, nullptr, 0, 0});
  }
  if (between_ == Between::held || here_.time >= time || is_at_last) {
    return addSample();
  }
  const double fraction = (time - here_.time) / (next_.time - here_.time);
  return add({here_.batch, here_.row, next_.batch, next_.row, fraction});
}

std::size_t SampleTrack::add(const Row& row) {
  rows_.push_back(row);
  std::size_t bytes = 0;
  for (const std::size_t column : texts_) {
    bytes += row.batch == nullptr ? 0 : row.batch->column(column).text(row.row).size();
  }
  return bytes;
}

void SampleTrack::write() {
  if (rows_.empty()) {
    return;
  }
  if (master_ != nullptr) {
    writeColumn(0, *master_);
  }
  for (std::size_t i = 1; i < head().columns.size(); ++i) {
    writeColumn(i, to_[i - 1]);
  }
  rows_.clear();
}

void SampleTrack::writeColumn(std::size_t column, ColumnData& to) const {
  if (isInterpolated(column)) {
    writeLine(column, to);
  } else if (isNumber(to.type())) {
    writeNumbers(column, to);
  } else {
    writeTexts(column, to);
  }
}

void SampleTrack::writeNumbers(std::size_t column, ColumnData& to) const {
  const std::size_t begin = to.rows();
  withNumberType(to.type(), [&](auto zero) {
    using T = decltype(zero);
    T* value = to.extend<T>(rows_.size());
    for (const Row& row : rows_) {
      *value++ = row.batch == nullptr ? zero : numberAt<T>(*row.batch, column, row.row);
    }
  });
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    if (row.batch == nullptr || !row.batch->column(column).isValid(row.row)) {
      to.setNull(begin + i);
    }
  }
}

void SampleTrack::writeLine(std::size_t column, ColumnData& to) const {
  const auto isValid = [&](const Batch* batch, std::size_t row) {
    return batch != nullptr && batch->column(column).isValid(row);
  };
  const std::size_t begin = to.rows();
  withNumberType(head().columns[column].type, [&](auto zero) {
    const auto valueOf = [&](const Batch* batch, std::size_t row) {
      return static_cast<double>(numberAt<decltype(zero)>(*batch, column, row));
    };
    auto* value = to.extend<double>(rows_.size());
    for (const Row& row : rows_) {
      const double left = row.batch == nullptr ? 0 : valueOf(row.batch, row.row);
      *value++ = row.next_batch == nullptr
                     ? left
                     : between(left, valueOf(row.next_batch, row.next_row), row.fraction);
    }
  });
  for (std::size_t i = 0; i < rows_.size(); ++i) {
    const Row& row = rows_[i];
    if (!isValid(row.batch, row.row) ||
        (row.next_batch != nullptr && !isValid(row.next_batch, row.next_row))) {
      to.setNull(begin + i);
    }
  }
}

void SampleTrack::writeTexts(std::size_t column, ColumnData& to) const {
  for (const Row& row : rows_) {
    if (row.batch == nullptr || !row.batch->column(column).isValid(row.row)) {
      to.addNulls(1);
    } else {
      to.add(row.batch->column(column).text(row.row));
    }
  }
}

void SampleTrack::noteLeftOut(const NoteSink& note) const {
  const std::string group = "channel group " + std::to_string(head().group->index) + ": ";
  if (backwards_ > 0) {
    note(group + records(backwards_, " whose times go backwards") + ", the first is record " +
         std::to_string(first_backwards_));
  }
  if (not_finite_ > 0) {
    note(group + records(not_finite_, " without a time that is a finite number"));
  }
}

}  // namespace mdf_reader
