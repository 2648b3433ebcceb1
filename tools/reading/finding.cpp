#include "finding.h"

#include <array>
#include <charconv>

namespace mdf_tools {

std::string decimalAndHex(std::uint64_t number) {
  std::array<char, 16> digits;
  char* const begin = digits.data();
  char* const end = std::to_chars(begin, begin + digits.size(), number, 16).ptr;
  return std::to_string(number) + " (0x" + std::string(begin, end) + ')';
}

std::string printable(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte >= 0x20 && byte < 0x7F) {
      text += character;
    } else {
      text += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
  }
  return text;
}

}  // namespace mdf_tools
