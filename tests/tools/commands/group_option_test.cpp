// --group, which every command understands alike.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

/// A channel group "Engine", one that has no name but that of its source, "7", and one without any.
std::string threeGroups() {
  FileBuilder file;
  const auto add = [&](GroupSpec group, const std::string& channel) {
    group.cycles = 1;
    group.data_bytes = 1;
    file.addSortedGroup(group, {firstByte(channel)}, file.addData("A"));
  };
  GroupSpec group;
  group.name = "Engine";
  add(group, "channel0");
  group = {};
  group.source = file.addSource("7", "", 1, 0);
  add(group, "channel1");
  add({}, "channel2");
  return file.bytes();
}

/// The channels that are listed, exported, plotted and measured, which must be the same.
std::string channelsIn(const std::string& group) {
  const TempFile file(threeGroups());
  const RunResult listed = run({"list", "channels", "--group", group, "--json", file.path()});
  const RunResult exported = run({"export", "--group", group, file.path()});
  const RunResult plotted = run({"plot", "--group", group, file.path(), "-c", "*", "--json"});
  const RunResult measured = run({"stats", "--group", group, file.path()});
  std::string channels;
  for (const std::string name : {"channel0", "channel1", "channel2"}) {
    const bool is_there = listed.output.find(name) != std::string::npos;
    channels += is_there ? name.substr(7) : "";
    EXPECT_EQ(exported.output.find(name) != std::string::npos, is_there) << group << ' ' << name;
    EXPECT_EQ(plotted.output.find(name) != std::string::npos, is_there) << group << ' ' << name;
    EXPECT_EQ(measured.output.find(name) != std::string::npos, is_there) << group << ' ' << name;
  }
  for (const RunResult& result : {listed, exported, plotted, measured}) {
    EXPECT_EQ(result.exit_code, channels.empty() ? 1 : 0) << group;
    EXPECT_EQ(result.messages.empty(), !channels.empty()) << group << ": " << result.messages;
  }
  return channels;
}

TEST(GroupOption, TakesNumbersAndPatterns) {
  EXPECT_EQ(channelsIn("0"), "0");
  EXPECT_EQ(channelsIn("2"), "2");
  EXPECT_EQ(channelsIn("Engine"), "0");
  EXPECT_EQ(channelsIn("[DE]ng*"), "0");
  EXPECT_EQ(channelsIn("?"), "1");
  EXPECT_EQ(channelsIn("*"), "012");
}

TEST(GroupOption, DigitsAreANumber) {
  EXPECT_EQ(channelsIn("7"), "");
  EXPECT_EQ(channelsIn("99999999999999999999999"), "");
  EXPECT_EQ(channelsIn("engine"), "");
}

TEST(GroupOption, NothingThatFitsIsANoteAndAProblem) {
  const TempFile file(threeGroups());
  const std::vector<std::vector<std::string>> commands = {
      {"list", "channels", "--group", "gear*", file.path()},
      {"export", "-g", "gear*", file.path()},
      {"stats", "-g", "gear*", file.path()}};
  for (const std::vector<std::string>& words : commands) {
    const RunResult result = run(words);
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.messages,
              "mdf: " + file.path() + ": note: no channel group with channels matches \"gear*\"\n");
  }
  const RunResult plotted = run({"plot", "-g", "gear*", file.path(), "-c", "*"});
  EXPECT_EQ(plotted.exit_code, 1);
  EXPECT_EQ(
      plotted.messages,
      "mdf: " + file.path() + ": note: no channel matches \"*\" in a channel group \"gear*\"\n");
}

}  // namespace
