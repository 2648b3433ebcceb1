#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "../support/file_builder.h"
#include "../support/program.h"
#include "../support/scratch_folder.h"
#include "../support/small_file.h"

using namespace mdf_tests;
using nlohmann::json;

namespace {

using Words = std::vector<std::string>;

/// Runs a copy in a folder whose name is left out of what it says.
RunResult copyIn(const ScratchFolder& folder, Words words) {
  const std::string path = folder.path().string() + '/';
  for (std::string& word : words) {
    word = word.find(".mf4") == std::string::npos ? word : path + word;
  }
  words.insert(words.begin(), "copy");
  RunResult result = run(words);
  for (std::size_t at = result.messages.find(path); at != std::string::npos;
       at = result.messages.find(path)) {
    result.messages.erase(at, path.size());
  }
  return result;
}

/// The small file with a block of an unknown type where a comment should be: it leads to the
/// speed's name, and its bytes after the links stay as they are.
class OddFile : public SmallFile {
 public:
  OddFile() { setComment(add("XY", {speed_name, 0}, "any bytes")); }
};

TEST(CopyCommand, WholeFile) {
  const ScratchFolder folder;
  folder.write("in.mf4", OddFile().bytes());
  const RunResult result = copyIn(folder, {"in.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(result.messages,
            "mdf: in.mf4: the copy keeps 1 problem of the file, see 'mdf check'\n");

  const std::string version = run({"--version"}).output;  // "mdf ..." in a line
  OddFile expected;
  const std::uint64_t comment = expected.metadata(
      "<FHcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>copied from in.mf4</TX>"
      "<tool_id>mdf</tool_id><tool_vendor></tool_vendor><tool_version>" +
      version.substr(4, version.size() - 5) + "</tool_version></FHcomment>");
  const std::uint64_t history =
      expected.add("FH", {0, comment}, Bytes().u64(0).i16(0).i16(0).u8(2).zeros(3).str());
  expected.link(OddFile::header, 1, history);
  std::string bytes = bytesOf(folder / "out.mf4");
  bytes.replace(static_cast<std::size_t>(history) + 40, 8, 8, '\0');  // the time of the copy
  EXPECT_EQ(bytes, expected.bytes());
}

TEST(CopyCommand, Refusals) {
  struct Case {
    Words words;
    int exit_code;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"in.mf4", "-o", "in.mf4", "--force"}, 2, "mdf: the output in.mf4 is the file to read\n"},
      {{"in.mf4", "-o", "there.mf4"},
       2,
       "mdf: cannot write there.mf4: File exists; --force replaces it\n"},
      {{"none.mf4", "-o", "out.mf4"}, 2, "mdf: cannot open none.mf4: No such file or directory\n"},
      {{"in.mf4", "-o", "out.mf4", "--level", "3"}, 2, "mdf: --level requires --zip\n"},
      {{"text.mf4", "-o", "out.mf4"},
       2,
       "mdf: text.mf4: this is not an MDF file: it begins with \"text\"\n"},
  };
  const ScratchFolder folder;
  folder.write("in.mf4", SmallFile().bytes());
  folder.write("there.mf4", "");
  folder.write("text.mf4", "text");
  for (const Case& each : cases) {
    const RunResult result = copyIn(folder, each.words);
    EXPECT_EQ(result.exit_code, each.exit_code);
    EXPECT_EQ(result.messages, each.message);
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "out.mf4"));
}

TEST(CopyCommand, ProblemsOfTheFile) {
  const ScratchFolder folder;
  folder.write("faulty.mf4", faultyFile());
  const RunResult result = copyIn(folder, {"faulty.mf4", "-o", "out.mf4"});
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_EQ(
      result.messages,
      "mdf: faulty.mf4: 64 (0x40): expected link 5 of ##HD to lead to the 24 bytes of a block "
      "header, found only 23 at 739 (0x2e3)\n");
  EXPECT_TRUE(std::filesystem::exists(folder / "out.mf4"));
}

