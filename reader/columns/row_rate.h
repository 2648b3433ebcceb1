#ifndef MDF_READER_COLUMNS_ROW_RATE_H_
#define MDF_READER_COLUMNS_ROW_RATE_H_

#include <cstdint>
#include <optional>
#include <string>

namespace mdf_reader {

/// Rows at equal distances of time: so many in so many seconds.
struct RowRate {
  std::uint64_t seconds = 0;
  std::uint64_t rows = 0;  ///< 0 for a rate that cannot be used

  bool isUsable() const { return rows > 0; }
  /// How many seconds after the first row another one comes. It is computed from the row's number,
  /// so that errors do not add up.
  double secondsTo(std::uint64_t row) const;
  /// How many decimal places its seconds have; nothing for more than nine.
  std::optional<int> decimals() const;
};

/// What a text such as "10Hz", "0.5kHz", "100ms" or "0.1s" says, to the nanosecond and the
/// nanohertz. Nothing for a text that is no number with a unit; a rate that cannot be used for one
/// that is not from 1 ns to 1e9 s, or as many hertz.
std::optional<RowRate> readRate(const std::string& text);

}  // namespace mdf_reader

#endif  // MDF_READER_COLUMNS_ROW_RATE_H_
