#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "tools/support/file_builder.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

namespace fs = std::filesystem;

constexpr unsigned uint_le = 0;
constexpr unsigned int_le = 2;
constexpr unsigned real_le = 4;
constexpr unsigned utf8 = 7;
constexpr unsigned byte_array = 10;

/// A channel for each class of numbers, texts, bytes, and one of which a value is invalid.
void addEngine(FileBuilder& file) {
  ChannelSpec odometer = channelOf("odometer", uint_le, 58, 64);
  odometer.flags = 2;  // it has an invalidation bit
  odometer.unit = "m";
  GroupSpec group{2, 66, 1};
  group.name = "engine";
  file.addSortedGroup(
      group,
      {timeChannel(), channelOf("u8", uint_le, 8, 8), channelOf("u16", uint_le, 9, 16),
       channelOf("u32", uint_le, 11, 32), channelOf("u64", uint_le, 15, 64),
       channelOf("i8", int_le, 23, 8), channelOf("i16", int_le, 24, 16),
       channelOf("i32", int_le, 26, 32), channelOf("i64", int_le, 30, 64),
       channelOf("f32", real_le, 38, 32), channelOf("f64", real_le, 42, 64),
       channelOf("text", utf8, 50, 48), channelOf("bytes", byte_array, 56, 16), odometer},
      file.addData(f64(0) + u8(255) + u16(65535) + u32(4294967295) + u64(UINT64_MAX) + u8(0x80) +
                   u16(0x8000) + u32(0x80000000) + u64(std::uint64_t{1} << 63U) + u32(0x3F000000) +
                   f64(1e300) + "5 °C" + u8(0, 0, 255) + u64((std::uint64_t{1} << 53U) + 1) +
                   u8(0) + f64(0.5) + u8(1) + u16(2) + u32(3) + u64(4) + u8(5) + u16(6) + u32(7) +
                   u64(8) + u32(0xBF800000) + f64(NAN) + zeros(6) + u8(1, 2) + u64(9) + u8(1)));
}

/// Another group of the same name, with an array, and one without records.
std::string allKinds() {
  FileBuilder file;
  file.write(64 + 24 + 6 * 8, Bytes().u64(1700000000250000000));
  addEngine(file);
  ChannelSpec array = channelOf("Öl", uint_le, 8, 8);
  array.unit = "°C";
  array.composition = file.add("CA", {0}, Bytes().u8(0).u8(0).u16(1).u32(0).u32(1).u32(0).u64(2));
  GroupSpec second{2, 10};
  second.name = "engine";
  file.addSortedGroup(second, {timeChannel(), array},
                      file.addData(Bytes().f64(0).u8s({20, 21}).f64(0.25).u8s({30, 31})));
  GroupSpec empty{0, 8};
  empty.name = "2 empty";
  file.addSortedGroup(empty, {timeChannel()}, 0);
  return file.bytes();
}

/// What GNU Octave finds in a MATLAB file.
std::string byOctave(const fs::path& path) {
  RunOptions options;
  options.command = {"octave-cli", "--quiet", "--norc", MDF_SHOW_M};
  return run({path.string()}, options).output;
}

struct MatExport : testing::Test {
  MatExport() { folder.write("trip.mf4", allKinds()); }

  RunResult exported(std::vector<std::string> options) {
    options.insert(options.begin(), {"export", trip});
    return run(options);
  }

  ScratchFolder folder;
  std::string trip = (folder / "trip.mf4").string();
  std::string mat = (folder / "trip.mat").string();
};