/// Adds an event in front of others; of one that ends, with the event that it began with.
std::uint64_t addEvent(FileBuilder& file, const std::string& name, double seconds,
                       std::uint64_t next, std::uint8_t range = 0, std::uint64_t began = 0) {
  const std::uint64_t text = file.text(name);
  return file.add("EV", {next, 0, began, text, 0},
                  Bytes()
                      .u8s({6, 1, range, 4, 0, 0, 0, 0})
                      .u32(0)
                      .u16(0)
                      .u16(0)
                      .i64(static_cast<std::int64_t>(seconds * 1000))
                      .f64(0.001));
}

TEST(CopyCommand, EventsWithinLimits) {
  const ScratchFolder folder;
  SmallFile file;
  const std::uint64_t late = addEvent(file, "late", 3.5, 0);
  const std::uint64_t began = addEvent(file, "begins early", 0.5, late, 1);
  const std::uint64_t ended = addEvent(file, "ends", 2.5, began, 2, began);
  const std::uint64_t inside = addEvent(file, "inside", 2, ended);
  const std::uint64_t first = addEvent(file, "early", 0.999, inside);
  file.link(SmallFile::header, 4, first);
  folder.write("in.mf4", file.bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "--from", "1", "--to", "3"}).exit_code, 0);
  EXPECT_EQ(run({"list", "events", (folder / "out.mf4").string()}).output,
            "offset  position  unit  kind    range  cause  name          comment\n"
            "  1016         2  s     marker  point  user   inside\n"
            "   888       2.5  s     marker  end    user   ends\n"
            "   760       0.5  s     marker  begin  user   begins early\n");
}

TEST(CopyCommand, BlocksThatTheEndCutsOff) {
  const ScratchFolder folder;
  SmallFile file;
  const std::uint64_t name = file.text("velocity");
  file.link(SmallFile::speed, 2, name);
  folder.write("in.mf4", file.bytes().substr(0, static_cast<std::size_t>(name) + 24 + 5));
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4"}).exit_code, 1);  // for what is missing
  const std::string out = (folder / "out.mf4").string();
  EXPECT_EQ(run({"export", out}).output.substr(0, 10), "time,veloc");
  EXPECT_EQ(run({"check", out}).output, "");
}

TEST(CopyCommand, FilesThatAreCutOffAnywhere) {
  constexpr std::size_t step = 11;
  const ScratchFolder folder;
  SmallFile file;
  file.setComment(file.metadata("<HDcomment><TX>a drive</TX></HDcomment>"));
  file.link(SmallFile::header, 4, addEvent(file, "event", 1, 0));
  file.link(SmallFile::header, 3,
            file.add("AT", {0, 0, 0, 0},
                     Bytes().u16(1).u16(0).u32(0).zeros(16).u64(3).u64(3).text("abc")));
  const std::uint64_t conversion = file.addConversion({1, {}, {0, 2}, "km/h"});
  file.link(SmallFile::speed, 4, conversion);
  for (std::size_t size = FileBuilder::header + 24; size < file.bytes().size(); size += step) {
    folder.write("in.mf4", file.bytes().substr(0, size));
    const RunResult result = copyIn(folder, {"in.mf4", "-o", "out.mf4", "--force"});
    EXPECT_EQ(result.messages.find("cannot be copied"), std::string::npos) << result.messages;
  }
}

TEST(CopyCommand, WithoutWhatNobodyWants) {
  const ScratchFolder folder;
  SmallFile file;
  const std::uint64_t attachment = file.add(
      "AT", {0, 0, 0, 0}, Bytes().u16(1).u16(0).u32(0).zeros(16).u64(3).u64(3).text("abc"));
  const std::uint64_t reduction =
      file.add("SR", {0, 0}, Bytes().u64(0).f64(1).u8(1).u8(0).zeros(6));
  file.link(SmallFile::header, 3, attachment);
  file.link(SmallFile::header, 4, addEvent(file, "event", 1, 0));
  file.link(SmallFile::group, 4, reduction);
  folder.write("in.mf4", file.bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "--without", "attachments", "--without",
                            "events", "--without", "reductions"})
                .exit_code,
            0);
  const std::string blocks = run({"list", "blocks", (folder / "out.mf4").string()}).output;
  EXPECT_EQ(blocks.substr(0, blocks.find("   768")),  // the new entry of the history
            "offset  type  length  links\n"
            "    64  HD       104  6\n"
            "   168  DG        64  4\n"
            "   232  CG       104  6\n"
            "   336  CN       160  8\n"
            "   496  CN       160  8\n"
            "   656  TX        29  0\n"
            "   688  TX        30  0\n"
            "   720  DT        42  0\n");
}

