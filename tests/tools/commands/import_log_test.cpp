#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {
namespace {

/// What mdf frames makes of a log that is imported from standard input, after checking the file.
RunResult relisted(const std::string& log, const std::vector<std::string>& form,
                   const std::vector<std::string>& options = {}) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  std::vector<std::string> arguments = {"import", "-", "-o", path};
  arguments.insert(arguments.end(), options.begin(), options.end());
  RunOptions input;
  input.input = log;
  RunResult imported = run(arguments, input);
  if (imported.exit_code != 0) {
    return imported;
  }
  EXPECT_EQ(checkedBytes(bytesOf(path)), "");
  arguments = {"frames", path};
  arguments.insert(arguments.end(), form.begin(), form.end());
  RunResult listed = run(arguments);
  listed.messages = imported.messages.substr(0, imported.messages.find(" to ")) + '\n';
  return listed;
}

const std::vector<std::string> candump = {"--format", "candump"};

/// Frames of each kind, several at the same time, and two times that lie 31 years apart.
const char* const all_kinds =
    "(1345212884.318850) can0 123#0011\n"
    "(1345212884.318850) vcan1.5 18FEF100#0011223344556677\n"
    "(1345212884.318850) can0 7FF#R\n"
    "(1345212884.318850) can0 000#\n"
    "(1345212884.318851) vcan1.5 00000010#R8\n"
    "(1345212885.000000) can0 123##0\n"
    "(1345212885.000000) can0 123##3000102030405060708090A0B\n"
    "(1345212885.999999) my-bus 20000008#0000040000000000\n"
    "(1345212886.000000) my-bus 20000020#0000000000000000\n"
    "(1345212886.000001) my-bus 20000044#0004000000000070\n"
    "(2345212885.123457) vcan1.5 1FFFFFFF##1AA\n";

TEST(ImportLog, GivesTheLinesOfCandumpBack) {
  RunResult expected = wrote(all_kinds);
  expected.messages = "imported 11 frames of 3 buses\n";
  EXPECT_EQ(relisted(all_kinds, candump), expected);
  const char* const moments[] = {"0000000000.000001", "0000000008.000000", "0000000009.000000",
                                 "0999999999.999999", "2147483648.000001", "4294967296.123456"};
  for (const std::string moment : moments) {
    const std::string line = '(' + moment + ") can0 001#01\n";
    EXPECT_EQ(relisted(line, candump).output, line);
  }
}

/// Of 100 buses at the same time, in an order that no file has.
TEST(ImportLog, KeepsTheOrderOfFramesAtTheSameTime) {
  std::string log;
  for (unsigned i = 0; i < 1000; ++i) {
    log += "(1345212884.000000) can" + std::to_string(i * i % 101) + " 123#" +
           (i % 3 == 0 ? "R" : "#0") + '\n';
  }
  EXPECT_EQ(relisted(log, candump).output, log);
}

TEST(ImportLog, ReadsOtherWaysToWriteAFrame) {
  EXPECT_EQ(relisted("\r\n(1345212884.3) can0  7ff#aB.cD R\r\n"
                     "(1345212884.318850123)\tcan0\t123#r4 T\n\n"
                     "(1345212885.0) can0 00000123##5.01.02   \n"
                     "(1345212886) can0 123#",
                     {"--time", "ns"})
                .output,
            "1345212884300000000  can0         7FF  Rx           [ 2]  AB CD\n"
            "1345212884318850123  can0         123  Tx  remote   [ 4]\n"
            "1345212885000000000  can0    00000123      FD BRS   [ 2]  01 02\n"
            "1345212886000000000  can0         123               [ 0]\n");
}

