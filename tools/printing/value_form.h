#ifndef MDF_TOOLS_PRINTING_VALUE_FORM_H_
#define MDF_TOOLS_PRINTING_VALUE_FORM_H_

#include <cstddef>
#include <optional>
#include <string>

#include "reader/columns/batch.h"
#include "reader/summary/stored_time.h"

namespace mdf_tools {

using namespace mdf_reader;

/// How the values of tables are written.
struct ValueForm {
  enum class Time { seconds, iso, nanoseconds };

  int digits = 0;  ///< significant ones of numbers with a fraction; 0 for as many as it takes
  Time time = Time::seconds;          ///< of master channels that are times
  std::optional<StoredTime> start{};  ///< of the measurement, for all but seconds

  /// Whether a column has times that are not written in seconds.
  bool isTime(const TableHead& table, std::size_t column) const;

  /// Whether a column has times that are written as a date.
  bool isDate(const TableHead& table, std::size_t column) const {
    return time == Time::iso && isTime(table, column);
  }

  /// Appends a time in seconds since the measurement was started; as a fraction of no more decimal
  /// places than these.
  void printTime(double seconds, std::optional<int> decimals, std::string& text) const;

  /// Appends a value; nothing where there is none. Times that the file stores as integers have no
  /// more decimal places than these.
  void print(const Batch& batch, std::size_t column, std::size_t row, std::string& text) const;
};

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_VALUE_FORM_H_