/// What follows the headers of all blocks with these letters, in the order of a file.
std::vector<std::string> contentsOf(const std::string& bytes, const std::string& letters) {
  constexpr std::size_t header = 24;
  std::vector<std::string> contents;
  for (std::size_t at = bytes.find("##" + letters); at != std::string::npos;
       at = bytes.find("##" + letters, at + header)) {
    const auto length = static_cast<unsigned char>(bytes[at + 8]);  // all are short
    contents.push_back(bytes.substr(at + header, length - header));
  }
  return contents;
}

ChannelSpec withBit(ChannelSpec channel, std::uint32_t bit) {
  channel.flags = 2;
  channel.invalidation_bit = bit;
  return channel;
}

/// Two records of 18 data bytes and two bytes of invalidation bits, and a reduction of them.
FileBuilder wideRecords() {
  FileBuilder file;
  ChannelSpec nibble = withBit(channelOf("nibble", 0, 11, 4), 9);
  nibble.bit_offset = 4;
  const auto record = [](double time, std::uint8_t number) {
    const auto byte = [number](unsigned more) { return static_cast<std::uint8_t>(number + more); };
    return Bytes()
        .u16(999)
        .f64(time)
        .u8s({byte(1), byte(0x20), 7, 7, 7, 7, byte(3), byte(4)})
        .str();
  };
  const std::string bits = Bytes().u8s({0xFF, 0}).str();
  const std::string invalid = Bytes().u8s({0, 2}).str();
  const auto data = file.addData(record(1, 0) + bits + record(2, 0x10) + invalid);
  const auto reduced = file.add("RD", {}, record(1, 0) + record(1, 0) + record(2, 0x10) + bits);
  const auto reduction =
      file.add("SR", {0, reduced}, Bytes().u64(1).f64(2).u8s({1, 1, 0, 0, 0, 0, 0, 0}));
  GroupSpec spec{2, 18, 2};
  const auto group = file.addGroupOf(
      spec, {channelOf("front", 0, 0, 16), timeChannel(2), withBit(channelOf("a", 0, 10, 8), 0),
             nibble, withBit(channelOf("wide", 0, 12, 32), 1), channelOf("big", 1, 16, 16)});
  file.link(group, 4, reduction);
  file.addDataGroup({group}, data);
  return file;
}

TEST(CopyCommand, BytesOfOtherChannelsAreCutOut) {
  const ScratchFolder folder;
  folder.write("in.mf4", wideRecords().bytes());
  const RunResult result =
      copyIn(folder, {"in.mf4", "-o", "out.mf4", "-c", "nib*", "--channel", "big"});
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.exit_code, 0);
  const std::string copy = bytesOf(folder / "out.mf4");
  const auto first = Bytes().f64(1).u8s({0x20, 3, 4}).str();
  const auto second = Bytes().f64(2).u8s({0x30, 0x13, 0x14}).str();
  EXPECT_EQ(contentsOf(copy, "DT"),
            Words({first + Bytes().u8(0).str() + second + Bytes().u8(2).str()}));
  EXPECT_EQ(contentsOf(copy, "RD"), Words({first + first + second + Bytes().u8(0).str()}));
  EXPECT_EQ(run({"export", (folder / "out.mf4").string()}).output,
            "time [s],nibble,big\n1,2,772\n2,,4884\n");
  EXPECT_EQ(run({"list", "channels", (folder / "out.mf4").string()}).output.find("wide"),
            std::string::npos);
}