TEST_F(MatExport, OctaveReadsAllKindsOfValues) {
  EXPECT_EQ(exported({"-o", mat, "--empty"}),
            said(0, trip + ": note: some values of odometer are rounded: integers beside missing "
                           "values become doubles"));
  EXPECT_EQ(byOctave(mat), R"(engine.time 2x1 double 0 0.5
engine.u8 2x1 uint8 255 1
engine.u16 2x1 uint16 65535 2
engine.u32 2x1 uint32 4294967295 3
engine.u64 2x1 uint64 18446744073709551615 4
engine.i8 2x1 int8 -128 5
engine.i16 2x1 int16 -32768 6
engine.i32 2x1 int32 -2147483648 7
engine.i64 2x1 int64 -9223372036854775808 8
engine.f32 2x1 single 0.5 -1
engine.f64 2x1 double 1.0000000000000001e+300 NaN
engine.text 2x1 cell {1x5 char '5 °C'} {0x0 char ''}
engine.bytes 2x1 cell {1x2 uint8 0 255} {1x2 uint8 1 2}
engine.odometer 2x1 double 9007199254740992 NaN
engine.info.name 1x6 char 'engine'
engine.info.number 1x1 double 0
engine.info.names.time 1x4 char 'time'
engine.info.names.u8 1x2 char 'u8'
engine.info.names.u16 1x3 char 'u16'
engine.info.names.u32 1x3 char 'u32'
engine.info.names.u64 1x3 char 'u64'
engine.info.names.i8 1x2 char 'i8'
engine.info.names.i16 1x3 char 'i16'
engine.info.names.i32 1x3 char 'i32'
engine.info.names.i64 1x3 char 'i64'
engine.info.names.f32 1x3 char 'f32'
engine.info.names.f64 1x3 char 'f64'
engine.info.names.text 1x4 char 'text'
engine.info.names.bytes 1x5 char 'bytes'
engine.info.names.odometer 1x8 char 'odometer'
engine.info.units.time 1x1 char 's'
engine.info.units.u8 0x0 char ''
engine.info.units.u16 0x0 char ''
engine.info.units.u32 0x0 char ''
engine.info.units.u64 0x0 char ''
engine.info.units.i8 0x0 char ''
engine.info.units.i16 0x0 char ''
engine.info.units.i32 0x0 char ''
engine.info.units.i64 0x0 char ''
engine.info.units.f32 0x0 char ''
engine.info.units.f64 0x0 char ''
engine.info.units.text 0x0 char ''
engine.info.units.bytes 0x0 char ''
engine.info.units.odometer 1x1 char 'm'
engine_2.time 2x1 double 0 0.25
engine_2.x_l_0 2x1 uint8 20 30
engine_2.x_l_1 2x1 uint8 21 31
engine_2.info.name 1x6 char 'engine'
engine_2.info.number 1x1 double 1
engine_2.info.names.time 1x4 char 'time'
engine_2.info.names.x_l_0 1x6 char 'Öl[0]'
engine_2.info.names.x_l_1 1x6 char 'Öl[1]'
engine_2.info.units.time 1x1 char 's'
engine_2.info.units.x_l_0 1x3 char '°C'
engine_2.info.units.x_l_1 1x3 char '°C'
x2_empty.time 0x1 double
x2_empty.info.name 1x7 char '2 empty'
x2_empty.info.number 1x1 double 2
x2_empty.info.names.time 1x4 char 'time'
x2_empty.info.units.time 1x1 char 's'
)");
}

/// What belongs to the times of the second group.
std::string infoOfTime(const std::string& unit) {
  return "engine.info.name 1x6 char 'engine'\nengine.info.number 1x1 double 1\n"
         "engine.info.names.time 1x4 char 'time'\nengine.info.units.time " +
         unit + '\n';
}

TEST_F(MatExport, OptionsThatChoose) {
  const std::vector<std::string> options{"-o", mat, "-g", "1", "-c", "time"};
  const auto with = [&options](std::vector<std::string> others) {
    others.insert(others.begin(), options.begin(), options.end());
    return others;
  };
  EXPECT_EQ(exported(with({"--last", "1"})), wrote(""));
  EXPECT_EQ(byOctave(mat), "engine.time 1x1 double 0.25\n" + infoOfTime("1x1 char 's'"));
  EXPECT_EQ(exported(with({"--time", "ns"})), wrote(""));
  EXPECT_EQ(byOctave(mat), "engine.time 2x1 int64 1700000000250000000 1700000000500000000\n" +
                               infoOfTime("1x2 char 'ns'"));
  EXPECT_EQ(exported(with({"--time", "iso"})), wrote(""));
  EXPECT_EQ(byOctave(mat),
            "engine.time 2x1 cell {1x30 char '2023-11-14T22:13:20.250000000Z'} "
            "{1x30 char '2023-11-14T22:13:20.500000000Z'}\n" +
                infoOfTime("0x0 char ''"));
}

