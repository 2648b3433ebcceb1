#include "text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace mdf_tools {

namespace {

/// This runs on every line for every sample, so it avoids a general search.
bool isBlank(char character) { return character == ' ' || character == '\t'; }

template <class Number>
std::optional<Number> takeNumber(std::string_view& line) {
  const std::string_view word = takeWord(line);
  Number number{};
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
  if (error != std::errc{} || end != word.data() + word.size()) {
    return std::nullopt;
  }
  return number;
}

}  // namespace

TextFile::TextFile(const std::filesystem::path& path)
    : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)), buffer_(4096, '\0') {}

TextFile::TextFile(TextFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), buffer_(std::move(other.buffer_)) {}

TextFile::~TextFile() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

std::string_view TextFile::read() {
  std::size_t count = 0;
  for (;;) {
    const ssize_t got = pread(descriptor_, buffer_.data() + count, buffer_.size() - count,
                              static_cast<off_t>(count));
    if (got < 0) {
      return {};
    }
    if (got == 0) {
      return {buffer_.data(), count};
    }
    count += static_cast<std::size_t>(got);
    if (count == buffer_.size()) {
      buffer_.resize(2 * buffer_.size());
    }
  }
}

std::string_view takeLine(std::string_view& text) {
  const std::size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

std::string_view takeWord(std::string_view& line) {
  const auto begin = std::find_if_not(line.begin(), line.end(), isBlank);
  const auto end = std::find_if(begin, line.end(), isBlank);
  const auto offset = static_cast<std::size_t>(begin - line.begin());
  const std::string_view word = line.substr(offset, static_cast<std::size_t>(end - begin));
  line.remove_prefix(offset + word.size());
  return word;
}

std::optional<mdf_v4_10::UINT64> takeUnsigned(std::string_view& line) {
  return takeNumber<mdf_v4_10::UINT64>(line);
}

std::optional<float> takeFloat(std::string_view& line) {
  const std::optional<float> number = takeNumber<float>(line);
  return number && std::isfinite(*number) ? number : std::nullopt;
}

}  // namespace mdf_tools
