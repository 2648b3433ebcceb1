#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/bus_file.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {
namespace {

/// Begun at 1700000000 s, with all kinds of frames.
std::string busFile() {
  FileBuilder file;
  file.write(FileBuilder::header + 72, Bytes().u64(1700000000000000000));
  addFrames(
      file, "CAN_DataFrame", canMembers(),
      frameRecord(0.5, 1, 0x123, 0, 2, "\x12\x34\x56") +
          frameRecord(1.5, 2, 0x18FEF100 | extended, sent | fd | rate_switch, 12, "abcdefghijkl") +
          frameRecord(2, 1, 0x7FF, fd | error_state, 0, ""));
  addFrames(file, "CAN_RemoteFrame", canMembers(), frameRecord(0.75, 1, 0x10, sent, 4, ""));
  addFrames(file, "CAN_ErrorFrame", canMembers(),
            frameRecord(0.25, 1, 0, 3U << 4U, 0, "") + frameRecord(1.5, 2, 0, 5U << 4U, 0, ""));
  addFrames(file, "CAN_OverloadFrame", canMembers(), frameRecord(1.75, 1, 0, 0, 0, ""));
  addFrames(file, "LIN_Frame", canMembers(), frameRecord(1, 3, 0x2A, 0, 1, "\x7F"));
  addFrames(file, "LIN_ChecksumError", canMembers(), frameRecord(3, 3, 0x2A, 0, 0, ""));
  return file.bytes();
}

RunResult frames(const std::string& file, const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = {"frames", "-"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  RunOptions run_options;
  run_options.input = file;
  return run(arguments, run_options);
}

TEST(FramesCommand, ListsAllGroupsInTheOrderOfTime) {
  EXPECT_EQ(frames(busFile()),
            wrote("          0.25  can1              Rx  error stuffing [ 0]\n"
                  "           0.5  can1         123  Rx           [ 2]  12 34\n"
                  "          0.75  can1         010  Tx  remote   [ 4]\n"
                  "             1  lin3          2A  Rx           [ 1]  7F\n"
                  "           1.5  can2    18FEF100  Tx  FD BRS   [12]  "
                  "61 62 63 64 65 66 67 68 69 6A 6B 6C\n"
                  "           1.5  can2              Rx  error ack [ 0]\n"
                  "          1.75  can1              Rx  overload [ 0]\n"
                  "             2  can1         7FF  Rx  FD ESI   [ 0]\n"
                  "             3  lin3              Rx  LIN_ChecksumError [ 0]\n"));
}

TEST(FramesCommand, WritesTheLogOfCanUtils) {
  const RunResult result = frames(busFile(), {"--format", "candump"});
  EXPECT_EQ(result.output,
            "(1700000000.250000) can1 20000008#0000040000000000\n"
            "(1700000000.500000) can1 123#1234\n"
            "(1700000000.750000) can1 010#R4\n"
            "(1700000001.500000) can2 18FEF100##16162636465666768696A6B6C\n"
            "(1700000001.500000) can2 20000020#0000000000000000\n"
            "(1700000001.750000) can1 20000008#0000200000000000\n"
            "(1700000002.000000) can1 7FF##2\n");
  EXPECT_EQ(result.messages,
            "mdf: standard input: note: 2 frames are left out: candump has no place for them\n");
}

TEST(FramesCommand, WritesTablesAndLinesOfJson) {
  EXPECT_EQ(frames(busFile(), {"--format", "csv", "--time", "iso", "--from", "1", "--to", "1.5"}),
            wrote("time,bus,frame,id,extended,direction,fd,brs,esi,error,length,data\n"
                  "2023-11-14T22:13:21Z,lin3,lin,2A,0,Rx,0,0,0,,1,7F\n"
                  "2023-11-14T22:13:21.500000000Z,can2,data,18FEF100,1,Tx,1,1,0,,12,"
                  "6162636465666768696A6B6C\n"
                  "2023-11-14T22:13:21.500000000Z,can2,error,,,Rx,0,0,0,ack,0,\n"));
  EXPECT_EQ(frames(busFile(), {"--format", "jsonl", "--time", "ns", "--to", "0.5"}),
            wrote(R"({"schema":2,"file":"standard input","time":1700000000250000000,"bus":"can1",)"
                  R"("frame":"error","id":null,"hex":null,"extended":null,"direction":"Rx",)"
                  R"("fd":false,"brs":false,"esi":false,"error":"stuffing","length":0,"data":""})"
                  "\n"
                  R"({"schema":2,"file":"standard input","time":1700000000500000000,"bus":"can1",)"
                  R"("frame":"data","id":291,"hex":"123","extended":false,"direction":"Rx",)"
                  R"("fd":false,"brs":false,"esi":false,"error":null,"length":2,"data":"1234"})"
                  "\n"));
}

TEST(FramesCommand, WritesACapture) {
  const ScratchFolder folder;
  folder.write("in.mf4", busFile());
  EXPECT_EQ(run({"frames", folder / "in.mf4", "-o", folder / "out.pcapng", "--id", "123,18FEF100x",
                 "--id", "0x10-0x1F"}),
            wrote(""));
  const auto interface = [](const std::string& name) {
    return Bytes()
        .u32(1)
        .u32(40)
        .u16(227)
        .u16(0)
        .u32(0)
        .u16(2)
        .u16(4)
        .text(name)
        .u16(9)
        .u16(1)
        .u32(9)
        .u32(0)
        .u32(40);
  };
  const auto packet = [](std::uint32_t number, std::uint64_t time, const std::string& bytes,
                         std::uint8_t direction) {
    const auto padded = static_cast<std::uint32_t>((bytes.size() + 3) / 4 * 4);
    const auto size = static_cast<std::uint32_t>(bytes.size());
    Bytes block;
    block.u32(6).u32(padded + 44).u32(number);
    block.u32(static_cast<std::uint32_t>(time >> 32U)).u32(static_cast<std::uint32_t>(time));
    block.u32(size).u32(size).text(bytes).zeros(padded - size);
    return block.u16(2).u16(4).u32(direction).u32(0).u32(padded + 44).str();
  };
  Bytes expected;
  expected.u32(0x0A0D0D0A).u32(28).u32(0x1A2B3C4D).u16(1).u16(0).u64(UINT64_MAX).u32(28);
  expected.text(interface("can1"));
  expected.text(
      packet(0, 1700000000500000000, Bytes().u8s({0, 0, 1, 0x23, 2, 0, 0, 0, 0x12, 0x34}), 1));
  expected.text(packet(0, 1700000000750000000, Bytes().u8s({0x40, 0, 0, 0x10, 4, 0, 0, 0}), 2));
  expected.text(interface("can2"));
  expected.text(packet(1, 1700000001500000000,
                       Bytes().u8s({0x98, 0xFE, 0xF1, 0, 12, 5, 0, 0}).text("abcdefghijkl"), 2));
  EXPECT_EQ(bytesOf(folder / "out.pcapng"), expected.str());
}

TEST(FramesCommand, ChoosesIdentifiersAndBuses) {
  EXPECT_EQ(frames(busFile(), {"--id", "2A", "--bus", "3"}),
            wrote("             1  lin3          2A  Rx           [ 1]  7F\n"));
  EXPECT_EQ(frames(busFile(), {"--id", "100-7FF,10x"}).output,
            "           0.5  can1         123  Rx           [ 2]  12 34\n"
            "             2  can1         7FF  Rx  FD ESI   [ 0]\n");
  EXPECT_EQ(frames(busFile(), {"--id", "0", "--bus", "can*"}), wrote(""));
  EXPECT_EQ(frames(busFile(), {"--id", "12G"}),
            said(2,
                 "--id: expected an identifier such as 123, 18FEF100x or 700-7FF, found "
                 "\"12G\""));
  EXPECT_EQ(frames(busFile(), {"--id", "7-3"}),
            said(2, "--id: the identifiers 7-3 end before they begin"));
}

/// Members without their structure's name; data of variable length; a length code; no bus.
TEST(FramesCommand, ReadsUnsortedFramesOfVariableLength) {
  FileBuilder file;
  ChannelSpec data = channelOf("DataBytes", 10, 13, 64);
  data.type = 1;
  const std::uint64_t values = file.addChannelGroup({2, 0, 0, 2, 1});
  data.data = values;
  const std::vector<std::uint64_t> members = {file.addChannel(channelOf("ID", 0, 8, 32)),
                                              file.addChannel(channelOf("DLC", 0, 12, 8)),
                                              file.addChannel(data)};
  file.chain(members);
  ChannelSpec structure = channelOf("CAN_DataFrame", 10, 8, 8 * 13);
  structure.composition = members[0];
  GroupSpec group{2, 21, 0, 1};
  group.name = "CAN 4";
  const std::uint64_t frames_group = file.addGroupOf(group, {timeChannel(), structure});
  Bytes records;
  records.u8(1).f64(-1).u32(extended | 5U).u8(3).u64(0).u8(2).u32(2).text("xy");
  records.u8(1).f64(-2).u32(0x800).u8(15).u64(6).u8(2).u32(9).text("123456789");
  file.addDataGroup({frames_group, values}, file.addData(records), 1);
  const RunResult result = frames(file.bytes());
  EXPECT_EQ(result.output,
            "            -1  CAN_4   00000005               [ 3]  78 79\n"
            "            -2  CAN_4   00000800               [ 8]  31 32 33 34 35 36 37 38\n");
  const std::string group_words = "mdf: standard input: note: channel group 0 \"CAN 4\": ";
  EXPECT_EQ(result.messages,
            group_words + "1 frame is before the one before; they stay in the order of the file\n" +
                group_words + "1 frame has fewer bytes of data than stated\n");
}

TEST(FramesCommand, SaysWhatIsNotInTheList) {
  FileBuilder file;
  addFrames(file, "CAN_DataFrame", canMembers(),
            frameRecord(1, 1, 1, 0, 0, "") +
                frameRecord(std::numeric_limits<double>::quiet_NaN(), 1, 2, 0, 0, ""));
  addFrames(file, "CAN_DataFrame", {bitOf("BusChannel", 8, 0, 8)}, frameRecord(1, 1, 1, 0, 0, ""));
  addFrames(file, "FLX_Frame", canMembers(), frameRecord(1, 1, 1, 0, 0, ""));
  const RunResult result = frames(file.bytes(), {"--format", "candump"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "(0000000001.000000) can1 001#\n");
  const std::string words = "mdf: standard input: note: ";
  EXPECT_EQ(result.messages,
            words +
                "channel group 1 has frames without times or without identifiers, which are "
                "left out\n" +
                words +
                "channel group 2 has events of a bus that are no frames of CAN or LIN, "
                "which are left out\n" +
                words +
                "the file does not say when it was begun; times count from the beginning of "
                "1970\n" +
                words +
                "channel group 0: 1 record without a valid time or identifier is left "
                "out\n");
}

TEST(FramesCommand, NeedsFramesAndAPlaceForThem) {
  FileBuilder file;
  file.addSortedGroup({0, 8}, {timeChannel()}, 0);
  EXPECT_EQ(frames(file.bytes()).exit_code, 1);
  EXPECT_TRUE(contains(frames(file.bytes()).messages,
                       "no channel group holds frames of CAN or "
                       "LIN\n"));
  const ScratchFolder folder;
  folder.write("in.mf4", busFile());
  const std::string path = folder / "in.mf4";
  EXPECT_EQ(run({"frames", path, "-o", path}),
            said(2, "the output " + path + " is one of the files to read"));
  const std::string place = folder.path().string();
  EXPECT_EQ(run({"frames", path, "-o", place}),
            said(2, "the output " + place + " is no file; use '> " + place + "'"));
  EXPECT_EQ(run({"frames", path, "-o", folder / "none/x"}).exit_code, 2);
  RunOptions terminal;
  terminal.output_is_terminal = true;
  EXPECT_EQ(run({"frames", path, "--format", "pcapng"}, terminal).exit_code, 2);
}

}  // namespace
}  // namespace mdf_tests