TEST(ImportLog, MakesChannelGroupsOfTheUsualForm) {
  const ScratchFolder folder;
  folder.write("a.log", "(1345212884.5) can3 123#0011 T\n(1345212884.75) can3 12345678##1AA\n");
  const std::string path = folder / "out.mf4";
  EXPECT_EQ(run({"import", folder / "a.log", "-o", path}).exit_code, 0);
  EXPECT_EQ(run({"export", path}).output,
            "time [s],CAN_DataFrame.BusChannel,CAN_DataFrame.ID,CAN_DataFrame.IDE,"
            "CAN_DataFrame.Dir,CAN_DataFrame.EDL,CAN_DataFrame.BRS,CAN_DataFrame.ESI,"
            "CAN_DataFrame.DLC,CAN_DataFrame.DataLength,CAN_DataFrame.DataBytes,"
            "CAN_DataFrame.FrameNumber\n"
            "0,3,291,0,1,0,0,0,2,2,0011000000000000,0\n"
            "\n"
            "time [s],CAN_DataFrame.BusChannel,CAN_DataFrame.ID,CAN_DataFrame.IDE,"
            "CAN_DataFrame.Dir,CAN_DataFrame.EDL,CAN_DataFrame.BRS,CAN_DataFrame.ESI,"
            "CAN_DataFrame.DLC,CAN_DataFrame.DataLength,CAN_DataFrame.DataBytes,"
            "CAN_DataFrame.FrameNumber\n"
            "0.25,3,305419896,1,,1,1,0,1,1,aa,1\n");
  EXPECT_PRED2(contains, run({"info", path}).output, "2012-08-17 14:14:44.500000000 UTC");
}

struct BadLine {
  const char* line;
  const char* fault;  ///< after the place
};

TEST(ImportLog, SaysWhatIsWrongWithALineOrLeavesItOut) {
  const BadLine lines[] = {
      {"1345212884.3 can0 123#", "1: expected a time in brackets, such as (1345212884.318850), "},
      {"(", "1: expected a time in brackets, such as (1345212884.318850), "},
      {"(1345212884.3 can0 123#", "14: expected the end of the time, a bracket, "},
      {"(9183110400.0) can0 123#", "12: expected a time before the year 2261, "},
      {"(1.0)", "6: expected the name of a bus, "},
      {"(1.0) \xff 123#", "7: expected the name of a bus, "},
      {"(1.0) can0 12#", "12: expected an identifier of 3 or 8 hexadecimal digits and #, "},
      {"(1.0) can0 800#", "12: expected an identifier of 3 or 8 hexadecimal digits and #, "},
      {"(1.0) can0 40000000#", "12: expected an identifier of 3 or 8 hexadecimal digits and #, "},
      {"(1.0) can0 123", "12: expected an identifier of 3 or 8 hexadecimal digits and #, "},
      {"(1.0) can0 123##", "17: expected the flags of a frame of CAN FD, a digit from 0 to 7, "},
      {"(1.0) can0 123##8", "17: expected the flags of a frame of CAN FD, a digit from 0 to 7, "},
      {"(1.0) can0 123#R9", "17: expected a length of at most 8, "},
      {"(1.0) can0 123#0", "16: expected two hexadecimal digits of a byte, "},
      {"(1.0) can0 123#00.", "19: expected two hexadecimal digits of a byte, "},
      {"(1.0) can0 123#001122334455667788", "32: expected at most 8 bytes of data, "},
      {"(1.0) can0 123#00 X", "19: expected R, T or the end of the line, "},
  };
  const std::string good = "(0000000001.000000) can0 001#01\n";
  for (const BadLine& bad : lines) {
    const std::string log = good + bad.line + '\n' + good;
    const RunResult result = relisted(log, candump);
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_EQ(result.messages.substr(0, result.messages.rfind("found")),
              std::string("mdf: standard input: line 2, column ") + bad.fault);
    const RunResult skipped = relisted(log, candump, {"--skip-bad"});
    EXPECT_EQ(skipped.output, good + good);
  }
}

TEST(ImportLog, NumbersNoMoreThan256Buses) {
  std::string log;
  for (int i = 0; i <= 256; ++i) {
    log += "(0000000100.000000) bus-" + std::to_string(i) + "x 001#01\n";
  }
  EXPECT_EQ(relisted(log, candump).messages,
            "mdf: standard input: line 257: expected frames of at most 256 buses, found more\n");
  log.erase(log.rfind('(', log.size()));
  EXPECT_EQ(relisted(log, candump).output, log);
}

