#include "gnuplot_text.h"

#include <cctype>
#include <string_view>

#include "reader/columns/column_data.h"

namespace mdf_tools {

std::string shortened(const std::string& text, std::size_t longest) {
  if (text.size() <= longest) {
    return text;
  }
  std::size_t end = longest;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80) {
    --end;  // not inside a character
  }
  return text.substr(0, end) + "...";
}

std::string quoted(const std::string& text, std::size_t longest) {
  constexpr std::string_view plain = " ,.:;/()[]+-%_=";
  std::string result = "\"";
  for (const char character : shortened(text, longest)) {
    const auto code = static_cast<unsigned char>(character);
    const bool is_plain =
        code < 0x80 && (std::isalnum(code) != 0 || plain.find(character) != std::string_view::npos);
    if (is_plain) {
      result += character;
    } else if (code < 0x20 || code == 0x7F) {
      result += ' ';
    } else {
      const auto digit = [](unsigned value) { return static_cast<char>('0' + (value & 7U)); };
      result += {'\\', digit(code >> 6U), digit(code >> 3U), digit(code)};
    }
  }
  return result + '"';
}

std::string numberText(double number) {
  std::string text;
  mdf_reader::printNumber(number, text);
  return text;
}

}  // namespace mdf_tools
