#include "value.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace mdf_reader {

namespace {

/// What appendText() does for each kind of value.
struct TextAppender {
  std::string& text;

  void operator()(std::monostate /*none*/) const {}
  void operator()(std::uint64_t number) const { digits(number); }
  void operator()(std::int64_t number) const { digits(number); }
  void operator()(double number) const {
    if (std::isnan(number)) {
      text += "nan";  // whatever its sign
    } else {
      digits(number);
    }
  }
  void operator()(const std::string& characters) const { text += characters; }
  void operator()(const ByteString& string) const {
    static constexpr std::string_view hex_digits = "0123456789abcdef";
    for (const char character : string.bytes) {
      const auto byte = static_cast<unsigned char>(character);
      text += hex_digits[byte >> 4U];
      text += hex_digits[byte & 0xFU];
    }
  }

 private:
  template <class Number>
  void digits(Number number) const {
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr;
    text.append(buffer.data(), end);
  }
};

}  // namespace

std::optional<double> numberOf(const Value& value) {
  if (const auto* real = std::get_if<double>(&value)) {
    return *real;
  }
  if (const auto* natural = std::get_if<std::uint64_t>(&value)) {
    return static_cast<double>(*natural);
  }
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    return static_cast<double>(*integer);
  }
  return std::nullopt;
}

void appendText(const Value& value, std::string& text) { std::visit(TextAppender{text}, value); }

}  // namespace mdf_reader
