#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <type_traits>
#include <vector>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::DLBLOCK;
using mdf_v4_10::DZBLOCK;
using mdf_v4_10::HLBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT8;

namespace {

using Links = std::vector<LINK>;

HLBLOCK distinctBlock() {
  HLBLOCK block(300, true, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  block.hl_flags = 0xABCD;
  setBytes(block.hl_reserved, {11, 12, 13, 14, 15});
  return block;
}

/// The block as the format means it, with a link count of `link_count`.
std::string distinctBytes(std::uint64_t link_count) {
  return Bytes()
      .text("##HL")
      .u8s({1, 2, 3, 4})
      .u64(40)
      .u64(link_count)
      .i64(300)
      .u16(0xABCD)
      .u8(1)
      .u8s({11, 12, 13, 14, 15});
}

/// Expects that nothing but the header's length and link count was taken.
void expectNothingTaken(const HLBLOCK& block, std::uint64_t length, std::uint64_t link_count) {
  EXPECT_EQ(block.header.length, length);
  EXPECT_EQ(block.header.link_count, link_count);
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.hl_flags, 0);
  EXPECT_EQ(block.hl_zip_type, 0);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));
}

TEST(HLBLOCK, Constants) {
  EXPECT_EQ(HLBLOCK::HLBLOCK_SIZE, 40U);
  EXPECT_EQ(HLBLOCK::MDF_HL_ID, 0x4C48);
  static_assert(std::is_same_v<decltype(HLBLOCK::HLBLOCK_SIZE), const std::size_t>);
  static_assert(std::is_same_v<decltype(HLBLOCK::MDF_HL_ID), const std::uint16_t>);
  static_assert(!std::is_polymorphic_v<HLBLOCK>);
}

TEST(HLBLOCK, EnumerationValues) {
  EXPECT_EQ(HLBLOCK::MDF_HL_BLOCK_LINKS{HLBLOCK::hl_dl_first}, 0);
  EXPECT_EQ(HLBLOCK::MDF_HL_BLOCK_LINKS{HLBLOCK::HL_BLOCK_LINKS_NUM}, 1);
  EXPECT_EQ(HLBLOCK::HL_FLAGS_t{HLBLOCK::equal_length}, 1);
}

TEST(HLBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::hlblock_fields, 32),
            "32 2 hl_flags\n"
            "34 1 hl_zip_type\n"
            "35 5 hl_reserved\n");
}

TEST(HLBLOCK, WritesItsLinkWithALinkCountOfZero) {
  EXPECT_BYTES(written(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               Bytes().header("HL", 40, 0).i64(4096).u16(1).u8(0).zeros(5));
}

TEST(HLBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(written(HLBLOCK(0, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE)),
               Bytes().header("HL", 40, 0).zeros(16));
  EXPECT_BYTES(written(HLBLOCK(-2, false, DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE)),
               Bytes().header("HL", 40, 0).i64(-2).u16(0).u8(1).zeros(5));
}

TEST(HLBLOCK, ConstructorLeavesEverythingElseZero) {
  const HLBLOCK block(7, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 0U);
  EXPECT_EQ(block.getPadding(), 0);
  EXPECT_EQ(linksOf(block), (Links{7}));
  EXPECT_EQ(block.hl_flags, 1);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));
}

TEST(HLBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes(0)); }

TEST(HLBLOCK, WritesExtremeValues) {
  HLBLOCK block(INT64_MIN, true, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(0x1FF));
  block.hl_flags = 0xFFFF;
  fillBytes(block.hl_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("HL", 40, 0)
                                   .i64(INT64_MIN)
                                   .u16(0xFFFF)
                                   .u8(255)
                                   .u8s({255, 255, 255, 255, 255}));
}

