#include "annotated_bytes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "block_dump.h"
#include "framework/wire.h"
#include "reader/blocks/finding.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/number_texts.h"
#include "reader/bytes/printable.h"
#include "reader/model/texts.h"

namespace mdf_tools {

using namespace mdf_reader;

using mdf_v4_10::detail::loadLe;

namespace {

constexpr std::size_t element_size = 8;

std::string linkText(std::int64_t link) {
  return link <= 0 ? std::to_string(link) : decimalAndHex(static_cast<std::uint64_t>(link));
}

/// Writes lines "offset  bytes  what they are", or what they are alone.
class AnnotatedLines {
 public:
  AnnotatedLines(InputFile& file, std::uint64_t end, bool with_bytes, std::ostream& os)
      : file_(file), end_(end), with_bytes_(with_bytes), os_(os) {}

  bool withBytes() const { return with_bytes_; }

  /// Bytes as far as they are there, 8 a line; what they are stands in the first. A value is left
  /// out when not all of them are there.
  void field(std::uint64_t offset, std::size_t width, std::string_view name,
             const std::string& value);

  /// Bytes with their characters, 16 a line.
  void rows(std::uint64_t offset, std::uint64_t count);

  void note(const std::string& text) { os_ << "  " << text << '\n'; }

 private:
  std::string_view read(std::uint64_t offset, std::uint64_t count);
  void line(std::uint64_t offset, std::string_view bytes, std::size_t columns,
            const std::string& what);

  InputFile& file_;
  std::uint64_t end_;
  bool with_bytes_;
  std::ostream& os_;
  std::array<char, 16> bytes_{};
};

std::string_view AnnotatedLines::read(std::uint64_t offset, std::uint64_t count) {
  const std::uint64_t there = offset < end_ ? end_ - offset : 0;
  const auto wanted =
      static_cast<std::size_t>(std::min<std::uint64_t>({count, there, bytes_.size()}));
  return {bytes_.data(), file_.readAt(offset, bytes_.data(), wanted)};
}

void AnnotatedLines::line(std::uint64_t offset, std::string_view bytes, std::size_t columns,
                          const std::string& what) {
  std::string text = hexBytes(bytes);
  if (!what.empty()) {
    text.resize(std::max(text.size(), 3 * columns - 1), ' ');
    text += "  " + what;
  }
  std::string digits = hexDigits(offset);
  digits.insert(0, digits.size() < 8 ? 8 - digits.size() : 0, '0');
  os_ << "  0x" << digits << "  " << text << '\n';
}

void AnnotatedLines::field(std::uint64_t offset, std::size_t width, std::string_view name,
                           const std::string& value) {
  constexpr std::size_t columns = 8;
  std::string what(name);
  if (offset + width > end_) {
    what += " (cut off)";
  } else if (!value.empty()) {
    what += " = " + value;
  }
  if (!with_bytes_) {
    if (offset < end_) {
      note(what);
    }
    return;
  }
  for (std::size_t done = 0; done < width; done += columns) {
    const std::string_view bytes = read(offset + done, std::min(width - done, columns));
    if (bytes.empty()) {
      return;
    }
    line(offset + done, bytes, columns, what);
    what.clear();
  }
}

void AnnotatedLines::rows(std::uint64_t offset, std::uint64_t count) {
  constexpr std::uint64_t columns = 16;
  for (std::uint64_t done = 0; done < count; done += columns) {
    const std::string_view bytes = read(offset + done, std::min(count - done, columns));
    if (bytes.empty()) {
      return;
    }
    std::string characters(bytes);
    std::replace_if(
        characters.begin(), characters.end(), [](char each) { return each < 0x20 || each > 0x7E; },
        '.');
    line(offset + done, bytes, columns, '|' + characters + '|');
  }
}

std::uint64_t endOf(const InputFile& file, const RawBlock& block) {
  return block.offset + std::min(block.length, file.sizeFrom(block.offset));
}

std::string storedAt(InputFile& file, std::uint64_t offset, std::size_t width) {
  std::string bytes(width, '\0');
  bytes.resize(file.readAt(offset, bytes.data(), width));
  return bytes;
}

void annotateHeader(InputFile& file, const RawBlock& block, AnnotatedLines& lines) {
  const std::uint64_t at = block.offset;
  if (!lines.withBytes()) {
    lines.field(at + 4, 4, "reserved", hexBytes(storedAt(file, at + 4, 4)));
    return;
  }
  lines.field(at, 4, "id", quoted({block.id.data(), block.id.size()}));
  lines.field(at + 4, 4, "reserved", "");
  lines.field(at + 8, 8, "length", std::to_string(block.length));
  lines.field(at + 16, 8, "link_count", std::to_string(block.link_count));
}

/// A field's line. What is neither a number nor characters is its bytes.
void annotateField(const FieldLayout& field, std::uint64_t at, std::string_view bytes,
                   AnnotatedLines& lines) {
  const bool is_bytes = field.kind == FieldKind::bytes || field.kind == FieldKind::reserved;
  lines.field(at + field.offset, field.width, field.name,
              is_bytes && lines.withBytes() ? "" : shownField(field, bytes));
}

void annotateElements(InputFile& file, const BlockFields& fields, std::uint64_t bytes,
                      AnnotatedLines& lines) {
  for (std::uint64_t i = 0; i < bytes / element_size; ++i) {
    const NumberRole element = numberRole(fields, i);
    const std::uint64_t offset = fields.tailAt() + element_size * i;
    std::array<char, element_size> stored{};
    file.readAt(offset, stored.data(), stored.size());
    lines.field(offset, element_size, element.name, shownElement(stored.data(), element.kind));
  }
}

/// A text up to its zero byte, line by line.
void annotateText(InputFile& file, const BlockFields& fields, std::uint64_t most_bytes,
                  AnnotatedLines& lines) {
  const std::string text = readText(file, fields.offset(), most_bytes).value_or("");
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.note("  " + printable(std::string_view(text).substr(begin, end - begin), Harmless::utf8));
    begin = end + 1;
  }
  if (text.size() == most_bytes && most_bytes < fields.tailBytes()) {
    lines.note("... " + std::to_string(fields.tailBytes() - most_bytes) + " more bytes");
  }
}

void annotateTail(InputFile& file, const BlockFields& fields, std::uint64_t most_bytes,
                  AnnotatedLines& lines) {
  const std::uint64_t there = fields.tailBytes();
  const std::uint64_t shown = std::min(there, most_bytes);
  const BlockType& type = fields.type();
  if (there == 0) {
    return;
  }
  std::uint64_t done = 0;
  if (!type.numbers.empty()) {
    annotateElements(file, fields, shown, lines);
    done = shown / element_size * element_size;
  } else {
    lines.note((type.bytes.empty() ? "further data" : std::string(type.bytes)) + ", " +
               std::to_string(there) + " bytes");
    if (!lines.withBytes() && type.contents == Contents::text) {
      annotateText(file, fields, most_bytes, lines);
      return;
    }
  }
  const bool is_rest_of_elements = done != 0 && there - done >= element_size;
  lines.rows(fields.tailAt() + done, is_rest_of_elements ? 0 : shown - done);
  const std::uint64_t end = is_rest_of_elements ? done : shown;
  if (end < there) {
    lines.note("... " + std::to_string(there - end) + " more bytes");
  }
}

}  // namespace

