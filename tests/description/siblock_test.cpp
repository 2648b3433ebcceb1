#include <gtest/gtest.h>

#include <array>
#include <sstream>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"
#include "support/fields.h"

using namespace mdf_tests;
using mdf_v4_10::LINK;
using mdf_v4_10::SIBLOCK;
using mdf_v4_10::UINT8;

namespace {

constexpr std::array<SIBLOCK::MDF_SI_SOURCETYPE_t, 5> all_source_types_but_tool = {
    SIBLOCK::SI_SOURCETYPE_OTHER, SIBLOCK::SI_SOURCETYPE_ECU, SIBLOCK::SI_SOURCETYPE_BUS,
    SIBLOCK::SI_SOURCETYPE_IO, SIBLOCK::SI_SOURCETYPE_USER};

SIBLOCK distinctBlock() {
  SIBLOCK block(SIBLOCK::SI_SOURCETYPE_USER, SIBLOCK::SI_BUSTYPE_ETHERNET, true, 100, 200);
  block.setComment(300);
  block.si_flags = 0xA3;
  setBytes(block.header.reserved, {1, 2, 3, 4});
  setBytes(block.si_reserved, {11, 12, 13, 14, 15});
  return block;
}

std::string distinctBytes() {
  return Bytes()
      .text("##SI")
      .u8s({1, 2, 3, 4})
      .u64(56)
      .u64(3)
      .links({100, 200, 300})
      .u8s({5, 7, 0xA3})
      .u8s({11, 12, 13, 14, 15});
}

TEST(SIBLOCK, Constants) {
  EXPECT_EQ(SIBLOCK::SIBLOCK_SIZE, 56U);
  EXPECT_EQ(SIBLOCK::MDF_SI_ID, 0x4953);
}

TEST(SIBLOCK, EnumerationValues) {
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_OTHER, 0);
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_ECU, 1);
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_BUS, 2);
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_IO, 3);
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_TOOL, 4);
  EXPECT_EQ(SIBLOCK::SI_SOURCETYPE_USER, 5);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_NONE, 0);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_OTHER, 1);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_CAN, 2);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_LIN, 3);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_MOST, 4);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_FLEXRAY, 5);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_K_LINE, 6);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_ETHERNET, 7);
  EXPECT_EQ(SIBLOCK::SI_BUSTYPE_USB, 8);
  EXPECT_EQ(SIBLOCK::simulated_source, 1);
  EXPECT_EQ(SIBLOCK::si_tx_name, 0);
  EXPECT_EQ(SIBLOCK::si_tx_path, 1);
  EXPECT_EQ(SIBLOCK::si_md_comment, 2);
  EXPECT_EQ(SIBLOCK::SI_BLOCK_LINKS_NUM, 3);
}

TEST(SIBLOCK, FieldsStandWhereTheLayoutSays) {
  EXPECT_EQ(layoutOf(mdf_v4_10::detail::siblock_fields, 48),
            "48 1 si_type\n"
            "49 1 si_bus_type\n"
            "50 1 si_flags\n"
            "51 5 si_reserved\n");
}

