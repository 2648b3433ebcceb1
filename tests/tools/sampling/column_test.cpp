#include "reader/columns/column.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "support/bytes.h"

using namespace mdf_reader;
using mdf_tests::Bytes;

namespace {

/// The second of three records with such a value after another byte.
std::string shown(unsigned data_type, const std::string& bytes) {
  Channel channel;
  channel.data_type = data_type;
  channel.byte_offset = 1;
  channel.bit_count = static_cast<std::uint32_t>(8 * bytes.size());
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

TEST(Column, IntegersOfMoreThan64BitsAreTheirBytes) {
  EXPECT_EQ(shown(0, Bytes().u8s({1, 2, 3, 4, 5, 6, 7, 8, 0xAB})), "0102030405060708ab");
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
