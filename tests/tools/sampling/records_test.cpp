// How records stand in the data: their ids, their lengths and their counts.

#include "reader/data/records.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "reader/bytes/input_file.h"
#include "tools/support/file_builder.h"
#include "tools/support/temp_file.h"

using namespace mdf_reader;
using mdf_tests::Bytes;
using mdf_tests::FileBuilder;
using mdf_tests::TempFile;

namespace {

ChannelGroup groupOf(std::uint64_t record_id, std::uint64_t cycles, std::uint32_t bytes,
                     unsigned flags = 0) {
  ChannelGroup group;
  group.offset = 1000 + record_id;
  group.record_id = record_id;
  group.cycles = cycles;
  group.data_bytes = bytes;
  group.flags = flags;
  return group;
}

/// A data group whose data is in a block of a file.
class GroupInFile {
 public:
  /// @param unfinished the flags of an unfinished file; -1 for a finished one
  GroupInFile(unsigned code, const std::vector<ChannelGroup>& groups, const std::string& data,
              int unfinished = -1)
      : path_(contentsWith(data, unfinished)), input_(path_.path()), file_(input_) {
    group_.offset = 900;
    group_.record_id_code = code;
    group_.data = 168;
    group_.groups = groups;
  }

  const DataGroup& group() const { return group_; }
  const std::string& findings() const { return findings_; }
  DataStream stream() {
    return {file_, {group_.offset, group_.data}, DataStream::Access::forward, report_};
  }
  Records records() { return {file_, group_, report_}; }

 private:
  static std::string contentsWith(const std::string& data, int unfinished) {
    FileBuilder contents(unfinished < 0 ? "MDF     " : "UnFinMF ");
    contents.addData(data);
    contents.write(60, Bytes().u16(static_cast<std::uint16_t>(std::max(unfinished, 0))));
    return contents.bytes();
  }