TEST(ImportLog, PutsLogsOneAfterAnotherAndKeepsThemFromTables) {
  const ScratchFolder folder;
  folder.write("a.log", "(0000000100.000000) can0 001#01\n");
  folder.write("b.log", "(0000000099.000000) can1 002#\n");
  folder.write("t.csv", "time,a\n0,1\n");
  folder.write("none", "\n");
  const std::string path = folder / "out.mf4";
  EXPECT_EQ(run({"import", folder / "a.log", folder / "b.log", "-o", path}).exit_code, 0);
  EXPECT_EQ(run({"frames", path, "--format", "candump"}).output,
            "(0000000099.000000) can1 002#\n(0000000100.000000) can0 001#01\n");
  EXPECT_EQ(run({"import", folder / "a.log", folder / "t.csv", "-o", folder / "x.mf4"}),
            said(1, std::string(folder / "t.csv") + ": expected a log, as " +
                        std::string(folder / "a.log") + " is, found a table"));
  EXPECT_EQ(run({"import", folder / "none", "-o", folder / "x.mf4", "--format", "candump"}),
            said(1, "expected a log with frames, found none"));
}

// Captures

std::string section() {
  return Bytes().u32(0x0A0D0D0A).u32(28).u32(0x1A2B3C4D).u16(1).u16(0).u64(UINT64_MAX).u32(28);
}

std::string interface(std::uint16_t link_type, const std::string& options) {
  const auto size = static_cast<std::uint32_t>(20 + options.size());
  return Bytes().u32(1).u32(size).u16(link_type).u16(0).u32(0).text(options).u32(size);
}

std::string packet(std::uint32_t number, std::uint64_t time, const std::string& bytes,
                   std::size_t cut = 0) {
  const auto padded = static_cast<std::uint32_t>((bytes.size() + 3) / 4 * 4);
  const auto size = static_cast<std::uint32_t>(bytes.size());
  Bytes block;
  block.u32(6).u32(padded + 32).u32(number);
  block.u32(static_cast<std::uint32_t>(time >> 32U)).u32(static_cast<std::uint32_t>(time));
  block.u32(size).u32(static_cast<std::uint32_t>(size + cut)).text(bytes).zeros(padded - size);
  return block.u32(padded + 32);
}

const std::string frame_bytes = Bytes().u8s({0, 0, 1, 0x23, 2, 0, 0, 0, 0x12, 0x34});

TEST(ImportCapture, GivesTheSameCaptureBack) {
  const ScratchFolder folder;
  folder.write("a.log", all_kinds);
  EXPECT_EQ(run({"import", folder / "a.log", "-o", folder / "a.mf4"}).exit_code, 0);
  EXPECT_EQ(run({"frames", folder / "a.mf4", "-o", folder / "a.pcapng"}).exit_code, 0);
  const std::string capture = bytesOf(folder / "a.pcapng");
  EXPECT_EQ(relisted(capture, {"--format", "pcapng"}).output, capture);
  EXPECT_EQ(relisted(capture, candump).output, all_kinds);
}

TEST(ImportCapture, ReadsUnitsOfTimeAndNames) {
  const std::string binary = Bytes().u16(9).u16(1).u32(0x80 + 20).u16(14).u16(8).u64(100).u32(0);
  const std::string coarse =
      Bytes().u16(2).u16(3).text(std::string("bus\0", 4)).u16(9).u16(1).u32(3);
  const std::string fine = Bytes().u16(9).u16(1).u32(12);
  EXPECT_EQ(
      relisted(section() + interface(227, "") + interface(227, binary) + interface(227, coarse) +
                   interface(227, fine) + packet(0, 1'000'001, frame_bytes) +
                   packet(1, 3U << 19U, frame_bytes) + packet(2, 2'001'000, frame_bytes) +
                   packet(3, 3'000'000'001'999, frame_bytes),
               {})
          .output,
      "      1.000001  can0         123               [ 2]  12 34\n"
      "   3.000000001  can3         123               [ 2]  12 34\n"
      "         101.5  can1         123               [ 2]  12 34\n"
      "          2001  bus          123               [ 2]  12 34\n");
}

