#include "test_file.h"

#include <fstream>
#include <string>

#include "tools/support/file_builder.h"

namespace {

using namespace mdf_tests;

constexpr std::uint64_t start_time = 136;  // in the header block
constexpr std::uint8_t is_local = 1;
constexpr std::uint8_t offsets_valid = 2;

/// A value of each kind: 22 bytes, and one of invalidation bits.
std::string engineRecords() {
  return Bytes()
      .f64(0)
      .u32(0x44480000)
      .i16(1)
      .u8s({80, 0})
      .text("ab")
      .zeros(2)
      .u8s({1, 2})
      .u8(0)
      .f64(0.5)
      .u32(0x44961000)
      .i16(9)
      .u8s({81, 1})
      .zeros(4)
      .u8s({0xff, 0})
      .u8(1)
      .f64(1)
      .u32(0xbf000000)
      .i16(-1)
      .u8s({0, 7})
      .text("\xc3\xa4")
      .zeros(2)
      .u8s({3, 4})
      .u8(2)
      .f64(1.5)
      .u32(0x40400000)
      .i16(300)
      .u8s({255, 0})
      .text("abcd")
      .u8s({5, 6})
      .u8(3)
      .f64(2)
      .u32(0x3e800000)
      .i16(-300)
      .u8s({90, 1})
      .text("z")
      .zeros(3)
      .u8s({7, 8})
      .u8(0);
}

std::vector<ChannelSpec> engineChannels(FileBuilder& file) {
  constexpr unsigned has_invalidation_bit = 2;
  ChannelSpec time{2, 1, 4, 0, 0, 64};
  time.name = "time";
  time.unit = "s";
  ChannelSpec rpm{0, 0, 4, 0, 8, 32};
  rpm.name = "rpm";
  rpm.unit = "1/min";
  rpm.comment = "of the crankshaft";
  ChannelSpec gear{0, 0, 2, 0, 12, 16, has_invalidation_bit, 0};
  gear.name = "gear";
  ChannelSpec oil{0, 0, 0, 0, 14, 8};
  oil.name = "oil";
  oil.unit =
      "\xc2\xb0"
      "C";
  oil.conversion = file.addConversion({1, {}, {-40, 0.5}});
  ChannelSpec state{0, 0, 0, 0, 15, 8};
  state.name = "state";
  state.conversion =
      file.addConversion({7, {file.text("off"), file.text("run"), file.text("fault")}, {0, 1}});
  ChannelSpec note{0, 0, 7, 0, 16, 32};
  note.name = "note";
  ChannelSpec key{0, 0, 10, 0, 20, 16, has_invalidation_bit, 1};
  key.name = "key";
  return {time, rpm, gear, oil, state, note, key};
}

std::string bytesOf(TestFile which) {
  if (which == no_file_of_mdf) {
    return "time;rpm\n0;800\n";
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
  ChannelSpec level{0, 0, 0, 0, 0, 8};
  level.name = "level";
  GroupSpec body{2, 1};
  body.name = "body";
  file.addSortedGroup(body, {level}, file.addData(Bytes().u8s({7, 8})));
  return file.bytes();
}

}  // namespace

int writeTestFile(const char* path, TestFile which) {
  std::ofstream out(path, std::ios::binary);
  out << bytesOf(which);
  return out.flush().good() ? 1 : 0;
}