  TempFile path_;
  InputFile input_;
  DataFile file_;
  DataGroup group_;
  std::string findings_;  ///< their offsets
  FindingSink report_ = [this](const Finding& finding) {
    findings_ += std::to_string(finding.offset) + ' ';
  };
};

std::string operator""_b(const char* bytes, std::size_t size) { return {bytes, size}; }

TEST(RecordFormat, TellsRecordsByTheirIds) {
  struct Case {
    unsigned id_bytes;
    std::string data;
    std::string records;  ///< "ID:BYTES " of each, and how they end
  };
  const std::vector<Case> cases = {
      {1, "\1ab\1cd"_b, "1:ab 1:cd end"},
      {2, "\1\0ab\2\1x"_b, "1:ab 258:x end"},
      {4, "\1\0\0\0ab"_b, "1:ab end"},
      {8, "\1\0\0\0\0\0\0\0ab"_b, "1:ab end"},
      {0, "xyz"_b, "0:x 0:y 0:z end"},
      {1, "\7\3\0\0\0xyz\1ab\7\0\0\0\0"_b, "7:xyz 1:ab 7: end"},
      {1, "\1ab\5"_b, "1:ab no group 5"},
      {2, "\1\0ab\1"_b, "1:ab torn 2"},
      {1, "\1ab\1c"_b, "1:ab torn 3"},
      {1, "\1ab\7\3\0\0"_b, "1:ab torn 5"},
      {1, "\1ab\7\3\0\0\0xy"_b, "1:ab past the end 3"},
      {1, "\7\xFF\xFF\xFF\xFFxyz"_b, "past the end 4294967295"},
      {1, ""_b, "end"},
  };
  for (const Case& each : cases) {
    GroupInFile file(each.id_bytes,
                     {groupOf(1, 0, 2), groupOf(258, 0, 1), groupOf(0, 0, 1), groupOf(7, 0, 0, 1)},
                     each.data);
    const RecordFormat format(file.group(), each.id_bytes);
    DataStream data = file.stream();
    std::string text;
    Record record = format.at(data, 0);
    for (; record.group != nullptr; record = format.at(data, record.next)) {
      text += std::to_string(record.group->record_id) + ':' + std::string(record.bytes) + ' ';
    }
    const std::vector<std::string> ends = {"", "end", "no group ", "torn ", "past the end "};
    text += ends.at(record.kind);
    text += record.kind == Record::end ? "" : std::to_string(record.number);
    EXPECT_EQ(text, each.records) << testing::PrintToString(each.data);
  }
}

TEST(RecordFormat, SizesOfRecordIds) {
  const std::string four = "\1\0\0\0a\2\0\0\0b"_b;
  const std::string eight = "\1\0\0\0\0\0\0\0a\2\0\0\0\0\0\0\0b"_b;
  struct Case {
    unsigned code;
    std::string data;
    unsigned bytes;
  };
  for (const Case& each : std::vector<Case>{{0, "ab", 0},
                                            {1, "\1a\2b", 1},
                                            {2, "\1\0a\2\0b"_b, 2},
                                            {3, four, 4},
                                            {4, four, 4},
                                            {4, eight, 8},
                                            {4, four + "more", 4},
                                            {4, eight + "more", 8},
                                            {4, "neither", 4},
                                            {8, eight, 8},
                                            {5, four, 0}}) {
    GroupInFile file(each.code, {groupOf(1, 1, 1), groupOf(2, 1, 1)}, each.data);
    DataStream data = file.stream();
    EXPECT_EQ(recordIdBytes(file.group(), data, true), each.bytes) << each.code;
  }
}

/// The records of all groups, each with a blank, and a bar at each group's end.
std::string recordsOf(GroupInFile& file, const std::optional<CopyLimits>& copies) {
  Records records = file.records();
  if (copies) {
    std::vector<const ChannelGroup*> groups;
    for (const ChannelGroup& group : file.group().groups) {
      groups.push_back(&group);
    }
    records.expect(groups, *copies);
  }
  std::string text;
  for (const ChannelGroup& group : file.group().groups) {
    records.forEach(group, [&](std::string_view record) {
      text += std::string(record) + ' ';
      return true;
    });
    text += '|';
  }
  return text;
}

TEST(Records, AreAsManyAsTheirCountOrTheDataSays) {
  constexpr int open = Identification::cycle_counters_open;
  struct Case {
    unsigned code;
    std::vector<ChannelGroup> groups;
    std::string data;
    std::string records;
    std::string findings;
    int unfinished = -1;
  };
  const ChannelGroup two = groupOf(1, 2, 2);
  const std::string mixed = "\1ab\2x\1cd\2y"_b;
  const std::vector<Case> cases = {
      {0, {two}, "abcd", "ab cd |", ""},
      {0, {two}, "abcdef", "ab cd |", "1001 "},
      {0, {two}, "abc", "ab |", "1001 "},
      {0, {groupOf(1, 0, 2)}, "", "|", ""},
      {0, {groupOf(1, 0, 2)}, "ab", "ab |", "1001 "},
      {0, {groupOf(1, 0, 2)}, "abc", "ab |", "194 ", open},
      {0, {groupOf(1, 1, 2)}, "abcd", "ab cd |", "", open},
      {0, {groupOf(1, 0, 2)}, "abcd", "ab cd |", "", 0},
      {0, {two}, "ab", "ab |", "1001 ", 0},
      {0, {groupOf(1, 3, 0)}, "", "   |", ""},
      {1, {two}, "\1ab\1cd", "ab cd |", ""},
      {1, {two, groupOf(2, 2, 1)}, mixed, "ab cd |x y |", ""},
      {1, {two, groupOf(2, 1, 1)}, mixed, "ab cd |x |", "1002 "},
      {1, {two, groupOf(2, 3, 1)}, mixed, "ab cd |x y |", "1002 "},
      {1, {two, groupOf(2, 0, 1)}, mixed, "ab cd |x y |", "", open},
      {1, {two, groupOf(3, 2, 1)}, mixed, "ab ||", "195 "},
      {1, {two, groupOf(2, 2, 1)}, mixed + "\1e", "ab cd |x y |", "202 "},
      {5, {two, groupOf(2, 2, 1)}, mixed, "||", "900 "},
      {1, {two, groupOf(1, 2, 1)}, mixed, "ab ||", "1001 195 "},
      {0, {two, groupOf(2, 2, 1)}, "abcd", "||", "900 "},
      {0, {two, groupOf(2, 0, 1)}, "abcd", "ab cd ||", ""},
  };
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const Case& each = cases[i];
    for (const auto& copies : std::vector<std::optional<CopyLimits>>{
             std::nullopt, CopyLimits{1000, 0}, CopyLimits{10, 1000}, CopyLimits{0, 0}}) {
      GroupInFile file(each.code, each.groups, each.data, each.unfinished);
      EXPECT_EQ(recordsOf(file, copies), each.records) << i;
      EXPECT_EQ(file.findings(), each.findings) << i;
    }
  }
}

