// One name for a channel, whichever command says it.

#include "reader/model/channel_names.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

struct Step {
  std::size_t depth;
  const char* name;
};

std::vector<std::string> namesOf(const std::vector<Step>& steps) {
  mdf_reader::ChannelNames names;
  std::vector<std::string> result;
  for (const Step& step : steps) {
    mdf_reader::Channel channel;
    channel.depth = step.depth;
    channel.name = step.name;
    result.push_back(names.next(channel));
  }
  return result;
}

TEST(ChannelNames, MembersHaveTheirStructuresInFront) {
  EXPECT_EQ(namesOf({{0, "a"}, {0, "s"}, {1, "x"}, {1, "t"}, {2, "y"}, {1, "z"}, {0, "b"}}),
            (std::vector<std::string>{"a", "s", "s.x", "s.t", "s.t.y", "s.z", "b"}));
}

TEST(ChannelNames, WhatWritersHavePutInFrontIsNotSaidTwice) {
  EXPECT_EQ(namesOf({{0, "CAN"}, {1, "CAN.ID"}, {1, "CAN.Data"}, {2, "CAN.Data.a"}, {2, "Data.b"}}),
            (std::vector<std::string>{"CAN", "CAN.ID", "CAN.Data", "CAN.Data.a", "CAN.Data.b"}));
  EXPECT_EQ(namesOf({{0, "CAN"}, {1, "CANID"}, {1, "CAN."}, {1, "CAN"}, {1, "LIN.ID"}}),
            (std::vector<std::string>{"CAN", "CAN.CANID", "CAN.CAN.", "CAN.CAN", "CAN.LIN.ID"}));
  EXPECT_EQ(namesOf({{0, ""}, {1, ".ID"}}), (std::vector<std::string>{"", "..ID"}));
}

TEST(ChannelNames, OfLongNamesTheEndsAreKept) {
  std::vector<Step> steps;
  for (std::size_t depth = 0; depth < 600; ++depth) {
    steps.push_back({depth, "ab"});
  }
  const std::string last = namesOf(steps).back();
  EXPECT_EQ(last.size(), 1024U);
  EXPECT_EQ(last.substr(1019), "ab.ab");
}

/// A frame and an array of points, whose members are called after them.
std::string frameAndPoints() {
  FileBuilder file;
  ChannelSpec frame = firstByte("CAN_DataFrame");
  const auto id = file.addChannel(firstByte("CAN_DataFrame.ID"));
  file.chain({id, file.addChannel(channelOf("Length", 0, 1, 8))});
  frame.composition = id;
  ChannelSpec points = channelOf("Points", 0, 2, 8);
  const auto x = file.addChannel(channelOf("Points.x", 0, 2, 8));
  points.composition = file.add("CA", {x}, u8(0, 0) + u16(1) + u32(0, 1, 0) + u64(2));
  file.addSortedGroup({1, 4}, {frame, points}, file.addData("abcd"));
  return file.bytes();
}

/// The lines of a text that have a word in them, from that on.
std::string linesFrom(const std::string& text, const std::string& word) {
  std::string found;
  for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at)) {
    const std::size_t end = text.find_first_of(" \"\n", at);
    found += text.substr(at, end - at) + ' ';
    at = text.find('\n', at);
  }
  return found;
}

TEST(ChannelNames, EveryCommandSaysTheSame) {
  const TempFile file(frameAndPoints());
  const std::string table = run({"export", file.path()}).output;
  EXPECT_EQ(table.substr(0, table.find('\n')),
            "CAN_DataFrame.ID,CAN_DataFrame.Length,Points[0].x,Points[1].x");
  const std::string list = run({"list", "channels", file.path()}).output;
  EXPECT_EQ(linesFrom(list, "CAN_"), "CAN_DataFrame CAN_DataFrame.ID CAN_DataFrame.Length ");
  EXPECT_EQ(linesFrom(list, "Points"), "Points Points.x ");
  const std::string tree = run({"tree", "--no-text", file.path()}).output;
  EXPECT_EQ(linesFrom(tree, "CAN_"), "CAN_DataFrame CAN_DataFrame.ID CAN_DataFrame.Length ");
  EXPECT_EQ(linesFrom(tree, "Points"), "Points Points.x ");
}

}  // namespace
