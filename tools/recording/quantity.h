#ifndef MDF_TOOLS_RECORDING_QUANTITY_H_
#define MDF_TOOLS_RECORDING_QUANTITY_H_

#include <cstdint>
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

/// How large a file gets, or how long: one of the two is 0.
struct FileLimit {
  std::uint64_t bytes = 0;
  std::int64_t nanoseconds = 0;

  bool isSet() const { return bytes > 0 || nanoseconds > 0; }
};

/// 100 kB to 1 EB, from a number and kB, MB, GB or TB, or a second to ten years, from a number and
/// s, min or h.
/// @throws BadOption
FileLimit parseFileLimit(std::string_view text);

/// A number with as many digits as it needs, as in "0.5" and "100000".
std::string shortNumber(double number);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_RECORDING_QUANTITY_H_
