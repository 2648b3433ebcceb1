// Blocks whose links are gone come back to their places where there is but one.

#include "changing/relinking.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "repaired.h"
#include "tools/samples/sample_file.h"
#include "tools/sampling/exported.h"
#include "tools/support/data_blocks.h"

using namespace mdf_tests;

namespace {

constexpr std::uint64_t nowhere = 0x7777777777777777;

std::string at(std::uint64_t offset) {
  std::ostringstream text;
  text << offset << " (0x" << std::hex << offset << ')';
  return text.str();
}

/// A file with three data groups: two with a data block each, one with a data list; and what is
/// where in it.
struct Groups {
  SampleFile file;
  std::vector<std::uint64_t> data_groups;
  std::vector<std::uint64_t> data;
  std::vector<std::uint64_t> list;
  std::vector<std::uint64_t> channels;  ///< of the first group

  Groups() {
    for (std::size_t i = 0; i < 2; ++i) {
      data.push_back(file.addData(countingRecords(3 + i)));
      data_groups.push_back(
          file.addSortedGroup(countingGroup(3 + i), countingChannels(), data.back()));
      channels = i == 0 ? file.channels() : channels;
    }
    const std::string records = countingRecords(8);
    for (std::size_t i = 0; i < 4; ++i) {
      data.push_back(file.addData(records.substr(20 * i, 20)));
    }
    list.push_back(addOffsetList(file, {data[2], data[3], data[4]}, {0, 20, 40}));
    list.push_back(addOffsetList(file, {data[5]}, {60}));
    file.link(list[0], 0, list[1]);
    data_groups.push_back(file.addSortedGroup(countingGroup(8), countingChannels(), list[0]));
  }
};

/// The sentence that says that a block was put back.
std::string putBack(const std::string& type, std::uint64_t block, std::uint64_t bytes,
                    const std::string& role, const std::string& parent_type, std::uint64_t parent) {
  return "put back ##" + type + " at " + at(block) + " of " + std::to_string(bytes) +
         " bytes: " + role + " of ##" + parent_type + " at " + at(parent) + " leads to it\n";
}

/// Expects that a damaged file becomes one with the same values, and nothing is lost.
void expectBack(const SampleFile& file, std::uint64_t block, std::size_t link, std::uint64_t target,
                const std::string& sentences) {
  SampleFile damaged = file;
  damaged.link(block, link, target);
  const RepairedBytes repaired = repairedBytes(damaged.bytes());
  EXPECT_EQ(repaired.putBack(), sentences);
  EXPECT_EQ(repaired.lost(), "");
  EXPECT_EQ(csvOf(repaired.bytes).text, csvOf(file.bytes()).text);
}

TEST(Relinking, AppendsDataGroupsToTheirList) {
  const Groups groups;
  const auto& all = groups.data_groups;
  const std::string second = putBack("DG", all[1], 64, "dg_dg_next", "DG", all[0]);
  expectBack(groups.file, all[0], 0, nowhere, second);
  expectBack(groups.file, all[0], 0, 0, second);
  expectBack(groups.file, all[0], 0, all[0], second);
  expectBack(groups.file, FileBuilder::header, 0, nowhere,
             putBack("DG", all[0], 64, "hd_dg_first", "HD", 64));
  Groups twice;
  twice.file.link(all[0], 0, nowhere);
  twice.file.link(all[1], 0, 1);
  const RepairedBytes repaired = repairedBytes(twice.file.bytes());
  EXPECT_EQ(repaired.putBack(), second + putBack("DG", all[2], 64, "dg_dg_next", "DG", all[1]));
  EXPECT_EQ(csvOf(repaired.bytes).text, csvOf(groups.file.bytes()).text);
}

TEST(Relinking, PutsChannelsInTheOnlyPlaceForThem) {
  const Groups groups;
  const auto& channels = groups.channels;
  expectBack(groups.file, channels[0], 0, nowhere,
             putBack("CN", channels[1], 160, "cn_cn_next", "CN", channels[0]));
}

TEST(Relinking, LeadsToDataAgain) {
  const Groups groups;
  const auto& all = groups.data_groups;
  const std::string sentence = putBack("DT", groups.data[0], 54, "dg_data", "DG", all[0]);
  expectBack(groups.file, all[0], 2, nowhere, sentence);
  expectBack(groups.file, all[0], 2, 0, sentence);
  expectBack(groups.file, all[2], 2, nowhere,
             putBack("DL", groups.list[0], 88, "dg_data", "DG", all[2]));
}

TEST(Relinking, FillsGapsOfDataLists) {
  const Groups groups;
  const std::uint64_t list = groups.list[0];
  expectBack(groups.file, list, 1, nowhere,
             putBack("DT", groups.data[2], 44, "dl_data[0]", "DL", list));
  expectBack(groups.file, list, 2, nowhere,
             putBack("DT", groups.data[3], 44, "dl_data[1]", "DL", list));
  expectBack(groups.file, list, 3, nowhere,
             putBack("DT", groups.data[4], 44, "dl_data[2]", "DL", list));
  const std::string next = putBack("DL", groups.list[1], 56, "dl_dl_next", "DL", list);
  expectBack(groups.file, list, 0, nowhere, next);
  expectBack(groups.file, list, 0, 0, next);
}

TEST(Relinking, ContinuesListsOfBlocksOfOneLength) {
  SampleFile file;
  const std::string records = countingRecords(7);
  std::vector<std::uint64_t> blocks;
  for (std::size_t i = 0; i < 4; ++i) {
    blocks.push_back(file.addData(records.substr(20 * i, 20)));
  }
  const auto first = addEqualList(file, {blocks[0], blocks[1]}, 20);
  const auto second = addEqualList(file, {blocks[2], blocks[3]}, 20);
  file.link(first, 0, second);
  file.addSortedGroup(countingGroup(7), countingChannels(), first);
  expectBack(file, first, 0, 0, putBack("DL", second, 64, "dl_dl_next", "DL", first));
}

TEST(Relinking, AppendsTheHistoryAndAttachments) {
  SampleFile file;
  file.addSortedGroup(countingGroup(2), countingChannels(), file.addData(countingRecords(2)));
  const auto attachment = file.add("AT", {0, 0, 0, 0}, zeros(40));
  file.link(FileBuilder::header, 3, attachment);
  expectBack(file, FileBuilder::header, 3, 0,
             putBack("AT", attachment, 96, "hd_at_first", "HD", 64));
  expectBack(file, FileBuilder::header, 1, nowhere,
             putBack("FH", file.history(), 56, "hd_fh_first", "HD", 64));
}

TEST(Relinking, PutsGroupsInTheOnlyDataGroupThatLacksThem) {
  SampleFile file;
  std::vector<std::uint64_t> groups;
  std::string records;
  for (std::uint64_t id = 1; id <= 3; ++id) {
    GroupSpec group{1, 1};
    group.record_id = id;
    groups.push_back(file.addGroupOf(group, {firstByte("v" + std::to_string(id))}));
    records += u8(static_cast<unsigned>(id)) + u8(static_cast<unsigned>(10 * id));
  }
  const auto data_group = file.addDataGroup(groups, file.addData(records), 1);
  expectBack(file, data_group, 1, nowhere,
             putBack("CG", groups[0], 104, "dg_cg_first", "DG", data_group));
  expectBack(file, data_group, 1, 0,
             putBack("CG", groups[0], 104, "dg_cg_first", "DG", data_group));
  expectBack(file, groups[0], 0, nowhere,
             putBack("CG", groups[1], 104, "cg_cg_next", "CG", groups[0]));
  file.link(data_group, 1, nowhere);
  file.link(groups[0], 0, nowhere);
  const RepairedBytes repaired = repairedBytes(file.bytes());
  EXPECT_EQ(repaired.putBack(), putBack("CG", groups[0], 104, "dg_cg_first", "DG", data_group) +
                                    putBack("CG", groups[1], 104, "cg_cg_next", "CG", groups[0]));
  EXPECT_EQ(repaired.lost(), "");
}

TEST(Relinking, ReportsWhatMayHaveSeveralPlaces) {
  Groups groups;
  groups.file.link(groups.data_groups[0], 2, nowhere);
  groups.file.link(groups.data_groups[1], 2, nowhere);
  const RepairedBytes repaired = repairedBytes(groups.file.bytes());
  EXPECT_EQ(repaired.putBack(), "");
  const std::string none = "expected a link to each block, found none to ##DT at ";
  const auto line = [&](std::uint64_t block, const std::string& bytes) {
    return std::to_string(block) + ": " + none + at(block) + " of " + bytes +
           " bytes, whose place is not known\n";
  };
  EXPECT_EQ(repaired.lost().substr(0, 2 * line(groups.data[0], "54").size()),
            line(groups.data[0], "54") + line(groups.data[1], "64"));
}

TEST(Relinking, LeavesTextsAlone) {
  Groups groups;
  groups.file.link(groups.channels[1], 2, nowhere);
  const RepairedBytes repaired = repairedBytes(groups.file.bytes());
  EXPECT_EQ(repaired.putBack(), "");
  EXPECT_NE(repaired.lost().find("found none to ##TX at "), std::string::npos);
}

}  // namespace
