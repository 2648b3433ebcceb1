#ifndef MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_
#define MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_

#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>

namespace mdf_tools {

/// What is wrong with a text that is no count, such as "-1" and "many"; "" for a count.
inline std::string expectCount(const std::string& text) {
  const char* const end = text.data() + text.size();
  std::size_t count = 0;
  const auto parsed = std::from_chars(text.data(), end, count);
  const bool is_count = parsed.ec == std::errc() && parsed.ptr == end;
  return is_count ? std::string() : '"' + text + "\" is not a number such as 0, 1 or 20";
}

/// The same of a number, with or without a fraction.
inline std::string expectNumber(const std::string& text) {
  char* end = nullptr;
  const double number = std::strtod(text.c_str(), &end);
  const bool is_number = !text.empty() && *end == '\0' && !std::isnan(number);
  return is_number ? std::string() : '"' + text + "\" is not a number such as 20 or 1.5";
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_
