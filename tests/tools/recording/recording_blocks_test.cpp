#include "recording/recording_blocks.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/bytes.h"

using namespace mdf_tests;
using namespace mdf_tools;

namespace {

const std::vector<Signal> channels = {float64Signal("time", "s"), float32Signal("a", "%"),
                                      uint64Signal("load", ""), float32Signal("b", "%")};
const RecordingInfo info = {{1'700'000'000'123'456'789, -90, true}, "T<", "C", "7"};

std::string identification(const std::string& file, int flags) {
  return file + "4.10    mdf     " + zeros(4) + u16(410) + zeros(30) + u8(flags, 0) + zeros(2);
}

std::string frame() {
  const std::string start = u64(1'700'000'000'123'456'789) + u16(-90, 60) + u8(2, 0, 0, 0);
  const std::string header_block =
      header("HD", 104, 6) + links(752, 168, 0, 0, 0, 416) + start + f64(0, 0);
  const std::string history = header("FH", 56, 2) + links(0, 224) + start;
  const std::string history_comment =
      header("MD", 191, 0) +
      "<FHcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>C</TX><tool_id>mdf</tool_id>"
      "<tool_vendor>The mdf maintainers</tool_vendor><tool_version>7</tool_version></FHcomment>" +
      zeros(1 + 1);
  const std::string comment =
      header("MD", 97, 0) +
      "<HDcomment xmlns=\"http://www.asam.net/mdf/v4\"><TX>T&lt;</TX></HDcomment>" + zeros(1 + 7);
  return header_block + history + history_comment + comment;
}

/// A text, its terminating zero and the padding.
std::string textBlock(std::uint64_t length, const std::string& text, std::size_t padding) {
  return header("TX", length, 0) + text + zeros(1 + padding);
}

/// Each text once.
std::string texts() {
  return textBlock(39, "system signals", 1) + textBlock(29, "time", 3) + textBlock(26, "s", 6) +
         textBlock(26, "a", 6) + textBlock(26, "%", 6) + textBlock(29, "load", 3) +
         textBlock(26, "b", 6);
}

std::string groups(std::uint64_t cycle_count) {
  return header("DG", 64, 4) + links(0, 816, 1560, 0) + zeros(8) + header("CG", 104, 6) +
         links(0, 920, 520, 0, 0, 0) + u64(0, cycle_count) + u16(0, 0) + zeros(4) + u32(24, 0);
}

std::string channel(std::initializer_list<std::int64_t> links, std::initializer_list<int> types,
                    std::uint32_t byte_offset, std::uint32_t bit_count, std::uint32_t flags,
                    double range_min = 0, double range_max = 0) {
  return Bytes().header("CN", 160, 8).links(links).u8s(types).str() +
         u32(byte_offset, bit_count, flags, 0) + u8(255, 0, 0, 0) + f64(range_min, range_max) +
         zeros(32);
}

constexpr std::uint32_t monotonous = 2048;
constexpr std::uint32_t value_range_valid = 8;

std::string channelChain(std::uint32_t time_flags, double first, double last) {
  return channel({1080, 0, 560, 0, 0, 0, 592, 0}, {2, 1, 4, 0}, 0, 64, time_flags, first, last) +
         channel({1240, 0, 624, 0, 0, 0, 656, 0}, {0, 0, 4, 0}, 8, 32, 0) +
         channel({1400, 0, 688, 0, 0, 0, 0, 0}, {0, 0, 0, 0}, 12, 64, 0) +
         channel({0, 0, 720, 0, 0, 0, 656, 0}, {0, 0, 4, 0}, 20, 32, 0);
}

std::string wholeFile(const std::string& id, std::uint64_t cycle_count, const std::string& data,
                      std::uint32_t time_flags = monotonous, double first = 0, double last = 0) {
  return id + frame() + texts() + groups(cycle_count) + channelChain(time_flags, first, last) +
         Bytes().header("DT", 24 + cycle_count * 24, 0).str() + data;
}

TEST(RecordingBlocks, SayThatTheFileIsUnfinishedUntilItIsFinished) {
  const RecordingBlocks blocks(channels, info);
  std::ostringstream os;
  blocks.write(os);
  EXPECT_BYTES(os.str(), wholeFile(identification("UnFinMF ", 5), 0, ""));
  EXPECT_EQ(blocks.size(), 1584U);
  EXPECT_EQ(blocks.recordBytes(), 24U);
}

/// A finished file of so many records.
std::string finished(std::uint64_t records, const std::string& data,
                     const std::optional<TimeRange>& times) {
  RecordingBlocks blocks(channels, info);
  std::ostringstream os;
  blocks.write(os);
  os << data;
  blocks.finish(os, records, times);
  return os.str();
}

TEST(RecordingBlocks, FinishedFileHasTheNumberOfItsRecordsAndTheirTimesWhenTheyAreKnown) {
  const std::string id = identification("MDF     ", 0);
  const std::string data(3 * 24, 'x');
  EXPECT_BYTES(finished(3, data, TimeRange{0.5, 12.25}),
               wholeFile(id, 3, data, monotonous | value_range_valid, 0.5, 12.25));
  EXPECT_BYTES(finished(3, data, std::nullopt), wholeFile(id, 3, data));
  EXPECT_BYTES(finished(0, "", std::nullopt), wholeFile(id, 0, ""));
}

TEST(RecordingBlocks, LengthsBeyond32BitsAreKept) {
  EXPECT_BYTES(finished(0x100000001, "", std::nullopt).substr(1560),
               header("DT", 24 + 24 * 0x100000001, 0));
}

}  // namespace
