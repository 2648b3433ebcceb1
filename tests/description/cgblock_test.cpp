#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <string>

#include "description/accessors.h"
#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::CGBLOCK;
using mdf_v4_10::LINK;
using mdf_v4_10::UINT16;
using mdf_v4_10::UINT8;

namespace {

/// The data section of the block in which every field has a value of its own.
std::string distinctFields(std::initializer_list<int> reserved) {
  return Bytes()
      .u64(0x2122232425262728)
      .u64(0x3132333435363738)
      .u16(0x4146)
      .u16(0x5152)
      .u8s(reserved)
      .u32(0x61626364)
      .u32(0x71727374);
}

CGBLOCK distinctBlock() {
  CGBLOCK block(100, static_cast<CGBLOCK::CG_FLAGS_t>(0x4146), 0x2122232425262728, 200, 300, 400,
                500, 0x3132333435363738, static_cast<CGBLOCK::CG_PATHSEPARATOR_t>(0x5152),
                0x61626364, 0x71727374);
  block.setComment(600);
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.cg_reserved, {11, 12, 13, 14});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##CG")
      .u8s({1, 2, 3, 4})
      .u64(104)
      .u64(6)
      .links({100, 200, 300, 400, 500, 600})
      .text(distinctFields({11, 12, 13, 14}));
}

/// What the writer makes of the distinct block after it was read.
std::string distinctBytesWrittenAfterReading() {
  return Bytes()
      .header("CG", 104, 6)
      .zeros(48)
      .links({100, 200, 300, 400, 500, 600})
      .text(distinctFields({0, 0, 0, 0}));
}

std::string defaultBytes() { return Bytes().header("CG", 104, 6).zeros(48).zeros(32); }

const std::vector<LinkAccessors<CGBLOCK>> link_accessors = {
    {0, &CGBLOCK::setNextCgblock, &CGBLOCK::getNextCgblock, &CGBLOCK::seekgNextCgblock},
    {1, &CGBLOCK::setFirstCnblock, &CGBLOCK::getFirstCnblock, &CGBLOCK::seekgFirstCnblock},
    {2, &CGBLOCK::setAcqTxNameblock, &CGBLOCK::getAcqTxNameblock, &CGBLOCK::seekgAcqNameTxblock},
    {3, &CGBLOCK::setAcqSourceSiblock, &CGBLOCK::getAcqSourceSiblock,
     &CGBLOCK::seekgAcqSourceSiblock},
    {4, &CGBLOCK::setFirstSrblock, &CGBLOCK::getFirstSrblock, &CGBLOCK::seekgFirstSrblock},
    {5, &CGBLOCK::setComment, &CGBLOCK::getComment, &CGBLOCK::seekgCommentblock}};

TEST(CGBLOCK, Constants) {
  EXPECT_EQ(CGBLOCK::CGBLOCK_SIZE, 104U);
  EXPECT_EQ(CGBLOCK::MDF_CG_ID, 0x4743);
}

TEST(CGBLOCK, EnumerationValues) {
  EXPECT_EQ(CGBLOCK::no_flag, 0);
  EXPECT_EQ(CGBLOCK::vlsd_channel_group, 1);
  EXPECT_EQ(CGBLOCK::bus_event_group, 2);
  EXPECT_EQ(CGBLOCK::plain_bus_event_channel_group, 4);
  EXPECT_EQ(CGBLOCK::CG_PATHSEPARATOR_NONE, 0);
  EXPECT_EQ(CGBLOCK::CG_PATHSEPARATOR_POINT, '.');
  EXPECT_EQ(CGBLOCK::CG_PATHSEPARATOR_SLASH, '/');
  EXPECT_EQ(CGBLOCK::cg_cg_next, 0);
  EXPECT_EQ(CGBLOCK::cg_cn_first, 1);
  EXPECT_EQ(CGBLOCK::cg_tx_acq_name, 2);
  EXPECT_EQ(CGBLOCK::cg_si_acq_source, 3);
  EXPECT_EQ(CGBLOCK::cg_sr_first, 4);
  EXPECT_EQ(CGBLOCK::cg_md_comment, 5);
  EXPECT_EQ(CGBLOCK::CG_BLOCK_LINKS_NUM, 6);
}

TEST(CGBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::cgblock_fields, 72),
            "72 8 cg_record_id\n"
            "80 8 cg_cycle_count\n"
            "88 2 cg_flags\n"
            "90 2 cg_path_separator\n"
            "92 4 cg_reserved\n"
            "96 4 cg_data_bytes\n"
            "100 4 cg_inval_bytes\n");
}