TEST_F(MatExport, RowsAtARateAreATable) {
  EXPECT_EQ(exported({"-o", mat, "--on-time", "4Hz", "-g", "1", "--time", "ns"}), wrote(""));
  EXPECT_EQ(byOctave(mat), R"(table.time 2x1 int64 1700000000250000000 1700000000500000000
table.x_l_0 2x1 uint8 20 30
table.x_l_1 2x1 uint8 21 31
table.info.names.time 1x4 char 'time'
table.info.names.x_l_0 1x6 char 'Öl[0]'
table.info.names.x_l_1 1x6 char 'Öl[1]'
table.info.units.time 1x2 char 'ns'
table.info.units.x_l_0 1x3 char '°C'
table.info.units.x_l_1 1x3 char '°C'
)");
}

TEST_F(MatExport, AFolderGetsAFileForEachInput) {
  folder.write("other.mf4", allKinds());
  const std::string to = (folder / "new").string() + '/';
  EXPECT_EQ(run({"export", "--format", "mat", "-g", "1", "-c", "time", trip,
                 (folder / "other.mf4").string(), "-o", to}),
            wrote(""));
  const std::string expected = "engine.time 2x1 double 0 0.25\n" + infoOfTime("1x1 char 's'");
  EXPECT_EQ(byOctave(to + "trip.mat"), expected);
  EXPECT_EQ(byOctave(to + "other.mat"), expected);

  folder.write("measured.mat", allKinds());
  const std::string measured = (folder / "measured.mat").string();
  EXPECT_EQ(run({"export", "--format", "mat", measured, "-o", folder.path().string()}),
            said(2, "the output " + measured + " is one of the files to read"));
}

TEST_F(MatExport, WhatItIsNotFor) {
  const std::string needs_place =
      "a MATLAB file needs a file or a folder to be written to; name it with -o";
  EXPECT_EQ(exported({"--format", "mat"}), said(2, needs_place));
  EXPECT_EQ(exported({"--format", "mat", "-o", "-"}), said(2, needs_place));
  EXPECT_EQ(exported({"--format", "mat", "-o", "/dev/null"}), said(2, needs_place));
  EXPECT_EQ(exported({trip, "-o", mat}),
            said(2, "each of several files gets a MATLAB file of its own; name a folder with -o"));
  EXPECT_EQ(exported({"-o", mat, "--digits", "3"}),
            said(2, "--digits is for text; numbers in a MATLAB file are exact"));
  EXPECT_FALSE(fs::exists(mat));
}

/// Numbers that do not compress.
std::string noise() {
  std::string data;
  std::uint32_t number = 1;
  for (int i = 0; i < 50000; ++i) {
    number = number * 1664525 + 1013904223;
    data += static_cast<char>(number >> 24U);
  }
  FileBuilder file;
  file.addSortedGroup({50000, 1}, {channelOf("noise", uint_le, 0, 8)}, file.addData(data));
  return file.bytes();
}

TEST_F(MatExport, AFolderThatIsMissing) {
  folder.write("trip.mf4", noise());
  const std::string missing = (folder / "missing").string();
  EXPECT_EQ(exported({"-o", missing + "/out.mat"}),
            said(2, "cannot open the folder " + missing + ": No such file or directory"));
}

TEST_F(MatExport, AFullDiskLeavesTheFileThatWasThere) {
  folder.write("trip.mf4", noise());
  folder.write("trip.mat", "before");
  const ScratchFolder other;
  const std::string whole = (other / "whole.mat").string();
  EXPECT_EQ(exported({"-o", whole}), wrote(""));
  const std::uint64_t size = fs::file_size(whole);
  for (const std::uint64_t limit :
       {std::uint64_t{0}, std::uint64_t{100}, size / 2, size - 4097, size - 1}) {
    RunOptions options;
    options.command = {"sh", "-c", "trap '' XFSZ; exec \"$@\"", "sh"};  // as on a full disk
    const std::vector<std::string> mdf = mdfCommand();
    options.command.insert(options.command.end(), mdf.begin(), mdf.end());
    options.file_size_limit = limit;
    EXPECT_EQ(run({"export", trip, "-o", mat}, options),
              said(1, "cannot write to " + mat + ": File too large"))
        << limit;
  }
  EXPECT_EQ(bytesOf(mat), "before");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), 2);
}

}  // namespace
