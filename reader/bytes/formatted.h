#ifndef MDF_READER_BYTES_FORMATTED_H_
#define MDF_READER_BYTES_FORMATTED_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <string>

namespace mdf_reader {

/// A short text as snprintf makes it, cut after 127 characters.
template <class... Values>
std::string formatted(const char* format, Values... values) {
  std::array<char, 128> text;
  const int length = std::snprintf(text.data(), text.size(), format, values...);
  const int most = static_cast<int>(text.size()) - 1;
  return {text.data(), static_cast<std::size_t>(std::clamp(length, 0, most))};
}

}  // namespace mdf_reader

#endif  // MDF_READER_BYTES_FORMATTED_H_
