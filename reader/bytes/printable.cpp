#include "printable.h"

#include <array>
#include <cstdint>

namespace mdf_reader {

namespace {

/// A range of first bytes in UTF-8, and what their second byte may be.
struct Lead {
  unsigned char first;
  unsigned char last;
  std::size_t size;
  unsigned char least_second;
  unsigned char most_second;
};
constexpr std::array<Lead, 8> leads = {{{0xC2, 0xDF, 2, 0x80, 0xBF},
                                        {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                        {0xE1, 0xEC, 3, 0x80, 0xBF},
                                        {0xED, 0xED, 3, 0x80, 0x9F},
                                        {0xEE, 0xEF, 3, 0x80, 0xBF},
                                        {0xF0, 0xF0, 4, 0x90, 0xBF},
                                        {0xF1, 0xF3, 4, 0x80, 0xBF},
                                        {0xF4, 0xF4, 4, 0x80, 0x8F}}};

unsigned char byteAt(std::string_view text, std::size_t index) {
  return index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
}

/// Bytes of the character that a text begins with; 0 when it begins with none.
std::size_t characterSize(std::string_view text) {
  const unsigned char first = byteAt(text, 0);
  if (first < 0x80) {
    return 1;
  }
  for (const Lead& lead : leads) {
    if (first < lead.first || first > lead.last) {
      continue;
    }
    const unsigned char second = byteAt(text, 1);
    bool is_whole = second >= lead.least_second && second <= lead.most_second;
    for (std::size_t i = 2; i < lead.size; ++i) {
      is_whole = is_whole && (byteAt(text, i) & 0xC0U) == 0x80;
    }
    return is_whole ? lead.size : 0;
  }
  return 0;
}

std::uint32_t codePoint(std::string_view character) {
  constexpr std::array<unsigned, 5> lead_bits = {0, 0x7F, 0x1F, 0x0F, 0x07};
  std::uint32_t code = byteAt(character, 0) & lead_bits.at(character.size());
  for (std::size_t i = 1; i < character.size(); ++i) {
    code = (code << 6U) | (byteAt(character, i) & 0x3FU);
  }
  return code;
}

bool isHarmless(std::uint32_t code) {
  const bool controls = code < 0x20 || (code >= 0x7F && code < 0xA0);
  const bool breaks_or_turns = (code >= 0x200E && code <= 0x200F) ||
                               (code >= 0x2028 && code <= 0x202E) ||
                               (code >= 0x2066 && code <= 0x2069);
  const bool is_none = (code & 0xFFFEU) == 0xFFFE;
  return !controls && !breaks_or_turns && !is_none;
}

/// Each byte as "\x1b".
std::string escaped(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (const char each : bytes) {
    const auto byte = static_cast<unsigned char>(each);
    text += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
  }
  return text;
}

}  // namespace

std::string printable(std::string_view text, Harmless harmless, std::size_t most) {
  std::string line;
  std::size_t kept = 0;  // bytes of the line when it is cut
  for (std::size_t count = 0; !text.empty(); ++count) {
    if (count == most) {
      return line.substr(0, kept) + "...";
    }
    const std::size_t size = characterSize(text);
    const std::string_view character = text.substr(0, size == 0 ? 1 : size);
    if (size == 1 && isHarmless(byteAt(text, 0))) {
      line += text.front();
    } else if (size > 1 && harmless == Harmless::utf8 && isHarmless(codePoint(character))) {
      line += character;
    } else {
      line += escaped(character);
    }
    text.remove_prefix(character.size());
    if (count + 3 < most) {
      kept = line.size();
    }
  }
  return line;
}

std::string quoted(std::string_view bytes) { return '"' + printable(bytes) + '"'; }

std::string withoutTrailingBlanks(const std::string& text) {
  const std::size_t end = text.find_last_not_of(' ');
  return end == std::string::npos ? "" : text.substr(0, end + 1);
}

}  // namespace mdf_reader
