// What the fields of one block say against its links and its length.

#include <gtest/gtest.h>

#include <string>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

std::string codesWithSpeed(const ChannelSpec& fields, const std::string& values = {}) {
  SmallFile file;
  if (!values.empty()) {
    file.link(SmallFile::speed, 5, file.add(values, {}, Bytes().zeros(32)));
  }
  file.setChannel(SmallFile::speed, fields);
  return checkedCodes(file.bytes());
}

TEST(FieldCheck, VirtualChannelsHaveNoBits) {
  EXPECT_EQ(codesWithSpeed({3, 2, 0, 0, 0, 0}), "");
  EXPECT_EQ(codesWithSpeed({6, 0, 0, 0, 0, 0}), "");
  for (const unsigned type : {0U, 1U, 2U, 4U, 5U}) {
    const std::string values = type == 1U ? "value-outside-signal-data 1\n" : "";
    EXPECT_EQ(codesWithSpeed({type, 2, 0, 0, 0, 0}), "channel-without-bits 1\n" + values) << type;
  }
}

TEST(FieldCheck, StructuresNeedNoBitsAndArraysDo) {
  SmallFile file;
  file.setChannel(SmallFile::speed, {0, 0, 10, 0, 8, 0});
  file.link(SmallFile::speed, 1,
            file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                     ChannelSpec{0, 0, 0, 0, 8, 8}.fields()));
  EXPECT_EQ(checkedCodes(file.bytes()), "");
  file.link(SmallFile::speed, 1, file.add("CA", {0}, Bytes().zeros(2).u16(1).zeros(12).u64(1)));
  EXPECT_EQ(checkedCodes(file.bytes()), "block-unreachable 1\nchannel-without-bits 1\n");
}

TEST(FieldCheck, SignalDataIsForChannelsOfVariableLength) {
  EXPECT_EQ(codesWithSpeed({1, 0, 0, 0, 8, 8}, "SD"), "");
  EXPECT_EQ(codesWithSpeed({0, 0, 0, 0, 8, 8}, "SD"), "signal-data-unused 1\n");
  EXPECT_EQ(codesWithSpeed({5, 0, 0, 0, 8, 8}, "SD"), "signal-data-unused 1\n");
}

/// Their own link count would put the fields where links stand.
TEST(FieldCheck, LinkCountOfAHierarchyCountsTheLinksOfItsElements) {
  SmallFile file;
  const auto hierarchy =
      file.add("CH", {0, 0, 0, 0, SmallFile::data_group, SmallFile::group, SmallFile::speed},
               Bytes().u32(1).zeros(4));
  file.link(FileBuilder::header, 2, hierarchy);
  EXPECT_EQ(checkedCodes(file.bytes()), "");
  file.write(hierarchy + 16, Bytes().u64(5));
  EXPECT_EQ(checkedCodes(file.bytes()), "link-count-wrong 1\n");
}

/// A chain of channels that runs into the channels of the next group, whose own link then leads to
/// what is there already.
TEST(FieldCheck, ChainOfChannelsThatRunsIntoTheNextGroup) {
  SmallFile file;
  const auto channel = file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0},
                                ChannelSpec{0, 0, 0, 0, 8, 8}.fields());
  const auto group = file.add("CG", {0, channel, 0, 0, 0, 0}, GroupSpec{0, 9}.fields());
  file.link(SmallFile::data_group, 0, file.add("DG", {0, group, 0, 0}, dataGroupFields(0)));
  EXPECT_EQ(checkedCodes(file.bytes()), "");
  file.link(SmallFile::speed, 0, channel);
  EXPECT_EQ(checkedCodes(file.bytes()), "chain-shared 1\n");
}

}  // namespace
