#include "bytes.h"

#include <algorithm>

namespace mdf_tests {

namespace {

constexpr std::size_t row_size = 8;
constexpr std::size_t shown_size = 64;

/// Up to 128 bytes around an offset, in rows of hexadecimal with their offsets.
std::string hexAround(const std::string& bytes, std::size_t offset) {
  static const char digits[] = "0123456789abcdef";
  const std::size_t row = offset / row_size * row_size;
  const std::size_t begin = row - std::min(row, shown_size);
  const std::size_t end = std::min(bytes.size(), row + shown_size);
  std::string text;
  for (std::size_t i = begin; i < end; ++i) {
    if (i % row_size == 0) {
      text += "\n  " + std::to_string(i) + ":";
    }
    const auto byte = static_cast<unsigned char>(bytes[i]);
    text += ' ';
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
  }
  return text;
}

}  // namespace

testing::AssertionResult sameBytes(const char* actual_text, const char* expected_text,
                                   const std::string& actual, const std::string& expected) {
  if (actual == expected) {
    return testing::AssertionSuccess();
  }
  const std::size_t common = std::min(actual.size(), expected.size());
  const auto first = static_cast<std::size_t>(
      std::mismatch(actual.begin(), actual.begin() + static_cast<std::ptrdiff_t>(common),
                    expected.begin())
          .first -
      actual.begin());
  return testing::AssertionFailure()
         << "The bytes differ from offset " << first << " on.\n"
         << actual_text << " has " << actual.size() << ":" << hexAround(actual, first) << "\n"
         << expected_text << " has " << expected.size() << ":" << hexAround(expected, first);
}

}  // namespace mdf_tests
