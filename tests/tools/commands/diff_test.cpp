#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/bytes.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;
using Row = std::pair<double, std::uint8_t>;

constexpr unsigned real = 4;
const double nan = std::numeric_limits<double>::quiet_NaN();

/// A group "engine" of times and speeds.
void addRows(FileBuilder& file, const std::vector<Row>& rows) {
  Bytes records;
  for (const auto& [time, speed] : rows) {
    records.f64(time).u8(speed);
  }
  file.addSortedGroup({rows.size(), 9, 0, 0, 0, "engine"},
                      {timeChannel(), channelOf("speed", 0, 8, 8)}, file.addData(records));
}

std::string rowsFile(const std::vector<Row>& rows) {
  FileBuilder file;
  addRows(file, rows);
  return file.bytes();
}

/// A group without a name of this channel alone.
std::string valuesFile(const ChannelSpec& channel, std::uint64_t records, const std::string& bytes,
                       std::uint32_t invalidation_bytes = 0) {
  FileBuilder file;
  file.addSortedGroup({records, channel.bit_count / 8, invalidation_bytes}, {channel},
                      file.addData(bytes));
  return file.bytes();
}

std::string realsFile(const std::vector<double>& values) {
  Bytes bytes;
  for (const double value : values) {
    bytes.f64(value);
  }
  return valuesFile(channelOf("v", real, 0, 64), values.size(), bytes);
}

/// What the command prints of two files after their names.
RunResult diff(const std::string& a, const std::string& b, const Words& options = {}) {
  const TempFile file_a(a);
  const TempFile file_b(b);
  Words words = {"diff", file_a.path(), file_b.path()};
  words.insert(words.end(), options.begin(), options.end());
  RunResult result = run(words);
  const std::string names = "A: " + file_a.path() + "\nB: " + file_b.path() + "\n\n";
  EXPECT_EQ(result.output.substr(0, names.size()), names);
  result.output.erase(0, names.size());
  return result;
}

RunResult differ(const std::string& output) {
  RunResult result = wrote(output);
  result.exit_code = 1;
  return result;
}

const std::string same_rows =
    "Compared:   1 channel group, 2 channels, 4 records, 8 values\n"
    "Different:  nothing\n";

TEST(DiffCommand, StorageIsNoDifference) {
  const std::vector<Row> rows = {{0, 10}, {1, 20}, {2, 30}, {3, 40}};
  FileBuilder zipped;
  Bytes reals;
  for (const auto& [time, speed] : rows) {
    reals.f64(time).f64(speed);
  }
  zipped.addSortedGroup({4, 16, 0, 0, 0, "engine"},
                        {channelOf("speed", real, 8, 64), timeChannel()},
                        addZipped(zipped, "DT", reals, 16));
  EXPECT_EQ(diff(rowsFile(rows), rowsFile(rows)), wrote(same_rows));
  EXPECT_EQ(diff(rowsFile(rows), zipped.bytes()), wrote(same_rows));
}

