#include "file_name.h"

#include <algorithm>

#include "reader/bytes/printable.h"

namespace mdf_tools {

namespace {

/// Bytes of a name: at most 255, and a number must fit after it.
constexpr std::size_t longest = 200;

bool isForbidden(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7F;
}

/// Cuts between characters of UTF-8 and keeps a short suffix.
std::string shortened(const std::string& name) {
  if (name.size() <= longest) {
    return name;
  }
  const std::size_t point = name.rfind('.');
  const std::string suffix =
      point != std::string::npos && name.size() - point <= 16 ? name.substr(point) : "";
  std::size_t end = longest - suffix.size();
  while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U) {
    --end;
  }
  return name.substr(0, end) + suffix;
}

}  // namespace

std::string safeFileName(std::string_view stored) {
  const std::size_t separator = stored.find_last_of("/\\");
  std::string name(stored.substr(separator == std::string_view::npos ? 0 : separator + 1));
  name.erase(std::remove_if(name.begin(), name.end(), isForbidden), name.end());
  if (name.find_first_not_of(". ") == std::string::npos) {
    return "attachment";
  }
  return shortened(name);
}

std::string safeNamePart(std::string_view stored) {
  constexpr std::size_t most_characters = 40;
  constexpr std::string_view forbidden = "/\\:*?\"<>|";
  std::string part = mdf_reader::printable(stored, mdf_reader::Harmless::utf8, most_characters);
  std::replace_if(
      part.begin(), part.end(),
      [&](char character) { return forbidden.find(character) != std::string_view::npos; }, '_');
  return part;
}

std::string numbered(const std::string& name, std::size_t number) {
  const std::string insertion = " (" + std::to_string(number) + ')';
  const std::size_t point = name.rfind('.');
  return point == std::string::npos || point == 0
             ? name + insertion
             : name.substr(0, point) + insertion + name.substr(point);
}

}  // namespace mdf_tools
