#include "number_texts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace mdf_reader {

std::uint64_t unsignedNumber(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) {
    number = (number << 8U) | static_cast<unsigned char>(bytes[i]);
  }
  return number;
}

std::int64_t signedNumber(std::string_view bytes) {
  const auto unused_bits = static_cast<unsigned>(64 - 8 * bytes.size());
  return static_cast<std::int64_t>(unsignedNumber(bytes) << unused_bits) >> unused_bits;
}

namespace {

template <unsigned base>
void addDigitsOf(std::uint64_t number, std::size_t least, std::string& text) {
  static const char symbols[] = "0123456789ABCDEF";
  std::array<char, 20> digits;
  std::size_t at = digits.size();
  do {
    digits[--at] = symbols[number % base];
    number /= base;
  } while (number > 0);
  const std::size_t count = digits.size() - at;
  text.append(least - std::min(least, count), '0');
  text.append(&digits[at], count);
}

}  // namespace

void addDigits(std::uint64_t number, std::size_t least, std::string& text) {
  addDigitsOf<10>(number, least, text);
}

void addHexDigits(std::uint64_t number, std::size_t least, std::string& text) {
  addDigitsOf<16>(number, least, text);
}

std::string hexDigits(std::uint64_t number) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
  return {digits.data(), end};
}

std::string hexBytes(std::string_view bytes) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    text += {digits[byte >> 4U], digits[byte & 0xFU], ' '};
  }
  return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

std::string shortestReal(double number) {
  std::array<char, 32> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return {digits.data(), end};
}

}  // namespace mdf_reader
