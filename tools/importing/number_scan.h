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
  bool has_real = false;  ///< `real` is made; of others realOf() makes it when it is wanted
  int decimals = 0;
  std::uint64_t magnitude = 0;  ///< of an integer; of a plain number all digits
  double real = 0;
};

/// Reads the whole of a text as a number. Texts such as "007" are none: their zeros mean something.
ScannedNumber scanNumber(std::string_view text, DecimalMark mark);

/// Reads digits with a sign and a decimal mark at the front of a text. Returns where they end; the
/// number is none where something else follows that may belong to it.
const char* scanDigits(const char* at, const char* end, DecimalMark mark, ScannedNumber& number);

/// The number that was scanned in a text as a double.
double realOf(const ScannedNumber& number, std::string_view text);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_IMPORTING_NUMBER_SCAN_H_
