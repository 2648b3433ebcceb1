#include "finding.h"

#include "../bytes/number_texts.h"

namespace mdf_reader {

std::string decimalAndHex(std::uint64_t number) {
  return std::to_string(number) + " (0x" + hexDigits(number) + ')';
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

std::string quoted(std::string_view bytes) { return '"' + printable(bytes) + '"'; }

std::string upToTheEnd(std::uint64_t bytes) {
  return "found " + std::to_string(bytes) + " up to the file's end";
}

std::string notRead(std::uint64_t bytes) {
  if (bytes == 0) {
    return "";
  }
  return "; " + std::to_string(bytes) + (bytes == 1 ? " byte was" : " bytes were") + " not read";
}

}  // namespace mdf_reader
