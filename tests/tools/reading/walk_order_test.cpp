#include <gtest/gtest.h>

#include <string>

#include "reader/blocks/raw_block.h"
#include "reader/blocks/walk.h"
#include "reader/bytes/input_file.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using mdf_reader::BlockEntry;
using mdf_reader::BlockTable;
using mdf_reader::InputFile;

namespace {

/// A line for each block: its offset and type, the index of its parent and of the link there, its
/// chain's head and its place in it, its end, and "by reference".
std::string ordered(const FileBuilder& contents) {
  const TempFile path(contents.bytes());
  InputFile file(path.path());
  const BlockTable blocks = mdf_reader::walkBlocks(file, nullptr);
  std::string text;
  for (std::uint32_t i = 0; i < blocks.size(); ++i) {
    const BlockEntry& entry = blocks[i];
    text += std::to_string(entry.offset) + ' ' + std::string(entry.letters());
    text += entry.parent == BlockTable::none
                ? " -"
                : ' ' + std::to_string(entry.parent) + '.' + std::to_string(entry.link);
    text += ' ' + std::to_string(entry.head) + '+' + std::to_string(entry.position) + " to " +
            std::to_string(entry.end) + (entry.by_reference ? " by reference\n" : "\n");
    EXPECT_EQ(blocks.find(entry.offset), i);
  }
  return text;
}

const std::string small_file =
    "168 DG 0.0 1+0 to 8\n"
    "232 CG 1.1 2+0 to 7\n"
    "336 CN 2.1 3+0 to 7\n"
    "656 TX 3.2 4+0 to 5\n"
    "496 CN 3.0 3+1 to 7\n"
    "688 TX 5.2 6+0 to 7\n"
    "720 DT 1.2 7+0 to 8\n";

TEST(WalkOrder, BlocksComeBeforeWhatTheyLeadToAndThatBeforeTheNextOfTheirChain) {
  EXPECT_EQ(ordered(SmallFile()), "64 HD - 0+0 to 8\n" + small_file);
}

TEST(WalkOrder, LinksThatLeadToNoBlock) {
  SmallFile file;
  file.append(Bytes().zeros(6).text("##tx").zeros(20).text("#XTX").zeros(20).text("##TX"));
  for (const std::uint64_t link :
       {std::uint64_t{8}, std::uint64_t{63}, std::uint64_t{65}, std::uint64_t{768},
        std::uint64_t{792}, std::uint64_t{816}, std::uint64_t{999}, UINT64_MAX}) {
    file.setComment(link);
    EXPECT_EQ(ordered(file), "64 HD - 0+0 to 8\n" + small_file) << link;
  }
}

TEST(WalkOrder, BlocksThatSeveralLinksLeadToBelongToTheFirst) {
  SmallFile file;
  file.setComment(SmallFile::time_name);
  file.link(SmallFile::speed, 0, SmallFile::time);
  file.link(SmallFile::group, 2, SmallFile::speed_name);
  EXPECT_EQ(ordered(file), "64 HD - 0+0 to 8\n" + small_file);
}

TEST(WalkOrder, WhatIsMerelyReferredToComesLast) {
  FileBuilder file;
  const auto text = file.text("name");                                                       // 168
  const auto channel = file.add("CN", {0, 0, text, 0, 0, 0, 0, 0}, ChannelSpec{}.fields());  // 200
  const auto unknown = file.add("XX", {channel});                                            // 360
  file.link(FileBuilder::header, 2,
            file.add("CH", {0, 0, unknown, 0, 0, 0, channel}, Bytes().u32(1).zeros(4)));  // 392
  EXPECT_EQ(ordered(file),
            "64 HD - 0+0 to 3\n"
            "392 CH 0.2 1+0 to 3\n"
            "360 XX 1.2 2+0 to 3\n"
            "200 CN 1.6 3+0 to 5 by reference\n"
            "168 TX 3.2 4+0 to 5\n");
}

}  // namespace
