#ifndef MDF_TOOLS_IMPORTING_TIME_COLUMN_H_
#define MDF_TOOLS_IMPORTING_TIME_COLUMN_H_

#include <cstdint>
#include <string>

#include "iso_time.h"
#include "number_scan.h"
#include "table_source.h"

namespace mdf_tools {

/// The column of a table that says when, or in which order, its rows were measured: what its cells
/// are, and the integers or real numbers that they are stored as.
class TimeColumn {
 public:
  enum class Form {
    none,       ///< the column has other values
    counter,    ///< 0, 1, 2, ...: the numbers of the rows, which need not be stored
    decimals,   ///< seconds as integers that are multiplied by a power of ten
    real,       ///< seconds with too many digits for that
    dates,      ///< as nanoseconds since the start
    since_1970  ///< nanoseconds since then, which become those since the start
  };

  /// @param is_stated whether its user says that it is one.
  /// @throws ImportFailure for a unit that time is not measured in.
  TimeColumn(const ColumnName& column, bool is_stated);

  /// Begins with the first row, again.
  void rewind() { rows_ = 0; }

  /// Takes the next row's cell. Says what is wrong with it as a time; empty for nothing.
  std::string add(const Cell& cell);

  /// Whether that would be wrong for a column of times: it has their name, their unit or dates.
  bool looksLikeTimes() const { return is_named_ || are_dates_; }

  /// Decides by all rows what the cells are.
  void settle();
  Form form() const { return form_; }

  bool hasStart() const { return form_ == Form::dates || form_ == Form::since_1970; }
  const IsoTime& start() const { return start_; }

  /// How many decimal places of a second the integers have.
  int places() const { return places_; }

  /// The cell that was added last, as such an integer and in seconds.
  std::int64_t integer(const IsoTime& since) const;
  double seconds() const;

 private:
  std::string addDate(const Cell& cell);
  std::string addNumber(const Cell& cell);
  void noteDigits(const ScannedNumber& number);
  Form formOfAll() const;
  int placesOfAll() const;

  bool is_stated_;
  bool is_named_;  ///< its name or its unit is one of times
  bool has_unit_;
  bool is_index_;  ///< its name is that of a column that was added to count the rows
  int shift_ = 0;  ///< decimal places between the unit and a second

  std::uint64_t rows_ = 0;
  bool is_sound_ = true;  ///< a time in each row, and none before the one above it
  bool are_dates_ = false;
  bool is_counter_ = true;
  bool is_integer_ = true;
  bool is_plain_ = true;  ///< without exponents and signs of zeros
  int decimals_ = 0;      ///< the most
  double least_ = 0;      ///< in its unit
  double greatest_ = 0;   ///< that was added last
  IsoTime start_;
  Form form_ = Form::none;
  int places_ = 0;  ///< -1 where integers cannot have them

  ScannedNumber number_;  ///< of the cell that was added last
  IsoTime date_;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_TIME_COLUMN_H_
