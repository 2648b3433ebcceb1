#include <gtest/gtest.h>

#include <array>
#include <string>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using mdf_v4_10::HeaderSection;
using mdf_v4_10::MDF_Block_ID;

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

TEST(HeaderSection, WritesTheDefaultHeader) {
  EXPECT_BYTES(written(HeaderSection(MDF_Block_ID(0x4448))), std::string("##HD") + zeros(20));
}

TEST(HeaderSection, WritesEveryField) {
  EXPECT_BYTES(written(distinctHeader()), std::string("##HD") + u8(1, 2, 3, 4) +
                                              u8(8, 7, 6, 5, 4, 3, 2, 1) +
                                              u8(0x18, 0x17, 0x16, 0x15, 0x14, 0x13, 0x12, 0x11));
}

TEST(HeaderSection, Accessors) {
  HeaderSection section(MDF_Block_ID(0x4448));
  section.setLength(UINT64_MAX);
  section.setLinkCount(7);
  EXPECT_EQ(section.getLength(), UINT64_MAX);
  EXPECT_EQ(section.getLinkCount(), 7U);
  EXPECT_BYTES(written(section), header("HD", UINT64_MAX, 7));
}

TEST(HeaderSection, ReadingTakesLengthAndLinkCountOnly) {
  HeaderSection section = distinctHeader();
  readFrom(section, std::string("@@XY") + u8(91, 92, 93, 94) + u64(0xA1A2A3A4A5A6A7A8, 5));
  EXPECT_BYTES(written(section), header("HD", 0xA1A2A3A4A5A6A7A8, 5, {1, 2, 3, 4}));
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
  HeaderSection section(MDF_Block_ID(0));
  section.mdfID.idInternal = 0xFF0A0041;
  section.length = UINT64_MAX;
  section.link_count = UINT64_MAX;
  EXPECT_EQ(dumped(section),
            std::string("[DEBUG] ==================== HeaderSection ===================\n"
                        "mdfID = A") +
                '\0' +
                "\n\xFF\n"
                "length = 18446744073709551615\n"
                "link_count = 18446744073709551615\n"
                "[DEBUG] ==================== End of HeaderSection ===================\n");
}

}  // namespace
