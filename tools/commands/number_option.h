#ifndef MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_
#define MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <string>

namespace mdf_tools {

/// Refuses what is not a count, such as "-1" and "many".
inline CLI::Validator isCount() {
  return CLI::Validator(
      [](const std::string& text) {
        const char* const end = text.data() + text.size();
        std::size_t count = 0;
        const auto parsed = std::from_chars(text.data(), end, count);
        const bool is_count = parsed.ec == std::errc() && parsed.ptr == end;
        return is_count ? std::string() : '"' + text + "\" is not a number such as 0, 1 or 20";
      },
      "");
}

/// Refuses what is not a number, with or without a fraction.
inline CLI::Validator isNumber() {
  return CLI::Validator(
      [](const std::string& text) {
        char* end = nullptr;
        const double number = std::strtod(text.c_str(), &end);
        const bool is_number = !text.empty() && *end == '\0' && !std::isnan(number);
        return is_number ? std::string() : '"' + text + "\" is not a number such as 20 or 1.5";
      },
      "");
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_NUMBER_OPTION_H_
