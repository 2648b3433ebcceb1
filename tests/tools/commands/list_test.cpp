#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using nlohmann::json;

namespace {

/// One group with a master, a scaled channel and a structure with one member.
FileBuilder threeChannels() {
  FileBuilder file;
  ChannelSpec time = timeChannel();
  time.name = "t";
  ChannelSpec speed = channelOf("speed", 3, 8, 12);
  speed.bit_offset = 3;
  speed.source = file.addSource("engine", "", 1, 2);
  speed.conversion = file.addConversion({1, {}, {0, 0.5}, "km/h", ""});
  speed.comment = "of the car";
  ChannelSpec outer = channelOf("outer", 10, 10, 16);
  outer.composition = file.addChannel(channelOf("inner", 0, 10, 8));
  file.addSortedGroup({5, 12}, {time, speed, outer}, 0);
  return file;
}

std::string listed(const FileBuilder& file, std::vector<std::string> arguments) {
  const TempFile temp(file.bytes());
  arguments.insert(arguments.begin(), "list");
  arguments.push_back(temp.path());
  const RunResult result = run(arguments);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exit_code, 0);
  return result.output;
}

std::vector<json> lines(const std::string& output) {
  std::istringstream is(output);
  std::vector<json> objects;
  for (std::string line; std::getline(is, line);) {
    objects.push_back(json::parse(line));
  }
  return objects;
}

/// The objects of a list, of whose file the name has been seen to be right.
std::vector<json> objectsOf(const FileBuilder& file, std::vector<std::string> arguments) {
  const TempFile temp(file.bytes());
  arguments.insert(arguments.begin(), "list");
  arguments.insert(arguments.end(), {"--json", temp.path()});
  std::vector<json> objects = lines(run(arguments).output);
  for (json& object : objects) {
    EXPECT_EQ(object["file"], temp.path());
    object.erase("file");
  }
  return objects;
}

const char* const channel_titles =
    "group  name         unit  kind    sync  data       bits    at  conversion  records  source  "
    "comment\n";

TEST(ListCommand, Channels) {
  EXPECT_EQ(
      listed(threeChannels(), {"channels"}),
      std::string(channel_titles) +
          "    0  t            s     master  time  real LE      64   0.0                    5\n"
          "    0  speed        km/h  fixed   none  int BE       12   8.3  linear            5  "
          "engine  of the car\n"
          "    0  outer              fixed   none  structure    16  10.0                    5\n"
          "    0  outer.inner        fixed   none  uint LE       8  10.0                    5\n");
}

TEST(ListCommand, ChannelsChosenAndSorted) {
  const FileBuilder file = threeChannels();
  const auto names = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "channels");
    arguments.emplace_back("--json");
    std::string text;
    for (const json& channel : lines(listed(file, arguments))) {
      text += channel["name"].get<std::string>() + ' ';
    }
    return text;
  };
  EXPECT_EQ(names({"--name", "*e*"}), "speed outer outer.inner ");
  EXPECT_EQ(names({"--name", "speed"}), "speed ");
  EXPECT_EQ(names({"--name", "inner"}), "outer.inner ");
  EXPECT_EQ(names({"--name", "outer.*"}), "outer.inner ");
  EXPECT_EQ(names({"--type", "master"}), "t ");
  EXPECT_EQ(names({"--type", "master,virtual"}), "t ");
  EXPECT_EQ(names({"--group", "0"}), "t speed outer outer.inner ");
  EXPECT_EQ(names({"--sort", "name"}), "outer outer.inner speed t ");
  EXPECT_EQ(names({"--sort", "bits"}), "outer.inner speed outer t ");
}

TEST(ListCommand, ChannelsAsJson) {
  const std::vector<json> channels = objectsOf(threeChannels(), {"channels"});
  ASSERT_EQ(channels.size(), 4U);
  json speed = channels[1];
  EXPECT_GT(speed["offset"], 168);
  speed.erase("offset");
  EXPECT_EQ(speed, json::parse(R"({
    "schema": 2, "group": 0, "name": "speed", "unit": "km/h", "type": "fixed", "type_number": 0,
    "sync_type": "none", "sync_type_number": 0, "data_type": "int BE", "data_type_number": 3,
    "bit_offset": 3, "byte_offset": 8, "bit_count": 12, "flags": 0, "dimensions": [], "depth": 0,
    "records": 5, "records_counted": false, "conversion": "linear", "conversion_number": 1,
    "source": "engine", "comment": "of the car"})"));
  EXPECT_EQ(channels[3]["depth"], 1);
}