TEST(SIBLOCK, DefaultBlockIsAnotherSourceWithoutABus) {
  const SIBLOCK block;
  EXPECT_BYTES(written(block), Bytes().header("SI", 56, 3).zeros(32));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(SIBLOCK, WritesWhatTheConstructorWasGiven) {
  const SIBLOCK block(SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN, true, 1000, 2000);
  EXPECT_BYTES(written(block),
               Bytes().header("SI", 56, 3).links({1000, 2000, 0}).u8s({2, 2, 1}).zeros(5));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(SIBLOCK, ConstructorLeavesASourceUnsimulatedOnRequest) {
  EXPECT_BYTES(
      written(SIBLOCK(SIBLOCK::SI_SOURCETYPE_ECU, SIBLOCK::SI_BUSTYPE_LIN, false, 1000, 2000)),
      Bytes().header("SI", 56, 3).links({1000, 2000, 0}).u8s({1, 3, 0}).zeros(5));
}

TEST(SIBLOCK, ConstructorMakesNoToolASimulatedSource) {
  EXPECT_BYTES(written(SIBLOCK(SIBLOCK::SI_SOURCETYPE_TOOL, SIBLOCK::SI_BUSTYPE_NONE, true, 0, 0)),
               Bytes().header("SI", 56, 3).zeros(24).u8s({4, 0, 0}).zeros(5));
}

TEST(SIBLOCK, ConstructorMakesEverySourceButAToolASimulatedOne) {
  for (const auto type : all_source_types_but_tool) {
    SCOPED_TRACE(type);
    EXPECT_EQ(SIBLOCK(type, SIBLOCK::SI_BUSTYPE_NONE, true, 0, 0).si_flags, 1);
    EXPECT_EQ(SIBLOCK(type, SIBLOCK::SI_BUSTYPE_NONE, false, 0, 0).si_flags, 0);
  }
}

TEST(SIBLOCK, WritesEveryField) { EXPECT_BYTES(written(distinctBlock()), distinctBytes()); }

TEST(SIBLOCK, WritesExtremeValues) {
  SIBLOCK block(static_cast<SIBLOCK::MDF_SI_SOURCETYPE_t>(0x1FF),
                static_cast<SIBLOCK::MDF_SI_BUSTYPE_t>(0x2FE), true, INT64_MAX, INT64_MIN);
  block.setComment(-1);
  block.si_flags = 255;
  fillBytes(block.si_reserved, 255);
  EXPECT_BYTES(written(block), Bytes()
                                   .header("SI", 56, 3)
                                   .links({INT64_MAX, INT64_MIN, -1})
                                   .u8s({255, 254, 255, 255, 255, 255, 255, 255}));
}

TEST(SIBLOCK, WritesTheHeaderAndTheLinksAsTheyAreStored) {
  SIBLOCK block(SIBLOCK::SI_SOURCETYPE_IO, SIBLOCK::SI_BUSTYPE_USB, true, 100, 200);
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links.pop_back();
  EXPECT_BYTES(written(block),
               Bytes().header("SI", 9999, 77).links({100, 200}).u8s({3, 8, 1}).zeros(5));
}

TEST(SIBLOCK, Accessors) {
  SIBLOCK block(SIBLOCK::SI_SOURCETYPE_ECU, SIBLOCK::SI_BUSTYPE_MOST, false, 1, 2);
  EXPECT_EQ(block.getNameTxblock(), 1);
  EXPECT_EQ(block.getPathTxblock(), 2);
  EXPECT_EQ(block.getComment(), 0);
  EXPECT_EQ(block.getSourceType(), SIBLOCK::SI_SOURCETYPE_ECU);
  EXPECT_EQ(block.getBusType(), SIBLOCK::SI_BUSTYPE_MOST);
  EXPECT_FALSE(block.isSimulatedSource());
  block.setNameTxblock(11);
  block.setPathTxblock(12);
  block.setComment(13);
  block.setSourceType(SIBLOCK::SI_SOURCETYPE_IO);
  block.setBusType(SIBLOCK::SI_BUSTYPE_K_LINE);
  block.setSimulatedSource(true);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{11, 12, 13}));
  EXPECT_EQ(block.si_type, 3);
  EXPECT_EQ(block.si_bus_type, 6);
  EXPECT_EQ(block.si_flags, 1);
  EXPECT_EQ(block.getNameTxblock(), 11);
  EXPECT_EQ(block.getPathTxblock(), 12);
  EXPECT_EQ(block.getComment(), 13);
  EXPECT_EQ(block.getSourceType(), SIBLOCK::SI_SOURCETYPE_IO);
  EXPECT_EQ(block.getBusType(), SIBLOCK::SI_BUSTYPE_K_LINE);
  EXPECT_TRUE(block.isSimulatedSource());
  EXPECT_EQ(block.getSize(), 56U);
  EXPECT_EQ(block.getValidMDXMLSchemaName(), "si_comment.xsd");
}

