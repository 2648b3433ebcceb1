// What is told of the length of record ids without a look at records.

#include "printing/record_ids.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "drawn_file.h"
#include "printing/tree_text.h"
#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/small_file.h"

using namespace mdf_tests;

namespace {

/// The line of the first data group in a file's tree, from after its offset on.
std::string groupLine(const FileBuilder& builder, bool as_json = false) {
  const Dumped tree = drawn(builder.bytes(), [&](auto& file, auto& os, const auto& report) {
    mdf_tools::TreeOptions options;
    options.from = SmallFile::data_group;
    options.most_depth = 0;
    if (as_json) {
      mdf_tools::writeTreeAsJson(file, options, os, report);
    } else {
      mdf_tools::writeTree(file, options, os, report);
    }
  });
  return tree.output.substr(tree.output.find(as_json ? ",\"name\"" : ")") + 1);
}

/// The small file with a code for the length of record ids, and data as long as its two records of
/// 9 bytes are with ids of so many.
SmallFile fileWith(int code, std::size_t id_bytes) {
  SmallFile file;
  file.write(SmallFile::data_group + 56, Bytes().u8s({code}));
  file.replaceData(file.add("DT", {}, Bytes().zeros(2 * (9 + id_bytes))));
  return file;
}

TEST(RecordIds, NumbersOfBytesAreAsStated) {
  EXPECT_EQ(groupLine(fileWith(0, 0)), "\n");
  EXPECT_EQ(groupLine(fileWith(1, 1)), " 1 byte of record id\n");
  EXPECT_EQ(groupLine(fileWith(2, 2)), " 2 bytes of record id\n");
  EXPECT_EQ(groupLine(fileWith(8, 8)), " 8 bytes of record id\n");
}

TEST(RecordIds, CodeThreeIsFourBytes) {
  EXPECT_EQ(groupLine(fileWith(3, 4)), " 4 bytes of record id\n");
}

TEST(RecordIds, LengthOfTheDataTellsWhatAFourIs) {
  EXPECT_EQ(groupLine(fileWith(4, 4)), " 4 bytes of record id\n");
  EXPECT_EQ(groupLine(fileWith(4, 8)), " 8 bytes of record id\n");
}

TEST(RecordIds, AFourIsLeftOpenWhereLengthsDoNotTell) {
  const std::string open = " 4 or 8 bytes of record id\n";
  EXPECT_EQ(groupLine(fileWith(4, 5)), open);
  SmallFile empty;
  empty.write(SmallFile::data_group + 56, Bytes().u8(4));
  empty.setGroup({0, 9});
  empty.replaceData(0);
  EXPECT_EQ(groupLine(empty), open);
  SmallFile nowhere = fileWith(4, 8);
  nowhere.replaceData(99999);
  EXPECT_EQ(groupLine(nowhere), open);
}

TEST(RecordIds, ProgramsGetNoNumberWhereAFourIsLeftOpen) {
  EXPECT_EQ(groupLine(fileWith(4, 8), true), "\"name\":\"\",\"record_id_bytes\":8}\n");
  EXPECT_EQ(groupLine(fileWith(4, 5), true),
            "\"name\":\"\",\"record_id\":\"4 or 8 bytes of record id\"}\n");
}

TEST(RecordIds, AnIdBeyondFourBytesTellsWhatAFourIs) {
  SmallFile file = fileWith(4, 5);
  file.link(SmallFile::group, 0, file.addChannelGroup({0, 1, 0, 1ULL << 32U}));
  EXPECT_EQ(groupLine(file), " 8 bytes of record id\n");
}

TEST(RecordIds, DataInListsZippedOrNotOfSeveralGroups) {
  SmallFile file = fileWith(4, 0);
  // A value of 5 bytes with its length, among two records of 9 bytes.
  file.link(SmallFile::group, 0, file.addChannelGroup({1, 9, 0, 2, 1}));
  const auto zipped = file.add("DZ", {}, zippedFields(40, zippedZeros(40)));
  const auto plain = file.add("DT", {}, Bytes().zeros(11));
  const auto second = file.add("DL", {0, plain}, Bytes().zeros(8).u64(40));
  const auto first = file.add("DL", {second, zipped, 0}, Bytes().zeros(8).zeros(16));
  file.link(SmallFile::data_group, 2, file.add("HL", {first}, Bytes().zeros(8)));
  EXPECT_EQ(groupLine(file), " 8 bytes of record id\n");
}

TEST(RecordIds, VeryLongOrEndlessChainsLeaveAFourOpen) {
  const std::string open = " 4 or 8 bytes of record id\n";
  SmallFile groups = fileWith(4, 8);
  groups.link(SmallFile::group, 0, SmallFile::group);
  EXPECT_EQ(groupLine(groups), open);
  SmallFile lists = fileWith(4, 8);
  const auto list = lists.add("DL", {0, 0}, Bytes().zeros(16));
  lists.link(list, 0, list);
  lists.replaceData(list);
  EXPECT_EQ(groupLine(lists), open);
  SmallFile list_of_many = fileWith(4, 8);
  list_of_many.replaceData(
      list_of_many.add("DL", std::vector<std::uint64_t>(300, 0), Bytes().zeros(16)));
  EXPECT_EQ(groupLine(list_of_many), open);
}

TEST(RecordIds, NumbersThatLieLeaveAFourOpen) {
  SmallFile file = fileWith(4, 8);
  file.setGroup({1ULL << 63U, UINT32_MAX, UINT32_MAX});
  EXPECT_EQ(groupLine(file), " 4 or 8 bytes of record id\n");
}

}  // namespace
