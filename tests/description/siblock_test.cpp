#include <gtest/gtest.h>

#include <array>

#include "mdf_v4_10.h"
#include "support/blocks.h"
#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_v4_10;

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

TEST(SIBLOCK, DefaultBlockIsAnotherSourceWithoutABus) {
  EXPECT_BYTES(written(SIBLOCK()), header("SI", 56, 3) + zeros(32));
}

TEST(SIBLOCK, WritesWhatTheConstructorWasGiven) {
  EXPECT_BYTES(
      written(SIBLOCK(SIBLOCK::SI_SOURCETYPE_BUS, SIBLOCK::SI_BUSTYPE_CAN, true, 1000, 2000)),
      header("SI", 56, 3) + links(1000, 2000, 0) + u8(2, 2, 1) + zeros(5));
}

TEST(SIBLOCK, ConstructorMakesNoToolASimulatedSource) {
  EXPECT_BYTES(written(SIBLOCK(SIBLOCK::SI_SOURCETYPE_TOOL, SIBLOCK::SI_BUSTYPE_NONE, true, 0, 0)),
               header("SI", 56, 3) + zeros(24) + u8(4, 0, 0) + zeros(5));
}

TEST(SIBLOCK, ConstructorMakesEverySourceButAToolASimulatedOne) {
  for (const auto type : all_source_types_but_tool) {
    SCOPED_TRACE(type);
    EXPECT_EQ(SIBLOCK(type, SIBLOCK::SI_BUSTYPE_NONE, true, 0, 0).si_flags, 1);
    EXPECT_EQ(SIBLOCK(type, SIBLOCK::SI_BUSTYPE_NONE, false, 0, 0).si_flags, 0);
  }
}

TEST(SIBLOCK, WritesEveryFieldAndTheHeaderAndTheLinksAsTheyAreStored) {
  SIBLOCK block = distinctBlock();
  block.header.length = 9999;
  block.header.link_count = 77;
  block.links.pop_back();
  EXPECT_BYTES(written(block), header("SI", 9999, 77, {1, 2, 3, 4}) + links(100, 200) +
                                   u8(5, 7, 0xA3, 11, 12, 13, 14, 15));
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

TEST(SIBLOCK, ChangingTheSourceTypeLeavesTheSimulatedFlag) {
  SIBLOCK block(SIBLOCK::SI_SOURCETYPE_ECU, SIBLOCK::SI_BUSTYPE_CAN, true, 0, 0);
  block.setSourceType(SIBLOCK::SI_SOURCETYPE_TOOL);
  EXPECT_TRUE(block.isSimulatedSource());
  EXPECT_BYTES(written(block), header("SI", 56, 3) + zeros(24) + u8(4, 2, 1) + zeros(5));

  SIBLOCK tool(SIBLOCK::SI_SOURCETYPE_TOOL, SIBLOCK::SI_BUSTYPE_CAN, true, 0, 0);
  tool.setSourceType(SIBLOCK::SI_SOURCETYPE_ECU);
  EXPECT_FALSE(tool.isSimulatedSource());
}

TEST(SIBLOCK, Dump) {
  EXPECT_EQ(dumped(distinctBlock()), inBanners("SIBLOCK",
                                               "block size = 56\n"
                                               "tx name block = 100\n"
                                               "tx path block = 200\n"
                                               "comment block = 300\n"
                                               "source type = 5\n"
                                               "bus type = 7\n"
                                               "simulated = 1\n"));
}

TEST(SIBLOCK, DumpShowsTheConstantSizeAndZeroForMissingLinks) {
  SIBLOCK block;
  block.setNameTxblock(-1);
  block.si_type = 255;
  block.si_flags = 0xFE;
  block.header.length = 9999;
  block.links.resize(1);
  EXPECT_EQ(shownValues(block), "56 -1 0 0 255 0 0");
  EXPECT_EQ(block.getPathTxblock(), 0);
  EXPECT_EQ(block.getComment(), 0);
}

TEST(SIBLOCK, DumpShowsTheSimulatedFlagInTheStreamsFormat) {
  EXPECT_EQ(shownValues(distinctBlock(), std::boolalpha), "56 100 200 300 5 7 true");
}

}  // namespace
