#ifndef MDF_TOOLS_IMPORTING_NUMBER_SCAN_H_
#define MDF_TOOLS_IMPORTING_NUMBER_SCAN_H_

#include <cstdint>
#include <string_view>

namespace mdf_tools {

/// Which characters stand between the digits of one and those of a tenth.
enum class DecimalMark { point, comma, either };

/// A number as a text has it.
struct ScannedNumber {
  enum class Kind : std::uint8_t { none, integer, real };

  Kind kind = Kind::none;
  bool is_negative = false;
  bool is_plain = false;  ///< at most 18 digits, and no exponent
  bool has_real = false;  ///< it is made; of others realOf() makes it when it is wanted
  std::int16_t decimals = 0;
  std::uint64_t magnitude = 0;  ///< of an integer; of a plain number all digits; or a double's bits
};

/// Reads the whole of a text as a number. Texts such as "007" are none: their zeros mean something.
ScannedNumber scanNumber(std::string_view text, DecimalMark mark);

/// A double holds each integer up to it.
inline constexpr std::uint64_t most_exact = std::uint64_t{1} << 53U;

/// The number that a double is.
ScannedNumber realNumber(double real);

/// The number that was scanned in a text as a double.
double realOf(const ScannedNumber& number, std::string_view text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_NUMBER_SCAN_H_
