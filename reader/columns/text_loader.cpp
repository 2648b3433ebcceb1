#include "text_loader.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <string>

#include "../values/text_encoding.h"
#include "framework/wire.h"
#include "number_loader.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

/// "1.5-2i": the real part in front, then the imaginary one of the same width.
std::string complexNumber(const RawType& type, std::string_view bytes) {
  const RawType half{type.isBigEndian() ? Channel::real_be : Channel::real_le, 0,
                     type.bit_count / 2};
  std::string text;
  printNumber(numberIn<double>(half, bytes.substr(0, bytes.size() / 2)), text);
  const std::size_t end = text.size();
  printNumber(numberIn<double>(half, bytes.substr(bytes.size() / 2)), text);
  if (text[end] != '-') {
    text.insert(end, 1, '+');
  }
  return text + 'i';
}

struct Moment {
  unsigned year, month, day, hour, minute, millisecond;  // milliseconds within the minute
};

std::string isoText(const Moment& moment) {
  std::array<char, 80> text;
  const int length = std::snprintf(
      text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02u.%03u", moment.year, moment.month,
      moment.day, moment.hour, moment.minute, moment.millisecond / 1000, moment.millisecond % 1000);
  return {text.data(), static_cast<std::size_t>(length)};
}

unsigned byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// Seven bytes: milliseconds, minute, hour, day, month, year of a century, with other bits between.
std::string canopenDate(std::string_view bytes) {
  const unsigned year = byteAt(bytes, 6) & 0x7FU;
  return isoText({year + (year < 84 ? 2000 : 1900), byteAt(bytes, 5) & 0x3FU,
                  byteAt(bytes, 4) & 0x1FU, byteAt(bytes, 3) & 0x1FU, byteAt(bytes, 2) & 0x3FU,
                  loadLe<std::uint16_t>(bytes.data())});
}

/// Six bytes: milliseconds since midnight in 28 bits, days since 1984-01-01.
std::string canopenTime(std::string_view bytes) {
  const std::uint32_t milliseconds = loadLe<std::uint32_t>(bytes.data()) & 0xFFFFFFFU;
  // Days since 0000-03-01, so that a leap day is the last of its year. Four years are 1461 days,
  // except at centuries; only 2100 is in reach.
  constexpr unsigned to_1984 = 724581;
  constexpr unsigned in_400_years = 146097;
  const unsigned days = to_1984 + loadLe<std::uint16_t>(bytes.data() + 4);
  const unsigned of_400 = days % in_400_years;
  const unsigned years = (of_400 - of_400 / 1460 + of_400 / 36524 - of_400 / 146096) / 365;
  const unsigned of_year = of_400 - (365 * years + years / 4 - years / 100);
  const unsigned from_march = (5 * of_year + 2) / 153;
  const unsigned month = from_march < 10 ? from_march + 3 : from_march - 9;
  const unsigned year = days / in_400_years * 400 + years + (month <= 2 ? 1 : 0);
  const unsigned minutes = milliseconds / 60000;
  return isoText({year, month, of_year - (153 * from_march + 2) / 5 + 1, minutes / 60, minutes % 60,
                  milliseconds % 60000});
}

std::string hexText(std::string_view bytes) {
  std::string text;
  printBytes(bytes, text);
  return text;
}

std::string textOf(const RawType& type, std::string_view bytes) {
  switch (type.data_type) {
    case Channel::string_latin1:
      return fromLatin1(bytes);
    case Channel::string_utf8:
      return fromUtf8(bytes);
    case Channel::string_utf16_le:
    case Channel::string_utf16_be:
      return fromUtf16(bytes, type.data_type == Channel::string_utf16_be);
    case Channel::canopen_date:
      return bytes.size() < 7 ? hexText(bytes) : canopenDate(bytes);
    case Channel::canopen_time:
      return bytes.size() < 6 ? hexText(bytes) : canopenTime(bytes);
    default:
      return bytes.size() < type.bytes() || columnTypeOf(type) != ColumnType::text
                 ? hexText(bytes)
                 : complexNumber(type, bytes);
  }
}

}  // namespace

void addValue(const RawType& type, std::string_view bytes, ColumnData& to) {
  if (to.type() == ColumnType::bytes) {
    to.add(bytes);
  } else {
    to.add(textOf(type, bytes));
  }
}

}  // namespace mdf_reader
