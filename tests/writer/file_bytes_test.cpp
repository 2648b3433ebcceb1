#include <gtest/gtest.h>

#include <string>

#include "../tools/support/file_builder.h"
#include "support/bytes.h"
#include "support/read_back.h"
#include "support/recorded_output.h"
#include "writer/mdf_writer.h"

namespace mdf_tests {
namespace {

using mdf_writer::Group;
using mdf_writer::Options;
using mdf_writer::Plan;
using mdf_writer::Recording;

constexpr std::uint64_t start = 1700000000000000000;

void setUp(Plan& plan) {
  plan.start = {start, 60, false};
  plan.program = "testprog";
  plan.program_vendor = "us & them";
  plan.program_version = "1";
  plan.properties = {{"author", "<me>"}};
}

/// The identification, the header and the history of the plan above, and the comment's place.
FileBuilder startOfFile(const std::string& file_word = "MDF     ") {
  FileBuilder file(file_word);
  const std::uint64_t history_text = file.metadata(
      R"(<FHcomment xmlns="http://www.asam.net/mdf/v4"><TX>recorded</TX><tool_id>testprog</tool_id>)"
      R"(<tool_vendor>us &amp; them</tool_vendor><tool_version>1</tool_version></FHcomment>)");
  const std::string time = Bytes().u64(start).i16(60).i16(0).u8(2);
  file.link(FileBuilder::header, 1, file.add("FH", {0, history_text}, time + std::string(3, '\0')));
  file.link(FileBuilder::header, 5,
            file.metadata(
                R"(<HDcomment xmlns="http://www.asam.net/mdf/v4"><TX>a run</TX><common_properties>)"
                R"(<e name="author">&lt;me&gt;</e></common_properties></HDcomment>)"));
  file.write(FileBuilder::header + 72, time);
  return file;
}

/// The time channel of a group whose next channel is there.
std::uint64_t addTime(FileBuilder& file, std::uint64_t next, std::uint32_t flags, double first,
                      double last) {
  const std::uint64_t name = file.text("time");
  const std::uint64_t unit = file.text("s");
  return file.add("CN", {next, 0, name, 0, 0, 0, unit, 0},
                  Bytes()
                      .u8s({2, 1, 4, 0})
                      .u32(0)
                      .u32(64)
                      .u32(flags)
                      .u32(0)
                      .u8(255)
                      .zeros(3)
                      .f64(first)
                      .f64(last)
                      .zeros(32));
}

std::string listAndData(std::uint64_t data_at, std::uint64_t offset, const std::string& records) {
  return Bytes()
             .header("DL", 56, 2)
             .u64(0)
             .u64(data_at)
             .u8s({0, 0, 0, 0})
             .u32(1)
             .u64(offset)
             .str() +
         Bytes().header("DT", 24 + records.size(), 0).str() + records;
}

constexpr std::uint32_t monotonous = 2048;
constexpr std::uint32_t range_valid = 8;

std::string speedRecord(double time, std::uint8_t speed, std::uint8_t invalid) {
  return Bytes().f64(time).u8(speed).u8(invalid);
}

/// A group with a time, a byte that may be invalid, and no more, that has these records in a list
/// of one block.
std::string speedFile(const std::string& records, std::uint64_t count, double first, double last) {
  FileBuilder file = startOfFile();
  const std::uint64_t name = file.text("speed");
  const std::uint64_t unit = file.text("km/h");
  const std::uint64_t speed =
      file.add("CN", {0, 0, name, 0, 0, 0, unit, 0},
               Bytes().u8s({0, 0, 0, 0}).u32(8).u32(8).u32(2).u32(0).u8(255).zeros(3 + 16 + 32));
  const std::uint64_t time = addTime(file, speed, monotonous + range_valid, first, last);
  const std::uint64_t group_name = file.text("wheels");
  const std::uint64_t group = file.add("CG", {0, time, group_name, 0, 0, 0},
                                       Bytes().u64(0).u64(count).zeros(8).u32(9).u32(1));
  file.addDataGroup({group}, 0);
  const std::uint64_t list = (file.bytes().size() + 7) / 8 * 8;
  file.link(list - 64, 2, list);
  file.append(listAndData(list + 56, 0, records));
  return file.bytes();
}

TEST(FileBytes, AreThoseOfThePlanAndOneBlockOfRecords) {
  Plan plan("a run");
  setUp(plan);
  Group& wheels = plan.addGroup("wheels");
  const auto speed = wheels.addChannel<std::uint8_t>("speed", "km/h");
  wheels.mayBeInvalid(speed);
  RecordedOutput output;
  Options options;
  options.flush_interval = 0;
  Recording recording(output, plan, options);
  ASSERT_TRUE(recording.good()) << recording.cause();
  wheels.set(speed, 50);
  EXPECT_TRUE(recording.append(wheels, 1'000'000'000));
  wheels.setValid(speed, false);
  EXPECT_TRUE(recording.append(wheels, 2'000'000'000));
  EXPECT_TRUE(recording.finish());

  EXPECT_EQ(output.bytes(), speedFile(speedRecord(1, 50, 0) + speedRecord(2, 50, 1), 2, 1, 2));
}

TEST(FileBytes, SayBeforeTheEndThatCountsAreOpen) {
  Plan plan("a run");
  setUp(plan);
  Group& wheels = plan.addGroup("wheels");
  const auto speed = wheels.addChannel<std::uint8_t>("speed", "km/h");
  wheels.mayBeInvalid(speed);
  RecordedOutput output;
  Recording recording(output, plan);
  wheels.set(speed, 7);
  recording.append(wheels, 5);  // the first record is flushed
  recording.append(wheels, 6);  // the next one is not

  std::string expected = speedFile(speedRecord(5e-9, 7, 0), 0, 0, 0);
  expected.replace(0, 8, "UnFinMF ");
  expected[60] = 1;
  // Nor is the range of times stated.
  expected[expected.rfind("##CN") + 88 + 12] = '\0';
  EXPECT_EQ(output.bytes(), expected);
}

/// The master of a group without times, before another channel.
std::uint64_t addIndex(FileBuilder& file, std::uint64_t channel) {
  const std::uint64_t name = file.text("index");
  return file.add("CN", {channel, 0, name, 0, 0, 0, 0, 0},
                  Bytes().u8s({3, 4, 0, 0}).zeros(16).u8(255).zeros(3 + 16 + 32));
}

TEST(FileBytes, OfAPipeNeedNoRewriting) {
  Plan plan("a run");
  setUp(plan);
  Group& state = plan.addGroup("state", Group::Order::index);
  const auto text = state.addText("text");
  RecordedOutput output(1 << 20, false);
  Recording recording(output, plan);
  state.set(text, "on");
  EXPECT_TRUE(recording.append(state));
  state.set(text, "");
  EXPECT_TRUE(recording.append(state));
  EXPECT_TRUE(recording.finish());

  FileBuilder file = startOfFile("UnFinMF ");
  file.write(60, std::string(1, 1 + 4 + 32));
  const std::uint64_t values =
      file.add("CG", {0, 0, 0, 0, 0, 0}, Bytes().u64(2).u64(0).u16(1).zeros(14));
  const std::uint64_t name = file.text("text");
  const std::uint64_t channel =
      file.add("CN", {0, 0, name, 0, 0, values, 0, 0},
               Bytes().u8s({1, 0, 7, 0}).u32(0).u32(64).zeros(8).u8(255).zeros(3 + 16 + 32));
  const std::uint64_t index = addIndex(file, channel);
  const std::uint64_t group_name = file.text("state");
  const std::uint64_t group =
      file.add("CG", {values, index, group_name, 0, 0, 0}, Bytes().u64(1).zeros(16).u32(8).u32(0));
  const std::uint64_t data_group = file.addDataGroup({group}, 0, 1);
  file.link(data_group, 2, file.addData(""));
  file.append(Bytes().u8(2).u32(2).text("on").u8(1).u64(0).u8(2).u32(0).u8(1).u64(6));
  EXPECT_EQ(output.bytes(), file.bytes());
}

/// An event by the plan's first history entry, so many nanoseconds from the start.
std::string event(std::initializer_list<int> kinds, std::uint32_t scopes,
                  std::int64_t nanoseconds) {
  return Bytes().u8s(kinds).u32(0).u32(scopes).u16(0).u16(0).i64(nanoseconds).f64(1e-9);
}

std::string attachment(std::uint16_t flags, const std::string& digest, const std::string& bytes) {
  return Bytes().u16(flags).zeros(6).text(digest).u64(bytes.size()).u64(bytes.size()).text(bytes);
}

TEST(FileBytes, OfEventsAttachmentsAndTheHierarchy) {
  Plan plan("a run");
  setUp(plan);
  Group& state = plan.addGroup("state", Group::Order::index);
  const auto gear = state.addChannel<std::uint8_t>("gear");
  plan.attachments = {{"a.txt", "text/plain", "", "abc", false, "0123456789abcdef"},
                      {"b.txt", "", "", "", true}};
  plan.hierarchy = {{"drive", mdf_v4_10::CHBLOCK::CH_TYPE_GROUP, "", {gear}, {{"more"}}}, {"rest"}};
  RecordedOutput output;
  Recording recording(output, plan);
  EXPECT_TRUE(recording.addEvent({"start", 5}));
  EXPECT_TRUE(recording.addEvent({"lost", 7, 9, mdf_v4_10::EVBLOCK::EV_TYPE_ACQUISITION_INTERRUPT,
                                  mdf_v4_10::EVBLOCK::EV_CAUSETYPE_ERROR, "all", &state}));
  EXPECT_TRUE(recording.addAttachment({"c", "", "", "x"}));
  EXPECT_FALSE(recording.addEvent({"\xff", 0}) || recording.addEvent({"a", 2, 1}) ||
               recording.addAttachment({""}));
  EXPECT_TRUE(recording.finish());
  EXPECT_FALSE(recording.addEvent({"late", 0}) || recording.addAttachment({"late"}));

  FileBuilder file = startOfFile();
  const std::uint64_t b_name = file.text("b.txt");
  const std::uint64_t b =
      file.add("AT", {0, b_name, 0, 0}, attachment(0, std::string(16, '\0'), ""));
  const std::uint64_t a_name = file.text("a.txt");
  const std::uint64_t a_type = file.text("text/plain");
  file.link(FileBuilder::header, 3,
            file.add("AT", {b, a_name, a_type, 0}, attachment(1 + 4, "0123456789abcdef", "abc")));
  const std::uint64_t name = file.text("gear");
  const std::uint64_t channel =
      file.add("CN", {0, 0, name, 0, 0, 0, 0, 0},
               Bytes().u8s({0, 0, 0, 0}).u32(0).u32(8).zeros(8).u8(255).zeros(3 + 16 + 32));
  const std::uint64_t index = addIndex(file, channel);
  const std::uint64_t group_name = file.text("state");
  const std::uint64_t group =
      file.add("CG", {0, index, group_name, 0, 0, 0}, Bytes().zeros(24).u32(1).u32(0));
  const std::uint64_t data_group = file.addDataGroup({group}, 0);
  const std::uint64_t rest_name = file.text("rest");
  const std::uint64_t rest = file.add("CH", {0, 0, rest_name, 0}, Bytes().u32(0).u32(0));
  const std::uint64_t more_name = file.text("more");
  const std::uint64_t more = file.add("CH", {0, 0, more_name, 0}, Bytes().u32(0).u32(0));
  const std::uint64_t drive_name = file.text("drive");
  file.link(FileBuilder::header, 2,
            file.add("CH", {rest, more, drive_name, 0, data_group, group, channel},
                     Bytes().u32(1).u32(0)));
  const std::uint64_t start_name = file.text("start");
  const std::uint64_t first = file.add("EV", {0, 0, 0, start_name, 0}, event({6, 1, 0, 4}, 0, 5));
  file.link(FileBuilder::header, 4, first);
  const std::uint64_t lost_name = file.text("lost");
  const std::string comment =
      R"(<EVcomment xmlns="http://www.asam.net/mdf/v4"><TX>all</TX></EVcomment>)";
  const std::uint64_t begin_comment = file.metadata(comment);
  const std::uint64_t end_comment = file.metadata(comment);
  const std::uint64_t begin =
      file.add("EV", {0, 0, 0, lost_name, begin_comment, group}, event({2, 1, 1, 1}, 1, 7));
  const std::uint64_t end =
      file.add("EV", {0, 0, begin, lost_name, end_comment, group}, event({2, 1, 2, 1}, 1, 9));
  file.link(first, 0, begin);
  file.link(begin, 0, end);
  const std::uint64_t c_name = file.text("c");
  file.link(b, 0, file.add("AT", {0, c_name, 0, 0}, attachment(1, std::string(16, '\0'), "x")));
  EXPECT_EQ(output.bytes(), file.bytes());
}

/// Two bytes, each followed by 2047 more of its kind, as a zlib stream.
constexpr unsigned char packed_pairs[] = {
    0x78, 0x01, 0x63, 0x62, 0x1a, 0x05, 0xa3, 0x60, 0x14, 0x8c, 0x82, 0x51, 0x30,
    0x0a, 0x46, 0xc1, 0x48, 0x03, 0x8c, 0xa3, 0x60, 0x14, 0x8c, 0x82, 0x51, 0x30,
    0x0a, 0x46, 0xc1, 0x28, 0x18, 0x71, 0x00, 0x00, 0x29, 0x20, 0x18, 0x01};

/// Knows that stream alone.
class PairPacker : public mdf_writer::Packer {
 public:
  bool transposes() const override { return true; }
  std::size_t ahead() const override { return 0; }
  void give(std::string_view data, std::uint32_t row_bytes) override {
    is_known_ = data.size() == 4096;
    EXPECT_EQ(row_bytes, 2U);
  }
  std::string_view take() override {
    const auto* const stream = reinterpret_cast<const char*>(packed_pairs);
    return {stream, is_known_ ? sizeof packed_pairs : 0};
  }

 private:
  bool is_known_ = false;
};

/// A group of numbers of two bytes each, and where the link to its data stands.
std::uint64_t addPairs(FileBuilder& file, std::uint64_t count) {
  const std::uint64_t name = file.text("pair");
  const std::uint64_t channel =
      file.add("CN", {0, 0, name, 0, 0, 0, 0, 0},
               Bytes().u8s({0, 0, 0, 0}).u32(0).u32(16).zeros(8).u8(255).zeros(3 + 16 + 32));
  const std::uint64_t index = addIndex(file, channel);
  const std::uint64_t group_name = file.text("pairs");
  const std::uint64_t group = file.add("CG", {0, index, group_name, 0, 0, 0},
                                       Bytes().u64(0).u64(count).zeros(8).u32(2).u32(0));
  return file.addDataGroup({group}, 0);
}

/// The first record is flushed to where the block grows. When that is full it is packed, and what
/// it has left becomes zeros. The last block is too small to be packed.
TEST(FileBytes, OfPackedBlocksAreUnderAHeaderList) {
  constexpr int count = 2049;
  Plan plan("a run");
  setUp(plan);
  Group& pairs = plan.addGroup("pairs", Group::Order::index);
  const auto pair = pairs.addChannel<std::uint16_t>("pair");
  PairPacker packer;
  Options options;
  options.block_bytes = 4096;
  options.flush_interval = 0;
  options.packer = &packer;
  RecordedOutput output;
  Recording recording(output, plan, options);
  pairs.set(pair, 0x0102);
  EXPECT_TRUE(recording.append(pairs) && recording.flush());
  for (int i = 1; i < count; ++i) {
    recording.append(pairs);
  }
  EXPECT_TRUE(recording.finish());

  FileBuilder file = startOfFile();
  const std::uint64_t data_group = addPairs(file, count);
  const std::uint64_t header_list = file.add("HL", {0}, Bytes().u16(0).u8(1).zeros(5));
  file.link(data_group, 2, header_list);
  file.append(std::string(56 + 24 + 4096, '\0'));
  const std::string stream(reinterpret_cast<const char*>(packed_pairs), sizeof packed_pairs);
  const std::uint64_t list = file.bytes().size();
  const std::uint64_t zip = list + 56;
  const std::uint64_t last = (zip + 48 + stream.size() + 7) / 8 * 8;
  file.link(header_list, 0, list);
  EXPECT_EQ(file.add("DL", {last, zip}, Bytes().u32(0).u32(1).u64(0)), list);
  EXPECT_EQ(
      file.add("DZ", {}, Bytes().text("DT").u8(1).u8(0).u32(2).u64(4096).u64(38).text(stream)),
      zip);
  EXPECT_EQ(file.add("DL", {0, last + 56}, Bytes().u32(0).u32(1).u64(4096)), last);
  file.add("DT", {}, "\x02\x01");
  EXPECT_EQ(output.bytes(), file.bytes());
  EXPECT_EQ(findingsOf(output.bytes()), std::vector<std::string>());
  std::string table = "index,pair\n";
  for (int i = 0; i < count; ++i) {
    table += std::to_string(i) + ",258\n";
  }
  EXPECT_EQ(tableOf(output.bytes(), "pairs"), table);
}

}  // namespace
}  // namespace mdf_tests