TEST(HLBLOCK, LengthAndLinkCountInTheFileAreNotTheStoredOnes) {
  HLBLOCK block = distinctBlock();
  block.header.length = 999;
  block.header.link_count = 1;
  EXPECT_BYTES(written(block), distinctBytes(0));
  EXPECT_EQ(block.header.length, 999U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(block.getSize(), 40U);
}

TEST(HLBLOCK, WritesEveryStoredLink) {
  HLBLOCK block = distinctBlock();
  block.links = {5, 6, 7};
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##HL")
                                   .u8s({1, 2, 3, 4})
                                   .u64(40)
                                   .u64(0)
                                   .links({5, 6, 7})
                                   .u16(0xABCD)
                                   .u8(1)
                                   .u8s({11, 12, 13, 14, 15}));
  EXPECT_EQ(block.getSize(), 40U);
}

TEST(HLBLOCK, Accessors) {
  HLBLOCK block(1, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  EXPECT_EQ(block.getFirstDlblock(), 1);
  EXPECT_FALSE(block.isEqualLengthFlag());
  EXPECT_EQ(block.getZipType(), DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  block.setFirstDlblock(11);
  block.setEqualLengthFlag(true);
  block.setZipType(DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  EXPECT_EQ(linksOf(block), (Links{11}));
  EXPECT_EQ(block.hl_flags, 1);
  EXPECT_EQ(block.hl_zip_type, 1);
  EXPECT_EQ(block.getFirstDlblock(), 11);
  EXPECT_TRUE(block.isEqualLengthFlag());
  EXPECT_EQ(block.getZipType(), DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE);
  EXPECT_EQ(block.getSize(), 40U);
  block.hl_zip_type = 200;
  EXPECT_EQ(static_cast<int>(block.getZipType()), 200);
}

TEST(HLBLOCK, LinkIsStoredAndReturnedWhereThereWasNone) {
  HLBLOCK block = distinctBlock();
  block.links.clear();
  EXPECT_EQ(block.getFirstDlblock(), 0);
  block.setFirstDlblock(12);
  EXPECT_EQ(linksOf(block), (Links{12}));
  EXPECT_EQ(block.header.link_count, 0U);
}

TEST(HLBLOCK, EqualLengthFlagIsTheLowestBitAlone) {
  for (unsigned bit = 0; bit < 16; ++bit) {
    SCOPED_TRACE(bit);
    HLBLOCK block(1, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
    block.hl_flags = static_cast<mdf_v4_10::UINT16>(1U << bit);
    EXPECT_EQ(block.isEqualLengthFlag(), bit == 0);
    block.setEqualLengthFlag(true);
    EXPECT_EQ(block.hl_flags, (1U << bit) | 1U);
    block.setEqualLengthFlag(true);
    EXPECT_EQ(block.hl_flags, (1U << bit) | 1U);
    block.setEqualLengthFlag(false);
    EXPECT_EQ(block.hl_flags, (1U << bit) & ~1U);
  }
}

TEST(HLBLOCK, FollowsItsLink) {
  const LinkTargetFile file;
  const HLBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgFirstDlblock(ifs); }, 300);
}

TEST(HLBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  HLBLOCK block(0, false, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgFirstDlblock(ifs); }, 0);
  block.links.clear();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgFirstDlblock(ifs); }, 0);
}

