#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "support/bytes.h"
#include "support/read_back.h"
#include "support/recorded_output.h"
#include "writer/mdf_writer.h"
#include "writer_zip/zipper.h"

namespace mdf_tests {
namespace {

using mdf_writer::Group;
using mdf_writer::Options;
using mdf_writer::Plan;
using mdf_writer::Recording;

/// What reading gives back of a group, after checking that nothing is wrong with the file.
std::string readBack(const RecordedOutput& output, const std::string& group) {
  EXPECT_EQ(findingsOf(output.bytes()), std::vector<std::string>());
  return tableOf(output.bytes(), group);
}

/// Unsorted or not, and zipped or not.
class Values : public testing::TestWithParam<std::tuple<bool, bool>> {
 protected:
  Options options() {
    Options options;
    options.is_unsorted = std::get<0>(GetParam());
    options.packer = std::get<1>(GetParam()) ? &zipper_ : nullptr;
    return options;
  }

 private:
  mdf_writer::Zipper zipper_;
};

TEST_P(Values, OfEachTypeAreReadAsTheyWereSet) {
  Plan plan;
  Group& group = plan.addGroup("all");
  const auto f32 = group.addChannel<float>("f32");
  const auto f64 = group.addChannel<double>("f64");
  const auto i8 = group.addChannel<std::int8_t>("i8");
  const auto u16 = group.addChannel<std::uint16_t>("u16");
  const auto i32 = group.addChannel<std::int32_t>("i32");
  const auto u64 = group.addChannel<std::uint64_t>("u64");
  const auto b3 = group.addBits<unsigned>("b3", 3);
  const auto b12 = group.addBits<int>("b12", 12);
  const auto b49 = group.addBits<std::int64_t>("b49", 49);
  const auto b64 = group.addBits<std::int64_t>("b64", 64);
  const auto text = group.addText("text", 5);
  const auto bytes = group.addBytes("bytes", 2);
  const auto long_text = group.addText("long_text");
  const auto array = group.addArray<std::int16_t>("array", {2, 1});
  const auto long_bytes = group.addBytes("long_bytes");
  group.mayBeInvalid(b12);
  group.mayBeInvalid(u16);
  RecordedOutput output;
  Recording recording(output, plan, options());
  ASSERT_TRUE(recording.good()) << recording.cause();

  EXPECT_TRUE(recording.append(group, -500'000'000));
  const std::int16_t elements[2] = {-2, 3};
  EXPECT_TRUE(group.set(f32, 0.5F) && group.set(f64, -1e300) && group.set(i8, -128) &&
              group.set(u16, 65535) && group.set(i32, -2147483647 - 1) &&
              group.set(u64, 18446744073709551615U) && group.set(b3, 5) && group.set(b12, -2048) &&
              group.set(b49, (std::int64_t{1} << 48) - 1) && group.set(b64, -3) &&
              group.set(text,
                        "\xc3\xa4"
                        "bc") &&
              group.set(bytes, "\x01\xff") && group.set(long_text, "no longer than this") &&
              group.set(array, elements, 2) && group.set(long_bytes, "\x10"));
  EXPECT_TRUE(recording.append(group, 250'000'000));
  EXPECT_TRUE(group.setValid(b12, false));
  EXPECT_TRUE(recording.append(group, 1'000'000'000));
  EXPECT_TRUE(group.setValid(b12, true) && group.setValid(u16, false) && group.set(text, "") &&
              group.set(long_text, ""));
  EXPECT_TRUE(recording.append(group, 1'000'000'001));
  EXPECT_EQ(recording.records(group), 4U);
  EXPECT_TRUE(recording.finish());

  EXPECT_EQ(readBack(output, "all"),
            "time,f32,f64,i8,u16,i32,u64,b3,b12,b49,b64,text,bytes,long_text,array[0][0],"
            "array[1][0],long_bytes\n"
            "-0.5,0,0,0,0,0,0,0,0,0,0,,0000,,0,0,\n"
            "0.25,0.5,-1e+300,-128,65535,-2147483648,18446744073709551615,5,-2048,281474976710655,"
            "-3,\xc3\xa4"
            "bc,01ff,no longer than this,-2,3,10\n"
            "1,0.5,-1e+300,-128,65535,-2147483648,18446744073709551615,5,,281474976710655,"
            "-3,\xc3\xa4"
            "bc,01ff,no longer than this,-2,3,10\n"
            "1.000000001,0.5,-1e+300,-128,,-2147483648,18446744073709551615,5,-2048,"
            "281474976710655,-3,,01ff,,-2,3,10\n");
}

TEST_P(Values, AreConvertedAsPlanned) {
  using mdf_writer::Between;
  Plan plan;
  Group& group = plan.addGroup("all", Group::Order::index);
  std::vector<mdf_writer::Channel<double>> channels;
  const auto add = [&](const std::string& name, const mdf_writer::Conversion& conversion) {
    channels.push_back(group.addChannel<double>(name, "", conversion));
  };
  add("identity", mdf_writer::identity());
  add("linear", mdf_writer::linear(-40, 0.5));
  add("rational", mdf_writer::rational(1, 0, 2, 0, 0, 4));
  add("formula", mdf_writer::formula("X * X + 1"));
  add("nearest", mdf_writer::table({{10, 1}, {0, 0}}, Between::nearest));
  add("between", mdf_writer::table({{10, 1}, {0, 0}}, Between::interpolate));
  add("ranges", mdf_writer::ranges({{5, 10, 2}, {0, 5, 1}}, -1));
  add("texts", mdf_writer::texts({{3, "three"}, {0, ""}}, "other"));
  add("some", mdf_writer::texts({{3, "three"}}, ""));
  add("scaled", mdf_writer::texts({{3, "three"}}, mdf_writer::linear(-40, 0.5)));
  add("range_texts", mdf_writer::rangeTexts({{5, 10, "high"}, {0, 5, "low"}}, "none"));
  const auto text_number = group.addText("text_number", 4, mdf_writer::textNumbers({{"on", 1}}, 9));
  const auto text_text = group.addText("text_text", mdf_writer::textTexts({{"on", "an"}}, ""));
  RecordedOutput output;
  Recording recording(output, plan, options());
  ASSERT_TRUE(recording.good()) << recording.cause();
  for (const double value : {0.0, 3.0, 12.0}) {
    for (const auto& channel : channels) {
      group.set(channel, value);
    }
    const std::string text = value == 3 ? "on" : "no";
    group.set(text_number, text);
    group.set(text_text, text);
    EXPECT_TRUE(recording.append(group));
  }
  EXPECT_TRUE(recording.finish());

  EXPECT_EQ(
      readBack(output, "all"),
      "index,identity,linear,rational,formula,nearest,between,ranges,texts,some,scaled,range_texts,"
      "text_number,text_text\n"
      "0,0,-40,0.5,1,0,0,1,,0,-40,low,9,no\n"
      "1,3,-38.5,2.75,10,0,0.3,1,three,three,three,low,1,an\n"
      "2,12,-34,36.5,145,1,1,-1,other,12,-34,none,9,no\n");
}

TEST_P(Values, LargerThanABlockGetOneOfTheirOwn) {
  Plan plan;
  Group& group = plan.addGroup("g", Group::Order::index);
  const auto text = group.addText("text");
  RecordedOutput output;
  Options small = options();
  small.block_bytes = 4096;
  Recording recording(output, plan, small);
  std::string expected = "index,text\n";
  int index = 0;
  for (const std::size_t size : {10U, 5000U, 20U, 4092U, 9000U, 0U}) {
    const std::string value(size, 'v');
    group.set(text, value);
    EXPECT_TRUE(recording.append(group));
    expected += std::to_string(index++) + ',' + value + '\n';
  }
  EXPECT_TRUE(recording.finish());
  EXPECT_EQ(readBack(output, "g"), expected);
}

TEST_P(Values, AppendedAsBytesMustBeWholeRecords) {
  Plan plan;
  Group& group = plan.addGroup("g");
  const auto number = group.addChannel<std::uint8_t>("number");
  group.mayBeInvalid(number);
  Group& texts = plan.addGroup("texts");
  texts.addText("text");
  Plan other_plan;
  Group& other = other_plan.addGroup("other");
  RecordedOutput output;
  Recording recording(output, plan, options());
  EXPECT_TRUE(recording.appendBytes(group, std::string("\0\0\0\0\0\0\xf0\x3f\x07\x00", 10)));
  EXPECT_TRUE(recording.appendBytes(group, std::string("\0\0\0\0\0\0\x00\x40\x08\x01", 10)));
  EXPECT_FALSE(recording.appendBytes(group, std::string(9, '\0')));
  EXPECT_FALSE(recording.appendBytes(texts, std::string(16, '\0')));
  EXPECT_FALSE(recording.append(group));
  EXPECT_FALSE(recording.append(other, 0));
  EXPECT_FALSE(recording.append(plan.addGroup("late"), 0));
  EXPECT_TRUE(recording.finish());
  EXPECT_FALSE(recording.append(group, 3));
  EXPECT_EQ(readBack(output, "g"), "time,number\n1,7\n2,\n");
}

TEST_P(Values, AreRefusedWhenTheFileIsFinished) {
  for (const std::uint64_t room : {std::uint64_t{0}, std::uint64_t{1} << 20U}) {
    Plan plan;
    Group& group = plan.addGroup("g");
    RecordedOutput output(room);
    Recording recording(output, plan, options());
    EXPECT_EQ(recording.finish(), room > 0);
    for (int k = 0; k < 3; ++k) {
      EXPECT_FALSE(recording.append(group, k));
    }
    EXPECT_EQ(recording.records(group), 0U);
  }
}

TEST_P(Values, OfRecordsWithoutBytesAreTheirNumbers) {
  Plan plan;
  Group& group = plan.addGroup("g", Group::Order::index);
  RecordedOutput output;
  Options huge = options();
  huge.block_bytes = std::numeric_limits<std::size_t>::max();
  Recording recording(output, plan, huge);
  EXPECT_TRUE(recording.append(group) && recording.appendBytes(group, {}) && recording.finish());
  EXPECT_EQ(readBack(output, "g"), "index\n0\n1\n");
}

TEST_P(Values, OfMembersStandInTheirStructures) {
  Plan plan;
  Group& group = plan.addGroup("g");
  group.is_bus_event = true;
  const auto first = group.addChannel<std::uint8_t>("first");
  const auto low = group.addBits<unsigned>("low", 5);
  const auto high = group.addBits<unsigned>("high", 6);
  group.addStructure("inner", low);
  const auto data = group.addBytes("data");
  group.addStructure("outer", first);
  const auto last = group.addChannel<std::uint8_t>("last");
  RecordedOutput output;
  Recording recording(output, plan, options());
  EXPECT_TRUE(group.set(first, 1) && group.set(low, 30) && group.set(high, 33) &&
              group.set(data, "ab") && group.set(last, 4));
  EXPECT_TRUE(recording.append(group, 0) && recording.finish()) << recording.cause();
  EXPECT_EQ(readBack(output, "g"),
            "time,outer.first,outer.inner.low,outer.inner.high,outer.data,last\n"
            "0,1,30,33,6162,4\n");
}

TEST(LaterGroups, ComeIntoAFileThatHasBegun) {
  Plan plan;
  RecordedOutput output;
  Options options;
  options.block_bytes = 4096;
  Recording recording(output, plan, options);
  std::string tables;
  for (const char* name : {"a", "b", "c"}) {
    Group& group = plan.addGroup(name);
    EXPECT_FALSE(recording.append(group, 0));
    const auto value = group.addChannel<std::uint8_t>("v");
    EXPECT_TRUE(recording.addGroup(group));
    EXPECT_FALSE(recording.addGroup(group)) << "it is there already";
    EXPECT_TRUE(group.set(value, *name) && recording.append(group, 0) && recording.flush());
    tables += readBack(output, name);
  }
  EXPECT_TRUE(recording.finish());
  EXPECT_EQ(tables, "time,v\n0,97\ntime,v\n0,98\ntime,v\n0,99\n");
  EXPECT_EQ(tables, readBack(output, "a") + readBack(output, "b") + readBack(output, "c"));
  Group& late = plan.addGroup("d");
  EXPECT_FALSE(recording.addGroup(late)) << "the file is finished";
}

/// What such a group must not be, each tried with a recording of its own.
TEST(LaterGroups, AreRefusedWhereTheyCannotCome) {
  const auto isTaken = [](Options options, const std::function<void(Group&)>& change) {
    Plan plan;
    plan.addGroup("first");
    RecordedOutput output;
    options.block_bytes = 4096;
    Recording recording(output, plan, options);
    Group& group = plan.addGroup("later");
    change(group);
    const bool is_taken = recording.addGroup(group);
    EXPECT_TRUE(recording.good() && recording.finish());
    EXPECT_EQ(findingsOf(output.bytes()), std::vector<std::string>());
    return is_taken;
  };
  const auto as_it_is = [](Group& /*group*/) {};
  EXPECT_TRUE(isTaken({}, as_it_is));
  Options unsorted;
  unsorted.is_unsorted = true;
  EXPECT_FALSE(isTaken(unsorted, as_it_is));
  EXPECT_FALSE(isTaken({}, [](Group& group) { group.reductions = {1}; }));
  EXPECT_FALSE(isTaken({}, [](Group& group) { group.addText("long", 4096); }));
  EXPECT_FALSE(isTaken({}, [](Group& group) { group.addText(""); }));
}

/// A group's records for a sample reduction: time, a byte of a signed field of 5 bits from bit 1
/// on, an integer the other way round, two floats of an array, a text, and invalidation bytes.
std::string reducedRecord(double time, int five, int big, float first, float second,
                          const std::string& text) {
  return Bytes()
      .f64(time)
      .u8(static_cast<std::uint8_t>((five & 31) << 1))
      .u8s({big >> 8 & 255, big & 255})
      .f32(first)
      .f32(second)
      .text(text);
}

TEST(Reductions, AreMeansLeastAndGreatestOfTheValidNumbersInAnInterval) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  Plan plan;
  Group& group = plan.addGroup("g");
  group.reductions = {0.5, 100};
  mdf_writer::ChannelPlan five;
  five.name = "five";
  five.type = mdf_v4_10::CNBLOCK::CN_DATATYPE_INT_LE;
  five.byte_offset = 8;
  five.bit_offset = 1;
  five.bits = 5;
  mdf_writer::ChannelPlan big = five;
  big.name = "big";
  big.type = mdf_v4_10::CNBLOCK::CN_DATATYPE_UINT_BE;
  big.byte_offset = 9;
  big.bit_offset = 0;
  big.bits = 16;
  group.mayBeInvalid(group.addField(five));
  group.addField(big);
  group.addArray<float>("floats", {2});
  group.addText("text", 2);
  RecordedOutput output;
  Options options;
  options.flush_interval = 0;
  Recording recording(output, plan, options);
  const auto append = [&](double time, const std::string& record, char invalid) {
    EXPECT_TRUE(recording.appendBytes(group, record + invalid)) << time;
  };
  append(0.6, reducedRecord(0.6, -16, 65535, 1, nan, "ab"), 1);
  append(0.7, reducedRecord(0.7, 3, 1, 2, nan, "cd"), 0);
  append(0.9, reducedRecord(0.9, -2, 2, 6, 4, "ef"), 0);
  append(2.1, reducedRecord(2.1, 5, 3, nan, nan, "gh"), 1);
  EXPECT_TRUE(recording.finish());

  EXPECT_EQ(findingsOf(output.bytes()), std::vector<std::string>());
  const std::string half =
      reducedRecord(0.5, 1, 21846, 3, 4, "ab") + reducedRecord(0.5, -2, 1, 1, 4, "ab") +
      reducedRecord(0.5, 3, 65535, 6, 4, "ab") + '\0' + reducedRecord(2, 5, 3, nan, nan, "gh") +
      reducedRecord(2, 5, 3, nan, nan, "gh") + reducedRecord(2, 5, 3, nan, nan, "gh") + '\1';
  const std::string all = reducedRecord(0, 1, 16385, 3, 4, "ab") +
                          reducedRecord(0, -2, 1, 1, 4, "ab") +
                          reducedRecord(0, 3, 65535, 6, 4, "ab") + '\0';
  const auto block = [](const std::string& data) {
    return Bytes().header("RD", 24 + data.size(), 0).str() + data;
  };
  EXPECT_NE(output.bytes().find(block(half)), std::string::npos);
  EXPECT_NE(output.bytes().find(block(all)), std::string::npos);
}

TEST(TimeChannel, HasNoRangeWhereTheRecordingDoesNotKnowIt) {
  Plan plan;
  Group& group = plan.addGroup("g", Group::Order::own);
  mdf_writer::ChannelPlan time;
  time.name = "own";
  time.type = mdf_v4_10::CNBLOCK::CN_DATATYPE_UINT_LE;
  time.bits = 8;
  time.master = mdf_v4_10::CNBLOCK::CN_SYNCTYPE_TIME;
  group.addField(time);
  RecordedOutput output;
  Recording recording(output, plan);
  EXPECT_TRUE(recording.appendBytes(group, "\x05") && recording.appendBytes(group, "\x07"));
  EXPECT_TRUE(recording.finish());
  EXPECT_EQ(readBack(output, "g"), "own\n5\n7\n");
  constexpr std::uint8_t monotonous_without_range[] = {0, 8, 0, 0};
  const std::size_t flags = output.bytes().find("##CN") + 88 + 12;
  EXPECT_EQ(output.bytes().substr(flags, 4),
            std::string(std::begin(monotonous_without_range), std::end(monotonous_without_range)));
}

INSTANTIATE_TEST_SUITE_P(Layouts, Values, testing::Combine(testing::Bool(), testing::Bool()));

}  // namespace
}  // namespace mdf_tests
