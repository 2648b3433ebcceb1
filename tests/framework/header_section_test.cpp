#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::HeaderSection;
using mdf_v4_10::MDF_Block_ID;
using mdf_v4_10::UINT8;

namespace {

HeaderSection distinctHeader() {
  HeaderSection header(MDF_Block_ID(0x4448));
  setBytes(header.reserved, {1, 2, 3, 4});
  header.length = 0x0102030405060708;
  header.link_count = 0x1112131415161718;
  return header;
}

/// Reads the header from bytes as they stand in a file.
void readFrom(HeaderSection& header, const std::string& bytes) {
  std::array<std::uint8_t, HeaderSection::HEADER_SIZE> array{};
  ASSERT_EQ(bytes.size(), array.size());
  std::copy(bytes.begin(), bytes.end(), array.begin());
  header.readFromByteArray(array.data());
}

TEST(HeaderSection, Size) { EXPECT_EQ(HeaderSection::HEADER_SIZE, 24U); }

TEST(HeaderSection, StartsOutEmpty) {
  const HeaderSection header(MDF_Block_ID(0x4448));
  EXPECT_EQ(header.mdfID.idInternal, 0x44482323U);
  EXPECT_EQ(asArray(header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(header.length, 0U);
  EXPECT_EQ(header.link_count, 0U);
}

TEST(HeaderSection, WritesTheDefaultHeader) {
  EXPECT_BYTES(written(HeaderSection(MDF_Block_ID(0x4448))), Bytes().text("##HD").zeros(20));
}

TEST(HeaderSection, WritesEveryField) {
  EXPECT_BYTES(written(distinctHeader()),
               Bytes()
                   .text("##HD")
                   .u8s({1, 2, 3, 4})
                   .u8s({8, 7, 6, 5, 4, 3, 2, 1})
                   .u8s({0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11}));
}

TEST(HeaderSection, WritesExtremeValues) {
  HeaderSection header(MDF_Block_ID(0xFFFF));
  fillBytes(header.reserved, 255);
  header.length = UINT64_MAX;
  header.link_count = UINT64_MAX;
  EXPECT_BYTES(written(header), Bytes().text("##" + std::string(22, '\xFF')));
}

TEST(HeaderSection, Accessors) {
  HeaderSection header(MDF_Block_ID(0x4448));
  header.setLength(UINT64_MAX);
  header.setLinkCount(7);
  EXPECT_EQ(header.getLength(), UINT64_MAX);
  EXPECT_EQ(header.getLinkCount(), 7U);
  EXPECT_BYTES(written(header), Bytes().header("HD", UINT64_MAX, 7));
}

TEST(HeaderSection, ReadingTakesLengthAndLinkCountOnly) {
  HeaderSection header = distinctHeader();
  readFrom(header, Bytes().text("@@XY").u8s({91, 92, 93, 94}).u64(0xA1A2A3A4A5A6A7A8).u64(5));
  EXPECT_BYTES(written(header),
               Bytes().text("##HD").u8s({1, 2, 3, 4}).u64(0xA1A2A3A4A5A6A7A8).u64(5));
}

TEST(HeaderSection, ReadingTakesExtremeValues) {
  HeaderSection header(MDF_Block_ID(0x4448));
  readFrom(header, std::string(24, '\xFF'));
  EXPECT_BYTES(written(header), Bytes().header("HD", UINT64_MAX, UINT64_MAX));
}

TEST(HeaderSection, Dump) {
  EXPECT_EQ(dumped(distinctHeader()),
            "[DEBUG] ==================== HeaderSection ===================\n"
            "mdfID = ##HD\n"
            "length = 72623859790382856\n"
            "link_count = 1230066625199609624\n"
            "[DEBUG] ==================== End of HeaderSection ===================\n");
}

TEST(HeaderSection, DumpShowsTheIdentifierBytesRawAndNumbersUnsigned) {
  HeaderSection header(MDF_Block_ID(0));
  header.mdfID.idInternal = 0xFF0A0041;
  header.length = UINT64_MAX;
  header.link_count = UINT64_MAX;
  EXPECT_EQ(dumped(header),
            std::string("[DEBUG] ==================== HeaderSection ===================\n"
                        "mdfID = A") +
                '\0' +
                "\n\xFF\n"
                "length = 18446744073709551615\n"
                "link_count = 18446744073709551615\n"
                "[DEBUG] ==================== End of HeaderSection ===================\n");
}

TEST(HeaderSection, WriterReturnsTheStream) {
  std::ostringstream os;
  EXPECT_EQ(&(os << distinctHeader()), &os);
}

}  // namespace
