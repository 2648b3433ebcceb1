#include "texts.h"

#include <cstdint>

namespace mdf_writer {

namespace {

constexpr std::string_view name_space = R"( xmlns="http://www.asam.net/mdf/v4">)";

/// Bytes of a UTF-8 character that starts with this byte; 0 for none.
std::size_t lengthFromFirstByte(unsigned char first) {
  if (first < 0x80) {
    return 1;
  }
  if (first >= 0xC2 && first < 0xE0) {
    return 2;
  }
  if (first >= 0xE0 && first < 0xF0) {
    return 3;
  }
  return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

/// XML's characters, in the shortest form only.
bool isXmlCharacter(std::uint32_t code, std::size_t length) {
  constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (code < 0x20) {
    return code == '\t' || code == '\n' || code == '\r';
  }
  const bool surrogate = code >= 0xD800 && code < 0xE000;
  return code >= smallest[length] && code <= 0x10FFFF && !surrogate && code != 0xFFFE &&
         code != 0xFFFF;
}

void appendEscaped(std::string& xml, std::string_view character) {
  switch (character.front()) {
    case '&':
      xml += "&amp;";
      break;
    case '<':
      xml += "&lt;";
      break;
    case '>':
      xml += "&gt;";
      break;
    case '"':
      xml += "&quot;";
      break;
    default:
      xml += character;
  }
}

}  // namespace

std::size_t characterLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = lengthFromFirstByte(first);
  if (length == 0 || length > text.size()) {
    return 0;
  }
  std::uint32_t code = length == 1 ? first : first & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0U) != 0x80) {
      return 0;
    }
    code = (code << 6U) | (byte & 0x3FU);
  }
  return isXmlCharacter(code, length) ? length : 0;
}

/// Most texts are letters of ASCII to their ends, which need no decoding.
bool isUtf8(std::string_view text) {
  std::size_t plain = 0;
  while (plain < text.size() && static_cast<unsigned char>(text[plain]) - 0x20U < 0x60U) {
    ++plain;
  }
  const std::string_view rest = text.substr(plain);
  return upTo(rest, rest.size()).size() == rest.size();
}

std::string_view upTo(std::string_view text, std::size_t bytes) {
  std::size_t length = 0;
  while (length < text.size()) {
    const std::size_t next = characterLength(text.substr(length));
    if (next == 0 || length + next > bytes) {
      break;
    }
    length += next;
  }
  return text.substr(0, length);
}

std::string xmlText(std::string_view text) {
  std::string xml;
  while (!text.empty()) {
    const std::size_t length = characterLength(text);
    if (length == 0) {
      text.remove_prefix(1);
    } else {
      appendEscaped(xml, text.substr(0, length));
      text.remove_prefix(length);
    }
  }
  return xml;
}

std::string xmlElement(std::string_view name, std::string_view text) {
  std::string xml = "<";
  xml.append(name).append(">").append(xmlText(text)).append("</").append(name).append(">");
  return xml;
}

std::string xmlProperties(const Properties& properties) {
  std::string xml;
  for (const auto& [name, value] : properties) {
    xml.append("<e name=\"").append(xmlText(name)).append("\">").append(xmlText(value));
    xml += "</e>";
  }
  return xml.empty() ? xml : "<common_properties>" + xml + "</common_properties>";
}

std::string xmlComment(std::string_view name, std::string_view content) {
  std::string xml = "<";
  xml.append(name).append(name_space).append(content).append("</").append(name).append(">");
  return xml;
}

}  // namespace mdf_writer
