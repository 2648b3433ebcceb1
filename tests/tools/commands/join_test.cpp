#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "../support/file_builder.h"
#include "../support/program.h"
#include "../support/scratch_folder.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;

constexpr std::uint64_t second = 1000000000;
constexpr std::uint64_t noon = 1700000000 * second;

/// Runs the program in a folder whose name is left out of what it says.
RunResult runIn(const ScratchFolder& folder, Words words) {
  const std::string path = folder.path().string() + '/';
  for (std::string& word : words) {
    word = word.find(".mf4") == std::string::npos ? word : path + word;
  }
  RunResult result = run(words);
  for (std::string* const text : {&result.messages, &result.output}) {
    for (std::size_t at = text->find(path); at != std::string::npos; at = text->find(path)) {
      text->erase(at, path.size());
    }
  }
  return result;
}

/// What an export of a file shows of its channel groups.
std::string shown(const ScratchFolder& folder, const std::string& name) {
  return runIn(folder, {"export", name}).output;
}

void setStart(FileBuilder& file, std::uint64_t nanoseconds, std::uint8_t flags = 0) {
  file.write(FileBuilder::header + 72, Bytes().u64(nanoseconds).str());
  file.write(FileBuilder::header + 84, Bytes().u8(flags).str());
}

ChannelSpec masterOf(unsigned data_type, std::uint32_t bits) {
  ChannelSpec master = timeChannel();
  master.data_type = data_type;
  master.bit_count = bits;
  return master;
}

/// A file of one group: a master, and a counter of a byte after it.
class Piece : public FileBuilder {
 public:
  Piece(std::uint64_t start, ChannelSpec master, std::vector<double> conversion,
        const std::vector<std::string>& records) {
    setStart(*this, start);
    if (!conversion.empty()) {
      ConversionSpec spec;
      spec.type = 1;
      spec.values = std::move(conversion);
      spec.unit = master.unit;
      master.unit = "";
      master.conversion = addConversion(spec);
    }
    const auto bytes = static_cast<std::uint32_t>(records.front().size());
    std::string all;
    for (const std::string& record : records) {
      all += record;
    }
    GroupSpec group;
    group.name = "engine";
    group.cycles = records.size();
    group.data_bytes = bytes;
    addSortedGroup(group, {master, channelOf("count", 0, bytes - 1, 8)}, addData(all));
  }
};

std::string real(double time, unsigned count) {
  return Bytes().f64(time).u8(static_cast<std::uint8_t>(count)).str();
}
std::string milliseconds(std::uint16_t time, unsigned count) {
  return Bytes().u16(time).u8(static_cast<std::uint8_t>(count)).str();
}
std::string shortReal(float time, unsigned count) {
  return Bytes().f32(time).u8(static_cast<std::uint8_t>(count)).str();
}

/// Files whose masters are stored in some way, and what the channels of the joined file say.
struct Way {
  std::string name;
  ChannelSpec master;
  std::vector<double> conversion;
  std::vector<std::string> first;
  std::vector<std::string> second;
  std::uint64_t later;
  std::string times;  ///< a line for each record
  unsigned data_type;
  unsigned bits;
};

void PrintTo(const Way& way, std::ostream* os) { *os << way.name; }

class JoinedTimes : public testing::TestWithParam<Way> {};

TEST_P(JoinedTimes, GoOnFromTheStartOfTheFirstFile) {
  const Way& way = GetParam();
  const ScratchFolder folder;
  folder.write("a.mf4", Piece(noon, way.master, way.conversion, way.first).bytes());
  folder.write("b.mf4", Piece(noon + way.later, way.master, way.conversion, way.second).bytes());
  EXPECT_EQ(runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4"}).exit_code, 0);
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],count\n" + way.times);
  const std::string channels =
      runIn(folder, {"list", "channels", "out.mf4", "--name", "time", "--json"}).output;
  EXPECT_PRED2(contains, channels, "\"data_type_number\":" + std::to_string(way.data_type) + ',');
  EXPECT_PRED2(contains, channels, "\"bit_count\":" + std::to_string(way.bits) + ',');
}