TEST(ListCommand, BlocksInFileOrder) {
  FileBuilder file;
  const auto last = file.text("end");
  file.link(64, 5, last);
  EXPECT_EQ(listed(file, {"blocks"}),
            "offset  type  length  links\n"
            "    64  HD       104  6\n"
            "   168  TX        28  0\n");
  EXPECT_EQ(listed(file, {"blocks", "--type", "TX,MD"}),
            "offset  type  length  links\n"
            "   168  TX        28  0\n");
  EXPECT_EQ(listed(file, {"blocks", "--sort", "length"}),
            "offset  type  length  links\n"
            "   168  TX        28  0\n"
            "    64  HD       104  6\n");
  EXPECT_EQ(objectsOf(file, {"blocks"}), (std::vector<json>{json::parse(R"(
    {"schema": 2, "offset": 64, "type": "HD", "length": 104, "links": [0, 0, 0, 0, 0, 168]})"),
                                                            json::parse(R"(
    {"schema": 2, "offset": 168, "type": "TX", "length": 28, "links": []})")}));
}

TEST(ListCommand, BlocksOfUnknownTypesAndLinksThatAreThere) {
  FileBuilder file;
  const auto list = file.add("HL", {0}, Bytes().zeros(8));
  file.write(list + 16, Bytes().u64(0));
  const auto unknown = file.add("XX", {list}, {});
  file.link(64, 0, unknown);
  EXPECT_EQ(objectsOf(file, {"blocks", "--sort", "type"}), (std::vector<json>{json::parse(R"(
    {"schema": 2, "offset": 64, "type": "HD", "length": 104, "links": [208, 0, 0, 0, 0, 0]})"),
                                                                              json::parse(R"(
    {"schema": 2, "offset": 168, "type": "HL", "length": 40, "links": [0]})"),
                                                                              json::parse(R"(
    {"schema": 2, "offset": 208, "type": "XX", "length": 32, "links": [168]})")}));
}

TEST(ListCommand, Attachments) {
  FileBuilder file;
  const auto first = addAttachment(file, {"a.txt", "text/plain", 7, digestOfAbc(), 3, zippedAbc()});
  const auto second = addAttachment(file, {"b.bin", "", 0, std::string(16, '\0'), 0, ""});
  const auto third = addAttachment(file, {"c.bin", "", 1, std::string(16, '\0'), 3, "abc"});
  file.chain({first, second, third});
  file.link(64, 3, first);
  EXPECT_EQ(listed(file, {"attachments"}),
            "offset  name   kind        bytes  stored      digest                            "
            "comment\n"
            "   240  a.txt  text/plain      3  compressed  900150983cd24fb0d6963f7d28e17f72\n"
            "   384  b.bin                     elsewhere\n"
            "   512  c.bin                  3  plain\n");
  EXPECT_EQ(objectsOf(file, {"attachments", "--type", "text/plain"}),
            (std::vector<json>{json::parse(R"({
    "schema": 2, "offset": 240, "name": "a.txt", "mime_type": "text/plain", "original_size": 3,
    "embedded_size": 14, "embedded": true, "compressed": true,
    "md5": "900150983cd24fb0d6963f7d28e17f72", "comment": ""})")}));
}

TEST(ListCommand, Events) {
  FileBuilder file;
  const auto name = file.text("lap");
  const auto late =
      file.add("EV", {0, 0, 0, name, 0},
               Bytes().u8s({6, 1, 0, 4, 0, 0, 0, 0}).u32(0).u16(0).u16(0).i64(250).f64(0.01));
  const auto early =
      file.add("EV", {0, 0, 0, 0, 0},
               Bytes().u8s({5, 1, 1, 1, 1, 0, 0, 0}).u32(2).u16(1).u16(0).i64(-1).f64(1));
  file.link(early, 4, file.metadata("<EVcomment><TX>by hand</TX></EVcomment>"));
  file.chain({late, early});
  file.link(64, 4, late);
  EXPECT_EQ(listed(file, {"events"}),
            "offset  position  unit  kind     range  cause  name  comment\n"
            "   200       2.5  s     marker   point  user   lap\n"
            "   296        -1  s     trigger  begin  error        by hand\n");
  EXPECT_EQ(objectsOf(file, {"events", "--sort", "position"})[0], json::parse(R"({
    "schema": 2, "offset": 296, "position": -1.0, "unit": "s", "sync_type": "time",
    "sync_type_number": 1, "type": "trigger", "type_number": 5, "range_type": "begin",
    "range_type_number": 1, "cause": "error", "cause_number": 1, "flags": 1, "name": "",
    "comment": "by hand", "scopes": 2, "attachments": 1})"));
  EXPECT_EQ(lines(listed(file, {"events", "--json", "--type", "marker", "--name", "l*"})).size(),
            1U);
}

TEST(ListCommand, SeveralFilesAreNamed) {
  const TempFile one(FileBuilder().bytes());
  const TempFile two(FileBuilder().bytes());
  const RunResult text = run({"list", "blocks", one.path(), two.path()});
  const auto blocks = [](const std::string& path) {
    return "file" + std::string(path.size() - 2, ' ') + "offset  type  length  links\n" + path +
           "      64  HD       104  6\n";
  };
  EXPECT_EQ(text.output, blocks(one.path()) + blocks(two.path()));
  const TempFile channels(threeChannels().bytes());
  const std::string path = channels.path();
  const std::string listing = run({"list", "channels", "--name", "t", path, path}).output;
  const std::string table =
      "file" + std::string(path.size() - 2, ' ') +
      "group  name  unit  kind    sync  data     bits   at  conversion  records  source  "
      "comment\n" +
      path + "      0  t     s     master  time  real LE    64  0.0                    5\n";
  EXPECT_EQ(listing, table + table);
  const auto objects = lines(run({"list", "blocks", "--json", one.path(), two.path()}).output);
  ASSERT_EQ(objects.size(), 2U);
  EXPECT_EQ(objects[1]["file"], two.path());
}

TEST(ListCommand, ProblemsGoToStandardError) {
  FileBuilder file;
  file.link(64, 0, 100001);
  const TempFile temp(file.bytes());
  EXPECT_EQ(run({"list", "blocks", temp.path()}),
            (RunResult{1, "offset  type  length  links\n    64  HD       104  6\n",
                       "mdf: " + temp.path() +
                           ": 64 (0x40): expected link 0 of ##HD to lead into the file of "
                           "168 bytes, found 100001 (0x186a1)\n"}));
}

}  // namespace