TEST(CGBLOCK, DefaultBlockIsAllNilAndZero) {
  const CGBLOCK block;
  EXPECT_BYTES(written(block), defaultBytes());
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(CGBLOCK, WritesWhatTheConstructorWasGiven) {
  const CGBLOCK block(0, CGBLOCK::bus_event_group, 7, 500, 0, 0, 0, 10,
                      CGBLOCK::CG_PATHSEPARATOR_POINT, 12, 1);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("CG", 104, 6)
                                   .links({0, 500, 0, 0, 0, 0})
                                   .u64(7)
                                   .u64(10)
                                   .u16(2)
                                   .u16(46)
                                   .zeros(4)
                                   .u32(12)
                                   .u32(1));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(CGBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(CGBLOCK, WritesExtremeValues) {
  CGBLOCK block(INT64_MAX, static_cast<CGBLOCK::CG_FLAGS_t>(0x1FFFF), UINT64_MAX, INT64_MIN, -1,
                INT64_MAX, INT64_MIN, UINT64_MAX, static_cast<CGBLOCK::CG_PATHSEPARATOR_t>(0xFFFF),
                UINT32_MAX, UINT32_MAX);
  block.setComment(-1);
  fillBytes(block.header.reserved, 255);
  fillBytes(block.cg_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CG")
                                   .u32(UINT32_MAX)
                                   .u64(104)
                                   .u64(6)
                                   .links({INT64_MAX, INT64_MIN, -1, INT64_MAX, INT64_MIN, -1})
                                   .text(std::string(32, '\xFF')));
}

TEST(CGBLOCK, WritesTheHeaderAsStoredAndAllLinksOfTheList) {
  CGBLOCK block;
  block.header.length = 9999;
  block.header.link_count = 3;
  block.links = {1, 2, 3, 4, 5, 6, 7};
  EXPECT_BYTES(written(block),
               Bytes().header("CG", 9999, 3).links({1, 2, 3, 4, 5, 6, 7}).zeros(32));
}

TEST(CGBLOCK, SetupLeavesHeaderCommentAndReservedBytes) {
  CGBLOCK block = distinctBlock();
  block.header.length = 1111;
  block.header.link_count = 2222;
  block.setup(1, CGBLOCK::vlsd_channel_group, 2, 3, 4, 5, 6, 7, CGBLOCK::CG_PATHSEPARATOR_SLASH, 8,
              9);
  EXPECT_BYTES(written(block), Bytes()
                                   .text("##CG")
                                   .u8s({1, 2, 3, 4})
                                   .u64(1111)
                                   .u64(2222)
                                   .links({1, 3, 4, 5, 6, 600})
                                   .u64(2)
                                   .u64(7)
                                   .u16(1)
                                   .u16(47)
                                   .u8s({11, 12, 13, 14})
                                   .u32(8)
                                   .u32(9));
}

TEST(CGBLOCK, SetupWorksOnFiveLinks) {
  CGBLOCK block;
  block.links.resize(5);
  block.setup(1, CGBLOCK::no_flag, 0, 2, 3, 4, 5, 0, CGBLOCK::CG_PATHSEPARATOR_NONE, 0, 0);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{1, 2, 3, 4, 5}));
}

TEST(CGBLOCK, LinkAccessorsWorkOnTheirLink) { expectLinkAccessors(CGBLOCK(), link_accessors); }

TEST(CGBLOCK, NilAndMissingLinksLeadToOffsetZero) {
  expectNilAndMissingLinks(CGBLOCK(), link_accessors);
}

TEST(CGBLOCK, FlagAccessorsWorkOnTheirBit) {
  expectFlagAccessors<CGBLOCK, UINT16>(
      CGBLOCK(), &CGBLOCK::cg_flags,
      {{1, &CGBLOCK::setVLSDChannelGroup, &CGBLOCK::isVLSDChannelGroup},
       {2, &CGBLOCK::setBusEventGroup, &CGBLOCK::isBusEventGroup},
       {4, &CGBLOCK::setPlainBusEventChannelGroup, &CGBLOCK::isPlainBusEventChannelGroup}});
}