INSTANTIATE_TEST_SUITE_P(Masters, JoinedTimes,
                         testing::Values(Way{"double",
                                             masterOf(4, 64),
                                             {},
                                             {real(0, 1), real(0.5, 2)},
                                             {real(0.25, 3)},
                                             10 * second,
                                             "0,1\n0.5,2\n10.25,3\n",
                                             4,
                                             64},
                                         Way{"integer",
                                             masterOf(0, 16),
                                             {0, 0.001},
                                             {milliseconds(0, 1), milliseconds(500, 2)},
                                             {milliseconds(250, 3)},
                                             10 * second,
                                             "0,1\n0.5,2\n10.25,3\n",
                                             0,
                                             16},
                                         Way{"integer that grows too large",
                                             masterOf(0, 16),
                                             {0, 0.001},
                                             {milliseconds(60000, 1)},
                                             {milliseconds(250, 2), milliseconds(60000, 3)},
                                             10 * second,
                                             "60,1\n10.25,2\n70,3\n",
                                             2,
                                             64},
                                         Way{"integer whose unit is none of the distance",
                                             masterOf(0, 16),
                                             {0, 0.001},
                                             {milliseconds(0, 1)},
                                             {milliseconds(250, 2)},
                                             10 * second + 500000,
                                             "0,1\n10.2505,2\n",
                                             4,
                                             64},
                                         Way{"float",
                                             masterOf(4, 32),
                                             {},
                                             {shortReal(0.5F, 1)},
                                             {shortReal(0.25F, 2)},
                                             10 * second,
                                             "0.5,1\n10.25,2\n",
                                             4,
                                             32},
                                         Way{"float that is not exact",
                                             masterOf(4, 32),
                                             {},
                                             {shortReal(0.5F, 1)},
                                             {shortReal(0.25F, 2)},
                                             10 * second + 1,
                                             "0.5,1\n10.250000001,2\n",
                                             4,
                                             64}),
                         [](const auto& each) { return "Way" + std::to_string(each.index); });

/// Joins two files of a group whose master is made of the numbers of the records, one each 0.5 s.
std::string joinedVirtual(std::uint64_t later) {
  const ScratchFolder folder;
  ChannelSpec master = timeChannel();
  master.type = 3;
  master.bit_count = 0;
  folder.write("a.mf4", Piece(noon, master, {0, 0.5}, {"\1", "\2"}).bytes());
  folder.write("b.mf4", Piece(noon + later, master, {0, 0.5}, {"\3", "\4"}).bytes());
  EXPECT_EQ(runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4"}).exit_code, 0);
  const RunResult channels = runIn(folder, {"list", "channels", "out.mf4", "--name", "time"});
  return (contains(channels.output, "virtual") ? "virtual\n" : "stored\n") +
         shown(folder, "out.mf4");
}

TEST(JoinCommand, VirtualMasterStaysOneWithoutAGap) {
  EXPECT_EQ(joinedVirtual(second), "virtual\ntime [s],count\n0,1\n0.5,2\n1,3\n1.5,4\n");
}

TEST(JoinCommand, VirtualMasterIsStoredAfterAGap) {
  EXPECT_EQ(joinedVirtual(3 * second), "stored\ntime [s],count\n0,1\n0.5,2\n3,3\n3.5,4\n");
}

Piece piece(std::uint64_t start, double time, unsigned count) {
  return {start, timeChannel(), {}, {real(time, count), real(time + 1, count + 1)}};
}

TEST(JoinCommand, SaysTheOrderGapsAndOverlaps) {
  const ScratchFolder folder;
  folder.write("a.mf4", piece(noon, 0, 1).bytes());
  folder.write("b.mf4", piece(noon + 10 * second, 0.5, 3).bytes());
  folder.write("c.mf4", piece(noon + 11 * second, 0, 5).bytes());
  const RunResult result = runIn(folder, {"join", "c.mf4", "b.mf4", "a.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.output,
            "joined out.mf4: 6 records in 1 group of 3 files\n"
            "a.mf4: 2 records from 0 s to 1 s\n"
            "b.mf4: 2 records from 10.5 s to 11.5 s, after a gap of 9.5 s\n"
            "c.mf4: 2 records from 11 s to 12 s, overlaps by 0.5 s\n"
            "note: the files are put in the order of their start times: a.mf4, b.mf4, c.mf4\n");
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],count\n0,1\n1,2\n10.5,3\n11.5,4\n11,5\n12,6\n");
}

TEST(JoinCommand, KeepsTheOrderWhenAsked) {
  const ScratchFolder folder;
  folder.write("a.mf4", piece(noon, 0, 1).bytes());
  folder.write("b.mf4", piece(noon + 10 * second, 0, 3).bytes());
  runIn(folder, {"join", "b.mf4", "a.mf4", "-o", "out.mf4", "--keep-order"});
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],count\n0,3\n1,4\n-10,1\n-9,2\n");
}

