// What the tree tells of the length of record ids.

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

/// Two groups with records of 9 bytes and ids of so many, one record of each.
SmallFile fileWithIds(std::size_t id_bytes) {
  SmallFile file;
  file.write(SmallFile::data_group + 56, Bytes().u8(4));
  file.setGroup({1, 9, 0, 1});
  file.link(SmallFile::group, 0, file.addChannelGroup({1, 9, 0, 2}));
  const auto id = [&](std::uint64_t number) {
    return Bytes().u64(number).str().substr(0, id_bytes);
  };
  file.replaceData(file.addData(Bytes().text(id(2)).zeros(9).text(id(1)).zeros(9)));
  return file;
}

TEST(RecordIds, RecordsTellWhatAFourIs) {
  EXPECT_EQ(groupLine(fileWithIds(4)), " 4 bytes of record id\n");
  EXPECT_EQ(groupLine(fileWithIds(8)), " 8 bytes of record id\n");
  EXPECT_EQ(groupLine(fileWithIds(8), true), "\"name\":\"\",\"record_id_bytes\":8}\n");
}

TEST(RecordIds, AFourIsFourBytesWhereRecordsDoNotTell) {
  const std::string four = " 4 bytes of record id\n";
  EXPECT_EQ(groupLine(fileWith(4, 5)), four);
  SmallFile empty = fileWith(4, 8);
  empty.replaceData(0);
  EXPECT_EQ(groupLine(empty), four);
  SmallFile nowhere = fileWith(4, 8);
  nowhere.replaceData(99999);
  EXPECT_EQ(groupLine(nowhere), four);
  SmallFile lists = fileWith(4, 8);
  const auto list = lists.add("DL", {0, 0}, Bytes().zeros(16));
  lists.link(list, 0, list);
  lists.replaceData(list);
  EXPECT_EQ(groupLine(lists), four);
}

}  // namespace
