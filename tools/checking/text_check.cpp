#include "text_check.h"

#include <algorithm>
#include <array>
#include <new>
#include <optional>
#include <pugixml.hpp>
#include <string>

#include "reader/model/texts.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct TextBytes {
  bool is_terminated = false;
  bool is_utf8 = false;
};

/// Checks a text up to its first zero byte.
TextBytes readTextBytes(InputFile& file, std::uint64_t offset, std::uint64_t size) {
  std::array<char, 4096> piece;
  TextBytes text;
  Utf8Check utf8;
  while (size > 0 && !text.is_terminated) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(size, piece.size()));
    const std::string_view got(piece.data(), file.readAt(offset, piece.data(), wanted));
    const std::size_t zero = got.find('\0');
    text.is_terminated = zero != std::string_view::npos;
    utf8.take(got.substr(0, zero));
    if (got.size() < wanted) {
      break;
    }
    offset += wanted;
    size -= wanted;
  }
  text.is_utf8 = utf8.isFine();
  return text;
}

/// Why a text is not XML; "" when it is.
std::string xmlFault(std::string text) {
  pugi::xml_document document;
  const pugi::xml_parse_result result = document.load_buffer_inplace(
      text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  if (result.status == pugi::status_out_of_memory) {
    throw std::bad_alloc();
  }
  if (result) {
    return {};
  }
  return std::string("\"") + result.description() + "\" at byte " + std::to_string(result.offset);
}

void checkXml(const Subject& subject, const RawBlock& block, std::uint32_t index) {
  const auto text = readText(subject.file, block.offset);
  const std::string fault = text && !text->empty() ? xmlFault(*text) : "";
  if (!fault.empty()) {
    subject.report(Code::xml_not_well_formed, index, "expected well-formed XML, found " + fault);
  }
}

}  // namespace

void Utf8Check::take(std::string_view bytes) {
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (missing_ == 0) {
      if (byte >= 0x80) {
        takeFirst(byte);
      }
      continue;
    }
    is_fine_ = is_fine_ && byte >= least_ && byte <= most_;
    least_ = 0x80;
    most_ = 0xBF;
    --missing_;
  }
}

void Utf8Check::takeFirst(unsigned byte) {
  if (byte >= 0xC2 && byte <= 0xDF) {
    missing_ = 1;
  } else if (byte >= 0xE0 && byte <= 0xEF) {
    missing_ = 2;
    least_ = byte == 0xE0 ? 0xA0 : 0x80;
    most_ = byte == 0xED ? 0x9F : 0xBF;
  } else if (byte >= 0xF0 && byte <= 0xF4) {
    missing_ = 3;
    least_ = byte == 0xF0 ? 0x90 : 0x80;
    most_ = byte == 0xF4 ? 0x8F : 0xBF;
  } else {
    is_fine_ = false;
  }
}

void checkText(Subject& subject, const RawBlock& block, std::uint32_t index) {
  const std::uint64_t in_front = RawBlock::header_size + block.linkCount() * RawBlock::link_size;
  const std::uint64_t size = block.length - in_front;
  if (!subject.contents.take(size)) {
    return;
  }
  const TextBytes text = readTextBytes(subject.file, block.offset + in_front, size);
  if (!text.is_terminated) {
    subject.report(Code::text_not_terminated, index,
                   "expected a zero byte at the end of the text, found none in " +
                       std::to_string(size) + " bytes");
  }
  if (!text.is_utf8) {
    subject.report(Code::text_not_utf8, index, "expected a text in UTF-8, found other bytes");
  } else if (block.letters() == "MD") {
    checkXml(subject, block, index);
  }
}

}  // namespace mdf_tools
