#include "hostile/expected_reading.h"

#include <cstdlib>
#include <map>

#include "hostile/attempt.h"
#include "hostile/reading_forms.h"
#include "hostile/variable_parts.h"
#include "support/bytes.h"

namespace mdf_tests::hostile {

namespace {

std::uint64_t countStored(const Contents& block) { return block.link_count; }
std::uint64_t countNone(const Contents& /*block*/) { return 0; }

template <int Own>
std::uint64_t countOwnAndMore(const Contents& block) {
  return Own + block.more_links.size();
}

std::uint64_t countOnePerElement(const Contents& block) { return 4 + block.more_links.size() / 3; }

std::string writtenBytes(const std::string& letters, const Format& format, const Contents& block) {
  if (format.read == readIdentification) {
    return block.section;
  }
  const std::uint64_t length =
      format.written_length == WrittenLength::stored
          ? block.length
          : format.size + block.more_links.size() * link_size + block.tail.size();
  Bytes bytes;
  bytes.header(letters, length, format.written_link_count(block));
  for (const Links* links : {&block.links, &block.more_links}) {
    for (const std::int64_t link : *links) {
      bytes.i64(link);
    }
  }
  return bytes.text(block.section).text(block.tail);
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
  for (std::size_t i = where.width; i-- > 0;) {
    value = value << 8U | static_cast<unsigned char>(bytes.at(where.offset + i));
  }
  return value;
}

void setNumber(std::string& bytes, const Number& where, std::uint64_t value) {
  const std::string all = Bytes().u64(value);
  bytes.replace(where.offset, where.width, all, 0, where.width);
}

Reading expectedReading(const std::string& letters, const std::string& stream) {
  const Format& format = formatOf(letters);
  Attempt attempt{format, stream, startOf(format), {}};
  format.read(attempt);
  Reading& reading = attempt.reading;
  if (!reading.out_of_memory) {
    reading.length = attempt.block.length;
    reading.link_count = attempt.block.link_count;
    reading.links = attempt.block.links;
    reading.unwritten = attempt.block.unwritten;
    reading.written = writtenBytes(letters, format, attempt.block);
  }
  return reading;
}

std::vector<Number> numbersOf(const std::string& letters, const std::string& block) {
  const Format& format = formatOf(letters);
  std::vector<Number> numbers = {{8, 8}, {16, 8}};
  std::size_t offset = 0;
  if (format.read != readIdentification) {
    offset = header_size + static_cast<std::size_t>(numberAt(block, {16, 8})) * link_size;
  }
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

}  // namespace mdf_tests::hostile
