#include "raw_value.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "framework/wire.h"
#include "text_encoding.h"

namespace mdf_reader {

using mdf_v4_10::detail::loadLe;

namespace {

bool isBigEndian(unsigned data_type) {
  return data_type == Channel::unsigned_be || data_type == Channel::signed_be ||
         data_type == Channel::real_be || data_type == RawType::complex_be;
}

/// Up to 64 bits out of up to nine bytes, counted from the least significant one.
std::uint64_t bitsOf(const RawType& type, std::string_view bytes) {
  std::array<char, 16> little{};
  if (isBigEndian(type.data_type)) {
    std::reverse_copy(bytes.begin(), bytes.end(), little.begin());
  } else {
    std::copy(bytes.begin(), bytes.end(), little.begin());
  }
  std::uint64_t bits = loadLe<std::uint64_t>(little.data()) >> type.bit_offset;
  if (type.bit_offset > 0) {
    bits |= loadLe<std::uint64_t>(little.data() + 8) << (64 - type.bit_offset);
  }
  return type.bit_count < 64 ? bits & ((std::uint64_t{1} << type.bit_count) - 1) : bits;
}

std::int64_t signedOf(std::uint64_t bits, std::uint64_t count) {
  const auto unused = static_cast<unsigned>(64 - count);
  return static_cast<std::int64_t>(bits << unused) >> unused;
}

/// A real number of 16 bits: sign, five bits of exponent, ten of fraction.
double halfOf(std::uint64_t bits) {
  const auto exponent = static_cast<int>((bits >> 10U) & 0x1FU);
  const auto fraction = static_cast<double>(bits & 0x3FFU);
  double number = 0;
  if (exponent == 0) {
    number = std::ldexp(fraction, -24);
  } else if (exponent < 31) {
    number = std::ldexp(1024 + fraction, exponent - 25);
  } else {
    number = fraction == 0 ? std::numeric_limits<double>::infinity()
                           : std::numeric_limits<double>::quiet_NaN();
  }
  return (bits & 0x8000U) != 0 ? -number : number;
}

template <class Real, class Bits>
double realOf(Bits bits) {
  Real number;
  static_assert(sizeof number == sizeof bits);
  std::memcpy(&number, &bits, sizeof number);
  return number;
}

Value realValue(const RawType& type, std::string_view bytes) {
  const std::uint64_t bits = bitsOf(type, bytes);
  switch (type.bit_count) {
    case 16:
      return halfOf(bits);
    case 32:
      return realOf<float>(static_cast<std::uint32_t>(bits));
    case 64:
      return realOf<double>(bits);
    default:
      return ByteString{std::string(bytes)};
  }
}

/// "1.5-2i": the real part in front, then the imaginary one of the same width.
Value complexValue(const RawType& type, std::string_view bytes) {
  const RawType half{isBigEndian(type.data_type) ? Channel::real_be : Channel::real_le, 0,
                     type.bit_count / 2};
  if (type.bit_offset != 0 || type.bit_count % 16 != 0) {
    return ByteString{std::string(bytes)};
  }
  const Value real = rawValue(half, bytes.substr(0, bytes.size() / 2));
  const Value imaginary = rawValue(half, bytes.substr(bytes.size() / 2));
  if (!std::holds_alternative<double>(real)) {
    return ByteString{std::string(bytes)};
  }
  std::string text;
  appendText(real, text);
  std::string second;
  appendText(imaginary, second);
  return text + (second[0] == '-' ? "" : "+") + second + "i";
}

Value numberValue(const RawType& type, std::string_view bytes) {
  if (type.data_type == RawType::complex_le || type.data_type == RawType::complex_be) {
    return complexValue(type, bytes);
  }
  if (type.bit_count == 0) {
    return std::uint64_t{0};
  }
  if (type.bit_count > 64 || type.bit_offset > 7) {
    return ByteString{std::string(bytes)};
  }
  switch (type.data_type) {
    case Channel::unsigned_le:
    case Channel::unsigned_be:
      return bitsOf(type, bytes);
    case Channel::signed_le:
    case Channel::signed_be:
      return signedOf(bitsOf(type, bytes), type.bit_count);
    default:
      return realValue(type, bytes);
  }
}

struct Moment {
  unsigned year, month, day, hour, minute, millisecond;  // milliseconds within the minute
};

Value isoText(const Moment& moment) {
  std::array<char, 80> text;
  const int length = std::snprintf(
      text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02u.%03u", moment.year, moment.month,
      moment.day, moment.hour, moment.minute, moment.millisecond / 1000, moment.millisecond % 1000);
  return std::string(text.data(), static_cast<std::size_t>(length));
}

unsigned byteAt(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

/// Seven bytes: milliseconds, minute, hour, day, month, year of a century, with other bits between.
Value canopenDate(std::string_view bytes) {
  if (bytes.size() < 7) {
    return ByteString{std::string(bytes)};
  }
  const unsigned year = byteAt(bytes, 6) & 0x7FU;
  return isoText({year + (year < 84 ? 2000 : 1900), byteAt(bytes, 5) & 0x3FU,
                  byteAt(bytes, 4) & 0x1FU, byteAt(bytes, 3) & 0x1FU, byteAt(bytes, 2) & 0x3FU,
                  loadLe<std::uint16_t>(bytes.data())});
}

/// Six bytes: milliseconds since midnight in 28 bits, days since 1984-01-01.
Value canopenTime(std::string_view bytes) {
  if (bytes.size() < 6) {
    return ByteString{std::string(bytes)};
  }
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

}  // namespace

Value rawValue(const RawType& type, std::string_view bytes) {
  if (type.isNumber()) {
    return numberValue(type, bytes);
  }
  switch (type.data_type) {
    case Channel::string_latin1:
      return fromLatin1(bytes);
    case Channel::string_utf8:
      return fromUtf8(bytes);
    case Channel::string_utf16_le:
    case Channel::string_utf16_be:
      return fromUtf16(bytes, type.data_type == Channel::string_utf16_be);
    case Channel::canopen_date:
      return canopenDate(bytes);
    case Channel::canopen_time:
      return canopenTime(bytes);
    default:
      return ByteString{std::string(bytes)};
  }
}

}  // namespace mdf_reader