TEST(SIBLOCK, SizeIsConstantWhateverTheHeaderSays) {
  SIBLOCK block;
  block.header.length = 9999;
  block.links.resize(10);
  EXPECT_EQ(block.getSize(), 56U);
}

TEST(SIBLOCK, SimulatedFlagIsSetAndClearedForEverySourceButATool) {
  for (const auto type : all_source_types_but_tool) {
    SCOPED_TRACE(type);
    SIBLOCK block;
    block.setSourceType(type);
    block.setSimulatedSource(true);
    EXPECT_EQ(block.si_flags, 1);
    EXPECT_TRUE(block.isSimulatedSource());
    block.setSimulatedSource(false);
    EXPECT_EQ(block.si_flags, 0);
    EXPECT_FALSE(block.isSimulatedSource());
  }
}

TEST(SIBLOCK, SettingTheSimulatedFlagOfAToolClearsIt) {
  for (const bool set : {true, false}) {
    SCOPED_TRACE(set);
    SIBLOCK block;
    block.setSourceType(SIBLOCK::SI_SOURCETYPE_TOOL);
    block.si_flags = 1;
    block.setSimulatedSource(set);
    EXPECT_EQ(block.si_flags, 0);
    EXPECT_FALSE(block.isSimulatedSource());
  }
}

TEST(SIBLOCK, SettingTheSimulatedFlagTouchesOnlyItsBit) {
  SIBLOCK block;
  block.setSourceType(SIBLOCK::SI_SOURCETYPE_ECU);
  block.si_flags = 0xFE;
  EXPECT_FALSE(block.isSimulatedSource());
  block.setSimulatedSource(true);
  EXPECT_EQ(block.si_flags, 0xFF);
  block.setSimulatedSource(false);
  EXPECT_EQ(block.si_flags, 0xFE);
  block.si_flags = 0xFF;
  block.setSourceType(SIBLOCK::SI_SOURCETYPE_TOOL);
  block.setSimulatedSource(true);
  EXPECT_EQ(block.si_flags, 0xFE);
}

TEST(SIBLOCK, ChangingTheSourceTypeLeavesTheSimulatedFlag) {
  SIBLOCK block(SIBLOCK::SI_SOURCETYPE_ECU, SIBLOCK::SI_BUSTYPE_CAN, true, 0, 0);
  block.setSourceType(SIBLOCK::SI_SOURCETYPE_TOOL);
  EXPECT_TRUE(block.isSimulatedSource());
  EXPECT_BYTES(written(block), Bytes().header("SI", 56, 3).zeros(24).u8s({4, 2, 1}).zeros(5));

  SIBLOCK tool(SIBLOCK::SI_SOURCETYPE_TOOL, SIBLOCK::SI_BUSTYPE_CAN, true, 0, 0);
  tool.setSourceType(SIBLOCK::SI_SOURCETYPE_ECU);
  EXPECT_FALSE(tool.isSimulatedSource());
}

TEST(SIBLOCK, FollowsItsLinks) {
  const LinkTargetFile file;
  const SIBLOCK block = distinctBlock();
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNameTxblock(ifs); }, 100);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgPathTxblock(ifs); }, 200);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgCommentblock(ifs); }, 300);
}

TEST(SIBLOCK, FollowingANilLinkLeadsToOffsetZero) {
  const LinkTargetFile file;
  const SIBLOCK block;
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgNameTxblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgPathTxblock(ifs); }, 0);
  file.expectFollows([&](std::ifstream& ifs) { return block.seekgCommentblock(ifs); }, 0);
}

