#ifndef MDF_TOOLS_RECORDING_QUANTITY_H_
#define MDF_TOOLS_RECORDING_QUANTITY_H_

#include <stdexcept>
#include <string>
#include <string_view>

namespace mdf_tools {

/// An option that cannot be what it is. The message says what is wrong with it.
class BadOption : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Seconds, 0 to ten years, from a number and ms, s, min, h or nothing (seconds).
/// @throws BadOption
double parseDuration(std::string_view text);

/// Hz, 0.00001 to 100,000, from a number and Hz, kHz or nothing (Hz).
/// @throws BadOption
double parseRate(std::string_view text);

/// A number with as many digits as it needs, as in "0.5" and "100000".
std::string shortNumber(double number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_QUANTITY_H_
