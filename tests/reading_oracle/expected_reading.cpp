#include "reading_oracle/expected_reading.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "reading_oracle/attempt.h"
#include "reading_oracle/reading_forms.h"
#include "reading_oracle/variable_parts.h"

namespace mdf_tests::oracle {

namespace {

std::uint64_t countStored(const Contents& block) { return block.link_count; }
std::uint64_t countNone(const Contents& /*block*/) { return 0; }

template <int Own>
std::uint64_t countOwnAndMore(const Contents& block) {
  return Own + block.more_links.size();
}

std::uint64_t countOnePerElement(const Contents& block) { return 4 + block.more_links.size() / 3; }

std::size_t sectionOffset(const Format& format, std::size_t link_count) {
  return format.read == readIdentification ? 0 : header_size + link_count * link_size;
}

void appendNumber(std::string& bytes, std::uint64_t value) {
  std::string number(8, '\0');
  setNumber(number, {0, 8}, value);
  bytes += number;
}

std::string writtenBytes(const std::string& letters, const Format& format, const Contents& block) {
  if (format.read == readIdentification) {
    return block.section;
  }
  std::string bytes;
  bytes.reserve(format.size + block.more_links.size() * link_size + block.tail.size());
  bytes.append("##").append(letters).append(block.reserved);
  appendNumber(bytes, format.written_length == WrittenLength::stored
                          ? block.length
                          : format.size + block.more_links.size() * link_size + block.tail.size());
  appendNumber(bytes, format.written_link_count(block));
  for (const Links* links : {&block.links, &block.more_links}) {
    for (const std::int64_t link : *links) {
      appendNumber(bytes, static_cast<std::uint64_t>(link));
    }
  }
  return bytes.append(block.section).append(block.tail);
}

const Format text{readText, {0, 0, 0}, 24, {}, WrittenLength::computed, countStored};
const Format data{readPlainData, {24, 0, 0}, 24, {}, WrittenLength::computed, countStored};

const Format& formatOf(const std::string& letters) {
  constexpr auto stored = WrittenLength::stored;
  constexpr auto computed = WrittenLength::computed;
  // clang-format off
  static const std::map<std::string, Format> formats = {
    {"ID", {readIdentification, {64, 0, 0}, 64, {8, 8, 8, -4, 2, 34}, stored, countStored}},
    {"HD", {readFixedShortIsLeft, {0, 0, 0}, 104, {8, 2, 2, 1, 1, 1, -1, 8, 8}, stored,
            countStored}},
    {"TX", text},
    {"MD", text},
    {"FH", {readFixedShortIsLeft, {0, 0, 0}, 56, {8, 2, 2, 1, -3}, stored, countStored}},
    {"CH", {readVariableLow32, {0, 0, 0}, 64, {4, 1, -3}, computed, countOnePerElement,
            takeElements}},
    {"AT", {readVariableAll64, {0, 0, 0}, 96, {2, 2, -4, 16, 8, 8}, computed, countStored,
            takeEmbedded}},
    {"EV", {readVariableLow32, {0, 5, 5}, 96, {1, 1, 1, 1, 1, -3, 4, 2, 2, 8, 8}, computed,
            countOwnAndMore<5>, takeScopesAndAttachments}},
    {"DG", {readFixedShortIsBad, {64, 4, 4}, 64, {1, -7}, stored, countStored}},
    {"CG", {readFixedShortIsBad, {104, 6, 6}, 104, {8, 8, 2, 2, -4, 4, 4}, stored, countStored}},
    {"SI", {readFixedShortIsBad, {56, 3, 3}, 56, {1, 1, 1, -5}, stored, countStored}},
    {"CN", {readVariableLow32, {160, 8, 8}, 160,
            {1, 1, 1, 1, 4, 4, 4, 4, 1, -1, 2, 8, 8, 8, 8, 8, 8}, computed, countOwnAndMore<8>,
            takeAttachmentsAndXAxis, 20, 3}},
    {"CC", {readVariableLow32, {0, 0, 0}, 80, {1, 1, 2, 2, 2, 8, 8}, computed, countOwnAndMore<4>,
            takeReferencesAndValues, 1}},
    {"DT", data},
    {"RD", data},
    {"SD", data},
    {"DL", {readVariableAll64, {40, 1, 1}, 40, {1, -3, 4}, computed, countOwnAndMore<1>,
            takePairs, SIZE_MAX, 1}},
    {"DZ", {readZipped, {48, 0, 0}, 48, {2, 1, -1, 4, 8, 8}, computed, countNone}},
    {"HL", {readFixedShortIsLeft, {40, 0, 0}, 40, {2, 1, -5}, computed, countNone}},
    {"SR", {readFixedShortIsLeft, {64, 2, 2}, 64, {8, 8, 1, 1, -6}, stored, countStored}},
  };
  // clang-format on
  return formats.at(letters);
}

}  // namespace

std::uint64_t numberAt(const std::string& bytes, const Number& where) {
  std::uint64_t value = 0;
  const char* byte = &bytes.at(where.offset + where.width - 1);
  for (std::size_t i = 0; i < where.width; ++i) {
    value = value << 8U | static_cast<unsigned char>(*byte--);
  }
  return value;
}

void setNumber(std::string& bytes, const Number& where, std::uint64_t value) {
  char* byte = &bytes.at(where.offset + where.width - 1) + 1 - where.width;
  for (std::size_t i = 0; i < where.width; ++i) {
    *byte++ = static_cast<char>(value >> 8 * i);
  }
}

ExpectedReading expectedReading(const std::string& letters, const std::string& stream,
                                std::size_t data_limit) {
  const Format& format = formatOf(letters);
  Attempt attempt{format, stream, data_limit, startOf(format), {}};
  format.read(attempt);
  ExpectedReading& reading = attempt.reading;
  if (reading.thrown.empty()) {
    reading.length = attempt.block.length;
    reading.link_count = attempt.block.link_count;
    reading.links = attempt.block.links;
    reading.unwritten = attempt.block.unwritten;
    reading.written = writtenBytes(letters, format, attempt.block);
    // What small objects hold, and what the heap rounds up.
    reading.heap_bytes += std::size_t{2} * 1024;
  }
  return reading;
}

std::string writtenBytes(const std::string& letters, const Contents& block) {
  return writtenBytes(letters, formatOf(letters), block);
}

std::string sectionOf(const std::string& letters, const std::string& block,
                      std::size_t link_count) {
  const Format& format = formatOf(letters);
  const std::size_t offset = std::min(sectionOffset(format, link_count), block.size());
  std::string section = block.substr(offset, sectionWidth(format));
  section.resize(sectionWidth(format));
  return section;
}

std::size_t ownLinks(const std::string& letters) {
  const Format& format = formatOf(letters);
  return (format.size - sectionOffset(format, 0) - sectionWidth(format)) / link_size;
}

std::vector<Number> numbersOf(const std::string& letters, const std::string& block) {
  const Format& format = formatOf(letters);
  std::vector<Number> numbers = {{8, 8}, {16, 8}};
  std::size_t offset = sectionOffset(format, static_cast<std::size_t>(numberAt(block, {16, 8})));
  for (const int field : format.section) {
    if (field == 2 || field == 4 || field == 8) {
      numbers.push_back({offset, static_cast<std::size_t>(field)});
    }
    offset += static_cast<std::size_t>(std::abs(field));
  }
  if (offset + 8 <= block.size()) {
    numbers.push_back({offset, 8});
  }
  return numbers;
}

bool isFramed(const std::string& dump, const std::string& name) {
  const std::string line = "[DEBUG] ==================== ";
  const std::string begin = line + name + " ===================\n";
  const std::string end = line + "End of " + name + " ===================\n";
  return dump.size() >= begin.size() + end.size() && dump.compare(0, begin.size(), begin) == 0 &&
         dump.compare(dump.size() - end.size(), end.size(), end) == 0;
}

}  // namespace mdf_tests::oracle
