#include "dot_text.h"

namespace mdf_tools {

namespace {

bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

/// Bytes of the first `count` characters; all when there are no more.
std::size_t bytesOf(std::string_view text, std::size_t count) {
  std::size_t bytes = 0;
  while (bytes < text.size() && (count > 0 || continuesCharacter(text[bytes]))) {
    count -= continuesCharacter(text[bytes]) ? 0U : 1U;
    ++bytes;
  }
  return bytes;
}

std::string lineEnd(DotLines lines) {
  switch (lines) {
    case DotLines::left:
      return "\\l";
    case DotLines::right:
      return "\\r";
    case DotLines::centred:
      break;
  }
  return "\\n";
}

}  // namespace

std::string dotString(std::string_view text, DotLines lines) {
  std::string quoted = "\"";
  for (const char each : text) {
    switch (each) {
      case '\n':
        quoted += lineEnd(lines);
        break;
      case '"':
      case '\\':
        quoted += {'\\', each};
        break;
      case '&':  // would begin the name of a character
        quoted += "&amp;";
        break;
      default:
        quoted += each;
    }
  }
  return quoted + (lines == DotLines::centred ? "" : lineEnd(lines)) + '"';
}

std::string wrapped(std::string_view line, std::size_t width) {
  std::string text;
  while (true) {
    std::size_t size = bytesOf(line, width);
    if (size == line.size()) {
      return text.append(line);
    }
    const std::size_t blank = line.rfind(' ', size);
    const bool at_blank = blank != std::string_view::npos && blank > 0;
    size = at_blank ? blank : size;
    text.append(line.substr(0, size)) += '\n';
    line.remove_prefix(size + (at_blank ? 1 : 0));
  }
}

}  // namespace mdf_tools
