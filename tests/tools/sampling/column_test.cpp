#include "reader/columns/column.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/bytes.h"

using namespace mdf_reader;
using mdf_tests::Bytes;

namespace {

/// The second of three records with such a value after another byte.
std::string shown(unsigned data_type, const std::string& bytes, unsigned bit_offset,
                  std::uint64_t bit_count) {
  Channel channel;
  channel.data_type = data_type;
  channel.byte_offset = 1;
  channel.bit_offset = bit_offset;
  channel.bit_count = static_cast<std::uint32_t>(bit_count);
  ChannelGroup group;
  group.data_bytes = static_cast<std::uint32_t>(1 + bytes.size());
  ColumnSource source;
  source.group = &group;
  source.channel = &channel;
  const FindingSink report = [](const Finding& /*finding*/) {};
  Column column("", std::move(source), report);
  const std::string records = '?' + std::string(bytes.size(), '\x55') + '?' + bytes + '?' +
                              std::string(bytes.size(), '\xAA');
  ColumnData values(column.head().type);
  column.append({records.data(), 1 + bytes.size(), 1 + bytes.size(), 3, 0}, values);
  std::string text;
  values.print(1, text);
  return text;
}

/// A value of whole bytes.
std::string shown(unsigned data_type, const std::string& bytes) {
  return shown(data_type, bytes, 0, 8 * bytes.size());
}

TEST(Column, UnsignedLittleEndian) {
  EXPECT_EQ(shown(0, Bytes().u8s({0xFE})), "254");
  EXPECT_EQ(shown(0, Bytes().u8s({1, 2})), "513");
  EXPECT_EQ(shown(0, Bytes().u8s({1, 0, 0, 0, 0, 0x80})), "140737488355329");  // 2^47 + 1
  EXPECT_EQ(shown(0, std::string(8, '\xFF')), "18446744073709551615");
}

TEST(Column, UnsignedBigEndian) {
  EXPECT_EQ(shown(1, Bytes().u8s({1, 2})), "258");
  EXPECT_EQ(shown(1, Bytes().u8s({0x80, 0, 0, 0, 0, 1})), "140737488355329");
  EXPECT_EQ(shown(1, Bytes().u8s({0, 0, 0, 0, 0, 0, 0, 9})), "9");
}

TEST(Column, SignedIntegers) {
  EXPECT_EQ(shown(2, Bytes().u8s({0xFE})), "-2");
  EXPECT_EQ(shown(2, Bytes().u8s({0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF})), "-2");
  EXPECT_EQ(shown(2, Bytes().u8s({0, 0, 0, 0, 0, 0, 0, 0x80})), "-9223372036854775808");
  EXPECT_EQ(shown(3, Bytes().u8s({0xFF, 0xFE})), "-2");
  EXPECT_EQ(shown(3, Bytes().u8s({0x7F, 0xFF})), "32767");
}

TEST(Column, BitsInsideBytes) {
  EXPECT_EQ(shown(0, Bytes().u8s({0xB4}), 2, 3), "5");   // 10 1101 00: bits 2 to 4
  EXPECT_EQ(shown(2, Bytes().u8s({0xB4}), 2, 3), "-3");  // the same with a sign
  EXPECT_EQ(shown(0, Bytes().u8s({0xF0, 0x0F}), 4, 8), "255");
  EXPECT_EQ(shown(1, Bytes().u8s({0x0A, 0xB0}), 4, 8), "171");  // 0x0AB0 >> 4
  EXPECT_EQ(shown(0, Bytes().u8s({0x80, 0, 0, 0, 0, 0, 0, 0, 0x7F}), 7, 64),
            "18302628885633695745");  // 0xFE00000000000001 over nine bytes
  EXPECT_EQ(shown(1, Bytes().u8s({0x7F, 0, 0, 0, 0, 0, 0, 0, 0x80}), 7, 64),
            "18302628885633695745");
  EXPECT_EQ(shown(0, "", 0, 0), "0");
}

TEST(Column, IntegersOfMoreThan64BitsAreTheirBytes) {
  EXPECT_EQ(shown(0, Bytes().u8s({1, 2, 3, 4, 5, 6, 7, 8, 0xAB})), "0102030405060708ab");
}

TEST(Column, Reals) {
  EXPECT_EQ(shown(4, Bytes().f64(0.1)), "0.1");
  EXPECT_EQ(shown(4, Bytes().u8s({0, 0, 0xC0, 0x3F})), "1.5");
  EXPECT_EQ(shown(5, Bytes().u8s({0x3F, 0xC0, 0, 0})), "1.5");
  EXPECT_EQ(shown(5, Bytes().u8s({0xC0, 0x04, 0, 0, 0, 0, 0, 0})), "-2.5");
  EXPECT_EQ(shown(4, Bytes().u8s({0, 0, 0x80, 0x7F})), "inf");
  EXPECT_EQ(shown(4, Bytes().u8s({0, 0, 0x80, 0xFF})), "-inf");
  EXPECT_EQ(shown(4, Bytes().u8s({0, 0, 0xC0, 0xFF})), "nan");
}

TEST(Column, FloatsReadBackToTheSameNumber) {
  EXPECT_EQ(shown(4, Bytes().u8s({0xCD, 0xCC, 0xCC, 0x3D})), "0.10000000149011612");
}

TEST(Column, RealsOf16Bits) {
  EXPECT_EQ(shown(4, Bytes().u16(0x3C00)), "1");
  EXPECT_EQ(shown(4, Bytes().u16(0xC500)), "-5");
  EXPECT_EQ(shown(4, Bytes().u16(0x7BFF)), "65504");
  EXPECT_EQ(shown(4, Bytes().u16(0x0001)), "5.960464477539063e-08");  // the smallest
  EXPECT_EQ(shown(4, Bytes().u16(0x0400)), "6.103515625e-05");  // the smallest with an exponent
  EXPECT_EQ(shown(4, Bytes().u16(0x7C00)), "inf");
  EXPECT_EQ(shown(4, Bytes().u16(0x7E00)), "nan");
  EXPECT_EQ(shown(5, Bytes().u8s({0x3C, 0x00})), "1");
}

TEST(Column, RealsOfAnotherWidthAreTheirBytes) {
  EXPECT_EQ(shown(4, Bytes().u8s({1, 2, 3})), "010203");
  EXPECT_EQ(shown(4, std::string(10, '\x01')), "01010101010101010101");
}

TEST(Column, Strings) {
  EXPECT_EQ(shown(6, "caf\xE9"), "caf\xC3\xA9");
  EXPECT_EQ(shown(6, Bytes().text("ab").zeros(2).text("cd")), "ab");
  EXPECT_EQ(shown(7, "caf\xC3\xA9"), "caf\xC3\xA9");
  EXPECT_EQ(shown(8, Bytes().u8s({0x61, 0, 0xE9, 0})), "a\xC3\xA9");
  EXPECT_EQ(shown(9, Bytes().u8s({0, 0x61, 0, 0xE9})), "a\xC3\xA9");
}

TEST(Column, BytesAndStreamsAreHexadecimalDigits) {
  for (const unsigned data_type : {10U, 11U, 12U}) {
    EXPECT_EQ(shown(data_type, Bytes().u8s({0, 0x1F, 0xFF})), "001fff");
  }
}

TEST(Column, CanopenDate) {
  // 12345 ms, minute 45, hour 13 (with the bit for summer time), day 17 of month 5, year 24
  EXPECT_EQ(shown(13, Bytes().u16(12345).u8s({45, 13 | 0x80, 17 | 0xA0, 5, 24})),
            "2024-05-17T13:45:12.345");
  EXPECT_EQ(shown(13, Bytes().u16(0).u8s({0, 0, 1, 1, 84})), "1984-01-01T00:00:00.000");
  EXPECT_EQ(shown(13, Bytes().u16(0).u8s({0, 0, 31, 12, 83})), "2083-12-31T00:00:00.000");
  EXPECT_EQ(shown(13, Bytes().zeros(6)), "000000000000");
}

TEST(Column, CanopenTime) {
  EXPECT_EQ(shown(14, Bytes().u32(0).u16(0)), "1984-01-01T00:00:00.000");
  EXPECT_EQ(shown(14, Bytes().u32(0).u16(59)), "1984-02-29T00:00:00.000");
  EXPECT_EQ(shown(14, Bytes().u32(0).u16(366)), "1985-01-01T00:00:00.000");
  // Four bits above the milliseconds are reserved; 14747 days are 40 years, 137 days and ten leap
  // days: 2024-05-17.
  EXPECT_EQ(shown(14, Bytes().u32(0xF0000000U | 49512345U).u16(14747)), "2024-05-17T13:45:12.345");
  EXPECT_EQ(shown(14, Bytes().u32(0).u16(42428)), "2100-03-01T00:00:00.000");
  EXPECT_EQ(shown(14, Bytes().zeros(5)), "0000000000");
}

TEST(Column, ComplexNumbers) {
  EXPECT_EQ(shown(15, Bytes().f64(1.5).f64(-2)), "1.5-2i");
  EXPECT_EQ(shown(16, Bytes().u8s({0x3F, 0xC0, 0, 0, 0x40, 0, 0, 0})), "1.5+2i");
  EXPECT_EQ(shown(15, Bytes().zeros(3)), "000000");
}

TEST(Column, UnknownTypesAreBytes) { EXPECT_EQ(shown(17, Bytes().u8s({1, 2})), "0102"); }

}  // namespace
