#include "test_file.h"

#include <fstream>
#include <string>

#include "tools/support/bus_file.h"
#include "tools/support/file_builder.h"

namespace {

using namespace mdf_tests;

constexpr std::uint64_t start_time = 136;  // in the header block
constexpr std::uint8_t is_local = 1;
constexpr std::uint8_t offsets_valid = 2;

/// A value of each kind: 22 bytes, and one of invalidation bits.
std::string engineRecords() {
  return f64(0) + u32(0x44480000) + u16(1) + u8(80, 0) + "ab" + zeros(2) + u8(1, 2, 0) +   // 0
         f64(0.5) + u32(0x44961000) + u16(9) + u8(81, 1) + zeros(4) + u8(0xff, 0, 1) +     // 1
         f64(1) + u32(0xbf000000) + u16(-1) + u8(0, 7) + "ä" + zeros(2) + u8(3, 4, 2) +    // 2
         f64(1.5) + u32(0x40400000) + u16(300) + u8(255, 0) + "abcd" + u8(5, 6, 3) +       // 3
         f64(2) + u32(0x3e800000) + u16(-300) + u8(90, 1) + "z" + zeros(3) + u8(7, 8, 0);  // 4
}

std::vector<ChannelSpec> engineChannels(FileBuilder& file) {
  constexpr unsigned has_invalidation_bit = 2;
  ChannelSpec rpm = channelOf("rpm", 4, 8, 32);
  rpm.unit = "1/min";
  rpm.comment = "of the crankshaft";
  ChannelSpec gear = channelOf("gear", 2, 12, 16);
  gear.flags = has_invalidation_bit;
  ChannelSpec oil = channelOf("oil", 0, 14, 8);
  oil.unit = "°C";
  oil.conversion = file.addConversion({1, {}, {-40, 0.5}});
  ChannelSpec state = channelOf("state", 0, 15, 8);
  state.conversion =
      file.addConversion({7, {file.text("off"), file.text("run"), file.text("fault")}, {0, 1}});
  ChannelSpec key = channelOf("key", 10, 20, 16);
  key.flags = has_invalidation_bit;
  key.invalidation_bit = 1;
  return {timeChannel(), rpm, gear, oil, state, channelOf("note", 7, 16, 32), key};
}

/// An array of one byte, and a channel in the next one.
std::string arrayFile() {
  const Bytes array = Bytes().u8(0).u8(1).u16(1).u32(0).u32(0).u32(0).u64(2).u64(2).u64(1);
  FileBuilder file;
  ChannelSpec element{0, 0, 0, 0, 0, 8};
  element.name = "v";
  element.composition = file.add("CA", {0}, array);
  ChannelSpec last{0, 0, 0, 0, 1, 8};
  last.name = "last";
  const std::uint64_t group =
      file.addChannelGroup({2, 2, 0, 1}, {file.addChannel(element), file.addChannel(last)});
  file.addDataGroup({group}, file.addData("\1Aa\2Bb\1Cc"), 1);
  return file.bytes();
}

/// Frames of two groups, attachments of which the second one is damaged and the third one
/// elsewhere, and an event.
std::string busFile() {
  constexpr std::uint16_t embedded = 1;
  constexpr std::uint16_t has_digest = 4;
  FileBuilder file;
  file.write(start_time, Bytes().u64(1'600'000'000'000'000'000).i16(60).i16(0).u8(offsets_valid));
  addFrames(file, "CAN_DataFrame", canMembers(),
            frameRecord(0.5, 1, 0x123, sent, 3, u8(1, 2, 0xff)) +
                frameRecord(2, 1, extended | 0x18FEF100, fd | rate_switch, 12, zeros(12)));
  addFrames(file, "CAN_RemoteFrame", canMembers(), frameRecord(1, 2, 0x7FF, 0, 8, ""));
  const std::uint64_t name = file.text("map.txt");
  const std::uint64_t elsewhere = file.add("AT", {0, name, 0, 0}, Bytes().zeros(24).u64(9).u64(0));
  const std::uint64_t damaged =
      file.add("AT", {elsewhere, name, 0, 0},
               Bytes().u16(embedded | has_digest).zeros(22).u64(2).u64(2).text("no"));
  file.link(FileBuilder::header, 3,
            file.add("AT", {damaged, name, 0, 0},
                     Bytes().u16(embedded).zeros(22).u64(3).u64(3).u8s({'a', 0, 'b'})));
  file.link(FileBuilder::header, 4,
            file.add("EV", {0, 0, 0, name, 0},
                     Bytes().u8s({6, 1, 0, 0, 0, 0, 0, 0}).zeros(8).i64(4).f64(0.5)));
  return file.bytes();
}

std::string bytesOf(TestFile which) {
  if (which == no_file_of_mdf) {
    return "time;rpm\n0;800\n";
  }
  if (which == array_file) {
    return arrayFile();
  }
  if (which == bus_file) {
    return busFile();
  }
  FileBuilder file;
  if (which != timeless_file) {
    const std::uint8_t flags = which == local_time_file ? is_local : offsets_valid;
    file.write(start_time, Bytes().u64(1'600'000'000'000'000'000).i16(60).i16(0).u8(flags));
  }
  std::string records = engineRecords();
  records.resize(records.size() - (which == torn_file ? 3 : 0));
  GroupSpec engine{5, 22, 1};
  engine.name = "engine";
  const auto channels = engineChannels(file);
  file.addSortedGroup(engine, channels, file.addData(records));
  GroupSpec body{2, 1};
  body.name = "body";
  file.addSortedGroup(body, {firstByte("level")}, file.addData(Bytes().u8s({7, 8})));
  return file.bytes();
}

}  // namespace

int writeTestFile(const char* path, TestFile which) {
  std::ofstream out(path, std::ios::binary);
  out << bytesOf(which);
  return out.flush().good() ? 1 : 0;
}
