#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;
using nlohmann::json;

namespace {

/// Two groups: ten records over time from a conversion, and one without a master channel.
FileBuilder twoGroups() {
  FileBuilder file;
  file.write(64 + 72, Bytes().u64(1'600'000'000'000'000'000).i16(60).i16(60).u8s({2, 10}));
  file.link(
      64, 5,
      file.metadata(
          "<HDcomment><TX> a drive\n</TX><common_properties><e name='serial number'> 4711 </e>"
          "<tree name='logger'><e name='firmware'>1.2</e></tree>"
          "</common_properties></HDcomment>"));
  const auto source = file.addSource("engine", "ECU.engine", 1, 2);
  const auto scale = file.addConversion({1, {}, {0, 0.5}, "s", ""});
  ChannelSpec time{3, 1, 0, 0, 0, 0};
  time.name = "t";
  time.conversion = scale;
  ChannelSpec speed;
  speed.name = "speed";
  GroupSpec group{11, 1};
  group.name = "fast";
  group.source = source;
  file.addSortedGroup(group, {time, speed}, 0);
  group.name = "";
  group.source = 0;
  group.cycles = 3;
  file.addSortedGroup(group, {}, 0);
  return file;
}

TEST(InfoCommand, APageOfEverything) {
  FileBuilder file = twoGroups();
  const auto attachment = addAttachment(file, {"a", "", 1, std::string(16, '\0'), 3, "abc"});
  file.link(64, 3, attachment);
  file.append("12345");
  const TempFile temp(file.bytes());
  const RunResult result = run({"info", temp.path()});
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(
      result.output,
      "File:      " + temp.path() + ", " + std::to_string(file.bytes().size()) +
          " bytes\n"
          "Format:    \"MDF\" version \"4.10\" (410), written by \"testprog\"\n"
          "State:     finished\n"
          "Start:     2020-09-13 12:26:40 UTC, 2020-09-13 14:26:40 local time (+02:00), clock: "
          "external source\n"
          "Duration:  5 s\n"
          "Comment:   a drive\n"
          "Property:  serial number: 4711\n"
          "Property:  logger.firmware: 1.2\n"
          "Contents:  2 data groups, 2 channel groups, 2 channels, 1 attachment, 0 events, 0 "
          "hierarchy entries, 0 history entries\n"
          "\n"
          "group  data  name  source             records  span  rate  record bytes  channels\n"
          "    0     0  fast  engine ECU.engine       11  5 s   2/s              1         2\n"
          "    1     1                                 3                         1         0\n"
          "\n"
          "type  blocks  bytes\n"
          "AT         1     99  attachment\n"
          "CC         1     96  conversion\n"
          "CG         2    208  channel group\n"
          "CN         2    320  channel\n"
          "DG         2    128  data group\n"
          "HD         1    104  header\n"
          "MD         1    192  metadata\n"
          "SI         1     56  source\n"
          "TX         7    203  text\n"
          "                 34  outside blocks\n");
}

TEST(InfoCommand, UnfinishedFilesSayWhatIsOpen) {
  FileBuilder file("UnFinMF ", 411);
  file.write(60, Bytes().u16(0x7F).u16(3));
  const TempFile temp(file.bytes());
  const RunResult result = run({"info", temp.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(
      result.output,
      "File:      " + temp.path() +
          ", 168 bytes\n"
          "Format:    \"UnFinMF\" version \"4.11\" (411), written by \"testprog\"\n"
          "State:     unfinished, still open: cycle counts of channel groups, cycle counts of "
          "sample reductions, length of the last data block, length of the last reduction "
          "data block, last data list, data bytes of variable-length groups, offsets of "
          "variable-length channels; custom flags 3\n"
          "Start:     not stated, clock: local PC\n"
          "Duration:  not known\n"
          "Contents:  0 data groups, 0 channel groups, 0 channels, 0 attachments, 0 events, 0 "
          "hierarchy entries, 0 history entries\n"
          "\n"
          "type  blocks  bytes\n"
          "HD         1    104  header\n"
          "                  0  outside blocks\n");
}

TEST(InfoCommand, WhereAnglesAndDistancesBegin) {
  const auto position = [](std::uint8_t flags) {
    FileBuilder file;
    file.write(FileBuilder::header + 24 + 48 + 14, Bytes().u8(flags).u8(0).f64(0.25).f64(1200));
    const TempFile temp(file.bytes());
    const std::string page = run({"info", temp.path()}).output;
    const std::size_t begin = page.find("Start:");
    return page.substr(begin, page.find("Contents:") - begin);
  };
  const std::string start = "Start:     not stated, clock: local PC\n";
  const std::string duration = "Duration:  not known\n";
  EXPECT_EQ(position(0), start + duration);
  EXPECT_EQ(position(1), start + "Begins at: 0.25 rad\n" + duration);
  EXPECT_EQ(position(2), start + "Begins at: 1200 m\n" + duration);
  EXPECT_EQ(position(3), start + "Begins at: 0.25 rad, 1200 m\n" + duration);
}

TEST(InfoCommand, JsonOfEverything) {
  const FileBuilder file = twoGroups();
  const TempFile temp(file.bytes());
  const RunResult result = run({"info", "--json", temp.path()});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  json expected = json::parse(R"({
    "schema": 2,
    "files": [{
      "identifier": "MDF", "version": 410, "version_text": "4.10", "program": "testprog",
      "finished": true, "still_open": [],
      "start": {"stored": 1600000000000000000, "unit": "ns", "utc": "2020-09-13 12:26:40",
                "local": "2020-09-13 14:26:40", "zone": "+02:00", "class": "external source",
                "class_number": 10},
      "duration": 5.0, "comment": "a drive", "properties": {"serial number": "4711", "logger.firmware": "1.2"},
      "data_groups": 2, "channels": 2, "attachments": 0,
      "events": 0, "hierarchy_entries": 0, "history_entries": 0,
      "groups": [{"group": 0, "data_group": 0, "name": "fast", "source": "engine ECU.engine",
                  "comment": "", "records": 11, "records_counted": false, "record_bytes": 1, "variable_length": false,
                  "channels": 2, "span": {"from": 0.0, "to": 5.0, "source": "record numbers"},
                  "extent": 5.0, "rate": 2.0, "master_unit": "s", "reductions": []},
                 {"group": 1, "data_group": 1, "name": "", "source": "", "comment": "",
                  "records": 3, "records_counted": false, "record_bytes": 1, "variable_length": false, "channels": 0,
                  "span": null, "extent": null, "rate": null, "master_unit": null,
                  "reductions": []}],
      "blocks": {"CC": {"blocks": 1, "bytes": 96}, "CG": {"blocks": 2, "bytes": 208},
                 "CN": {"blocks": 2, "bytes": 320}, "DG": {"blocks": 2, "bytes": 128},
                 "HD": {"blocks": 1, "bytes": 104}, "MD": {"blocks": 1, "bytes": 192},
                 "SI": {"blocks": 1, "bytes": 56}, "TX": {"blocks": 6, "bytes": 177}}
    }]
  })");
  json document = json::parse(result.output);
  json& actual = document["files"][0];
  EXPECT_EQ(actual["file"], temp.path());
  EXPECT_EQ(actual["bytes"], file.bytes().size());
  EXPECT_EQ(actual["bytes_outside_blocks"], 23);
  actual.erase("file");
  actual.erase("bytes");
  actual.erase("bytes_outside_blocks");
  for (json& group : actual["groups"]) {
    EXPECT_GT(group["offset"], 168);
    group.erase("offset");
  }
  EXPECT_EQ(document, expected) << result.output;
}

TEST(InfoCommand, SeveralFilesAndOneThatIsNotThere) {
  const TempFile one(FileBuilder().bytes());
  const RunResult result = run({"info", one.path(), "/nowhere/a.mf4", one.path()});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.messages, "mdf: cannot open /nowhere/a.mf4: No such file or directory\n");
  EXPECT_PRED2(contains, result.output, "outside blocks\n\nFile:");
  const json document =
      json::parse(run({"info", "--json", one.path(), "/nowhere/a.mf4", one.path()}).output);
  EXPECT_EQ(document["files"].size(), 2U);
}

TEST(InfoCommand, BytesThatAreNoUtf8StayOutOfJson) {
  FileBuilder file;
  file.link(64, 5, file.text("\xFF\xFE"));
  const TempFile temp(file.bytes());
  const json document = json::parse(run({"info", "--json", temp.path()}).output);
  EXPECT_EQ(document["files"][0]["comment"], "\xEF\xBF\xBD\xEF\xBF\xBD");
}

}  // namespace