TEST(CGBLOCK, ValueAccessors) {
  CGBLOCK block;
  block.setRecordId(UINT64_MAX);
  block.setCycleCount(UINT64_MAX - 1);
  block.setPathSeparator(CGBLOCK::CG_PATHSEPARATOR_SLASH);
  block.setDataBytes(UINT32_MAX);
  block.setInvalidBytes(UINT32_MAX - 1);
  EXPECT_EQ(block.cg_record_id, UINT64_MAX);
  EXPECT_EQ(block.cg_cycle_count, UINT64_MAX - 1);
  EXPECT_EQ(block.cg_path_separator, 47);
  EXPECT_EQ(block.cg_data_bytes, UINT32_MAX);
  EXPECT_EQ(block.cg_inval_bytes, UINT32_MAX - 1);
  EXPECT_EQ(block.getRecordId(), UINT64_MAX);
  EXPECT_EQ(block.getCycleCount(), UINT64_MAX - 1);
  EXPECT_EQ(block.getPathSeparator(), CGBLOCK::CG_PATHSEPARATOR_SLASH);
  EXPECT_EQ(block.getDataBytes(), UINT32_MAX);
  EXPECT_EQ(block.getInvalidBytes(), UINT32_MAX - 1);
}

TEST(CGBLOCK, SizeAndSchemaName) {
  CGBLOCK block;
  block.header.length = 9999;
  EXPECT_EQ(block.getSize(), 104U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "cg_comment.xsd");
}

TEST(CGBLOCK, CycleCountIsCountedUp) {
  CGBLOCK block;
  block.setCycleCount(10);
  block.incCycleCount();
  EXPECT_EQ(block.getCycleCount(), 11U);
  block.setCycleCount(UINT64_MAX);
  block.incCycleCount();
  EXPECT_EQ(block.getCycleCount(), 0U);
}

TEST(CGBLOCK, CopiesAreIndependent) {
  CGBLOCK block = distinctBlock();
  const CGBLOCK copy = block;
  CGBLOCK assigned;
  assigned = block;
  block.setup(1, CGBLOCK::no_flag, 2, 3, 4, 5, 6, 7, CGBLOCK::CG_PATHSEPARATOR_NONE, 8, 9);
  block.header.length = 0;
  EXPECT_BYTES(written(copy), distinctBytes());
  EXPECT_BYTES(written(assigned), distinctBytes());
}

TEST(CGBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== CGBLOCK ===================\n"
            "block size = 104\n"
            "next channel group block = 100\n"
            "first channel block = 200\n"
            "acq name tx block = 300\n"
            "acq source si block = 400\n"
            "first sr block = 500\n"
            "comment block = 600\n"
            "record id = 2387509390608836392\n"
            "cycle cnt = 3544952156018063160\n"
            "flags : vlsd(0), busEvent(1), plainBusEventChannel(1)\n"
            "path separator = 20818\n"
            "size of data records = 1633837924\n"
            "size of invalid bytes = 1903326068\n"
            "[DEBUG] ==================== End of CGBLOCK ===================\n");
}

TEST(CGBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  CGBLOCK block;
  block.header.length = 9999;
  block.links = {-1, INT64_MIN};
  block.cg_record_id = UINT64_MAX;
  block.cg_flags = 5;
  block.cg_path_separator = 46;
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== CGBLOCK ===================\n"
            "block size = 104\n"
            "next channel group block = -1\n"
            "first channel block = -9223372036854775808\n"
            "acq name tx block = 0\n"
            "acq source si block = 0\n"
            "first sr block = 0\n"
            "comment block = 0\n"
            "record id = 18446744073709551615\n"
            "cycle cnt = 0\n"
            "flags : vlsd(1), busEvent(0), plainBusEventChannel(1)\n"
            "path separator = 46\n"
            "size of data records = 0\n"
            "size of invalid bytes = 0\n"
            "[DEBUG] ==================== End of CGBLOCK ===================\n");
}

TEST(CGBLOCK, DumpFollowsTheFormatOfTheStream) {
  CGBLOCK block(16, CGBLOCK::bus_event_group, 17, 18, 19, 20, 21, 22,
                CGBLOCK::CG_PATHSEPARATOR_POINT, 23, 24);
  std::ostringstream os;
  os << std::boolalpha << std::hex;
  block.print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== CGBLOCK ===================\n"
            "block size = 68\n"
            "next channel group block = 10\n"
            "first channel block = 12\n"
            "acq name tx block = 13\n"
            "acq source si block = 14\n"
            "first sr block = 15\n"
            "comment block = 0\n"
            "record id = 11\n"
            "cycle cnt = 16\n"
            "flags : vlsd(false), busEvent(true), plainBusEventChannel(false)\n"
            "path separator = 2e\n"
            "size of data records = 17\n"
            "size of invalid bytes = 18\n"
            "[DEBUG] ==================== End of CGBLOCK ===================\n");
}

