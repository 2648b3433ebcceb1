#include "base64.h"

namespace mdf_tools {

std::string base64Of(std::string_view bytes) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve(base64Size(bytes.size()));
  for (std::size_t begin = 0; begin < bytes.size(); begin += 3) {
    const std::string_view three = bytes.substr(begin, 3);
    unsigned bits = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      bits = bits << 8U | (i < three.size() ? static_cast<unsigned char>(three[i]) : 0U);
    }
    for (std::size_t i = 0; i < 4; ++i) {
      text += i <= three.size() ? digits[(bits >> (18 - 6 * i)) & 63U] : '=';
    }
  }
  return text;
}

}  // namespace mdf_tools