TEST(DiffCommand, Records) {
  const std::string all = rowsFile({{0, 10}, {1, 20}, {2, 30}, {3, 40}});
  const struct {
    std::string b;
    Words options;
    std::string output;
  } cases[] = {
      {rowsFile({{0, 10}, {2, 30}, {3, 41}}),
       {},
       "group 0 \"engine\", channel \"speed\": 1 of 3 values differs\n"
       "  record 3 (2 in B) at 3: 40 in A, 41 in B\n"
       "group 0 \"engine\": 1 record only in A\n"
       "  record 1 at 1\n"
       "\n"
       "Compared:   1 channel group, 2 channels, 3 records, 6 values\n"
       "Different:  1 value, 1 record only in one\n"},
      {rowsFile({{0, 10}, {0.5, 15}, {1, 20}, {2, 30}, {3, 40}, {4, 50}, {5, 60}}),
       {"--samples", "2"},
       "group 0 \"engine\": 3 records only in B\n"
       "  record 1 at 0.5\n"
       "  record 5 at 4\n"
       "\n"
       "Compared:   1 channel group, 2 channels, 4 records, 8 values\n"
       "Different:  3 records only in one\n"},
      {rowsFile({{0, 11}, {1, 21}, {2, 31}, {3, 41}}),
       {"--samples", "1"},
       "group 0 \"engine\", channel \"speed\": 4 of 4 values differ\n"
       "  record 0 at 0: 10 in A, 11 in B\n"
       "\n"
       "Compared:   1 channel group, 2 channels, 4 records, 8 values\n"
       "Different:  4 values\n"},
      {rowsFile({{0, 10}, {1.01, 20}, {1.99, 30}, {3, 40}}),
       {"--time-tolerance", "0.02"},
       same_rows},
      // Times that go backwards are compared in order.
      {rowsFile({{0, 10}, {1, 20}, {-2, 30}, {3, 40}}),
       {},
       "group 0 \"engine\", channel \"time\": 1 of 4 values differs\n"
       "  record 2 at 2: 2 in A, -2 in B\n"
       "\n"
       "Compared:   1 channel group, 2 channels, 4 records, 8 values\n"
       "Different:  1 value\n"},
  };
  for (const auto& each : cases) {
    RunResult expected = wrote(each.output);
    expected.exit_code = each.output == same_rows ? 0 : 1;
    EXPECT_EQ(diff(all, each.b, each.options), expected);
  }
}

/// What is said of files whose values all differ, or none.
std::string valueLines(std::size_t differing, std::size_t values, const std::string& records) {
  std::string lines = "Compared:   1 channel group, 1 channel, " + std::to_string(values) +
                      " records, " + std::to_string(values) + " values\nDifferent:  ";
  return differing == 0 ? lines + "nothing\n"
                        : "group 0, channel \"v\": " + std::to_string(differing) + " of " +
                              std::to_string(values) + " values differ\n" + records + '\n' + lines +
                              std::to_string(differing) + " values\n";
}

TEST(DiffCommand, Values) {
  const std::string reals = realsFile({0, 100, nan, -1});
  ChannelSpec bytes = channelOf("v", 0, 0, 8);
  bytes.flags = 2;  // with an invalidation bit
  const auto large = [](std::uint64_t number) {
    return valuesFile(channelOf("v", 0, 0, 64), 2, Bytes().u64(number).u64(number));
  };
  const auto text = [](const std::string& letters) {
    return valuesFile(channelOf("v", 6, 0, 8), 2, letters);
  };
  const struct {
    std::string a;
    std::string b;
    Words options;
    std::string output;
  } cases[] = {
      {reals, realsFile({-0.0, 100, nan, -1}), {}, valueLines(0, 4, "")},
      {reals, realsFile({0, 100.5, nan, -1.5}), {"--tolerance", "0.5"}, valueLines(0, 4, "")},
      {reals,
       realsFile({0.1, 100.5, 0, -1.1}),
       {"--tolerance", "0.5%", "--tolerance", "0.05"},
       valueLines(3, 4,
                  "  record 0: 0 in A, 0.1 in B\n  record 2: \"nan\" in A, 0 in B\n"
                  "  record 3: -1 in A, -1.1 in B\n")},
      {valuesFile(bytes, 3, u8(7, 0, 7, 1, 7, 1), 1),
       valuesFile(bytes, 3, u8(7, 1, 7, 0, 8, 1), 1),
       {},
       valueLines(2, 3, "  record 0: 7 in A, nothing in B\n  record 1: nothing in A, 7 in B\n")},
      // What a double does not hold differs all the same.
      {large(9007199254740993),
       large(9007199254740992),
       {"--samples", "1"},
       valueLines(2, 2, "  record 0: 9007199254740993 in A, 9007199254740992 in B\n")},
      {text("ab"),
       text("AB"),
       {},
       valueLines(2, 2,
                  "  record 0: \"a\" in A, \"A\" in B\n"
                  "  record 1: \"b\" in A, \"B\" in B\n")},
  };
  for (const auto& each : cases) {
    RunResult expected = wrote(each.output);
    expected.exit_code = each.output.front() == 'C' ? 0 : 1;
    EXPECT_EQ(diff(each.a, each.b, each.options), expected);
  }
}

