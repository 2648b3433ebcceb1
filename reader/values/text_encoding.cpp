#include "text_encoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace mdf_reader {

namespace {

constexpr char32_t replacement = 0xFFFD;

void append(char32_t code, std::string& text) {
  const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0U | (code >> 6U));
    put(0x80U | (code & 0x3FU));
  } else if (code < 0x10000) {
    put(0xE0U | (code >> 12U));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | (code >> 18U));
    put(0x80U | ((code >> 12U) & 0x3FU));
    put(0x80U | ((code >> 6U) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  }
}

std::string_view upToZero(std::string_view bytes) { return bytes.substr(0, bytes.find('\0')); }

bool isBetween(char32_t code, char32_t first, char32_t last) {
  return first <= code && code <= last;
}

/// A character's length, by its first byte; 0 for a byte that cannot be one.
std::size_t lengthBy(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (isBetween(first, 0xC2, 0xDF)) {
    return 2;
  }
  if (isBetween(first, 0xE0, 0xEF)) {
    return 3;
  }
  return isBetween(first, 0xF0, 0xF4) ? 4 : 0;
}

/// The length of the UTF-8 character that a text begins with; 0 when there is none.
std::size_t characterLength(std::string_view bytes) {
  const std::size_t length = lengthBy(static_cast<unsigned char>(bytes[0]));
  if (length < 2 || length > bytes.size()) {
    return length == 1 ? 1 : 0;
  }
  char32_t code = static_cast<unsigned char>(bytes[0]) & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (byte >> 6U != 2) {
      return 0;
    }
    code = (code << 6U) | (byte & 0x3FU);
  }
  const bool is_longer_than_needed =
      (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
  const bool is_character = code <= 0x10FFFF && !isBetween(code, 0xD800, 0xDFFF);
  return is_character && !is_longer_than_needed ? length : 0;
}

}  // namespace

std::string fromLatin1(std::string_view bytes) {
  std::string text;
  for (const char character : upToZero(bytes)) {
    append(static_cast<unsigned char>(character), text);
  }
  return text;
}

/// Latin 1 but for 0x80 to 0x9F, of which five are no characters and stand for themselves.
std::string fromWindows1252(std::string_view bytes) {
  constexpr char32_t others[] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::string text;
  for (const char character : upToZero(bytes)) {
    const auto byte = static_cast<unsigned char>(character);
    append(isBetween(byte, 0x80, 0x9F) ? others[byte - 0x80U] : byte, text);
  }
  return text;
}

bool isUtf8(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t length = characterLength(bytes);
    if (length == 0) {
      return false;
    }
    bytes.remove_prefix(length);
  }
  return true;
}

std::string fromUtf8(std::string_view bytes) {
  std::string_view rest = upToZero(bytes);
  std::string text;
  while (!rest.empty()) {
    const std::size_t length = characterLength(rest);
    if (length == 0) {
      append(replacement, text);
    }
    text += rest.substr(0, length);
    rest.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return text;
}

std::string fromUtf16(std::string_view bytes, bool is_big_endian) {
  const auto unit = [&](std::size_t at) -> char32_t {
    const auto first = static_cast<unsigned char>(bytes[at]);
    const auto second = static_cast<unsigned char>(bytes[at + 1]);
    return is_big_endian ? (char32_t{first} << 8U) | second : (char32_t{second} << 8U) | first;
  };
  std::string text;
  for (std::size_t at = 0; at + 1 < bytes.size() && unit(at) != 0; at += 2) {
    char32_t code = unit(at);
    const bool has_second = isBetween(code, 0xD800, 0xDBFF) && at + 3 < bytes.size() &&
                            isBetween(unit(at + 2), 0xDC00, 0xDFFF);
    if (has_second) {
      code = 0x10000 + ((code - 0xD800) << 10U) + (unit(at + 2) - 0xDC00);
      at += 2;
    } else if (isBetween(code, 0xD800, 0xDFFF)) {
      code = replacement;
    }
    append(code, text);
  }
  return text;
}

}  // namespace mdf_reader