TEST(HLBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = 300\n"
            "equal length = 1\n"
            "zip type = 1\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, DumpOfExtremeValuesShowsTheConstantSize) {
  HLBLOCK block(INT64_MIN, false, static_cast<DZBLOCK::DZ_ZIPTYPE_t>(255));
  block.header.length = 9999;
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = -9223372036854775808\n"
            "equal length = 0\n"
            "zip type = 255\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, DumpWithoutLinksShowsANilLink) {
  HLBLOCK block(5, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE);
  block.links.clear();
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = 0\n"
            "equal length = 1\n"
            "zip type = 0\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, DumpFollowsTheFormatOfTheStream) {
  std::ostringstream os;
  os << std::hex << std::boolalpha;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 28\n"
            "first dl block = 12c\n"
            "equal length = true\n"
            "zip type = 1\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, ZipTypeIsShownAsASignedNumber) {
  std::ostringstream os;
  os << std::showpos;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = +300\n"
            "equal length = +1\n"
            "zip type = +1\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, BlockThatAnnouncesItsLinkIsReadAsItWasMeant) {
  const auto block = readBack<HLBLOCK>(distinctBytes(1));
  EXPECT_EQ(block.header.length, 40U);
  EXPECT_EQ(block.header.link_count, 1U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(linksOf(block), (Links{300}));
  EXPECT_EQ(block.getFirstDlblock(), 300);
  EXPECT_EQ(block.hl_flags, 0xABCD);
  EXPECT_EQ(block.hl_zip_type, 1);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));

  const auto plain = readBack<HLBLOCK>(Bytes().header("HL", 40, 1).i64(4096).u16(1).zeros(6));
  EXPECT_EQ(linksOf(plain), (Links{4096}));
  EXPECT_EQ(plain.hl_flags, 1);
  EXPECT_EQ(plain.hl_zip_type, 0);
}

TEST(HLBLOCK, BlockThatWasWrittenIsReadBackWithFlagsFromItsLink) {
  const auto block = readBack<HLBLOCK>(written(HLBLOCK(4096, true, DZBLOCK::DZ_ZIPTYPE_DEFLATE)));
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.getFirstDlblock(), 0);
  EXPECT_EQ(block.hl_flags, 4096);
  EXPECT_EQ(block.hl_zip_type, 0);
  EXPECT_FALSE(block.isEqualLengthFlag());
}

TEST(HLBLOCK, WithoutLinksTheZipTypeIsTheThirdByteOfTheLink) {
  const auto block = readBack<HLBLOCK>(
      Bytes().header("HL", 40, 0).i64(0x0807060504030201).u16(0xFFFF).u8(255).zeros(5));
  EXPECT_EQ(linksOf(block), Links{});
  EXPECT_EQ(block.hl_flags, 0x0201);
  EXPECT_EQ(block.hl_zip_type, 3);
  EXPECT_EQ(asArray(block.hl_reserved), (std::array<UINT8, 5>{}));
}

TEST(HLBLOCK, DumpOfABlockThatWasWrittenAndReadBack) {
  EXPECT_EQ(dumped(readBack<HLBLOCK>(distinctBytes(0))),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = 0\n"
            "equal length = 0\n"
            "zip type = 0\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, WritingABlockThatWasReadWithItsLinkWritesItWithoutALinkCount) {
  EXPECT_BYTES(written(readBack<HLBLOCK>(distinctBytes(1))),
               Bytes().header("HL", 40, 0).i64(300).u16(0xABCD).u8(1).zeros(5));
}

TEST(HLBLOCK, WritingABlockThatWasReadWithoutLinksWritesThirtyTwoBytes) {
  EXPECT_BYTES(written(readBack<HLBLOCK>(distinctBytes(0))),
               Bytes().header("HL", 40, 0).u16(300).u8(0).zeros(5));
}

TEST(HLBLOCK, CutStreamKeepsTheStateOfTheRead) {
  for (const std::uint64_t link_count : {0U, 1U}) {
    forEachPrefix(distinctBytes(link_count), [](std::istream& is, std::size_t) {
      const HLBLOCK block(is);
      EXPECT_EQ(is.rdstate(), state_eof_fail);
      expectNothingTaken(block, 40, 0);
    });
  }
}

TEST(HLBLOCK, DumpOfABlockThatCouldNotBeRead) {
  std::istringstream is;
  EXPECT_EQ(dumped(HLBLOCK(is)),
            "[DEBUG] ==================== HLBLOCK ===================\n"
            "block size = 40\n"
            "first dl block = 0\n"
            "equal length = 0\n"
            "zip type = 0\n"
            "[DEBUG] ==================== End of HLBLOCK ===================\n");
}

TEST(HLBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::badbit, std::ios_base::eofbit}) {
    std::istringstream is(distinctBytes(1));
    is.setstate(state);
    const HLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state | std::ios_base::failbit);
    expectNothingTaken(block, 40, 0);
    is.clear();
    EXPECT_EQ(is.tellg(), 0);
  }
}