/// A file that has something of everything, with one name, number or text for all of it.
std::string describedFile(const std::string& word, std::uint8_t number) {
  FileBuilder file;
  file.write(FileBuilder::header + 24 + 48, Bytes().u64(1600000000000000000 + number));
  file.link(FileBuilder::header, 5,
            file.metadata("<HDcomment><TX>" + word + "</TX><common_properties><e name=\"serial\">" +
                          word + "</e></common_properties></HDcomment>"));
  ChannelSpec channel = firstByte("v");
  channel.unit = word;
  channel.comment = word;
  channel.flags = 8;
  channel.range_max = number;
  channel.source = file.addSource("ECU", word, 1, 2);
  channel.conversion = file.addConversion({0U + 1, {}, {0, 1.0 * number}});
  file.addSortedGroup({0, 1, 0, 0, 0, "engine", word}, {channel, firstByte("w" + word)}, 0);
  file.addSortedGroup({0, 1, 0, 0, 0, word + " group"}, {firstByte("only " + word)}, 0);
  file.link(FileBuilder::header, 3,
            addAttachment(file, {"a", "text/plain", 1, std::string(16, '\0'), word.size(), word}));
  const std::uint64_t name = file.text("start");
  file.link(FileBuilder::header, 4,
            file.add("EV", {0, 0, 0, name, 0},
                     u8(6, 1, 0, 0, 0) + zeros(3) + zeros(8) + u64(number) + f64(0.5)));
  return file.bytes();
}

const std::string described_lines =
    R"(header: start: "2020-09-13T12:26:40.000000001Z" in A, "2020-09-13T12:26:40.000000002Z" in B
header: comment: "one" in A, "two" in B
header: properties.serial: "one" in A, "two" in B
group 0 "engine": comment: "one" in A, "two" in B
group 0 "engine", channel "v": unit: "one" in A, "two" in B
group 0 "engine", channel "v": source.path: "one" in A, "two" in B
group 0 "engine", channel "v": comment: "one" in A, "two" in B
group 0 "engine", channel "v": ranges.value.most: 1 in A, 2 in B
group 0 "engine", channel "v": conversion.values[1]: 1 in A, 2 in B
group 0 "engine", channel "wone": only in A
group 0 "engine", channel "wtwo": only in B
group 1 "one group": only in A
group 1 "two group": only in B
event "start": position: 0.5 in A, 1 in B
attachment "a": md5: "f97c5d29941bfb1b2fdab0874906ab82" in A, "b8a9f715dbb64fd5c56e7783c6820a61" in B

Compared:   1 channel group, 1 channel, 0 records, 0 values
Different:  11 details, 4 things only in one
)";

TEST(DiffCommand, Descriptions) {
  const std::string one = describedFile("one", 1);
  const std::string two = describedFile("two", 2);
  EXPECT_EQ(diff(one, two), differ(described_lines));
  EXPECT_EQ(diff(one, two,
                 {"--ignore", "start,properties,comment,unit,source", "--ignore",
                  "conversion,ranges,events,attachments,values"}),
            differ("group 0 \"engine\", channel \"wone\": only in A\n"
                   "group 0 \"engine\", channel \"wtwo\": only in B\n"
                   "group 1 \"one group\": only in A\n"
                   "group 1 \"two group\": only in B\n"
                   "\n"
                   "Compared:   1 channel group, 1 channel, 0 records, 0 values\n"
                   "Different:  4 things only in one\n"));
}

/// Groups of these names, each with channels of these names.
std::string groupsFile(const std::vector<std::pair<std::string, Words>>& groups) {
  FileBuilder file;
  for (const auto& [name, channels] : groups) {
    std::vector<ChannelSpec> specs;
    for (const std::string& channel : channels) {
      specs.push_back(firstByte(channel));
    }
    file.addSortedGroup({1, 1, 0, 0, 0, name}, specs, file.addData(u8(7)));
  }
  return file.bytes();
}