TEST(SIBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()),
            "[DEBUG] ==================== SIBLOCK ===================\n"
            "block size = 56\n"
            "tx name block = 100\n"
            "tx path block = 200\n"
            "comment block = 300\n"
            "source type = 5\n"
            "bus type = 7\n"
            "simulated = 1\n"
            "[DEBUG] ==================== End of SIBLOCK ===================\n");
}

TEST(SIBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  SIBLOCK block;
  block.setNameTxblock(-1);
  block.si_type = 255;
  block.si_flags = 0xFE;
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(dumped(block),
            "[DEBUG] ==================== SIBLOCK ===================\n"
            "block size = 56\n"
            "tx name block = -1\n"
            "tx path block = 0\n"
            "comment block = 0\n"
            "source type = 255\n"
            "bus type = 0\n"
            "simulated = 0\n"
            "[DEBUG] ==================== End of SIBLOCK ===================\n");
  EXPECT_EQ(block.getPathTxblock(), 0);
  EXPECT_EQ(block.getComment(), 0);
}

TEST(SIBLOCK, DumpShowsTheSimulatedFlagInTheStreamsFormat) {
  std::ostringstream os;
  os << std::boolalpha;
  distinctBlock().print(os);
  EXPECT_EQ(os.str(),
            "[DEBUG] ==================== SIBLOCK ===================\n"
            "block size = 56\n"
            "tx name block = 100\n"
            "tx path block = 200\n"
            "comment block = 300\n"
            "source type = 5\n"
            "bus type = 7\n"
            "simulated = true\n"
            "[DEBUG] ==================== End of SIBLOCK ===================\n");
}

TEST(SIBLOCK, ReaderAppendsTheLinksBehindTheNilOnes) {
  const auto block = readBack<SIBLOCK>(distinctBytes());
  EXPECT_EQ(block.header.length, 56U);
  EXPECT_EQ(block.header.link_count, 3U);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 100, 200, 300}));
  EXPECT_EQ(block.getNameTxblock(), 0);
  EXPECT_EQ(block.getPathTxblock(), 0);
  EXPECT_EQ(block.getComment(), 0);
  EXPECT_EQ(block.si_type, 5);
  EXPECT_EQ(block.si_bus_type, 7);
  EXPECT_EQ(block.si_flags, 0xA3);
  EXPECT_EQ(asArray(block.header.reserved), (std::array<UINT8, 4>{}));
  EXPECT_EQ(asArray(block.si_reserved), (std::array<UINT8, 5>{}));
  EXPECT_EQ(block.getPadding(), 0);
}

TEST(SIBLOCK, ReaderKeepsTheFlagOfASimulatedTool) {
  const auto block =
      readBack<SIBLOCK>(Bytes().header("SI", 56, 3).zeros(24).u8s({4, 0, 1}).zeros(5));
  EXPECT_EQ(block.getSourceType(), SIBLOCK::SI_SOURCETYPE_TOOL);
  EXPECT_EQ(block.si_flags, 1);
  EXPECT_TRUE(block.isSimulatedSource());
}

TEST(SIBLOCK, DumpOfABlockThatWasReadShowsTheNilLinks) {
  EXPECT_EQ(dumped(readBack<SIBLOCK>(distinctBytes())),
            "[DEBUG] ==================== SIBLOCK ===================\n"
            "block size = 56\n"
            "tx name block = 0\n"
            "tx path block = 0\n"
            "comment block = 0\n"
            "source type = 5\n"
            "bus type = 7\n"
            "simulated = 1\n"
            "[DEBUG] ==================== End of SIBLOCK ===================\n");
}

