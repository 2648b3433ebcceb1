#ifndef MDF_TOOLS_COMMANDS_OFFSET_OPTION_H_
#define MDF_TOOLS_COMMANDS_OFFSET_OPTION_H_

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

namespace mdf_tools {

/// An offset as people copy it from a dump or a hex viewer: "312" or "0x138".
inline std::optional<std::uint64_t> parseOffset(const std::string& text) {
  const bool is_hex = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0;
  const char* begin = text.data() + (is_hex ? 2 : 0);
  const char* end = text.data() + text.size();
  std::uint64_t offset = 0;
  const auto parsed = std::from_chars(begin, end, offset, is_hex ? 16 : 10);
  if (begin == end || parsed.ec != std::errc() || parsed.ptr != end) {
    return std::nullopt;
  }
  return offset;
}

/// What is wrong with a text that is no offset; "" for an offset.
inline std::string expectOffset(const std::string& text) {
  return parseOffset(text) ? std::string()
                           : "\"" + text + "\" is not an offset such as 312 or 0x138";
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_OFFSET_OPTION_H_