TEST(CopyCommand, ChannelsOfNoFile) {
  const ScratchFolder folder;
  folder.write("in.mf4", wideRecords().bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "-c", "rpm", "-c", "x*"}).messages,
            "mdf: in.mf4: cannot be copied: no channel matches \"rpm\" \"x*\"\n");
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "-c", "rpm", "-c", "a"}).messages,
            "mdf: in.mf4: note: no channel matches \"rpm\"\n");
}

/// Mixed records of two groups, each of a number to keep and one to lose.
FileBuilder mixedRecords() {
  FileBuilder file;
  const auto groupOf = [&](std::uint64_t id, std::uint32_t kept, std::uint32_t lost) {
    return file.addGroupOf({2, 3, 0, id},
                           {channelOf("kept", 0, kept, 16), channelOf("lost", 0, lost, 8)});
  };
  const auto one = groupOf(1, 1, 0);
  const auto two = groupOf(2, 0, 2);
  const auto data =
      file.addData(Bytes().u8s({1, 99, 11, 12, 2, 21, 22, 99, 2, 23, 24, 99, 1, 99, 13, 14}).str());
  file.addDataGroup({one, two}, data, 1);
  return file;
}

TEST(CopyCommand, BytesAreCutOutOfMixedRecords) {
  const ScratchFolder folder;
  folder.write("in.mf4", mixedRecords().bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "mixed.mf4", "-c", "kept"}).exit_code, 0);
  EXPECT_EQ(contentsOf(bytesOf(folder / "mixed.mf4"), "DT"),
            Words({Bytes().u8s({1, 11, 12, 2, 21, 22, 2, 23, 24, 1, 13, 14}).str()}));
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "sorted.mf4", "-c", "kept", "--sort"}).exit_code, 0);
  EXPECT_EQ(contentsOf(bytesOf(folder / "sorted.mf4"), "DT"),
            Words({Bytes().u8s({21, 22, 23, 24}).str(), Bytes().u8s({11, 12, 13, 14}).str()}));
}

TEST(CopyCommand, AttachmentsOfOtherChannelsGo) {
  const ScratchFolder folder;
  SmallFile file;
  const auto attach = [&](const std::string& name) {
    return file.add("AT", {0, file.text(name), 0, 0},
                    Bytes().u16(1).u16(0).u32(0).zeros(16).u64(3).u64(3).text("abc"));
  };
  const std::uint64_t of_speed = attach("of speed");
  const std::uint64_t of_all = attach("of all");
  ChannelSpec spec = channelOf("speed", 0, 8, 8);
  spec.attachments = 1;
  const std::uint64_t speed =
      file.add("CN", {0, 0, SmallFile::speed_name, 0, 0, 0, 0, 0, of_speed}, spec.fields());
  file.link(SmallFile::time, 0, speed);
  file.chain({of_speed, of_all});
  file.link(SmallFile::header, 3, of_speed);
  folder.write("in.mf4", file.bytes());
  const auto attachments = [&](const std::string& channel) {
    copyIn(folder, {"in.mf4", "-o", "out.mf4", "--force", "-c", channel});
    const std::string list = run({"list", "attachments", (folder / "out.mf4").string()}).output;
    return std::string(list.find("of speed") == std::string::npos ? "" : "of speed, ") +
           (list.find("of all") == std::string::npos ? "" : "of all");
  };
  EXPECT_EQ(attachments("speed"), "of speed, of all");
  EXPECT_EQ(attachments("time"), "of all");
}

/// Five records of a time and of two numbers, the second of which is invalid in the fourth.
FileBuilder timedRecords() {
  FileBuilder file;
  const auto record = [](double time, std::int16_t a, float b, std::uint8_t bits) {
    return Bytes().f64(time).i16(a).f32(b).u8(bits).str();
  };
  const auto data = file.addData(record(0.25, -4, 1, 0) + record(0.75, 2, 2, 0) +
                                 record(2, 5, 4, 0) + record(2.5, 6, 100, 1) + record(4, 7, 8, 1));
  file.addSortedGroup(
      {5, 14, 1}, {timeChannel(), channelOf("a", 2, 8, 16), withBit(channelOf("b", 4, 10, 32), 0)},
      data);
  return file;
}