TEST(SIBLOCK, WritingABlockThatWasReadWritesSixLinks) {
  const auto block =
      readBack<SIBLOCK>(Bytes().header("SI", 56, 3).links({1000, 2000, 0}).u8s({2, 2, 1}).zeros(5));
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 1000, 2000, 0}));
  EXPECT_EQ(block.getNameTxblock(), 0);
  const std::string bytes = written(block);
  EXPECT_EQ(bytes.size(), 80U);
  EXPECT_BYTES(bytes,
               Bytes().header("SI", 56, 3).links({0, 0, 0, 1000, 2000, 0}).u8s({2, 2, 1}).zeros(5));
}

TEST(SIBLOCK, CutStreamBecomesBad) {
  forEachPrefix(distinctBytes(), [](std::istream& is, std::size_t) {
    const SIBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().header("SI", 56, 3).zeros(32));
  });
}

TEST(SIBLOCK, FailedStreamIsNotRead) {
  for (const auto state : {std::ios_base::failbit, std::ios_base::eofbit, std::ios_base::badbit}) {
    SCOPED_TRACE(state);
    std::istringstream is(distinctBytes());
    is.setstate(state);
    const SIBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().header("SI", 56, 3).zeros(32));
  }
}

TEST(SIBLOCK, ReaderStartsAtTheStreamsPositionAndStopsBehindTheBlock) {
  std::istringstream is("abc" + distinctBytes() + "xyz");
  is.seekg(3);
  const SIBLOCK block(is);
  EXPECT_EQ(is.rdstate(), state_good);
  EXPECT_EQ(static_cast<int>(is.tellg()), 3 + 56);
  EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 100, 200, 300}));
}

TEST(SIBLOCK, AnyIdentifierIsRead) {
  std::string bytes = distinctBytes();
  bytes.replace(0, 4, "XYZ!");
  EXPECT_BYTES(
      written(readBack<SIBLOCK>(bytes)),
      Bytes().header("SI", 56, 3).links({0, 0, 0, 100, 200, 300}).u8s({5, 7, 0xA3}).zeros(5));
}

TEST(SIBLOCK, AnyLengthIsRead) {
  for (const std::uint64_t length : {std::uint64_t{0}, std::uint64_t{23}, UINT64_MAX}) {
    SCOPED_TRACE(length);
    const auto block = readBack<SIBLOCK>(
        Bytes().header("SI", length, 3).links({100, 200, 300}).u8s({1, 2, 1}).zeros(5));
    EXPECT_EQ(block.header.length, length);
    EXPECT_EQ(linksOf(block), (std::vector<LINK>{0, 0, 0, 100, 200, 300}));
    EXPECT_EQ(block.si_type, 1);
  }
}

TEST(SIBLOCK, FieldsFollowTheLastLinkRead) {
  for (unsigned link_count = 0; link_count <= 3; ++link_count) {
    SCOPED_TRACE(link_count);
    std::string bytes = Bytes().header("SI", 77, link_count).zeros(32);
    bytes.replace(24 + 8 * link_count, 3, "\x09\x08\x07");
    const auto block = readBack<SIBLOCK>(bytes);
    EXPECT_EQ(block.si_type, 9);
    EXPECT_EQ(block.si_bus_type, 8);
    EXPECT_EQ(block.si_flags, 7);
    EXPECT_EQ(block.links.size(), 3 + link_count);
    EXPECT_EQ(block.header.length, 77U);
    EXPECT_EQ(block.header.link_count, link_count);
  }
}

TEST(SIBLOCK, LinkCountThatDoesNotFitMakesTheStreamBad) {
  for (const std::uint64_t link_count :
       {std::uint64_t{4}, std::uint64_t{5}, std::uint64_t{1} << 61U, UINT64_MAX}) {
    SCOPED_TRACE(link_count);
    std::istringstream is(
        Bytes().header("SI", 57, link_count).links({1, 2, 3}).u8s({1, 2, 1}).zeros(5).str());
    const SIBLOCK block(is);
    EXPECT_EQ(is.rdstate(), state_bad);
    EXPECT_BYTES(written(block), Bytes().header("SI", 57, link_count).zeros(32));
  }
}

}  // namespace