TEST(CGBLOCK, ReaderAppendsTheLinksBehindTheNilOnes) {
  const auto block = readBack<CGBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 104U);
  EXPECT_EQ(block.header.link_count, 6U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 0, 0, 0, 100, 200, 300, 400, 500, 600}));
  EXPECT_EQ(block.getNextCgblock(), 0);
  EXPECT_EQ(block.getComment(), 0);
  EXPECT_EQ(block.cg_record_id, 0x2122232425262728U);
  EXPECT_EQ(block.cg_cycle_count, 0x3132333435363738U);
  EXPECT_EQ(block.cg_flags, 0x4146);
  EXPECT_EQ(block.cg_path_separator, 0x5152);
  EXPECT_EQ(block.cg_data_bytes, 0x61626364U);
  EXPECT_EQ(block.cg_inval_bytes, 0x71727374U);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.cg_reserved), (std::array<UINT8, 4>{}));
}

TEST(CGBLOCK, DumpOfABlockThatWasReadShowsTheNilLinks) {
  EXPECT_EQ(dumped(readBack<CGBLOCK>(distinctBytes())),
            "[DEBUG] ==================== CGBLOCK ===================\n"
            "block size = 104\n"
            "next channel group block = 0\n"
            "first channel block = 0\n"
            "acq name tx block = 0\n"
            "acq source si block = 0\n"
            "first sr block = 0\n"
            "comment block = 0\n"
            "record id = 2387509390608836392\n"
            "cycle cnt = 3544952156018063160\n"
            "flags : vlsd(0), busEvent(1), plainBusEventChannel(1)\n"
            "path separator = 20818\n"
            "size of data records = 1633837924\n"
            "size of invalid bytes = 1903326068\n"
            "[DEBUG] ==================== End of CGBLOCK ===================\n");
}

TEST(CGBLOCK, WritingABlockThatWasReadWritesTwelveLinks) {
  const std::string bytes = written(readBack<CGBLOCK>(distinctBytes()));
  EXPECT_BYTES(bytes, distinctBytesWrittenAfterReading());
  EXPECT_EQ(bytes.size(), 152U);
}

TEST(CGBLOCK, ReadsAtThePositionOfTheStream) {
  std::istringstream is("in front" + distinctBytes() + "behind");
  is.seekg(8);
  const CGBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 8 + 104);
  EXPECT_BYTES(written(block), distinctBytesWrittenAfterReading());
}

TEST(CGBLOCK, CutStreamBecomesBad) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const CGBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), defaultBytes());
  });
}

TEST(CGBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::eofbit, std::ios_base::badbit}) {
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const CGBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), defaultBytes());
  }
}

TEST(CGBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(written(readBack<CGBLOCK>(bytes)), distinctBytesWrittenAfterReading());
}

TEST(CGBLOCK, AnyLengthIsKeptAndNotUsed) {
  for (const std::uint64_t length :
       {std::uint64_t{0}, std::uint64_t{23}, std::uint64_t{105}, UINT64_MAX}) {
    SCOPED_TRACE(length);
    const auto block = readBack<CGBLOCK>(Bytes()
                                             .header("CG", length, 6)
                                             .links({100, 200, 300, 400, 500, 600})
                                             .text(distinctFields({0, 0, 0, 0})));
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CG", length, 6)
                                     .zeros(48)
                                     .links({100, 200, 300, 400, 500, 600})
                                     .text(distinctFields({0, 0, 0, 0})));
  }
}

TEST(CGBLOCK, FieldsFollowTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 6; ++link_count) {
    SCOPED_TRACE(link_count);
    Bytes links;
    for (unsigned i = 0; i < link_count; ++i) {
      links.i64(1000 + i);
    }
    const auto block = readBack<CGBLOCK>(Bytes()
                                             .header("CG", 77, link_count)
                                             .text(links)
                                             .text(distinctFields({21, 22, 23, 24}))
                                             .text(std::string(48 - 8 * link_count, '\x99')));
    EXPECT_BYTES(written(block), Bytes()
                                     .header("CG", 77, link_count)
                                     .zeros(48)
                                     .text(links)
                                     .text(distinctFields({0, 0, 0, 0})));
  }
}

TEST(CGBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  constexpr std::uint64_t wraps_to_nothing = std::uint64_t{1} << 61U;
  for (const std::uint64_t link_count : {std::uint64_t{7}, std::uint64_t{1} << 32U,
                                         wraps_to_nothing, wraps_to_nothing + 6, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(Bytes().header("CG", 88, link_count).text(std::string(80, '\x99')).str());
    const CGBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().header("CG", 88, link_count).zeros(48).zeros(32));
  }
}

}  // namespace