TEST(CopyCommand, SampleReductions) {
  const ScratchFolder folder;
  folder.write("in.mf4", timedRecords().bytes());
  EXPECT_EQ(copyIn(folder, {"in.mf4", "-o", "out.mf4", "--reductions", "2s,10s"}).messages, "");
  const auto part = [](double time, std::int16_t a, float b) {
    return Bytes().f64(time).i16(a).f32(b).str();
  };
  const std::string valid(1, '\0');
  const std::string invalid(1, '\1');
  const Words expected = {
      part(0, -1, 1.5) + part(0, -4, 1) + part(0, 2, 2) + valid +   // two records
          part(2, 6, 4) + part(2, 5, 4) + part(2, 6, 4) + valid +   // mean of 5 and 6: 5.5
          part(4, 7, 8) + part(4, 7, 8) + part(4, 7, 8) + invalid,  // one
      part(0, 3, 7.0F / 3) + part(0, -4, 1) + part(0, 7, 4) + valid};
  EXPECT_EQ(contentsOf(bytesOf(folder / "out.mf4"), "RD"), expected);
  const std::string page = run({"info", (folder / "out.mf4").string()}).output;
  const std::size_t begin = page.find("group  reduced");
  EXPECT_EQ(page.substr(begin, page.find("\n\n", begin) - begin),
            "group  reduced to  records\n"
            "    0         2 s        3\n"
            "    0        10 s        1");
  const json document = json::parse(run({"info", "--json", (folder / "out.mf4").string()}).output);
  EXPECT_EQ(document["files"][0]["groups"][0]["reductions"],
            json::parse(R"([{"interval": 2.0, "unit": "s", "records": 3},
                            {"interval": 10.0, "unit": "s", "records": 1}])"));
}

TEST(CopyCommand, SampleReductionsTakeThePlaceOfOthers) {
  const ScratchFolder folder;
  folder.write("in.mf4", timedRecords().bytes());
  copyIn(folder, {"in.mf4", "-o", "a.mf4", "--reductions", "2s,10s"});
  EXPECT_EQ(copyIn(folder, {"a.mf4", "-o", "b.mf4", "--reductions", "2s", "-c", "a"}).messages, "");
  const auto part = [](double time, std::int16_t a) { return Bytes().f64(time).i16(a).str(); };
  const Words expected = {part(0, 3) + part(0, -4) + part(0, 7),  // as it was, without b
                          part(0, -1) + part(0, -4) + part(0, 2) + part(2, 6) + part(2, 5) +
                              part(2, 6) + part(4, 7) + part(4, 7) + part(4, 7)};
  std::vector<std::string> contents = contentsOf(bytesOf(folder / "b.mf4"), "RD");
  EXPECT_EQ(contents, expected);
  folder.write("no_time.mf4", mixedRecords().bytes());
  EXPECT_EQ(copyIn(folder, {"no_time.mf4", "-o", "c.mf4", "--reductions", "1s"}).messages,
            "mdf: no_time.mf4: note: channel group 0 gets no sample reductions: it has no time in "
            "its records; neither do 1 more\n");
  EXPECT_EQ(copyIn(folder, {"a.mf4", "-o", "d.mf4", "--reductions", "1m"}).exit_code, 2);
}

TEST(CopyCommand, FromStandardInputToStandardOutput) {
  const ScratchFolder folder;
  folder.write("in.mf4", SmallFile().bytes());
  RunOptions options;
  options.input = SmallFile().bytes();
  const RunResult result = run({"copy", "-", "-o", "-", "--zip", "none"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  options.input = result.output;
  EXPECT_EQ(run({"export", "-"}, options).output,
            run({"export", (folder / "in.mf4").string()}).output);
}

}  // namespace