TEST(HLBLOCK, FailedStreamIsNotWritten) {
  std::ostringstream os;
  os.setstate(std::ios_base::failbit);
  EXPECT_EQ(&(os << distinctBlock()), &os);
  EXPECT_EQ(os.rdstate() & ~std::ios_base::badbit, std::ios_base::failbit);
  EXPECT_EQ(os.str(), "");
}

TEST(HLBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes(1);
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<HLBLOCK>(bytes)),
               Bytes().header("HL", 40, 0).i64(300).u16(0xABCD).u8(1).zeros(5));
}

TEST(HLBLOCK, FortyBytesAreReadWhateverTheLengthSays) {
  for (const std::uint64_t length :
       {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{23}, std::uint64_t{24}, std::uint64_t{25},
        std::uint64_t{39}, std::uint64_t{41}, std::uint64_t{UINT32_MAX},
        (std::uint64_t{1} << 32U) + 24, std::uint64_t{1} << 63U, UINT64_MAX}) {
    SCOPED_TRACE(length);
    std::string bytes = distinctBytes(1);
    bytes.replace(8, 8, Bytes().u64(length).str());
    std::istringstream is(bytes + "behind");
    const HLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_good);
    EXPECT_EQ(is.tellg(), 40);
    EXPECT_EQ(block.header.length, length);
    EXPECT_EQ(linksOf(block), (Links{300}));
    EXPECT_EQ(block.hl_flags, 0xABCD);
    EXPECT_EQ(block.hl_zip_type, 1);
  }
}

TEST(HLBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{2}, std::uint64_t{3}, std::uint64_t{1} << 32U, (std::uint64_t{1} << 32U) + 1,
        std::uint64_t{1} << 61U, (std::uint64_t{1} << 61U) + 1, std::uint64_t{1} << 63U,
        UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(distinctBytes(link_count));
    const HLBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    expectNothingTaken(block, 40, link_count);
  }
}

TEST(HLBLOCK, LeadsToTheListsAndTheZippedBlocksOfAFile) {
  // The header list at 64, its list at 104, the zipped block at 200 and 4 bytes behind it.
  DLBLOCK list(true, 0);
  list.addData(200, 0);
  list.setEqualLength(100);
  const UINT8 zipped[] = {1, 2, 3, 4};
  std::string contents(200, '\0');
  contents.replace(64, 40, Bytes().header("HL", 40, 1).i64(104).u16(1).u8(1).zeros(5).str());
  contents.replace(104, 56, written(list));
  contents += written(DZBLOCK(mdf_v4_10::DTBLOCK::MDF_DT_ID,
                              DZBLOCK::DZ_ZIPTYPE_TRANSPORTION_DEFLATE, zipped, sizeof zipped));
  contents += "next";

  const LinkTargetFile file(contents);
  std::ifstream ifs = file.open();
  ifs.seekg(64);
  const HLBLOCK block(ifs);
  EXPECT_EQ(block.seekgFirstDlblock(ifs), 104);
  const DLBLOCK read_list(ifs);
  EXPECT_EQ(linksOf(read_list), (Links{0, 0, 200}));
  EXPECT_EQ(read_list.seekgDataAt(ifs, 1), 200);
  const DZBLOCK read_zipped(ifs);
  EXPECT_EQ(ifs.rdstate(), state_good);
  EXPECT_EQ(read_zipped.getZipType(), block.getZipType());
  EXPECT_EQ(read_zipped.dz_data, (std::vector<UINT8>{'n', 'e', 'x', 't'}));
}

TEST(HLBLOCK, CopiesAreIndependent) {
  const HLBLOCK block = distinctBlock();
  HLBLOCK copy = block;
  copy.setFirstDlblock(1);
  copy.setEqualLengthFlag(false);
  EXPECT_BYTES(written(block), distinctBytes(0));
}

}  // namespace
