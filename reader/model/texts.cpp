#include "texts.h"

#include <algorithm>
#include <limits>
#include <pugixml.hpp>

#include "../blocks/raw_block.h"
#include "../bytes/input_file.h"

namespace mdf_reader {

namespace {

/// Bytes of an offset in the file up to a zero byte, but not more than `most`.
std::string readToZero(InputFile& file, std::uint64_t offset, std::uint64_t most) {
  constexpr std::uint64_t piece_size = 4096;
  std::string text;
  while (text.size() < most) {
    const auto piece = static_cast<std::size_t>(std::min(most - text.size(), piece_size));
    const std::size_t before = text.size();
    text.resize(before + piece);
    text.resize(before + file.readAt(offset + before, text.data() + before, piece));
    const std::size_t zero = text.find('\0', before);
    if (zero != std::string::npos) {
      text.resize(zero);
      break;
    }
    if (text.size() < before + piece) {
      break;
    }
  }
  return text;
}

}  // namespace

std::optional<std::string> readText(InputFile& file, std::uint64_t offset, std::uint64_t most) {
  const auto block = offset == 0 ? std::nullopt : readRawBlock(file, offset);
  if (!block || block->type().contents != Contents::text || !block->holdsItsLinks()) {
    return std::nullopt;
  }
  const std::uint64_t in_front = RawBlock::header_size + block->linkCount() * RawBlock::link_size;
  return readToZero(file, offset + in_front, std::min(block->length - in_front, most));
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view white_space = " \t\r\n";
  const std::size_t begin = std::min(text.find_first_not_of(white_space), text.size());
  return text.substr(begin, text.find_last_not_of(white_space) + 1 - begin);
}

std::string plainText(const std::string& comment) {
  const std::size_t first = comment.find_first_not_of(" \t\r\n");
  if (first == std::string::npos || comment[first] != '<') {
    return comment;
  }
  pugi::xml_document document;
  if (!document.load_buffer(comment.data(), comment.size(),
                            pugi::parse_default | pugi::parse_ws_pcdata_single,
                            pugi::encoding_utf8)) {
    return comment;
  }
  // The root element has the comment's own name; its TX element is for people.
  return std::string(trimmed(document.document_element().child("TX").text().get()));
}

std::string_view Texts::at(InputFile& file, std::uint64_t offset) {
  const auto [text, is_new] = texts_.try_emplace(offset);
  if (is_new) {
    if (const auto stored = readText(file, offset)) {
      text->second = plainText(*stored);
    }
  }
  return text->second;
}

}  // namespace mdf_reader