TEST(ImportCapture, ReadsPcapInBothOrdersOfBytes) {
  Bytes little;
  little.u32(0xA1B2C3D4).u16(2).u16(4).u64(0).u32(65535).u32(227);
  little.u32(1345212884).u32(318850).u32(16).u32(16).text(frame_bytes).zeros(6);
  little.u32(1345212885).u32(1).u32(72).u32(72).u8s({0x98, 0xFE, 0xF1, 0, 1, 1, 0, 0, 0xAB});
  const std::string lines =
      "(1345212884.318850) can0 123#1234\n"
      "(1345212885.000001) can0 18FEF100##1AB\n";
  EXPECT_EQ(relisted(little.zeros(63), candump).output, lines);
  Bytes big;
  big.u8s({0xA1, 0xB2, 0x3C, 0x4D, 0, 2, 0, 4}).zeros(8).u8s({0, 0, 255, 255, 0, 0, 0, 227});
  big.u8s({0x50, 0x2E, 0x51, 0xD4, 0x13, 0x01, 0x43, 0xD0, 0, 0, 0, 10, 0, 0, 0, 10});
  EXPECT_EQ(relisted(big.text(frame_bytes), candump).output, "(1345212884.318850) can0 123#1234\n");
}

struct BadCapture {
  std::string bytes;
  std::string fault;
};

TEST(ImportCapture, SaysWhatCannotBeReadOrLeavesItOut) {
  const std::string begin = section() + interface(227, "") + interface(1, "");
  const std::string fine = packet(0, 5, frame_bytes);
  const std::string long_frame = Bytes().u8s({0, 0, 1, 0x23, 65, 4, 0, 0}).zeros(64);
  const std::string short_frame = Bytes().u8s({0, 0, 1, 0x23, 3, 0, 0, 0, 1, 2});
  const BadCapture captures[] = {
      {packet(1, 5, frame_bytes),
       "expected packets with the link type 227, frames of SocketCAN, found the link type 1"},
      {packet(0, 5, frame_bytes, 6), "the packet was cut off: it has 10 of 16 bytes"},
      {packet(0, 5, "1234"), "the packet was cut off: it has 4 of 8 bytes"},
      {packet(0, 5, long_frame),
       "the frame states 65 bytes of data, which it cannot have or has "
       "not"},
      {packet(0, 5, short_frame),
       "the frame states 3 bytes of data, which it cannot have or has "
       "not"},
      {packet(2, 5, frame_bytes), "the packet is longer than its block, or of no interface"},
      {packet(0, UINT64_MAX, frame_bytes), "expected a time from 1970 to 2261, found another"},
      {Bytes().u32(3).u32(16).u32(0).u32(16), "the packet has no time, or an obsolete form"},
  };
  for (const BadCapture& bad : captures) {
    EXPECT_EQ(relisted(begin + fine + bad.bytes + fine, candump),
              said(1, "standard input: the block at offset " +
                          std::to_string(begin.size() + fine.size()) + ": " + bad.fault));
    EXPECT_EQ(relisted(begin + fine + bad.bytes + fine, candump, {"--skip-bad"}).output,
              "(0000000000.000005) can0 123#1234\n(0000000000.000005) can0 123#1234\n");
  }
  EXPECT_EQ(relisted(begin + fine.substr(0, 17), candump),
            said(1, "standard input: the block at offset " + std::to_string(begin.size()) +
                        ": the file ends within it"));
  for (const std::uint32_t length : {8U, 13U, 1U << 25U}) {
    EXPECT_EQ(relisted(section() + Bytes().u32(6).u32(length).str(), candump, {"--skip-bad"}),
              said(1, "standard input: the block at offset 28 states a length of " +
                          std::to_string(length) + " bytes"));
  }
  const std::string ethernet = Bytes().u32(0xA1B2C3D4).u16(2).u16(4).u64(0).u32(65535).u32(1);
  EXPECT_EQ(relisted(ethernet, candump, {"--skip-bad"}),
            said(1,
                 "standard input: expected packets with the link type 227, frames of "
                 "SocketCAN, found the link type 1"));
  EXPECT_EQ(relisted("no capture", candump, {"--format", "pcap"}),
            said(1, "standard input: expected a capture, found something else"));
}

}  // namespace
}  // namespace mdf_tests
