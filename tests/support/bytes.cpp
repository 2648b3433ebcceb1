#include "bytes.h"

namespace mdf_tests {

std::string hexLines(const std::string& bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string lines = std::to_string(bytes.size()) + " bytes";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (i % 8 == 0) {
      lines += "\n" + std::to_string(i) + ":";
    }
    const auto byte = static_cast<unsigned char>(bytes[i]);
    lines += ' ';
    lines += digits[byte >> 4U];
    lines += digits[byte & 0xFU];
  }
  return lines;
}

}  // namespace mdf_tests
