#include "block_json.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "annotated_bytes.h"
#include "framework/wire.h"
#include "json_output.h"
#include "reader/blocks/block_fields.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/number_texts.h"
#include "reader/model/texts.h"

namespace mdf_tools {

using namespace mdf_reader;

using mdf_v4_10::detail::loadLe;

namespace {

/// JSON has finite numbers only: the others become words.
Json realValue(double number) {
  return std::isfinite(number) ? Json(number) : Json(shortestReal(number));
}

/// A character for each byte, whatever it is.
std::string asUtf8(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<unsigned char>(character);
    if (byte < 0x80) {
      text += character;
    } else {
      text += {static_cast<char>(0xC0U | (byte >> 6U)), static_cast<char>(0x80U | (byte & 0x3FU))};
    }
  }
  return text;
}

Json fieldValue(const FieldLayout& field, std::string_view bytes) {
  switch (field.kind) {
    case FieldKind::unsigned_number:
      return unsignedNumber(bytes);
    case FieldKind::signed_number:
      return signedNumber(bytes);
    case FieldKind::real:
      return realValue(loadLe<double>(bytes.data()));
    case FieldKind::bytes:
    case FieldKind::reserved:
      break;
  }
  return hexBytes(bytes);
}

/// The fields that are there.
Json fieldValues(const BlockFields& block) {
  Json fields = Json::object();
  for (const FieldLayout& field : block.type().fields) {
    const std::string_view bytes = block.bytes(field.name);
    if (!bytes.empty()) {
      fields[std::string(field.name)] = fieldValue(field, bytes);
    }
  }
  return fields;
}

/// The values after the fields, by name, as far as so many bytes go.
Json tailValues(InputFile& file, const BlockFields& block, std::uint64_t most_bytes) {
  Json values = Json::object();
  const std::uint64_t count = std::min(block.tailBytes(), most_bytes) / 8;
  for (std::uint64_t i = 0; i < count; ++i) {
    std::array<char, 8> bytes{};
    file.readAt(block.tailAt() + 8 * i, bytes.data(), bytes.size());
    const NumberRole element = numberRole(block, i);
    Json& list = values[element.name.substr(0, element.name.find('['))];
    list.push_back(element.kind == FieldKind::real ? realValue(loadLe<double>(bytes.data()))
                                                   : Json(loadLe<std::uint64_t>(bytes.data())));
  }
  return values;
}

void addTail(InputFile& file, const BlockFields& block, std::uint64_t most_bytes, Json& line) {
  const BlockType& type = block.type();
  if (type.contents == Contents::text) {
    if (const auto text = readText(file, block.offset(), most_bytes)) {
      line["text"] = *text;
    }
  } else if (!type.numbers.empty()) {
    line.update(tailValues(file, block, most_bytes));
  }
  if (!type.bytes.empty() || !type.numbers.empty()) {
    line["tail_bytes"] = block.tailBytes();
  }
}

Json lineOf(const InputFile& file, std::uint64_t offset, const std::string& type) {
  Json line;
  line["schema"] = json_schema;
  line["file"] = file.name();
  line["offset"] = offset;
  line["type"] = type;
  return line;
}

/// The links of a block may need more memory than all else, so they are written one by one.
void writeLinks(InputFile& file, const BlockFields& block, std::ostream& os) {
  const char* separator = "";
  forEachLink(file, block.raw(), [&](std::uint64_t index, std::int64_t link) {
    Json entry;
    entry["role"] = linkRole(block, index).name;
    entry["offset"] = link;
    os << separator << jsonLine(entry);
    separator = ",";
  });
}

/// Those of the block's header.
std::string reservedBytes(InputFile& file, const RawBlock& raw) {
  std::array<char, 4> bytes{};
  return hexBytes({bytes.data(), file.readAt(raw.offset + raw.id.size(), bytes.data(), 4)});
}

void writeBlock(InputFile& file, const RawBlock& raw, std::uint64_t most_bytes, std::ostream& os) {
  const BlockFields block(file, raw);
  Json line = lineOf(file, raw.offset, printable(raw.letters()));
  line["length"] = raw.length;
  line["link_count"] = raw.link_count;
  line["reserved"] = reservedBytes(file, raw);
  if (block.type().isKnown()) {
    line["fields"] = fieldValues(block);
    addTail(file, block, most_bytes, line);
  }
  std::string text = jsonLine(line);
  text.pop_back();
  os << text << ",\"links\":[";
  writeLinks(file, block, os);
  os << "]}\n";
}

void writeIdentification(InputFile& file, std::ostream& os) {
  std::array<char, header_block_offset> bytes{};
  file.readAt(0, bytes.data(), bytes.size());
  Json line = lineOf(file, 0, "ID");
  line["length"] = header_block_offset;
  for (const FieldLayout& field : identificationFields()) {
    const std::string_view stored(bytes.data() + field.offset, field.width);
    line["fields"][std::string(field.name)] =
        field.kind == FieldKind::bytes ? Json(asUtf8(stored)) : fieldValue(field, stored);
  }
  os << jsonLine(line) << '\n';
}

}  // namespace

void writeBlocksAsJson(InputFile& file, std::ostream& os, std::uint64_t most_bytes,
                       const FindingSink& report, const BlockSelection& selection) {
  workOnBlocks(file, selection,
               {[&] { writeIdentification(file, os); },
                [&](const RawBlock& block) { writeBlock(file, block, most_bytes, os); }},
               os, report);
}

}  // namespace mdf_tools