std::string shownElement(const char* bytes, FieldKind kind) {
  return kind == FieldKind::real ? shortestReal(loadLe<double>(bytes))
                                 : std::to_string(loadLe<std::uint64_t>(bytes));
}

void annotateIdentification(InputFile& file, const BlockForm& form, std::ostream& os) {
  if (file.size() < header_block_offset) {
    return;
  }
  writeIdentificationLine(os);
  const std::string bytes = storedAt(file, 0, header_block_offset);
  AnnotatedLines lines(file, header_block_offset, form.with_bytes, os);
  for (const FieldLayout& field : identificationFields()) {
    const std::string_view stored = std::string_view(bytes).substr(field.offset, field.width);
    if (field.kind == FieldKind::bytes) {
      lines.field(field.offset, field.width, field.name, quoted(stored));
    } else {
      annotateField(field, 0, stored, lines);
    }
  }
}

void annotateBlock(InputFile& file, const RawBlock& block, const BlockForm& form,
                   std::ostream& os) {
  const BlockFields fields(file, block);
  if (form.with_bytes) {
    writeHeadlineWithLinks(file, fields, os);
  } else {
    writeHeadline(fields, os);
  }
  const std::uint64_t end = std::max(endOf(file, block), block.offset + RawBlock::header_size);
  AnnotatedLines lines(file, end, form.with_bytes, os);
  annotateHeader(file, block, lines);
  forEachLink(file, block, [&](std::uint64_t index, std::int64_t link) {
    lines.field(block.offset + RawBlock::header_size + index * RawBlock::link_size,
                RawBlock::link_size, linkRole(fields, index).name, linkText(link));
  });
  for (const FieldLayout& field : fields.type().fields) {
    annotateField(field, fields.fieldsAt(), fields.bytes(field.name), lines);
  }
  annotateTail(file, fields, form.most_bytes, lines);
}

}  // namespace mdf_tools