TEST(JoinCommand, SideBySide) {
  const ScratchFolder folder;
  folder.write("a.mf4", piece(noon + second, 0, 1).bytes());
  folder.write("b.mf4", piece(noon, 0, 3).bytes());
  const RunResult result =
      runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4", "--side-by-side", "--json"});
  EXPECT_EQ(result.output,
            R"({"schema":2,"output":"out.mf4","files":[)"
            R"({"file":"b.mf4","start":0.0,"records":2,"first":null,"last":null,"gap":null},)"
            R"({"file":"a.mf4","start":1.0,"records":2,"first":1.0,"last":2.0,"gap":null}],)"
            R"("groups":[{"name":"engine","files":1,"records":2},)"
            R"({"name":"engine","files":1,"records":2}],)"
            R"("notes":["the files are put in the order of their start times: b.mf4, a.mf4"]})"
            "\n");
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],count\n0,3\n1,4\n\ntime [s],count\n1,1\n2,2\n");
}

/// A group with texts of variable length in signal data; offsets of 4 bytes.
FileBuilder textFile(std::uint64_t start, const std::string& text) {
  FileBuilder file;
  setStart(file, start);
  ChannelSpec texts = channelOf("text", 7, 8, 32);
  texts.type = 1;
  texts.data = file.add("SD", {}, Bytes().u32(1).text("-").u32(2).text(text).str());
  GroupSpec group;
  group.cycles = 2;
  group.data_bytes = 12;
  file.addSortedGroup(group, {timeChannel(), texts},
                      file.addData(Bytes().f64(0).u32(0).f64(1).u32(5)));
  return file;
}

TEST(JoinCommand, ValuesOfVariableLength) {
  const ScratchFolder folder;
  folder.write("a.mf4", textFile(noon, "ab").bytes());
  folder.write("b.mf4", textFile(noon + 5 * second, "cd").bytes());
  EXPECT_EQ(runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4"}).exit_code, 0);
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],text\n0,-\n1,ab\n5,-\n6,cd\n");
}

/// Unsorted data of two groups with a byte as record id.
FileBuilder unsortedFile(std::uint64_t start, std::uint8_t value) {
  FileBuilder file;
  setStart(file, start);
  std::vector<std::uint64_t> groups;
  for (const char* const name : {"first", "second"}) {
    GroupSpec group;
    group.name = name;
    group.record_id = groups.size() + 1;
    group.cycles = 1;
    group.data_bytes = 9;
    groups.push_back(file.addGroupOf(group, {timeChannel(), channelOf(name, 0, 8, 8)}));
  }
  const std::uint64_t data =
      file.addData(Bytes().u8(2).f64(0.5).u8(value + 1).u8(1).f64(0).u8(value));
  file.addDataGroup(groups, data, 1);
  return file;
}