TEST(DiffCommand, GroupsBelongTogetherByNamesAndChannels) {
  EXPECT_EQ(
      diff(groupsFile(
               {{"", {"x"}}, {"", {"y"}}, {"old", {"z"}}, {"twice", {"v"}}, {"twice", {"v"}}}),
           groupsFile({{"twice", {"v"}}, {"new", {"z"}}, {"", {"y"}}, {"", {"x", "w"}}})),
      differ("group 0 (3 in B), channel \"w\": only in B\n"
             "group 2 \"old\" (1 in B): name: \"old\" in A, \"new\" in B\n"
             "group 4 \"twice\": only in A\n"
             "\n"
             "Compared:   4 channel groups, 4 channels, 4 records, 4 values\n"
             "Different:  1 detail, 2 things only in one\n"));
}

TEST(DiffCommand, HistoryIsComparedWhenAskedFor) {
  const auto with_history = [](std::uint64_t time) {
    FileBuilder file;
    file.link(FileBuilder::header, 1, file.add("FH", {0, 0}, u64(time) + zeros(8)));
    return file.bytes();
  };
  const std::string a = with_history(1600000000000000000);
  const std::string b = with_history(1600000001000000000);
  const std::string nothing =
      "Compared:   0 channel groups, 0 channels, 0 records, 0 values\n"
      "Different:  ";
  EXPECT_EQ(diff(a, b), wrote(nothing + "nothing\n"));
  EXPECT_EQ(diff(a, b, {"--history"}),
            differ("history entry \"2020-09-13T12:26:40Z\": only in A\n"
                   "history entry \"2020-09-13T12:26:41Z\": only in B\n\n" +
                   nothing + "2 things only in one\n"));
}

TEST(DiffCommand, QuietLeavesItToTheExitCode) {
  const TempFile a(rowsFile({{0, 1}}));
  const TempFile b(rowsFile({{0, 2}}));
  EXPECT_EQ(run({"diff", "-q", a.path(), a.path()}), wrote(""));
  EXPECT_EQ(run({"diff", "-q", a.path(), b.path()}), differ(""));
}

TEST(DiffCommand, JsonLines) {
  const TempFile a(rowsFile({{0, 1}, {1, 2}}));
  const TempFile b(rowsFile({{1, 3}}));
  const std::string files =
      R"({"schema":2,"file_a":")" + a.path() + R"(","file_b":")" + b.path() + R"(",)";
  const std::string group = R"("group_a":{"group":0,"name":"engine"},)"
                            R"("group_b":{"group":0,"name":"engine"},)";
  EXPECT_EQ(run({"diff", "--json", a.path(), b.path()}),
            differ(files + R"("kind":"values","of":"channel",)" + group +
                   R"("name":"speed","member":null,"a":null,"b":null,"only_in":null,"count":1,)"
                   R"("compared":1,"first":[{"record_a":1,"record_b":0,"master":1,"a":2,"b":3}]})"
                   "\n" +
                   files + R"("kind":"records","of":"group",)" + group +
                   R"("name":null,"member":null,"a":null,"b":null,"only_in":"a","count":1,)"
                   R"("compared":0,"first":[{"record_a":0,"record_b":null,"master":0,"a":null,)"
                   R"("b":null}]})"
                   "\n" +
                   files +
                   R"("kind":"summary","same":false,"groups":1,"channels":2,"records":1,)"
                   R"("values":2,"different_members":0,"different_values":1,"things_in_one":0,)"
                   R"("records_in_one":1})"
                   "\n"));
}

TEST(DiffCommand, WhatCannotBeReadIsNotTheSame) {
  SmallFile cut;
  const TempFile damaged(cut.bytes().substr(0, SmallFile::end - 1));
  const TempFile whole(cut.bytes());
  const TempFile other("no measurement");
  const std::string finding =
      "mdf: " + damaged.path() +
      ": 720 (0x2d0): expected the 42 bytes of ##DT, found 41 up to the file's end\n";
  RunResult result = run({"diff", damaged.path(), damaged.path()});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.messages, finding + finding);
  result = run({"diff", damaged.path(), whole.path()});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages, finding);
  EXPECT_EQ(run({"diff", whole.path(), other.path()}),
            said(2, other.path() + ": this is not an MDF file: it begins with \"no measu\""));
}

}  // namespace
