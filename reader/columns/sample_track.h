#ifndef MDF_READER_COLUMNS_SAMPLE_TRACK_H_
#define MDF_READER_COLUMNS_SAMPLE_TRACK_H_

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "batch.h"
#include "tables.h"

namespace mdf_reader {

/// Numbers that have no more than so many decimal places, so that those that are written alike are
/// alike.
class Decimals {
 public:
  explicit Decimals(std::optional<int> places);
  double nearest(double number) const;

 private:
  double scale_ = 0;  ///< 0 for any number of places
};

/// What stands in a row between two samples.
enum class Between {
  held,    ///< the sample before
  linear,  ///< for numbers what lies on the line from one to the other, else the sample before
};

/// The samples of a table in the order of their times, which are looked up for the rows of another
/// table. Those without a finite time are left out, and those whose times go backwards until a time
/// is as late as the latest one before.
class SampleTrack {
 public:
  SampleTrack(std::unique_ptr<Table> table, Between between);

  const TableHead& head() const { return table_->head(); }

  /// The columns of the rows: those of the table but for its master.
  std::vector<ColumnHead> columns() const;
  /// Where their values go.
  /// @param to the first one's data, followed by those of the others.
  /// @param master where those of the master go; null for nowhere.
  void writeTo(ColumnData* to, ColumnData* master);

  /// The time of the next sample; nothing after the last one.
  std::optional<double> nextTime() const {
    return next_.batch == nullptr ? std::nullopt : std::optional(next_.time);
  }
  /// Goes to the next sample; false after the last one.
  bool goOn();
  /// Goes to the last sample up to a time. Times do not fall.
  void goTo(double time) {
    while (next_.batch != nullptr && isUpTo(next_.time, time)) {
      goOn();
    }
  }
  double time() const { return here_.time; }
  /// Whether there are samples at a time that it has gone to, or after it.
  bool reaches(double time) const {
    return next_.batch != nullptr || (here_.batch != nullptr && isUpTo(time, here_.time));
  }

  /// Adds a row at the sample that it is at.
  std::size_t addSample() { return add({here_.batch, here_.row, nullptr, 0, 0}); }
  /// Adds a row at a time that it has gone to; returns the bytes of its texts.
  std::size_t addRow(double time);
  /// Writes all rows that were added.
  void write();

  /// Says what was left out.
  void noteLeftOut(const NoteSink& note) const;

  static const std::size_t row_bytes;  ///< of memory that a row takes until it is written

 private:
  struct Sample {
    const Batch* batch = nullptr;
    std::size_t row = 0;
    double time = 0;
  };
  /// A row of samples: one, and how far it is on the way to another.
  struct Row {
    const Batch* batch;  ///< null for none
    std::size_t row;
    const Batch* next_batch;
    std::size_t next_row;
    double fraction;
  };

  /// Whether a time is no later than another, but for what the last digits of a double make of it:
  /// 3 times 0.1 is later than 0.3.
  static bool isUpTo(double time, double other) {
    constexpr double some_digits = 8.9e-16;
    return time <= other + std::abs(other) * some_digits;
  }
  bool isInterpolated(std::size_t column) const;
  std::size_t add(const Row& row);
  bool readBatch();
  void readNext();
  void writeColumn(std::size_t column, ColumnData& to) const;
  void writeNumbers(std::size_t column, ColumnData& to) const;
  void writeLine(std::size_t column, ColumnData& to) const;
  void writeTexts(std::size_t column, ColumnData& to) const;

  std::unique_ptr<Table> table_;
  Between between_;
  Decimals decimals_;
  std::vector<std::size_t> texts_;  ///< which columns are none of numbers
  ColumnData* to_ = nullptr;
  ColumnData* master_ = nullptr;

  std::unique_ptr<const Batch> last_;  ///< where the sample is, unless it is in
  std::unique_ptr<const Batch> batch_;
  std::vector<double> times_;  ///< of it
  std::size_t row_ = 0;        ///< the first one of it that was not looked at
  Sample here_;
  Sample next_;
  std::vector<Row> rows_;

  std::optional<double> latest_;
  std::uint64_t backwards_ = 0;
  std::uint64_t first_backwards_ = 0;  ///< number of its record
  std::uint64_t not_finite_ = 0;
};

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_SAMPLE_TRACK_H_