TEST(JoinCommand, UnsortedData) {
  const ScratchFolder folder;
  folder.write("a.mf4", unsortedFile(noon, 1).bytes());
  folder.write("b.mf4", unsortedFile(noon + 5 * second, 3).bytes());
  EXPECT_EQ(
      runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4", "--zip", "deflate"}).exit_code, 0);
  EXPECT_EQ(shown(folder, "out.mf4"),
            "time [s],first\n0,1\n5,3\n\ntime [s],second\n0.5,2\n5.5,4\n");
}

TEST(JoinCommand, OtherConversionsMakeAGroupOfItsOwn) {
  const ScratchFolder folder;
  const ChannelSpec master = masterOf(0, 16);
  folder.write("a.mf4", Piece(noon, master, {0, 0.001}, {milliseconds(1000, 1)}).bytes());
  folder.write("b.mf4", Piece(noon + second, master, {0, 0.002}, {milliseconds(1000, 2)}).bytes());
  const RunResult result = runIn(folder, {"join", "a.mf4", "b.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.output,
            "joined out.mf4: 2 records in 2 groups of 2 files\n"
            "a.mf4: 1 record\n"
            "b.mf4: 1 record from 3 s to 3 s\n"
            "note: channel group 0 \"engine\" of b.mf4 stays one of its own: it has other "
            "conversions than that of a.mf4\n");
  EXPECT_EQ(shown(folder, "out.mf4"), "time [s],count\n1,1\n\ntime [s],count\n3,2\n");
}

/// The file of a piece with an event after half a second, and an attachment of three bytes.
std::string pieceWithMore(std::uint64_t start, std::int64_t base, double factor) {
  Piece file = piece(start, 0, 1);
  const std::uint64_t name = file.text("event");
  const std::uint64_t attachment = file.add(
      "AT", {0, 0, 0, 0}, Bytes().u16(1).u16(0).u32(0).zeros(16).u64(3).u64(3).text("abc"));
  const std::uint64_t event =
      file.add("EV", {0, 0, 0, name, 0, attachment},
               Bytes().u8s({6, 1, 0, 4, 0, 0, 0, 0}).u32(0).u16(1).u16(0).i64(base).f64(factor));
  file.link(FileBuilder::header, 3, attachment);
  file.link(FileBuilder::header, 4, event);
  return file.bytes();
}

TEST(JoinCommand, EventsOfAllFilesAndAttachmentsOnce) {
  const ScratchFolder folder;
  folder.write("a.mf4", pieceWithMore(noon, 5, 0.1));
  folder.write("b.mf4", pieceWithMore(noon + 10 * second, 5, 0.1));
  folder.write("c.mf4", pieceWithMore(noon + 20 * second + 1, 1, 0.5));
  EXPECT_EQ(runIn(folder, {"join", "a.mf4", "b.mf4", "c.mf4", "-o", "out.mf4"}).exit_code, 0);
  const std::string events = runIn(folder, {"list", "events", "out.mf4", "--json"}).output;
  for (const char* const position : {"0.5", "10.5", "20.500000001"}) {
    EXPECT_PRED2(contains, events, std::string("\"position\":") + position + ',');
  }
  const std::string attachments =
      runIn(folder, {"list", "attachments", "out.mf4", "--json"}).output;
  EXPECT_EQ(std::count(attachments.begin(), attachments.end(), '\n'), 1);
}

TEST(JoinCommand, Refusals) {
  struct Case {
    Words words;
    int exit_code;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"a.mf4", "b.mf4", "-o", "a.mf4", "--force"},
       2,
       "mdf: the output a.mf4 is a file to read\n"},
      {{"a.mf4", "b.mf4", "-o", "there.mf4"},
       2,
       "mdf: cannot write there.mf4: File exists; --force replaces it\n"},
      {{"a.mf4", "a.mf4", "-o", "out.mf4"}, 2, "mdf: a.mf4 is named twice\n"},
      {{"a.mf4", "none.mf4", "-o", "out.mf4"},
       2,
       "mdf: cannot open none.mf4: No such file or directory\n"},
      {{"a.mf4", "text.mf4", "-o", "out.mf4"},
       2,
       "mdf: text.mf4: this is not an MDF file: it begins with \"text\"\n"},
      {{"a.mf4", "local.mf4", "-o", "out.mf4"},
       1,
       "mdf: cannot be joined: the start times cannot be compared: that of a.mf4 is in UTC, that "
       "of local.mf4 is a local time\n"},
  };
  const ScratchFolder folder;
  folder.write("a.mf4", piece(noon, 0, 1).bytes());
  folder.write("b.mf4", piece(noon + second, 0, 1).bytes());
  Piece local = piece(noon, 0, 1);
  setStart(local, noon, 1);
  folder.write("local.mf4", local.bytes());
  folder.write("there.mf4", "");
  folder.write("text.mf4", "text");
  for (const Case& each : cases) {
    Words words = each.words;
    words.insert(words.begin(), "join");
    const RunResult result = runIn(folder, words);
    EXPECT_EQ(result.exit_code, each.exit_code);
    EXPECT_EQ(result.messages, each.message);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "out.mf4"));
}

}  // namespace