/// Bytes of all open files without a name.
std::uint64_t bytesOfNamelessFiles() {
  constexpr int most_files = 256;
  std::uint64_t bytes = 0;
  for (int number = 0; number < most_files; ++number) {
    struct stat facts {};
    if (fstat(number, &facts) == 0 && S_ISREG(facts.st_mode) && facts.st_nlink == 0) {
      bytes += static_cast<std::uint64_t>(facts.st_size);
    }
  }
  return bytes;
}

TEST(Records, TakeNoMoreRoomOnTheDiskThanTheyMay) {
  const std::string data = "\1aa\2bb\3cc\4dddd\1AA\2BB\3CC";
  GroupInFile file(1, {groupOf(1, 2, 2), groupOf(2, 2, 2), groupOf(3, 2, 2), groupOf(4, 1, 4)},
                   data);
  Records records = file.records();
  std::vector<const ChannelGroup*> groups;
  for (const ChannelGroup& group : file.group().groups) {
    groups.push_back(&group);
  }
  records.expect(groups, {9, 9});
  const std::uint64_t before = bytesOfNamelessFiles();
  std::vector<std::uint64_t> bytes;
  const auto read = [&](std::size_t group) {
    auto cursor = records.read(*groups[group]);
    bytes.push_back(bytesOfNamelessFiles() - before);
    return cursor;
  };
  const auto textOf = [](RecordCursor& cursor) {
    std::string text;
    for (RecordSpan span = cursor.next(1); span.count > 0; span = cursor.next(1)) {
      text += span.at(0);
    }
    return text;
  };
  auto first = read(0);
  const auto alone = read(2);
  EXPECT_EQ(textOf(*first), "aaAA");
  EXPECT_EQ(textOf(*alone), "ccCC");
  first.reset();
  EXPECT_EQ(textOf(*read(2)), "ccCC");
  EXPECT_EQ(textOf(*read(3)), "dddd");
  EXPECT_EQ(textOf(*read(1)), "bbBB");
  EXPECT_EQ(bytes, (std::vector<std::uint64_t>{8, 8, 8, 8, 8}));
  EXPECT_EQ(file.findings(), "");
}

TEST(Records, MayTakeMoreRoomForLargeFiles) {
  EXPECT_EQ(CopyLimits::forFile(1000).in_file, std::uint64_t{1} << 30U);
  EXPECT_EQ(CopyLimits::forFile(std::uint64_t{1} << 30U).in_file, std::uint64_t{1} << 34U);
}

TEST(Records, EndWhereTheVisitorWantsNoMore) {
  for (const unsigned code : {0U, 1U}) {
    const std::string data = code == 0 ? "ab" : "\1a\2x\1b";
    std::vector<ChannelGroup> groups = {groupOf(1, 2, 1)};
    if (code == 1) {
      groups.push_back(groupOf(2, 1, 1));
    }
    GroupInFile file(code, groups, data);
    Records records = file.records();
    EXPECT_EQ(records.areSorted(file.group().groups[0]), code == 0);
    int visited = 0;
    records.forEach(file.group().groups[0], [&](std::string_view) {
      ++visited;
      return false;
    });
    EXPECT_EQ(visited, 1);
    EXPECT_EQ(file.findings(), "");
  }
}

TEST(Records, ValuesHaveTheOffsetsOfTheirGroupAlone) {
  GroupInFile file(1, {groupOf(1, 1, 1), groupOf(2, 2, 0, 1)},
                   "\2\3\0\0\0one\1a\2\0\0\0\0\2\2\0\0\0zz"_b);
  Records records = file.records();
  const auto values = records.valuesIn(file.group().groups[1]);
  EXPECT_EQ(values->size(), 7U + 4 + 6);
  EXPECT_EQ(values->at(11), "zz");
  EXPECT_EQ(values->at(0), "one");
  EXPECT_EQ(values->at(7), "");
  for (const std::uint64_t offset : {std::uint64_t{1}, std::uint64_t{17}, UINT64_MAX}) {
    EXPECT_FALSE(values->at(offset)) << offset;
  }
}

}  // namespace
