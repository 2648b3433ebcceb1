#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/bytes.h"
#include "tools/support/bus_file.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {
namespace {

using namespace std::string_literals;

/// Both byte orders, signs, a scale, texts, a switch, and data of 6 bytes.
constexpr const char* engine_dbc = R"(VERSION "1"

BU_: ECU

BO_ 291 Engine: 6 ECU
 SG_ Speed : 0|16@1+ (0.25,0) [0|8000] "rpm" Vector__XXX
 SG_ Temp : 23|8@0- (1,-40) [-168|87] "degC" Vector__XXX
 SG_ Gear : 24|4@1+ (1,0) [0|15] "" Vector__XXX
 SG_ Mode M : 28|2@1+ (1,0) [0|3] "" Vector__XXX
 SG_ Boost m0 : 32|16@1+ (0.5,0) [0|0] "bar" Vector__XXX
 SG_ Oil m1 : 39|16@0+ (0.5,0) [0|0] "kPa" Vector__XXX

CM_ BO_ 291 "What the engine says";
CM_ SG_ 291 Speed "Turns of the crankshaft";
VAL_ 291 Gear 0 "neutral" 15 "error" ;
VAL_ 291 Temp -128 "none" ;
)";

std::string fileOf(const std::string& records) {
  FileBuilder file;
  file.write(FileBuilder::header + 72, Bytes().u64(1700000000000000000));
  addFrames(file, "CAN_DataFrame", canMembers(), records);
  return file.bytes();
}

std::string engineFrames(unsigned bus) {
  return frameRecord(0.5, bus, 0x123, 0, 6, "\x40\x1F\xD8\x00\x0F\x00"s) +
         frameRecord(1, bus, 0x123, 0, 6, "\x00\x00\x80\x1F\x01\x00"s) +
         frameRecord(2, bus, 0x123, 0, 4, "\x02\x00\x01\x12"s);
}

RunResult runOn(const std::string& command, const std::string& file, const std::string& dbc,
                const std::vector<std::string>& options) {
  const TempFile database(dbc);
  std::vector<std::string> arguments = {command, "-", "--dbc", database.path()};
  arguments.insert(arguments.end(), options.begin(), options.end());
  RunOptions run_options;
  run_options.input = file;
  return run(arguments, run_options);
}

RunResult decode(const std::string& file, const std::string& dbc,
                 const std::vector<std::string>& options = {}) {
  return runOn("decode", file, dbc, options);
}

TEST(DecodeCommand, MakesATableOfEachMessage) {
  EXPECT_EQ(decode(fileOf(engineFrames(1)), engine_dbc),
            wrote("time [s],Speed [rpm],Temp [degC],Gear,Mode,Boost [bar],Oil [kPa]\n"
                  "0.5,2000,-80,neutral,0,7.5,\n"
                  "1,0,none,error,1,,128\n"
                  "2,0.5,-39,2,1,,\n"));
}

TEST(DecodeCommand, WritesAFileThatSaysWhatTheDatabaseSays) {
  const ScratchFolder folder;
  const std::string path = (folder / "signals.mf4").string();
  const RunResult result = decode(fileOf(engineFrames(1)), engine_dbc, {"-o", path});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "decoded 3 frames to 1 channel group of " + path + "\n");
  EXPECT_EQ(run({"check", path}).exit_code, 0);
  EXPECT_EQ(run({"export", path, "-c", "Temp", "--raw"}).output,
            "time [s],Temp [degC]\n0.5,-40\n1,-128\n2,1\n");
  const std::string dump = run({"dump", path}).output;
  for (const char* text : {"What the engine says", "Turns of the crankshaft", "ECU", "can1"}) {
    EXPECT_NE(dump.find(text), std::string::npos) << text;
  }
  const RunResult again = decode(fileOf(engineFrames(1)), engine_dbc, {"-o", path});
  EXPECT_EQ(again.exit_code, 2);
  EXPECT_EQ(decode(fileOf(engineFrames(1)), engine_dbc, {"-o", path, "--force"}).exit_code, 0);
}

/// Where a value has a text, a picture has it on the scale of the others.
TEST(DecodeCommand, GivesSignalsToOtherCommands) {
  const std::string file = fileOf(engineFrames(1));
  EXPECT_EQ(runOn("plot", file, engine_dbc, {"-c", "Temp", "--json"}).output,
            R"({"schema":2,"curves":[{"file":"standard input","name":"Temp","unit":"degC",)"
            R"("over":"time [s]","points":[[0.5,-80.0],[1.0,-168.0],[2.0,-39.0]]}]})"
            "\n");
  EXPECT_EQ(runOn("export", file, engine_dbc, {"-c", "Speed", "--on-time", "1Hz"}).output,
            "time [s],Speed [rpm]\n0.5,2000\n1.5,0\n");
  EXPECT_NE(runOn("stats", file, engine_dbc, {"-c", "Speed"}).output.find("2000"),
            std::string::npos);
}

constexpr const char* widths_dbc = R"(
BO_ 2147483649 Wide: 15 ECU
 SG_ Long : 4|64@1- (1,0) [0|0] "" X
 SG_ LongMotorola : 3|64@0+ (1,0) [0|0] "" X
 SG_ Real : 80|32@1- (1,0) [0|0] "" X
 SG_ Odd : 74|11@0- (1,0) [0|0] "" X

SIG_VALTYPE_ 2147483649 Real : 1;
)";

/// Signals that no channel shows where they stand: 64 bits that lie in nine bytes.
TEST(DecodeCommand, ShowsSignalsAnywhereInTheData) {
  const std::string data = "\x10\x32\x54\x76\x98\xBA\xDC\xFE\x05\x07\x00\x00\x20\x40\x00"s;
  const std::string file = fileOf(frameRecord(0, 1, extended | 1U, 0, 15, data));
  // 0x5fedcba987654321, 0x032547698badcfe0, 2.5, and 0b11100000000.
  EXPECT_EQ(decode(file, widths_dbc), wrote("time [s],Long,LongMotorola,Real,Odd\n"
                                            "0,6912404932065051425,226665874892640224,2.5,-256\n"));
}

constexpr const char* bits_dbc = R"(
BO_ 1 M: 8 X
 SG_ A : 0|8@1+ (1,0) [0|0] "" X
)";

TEST(DecodeCommand, KeepsBusesApart) {
  const std::string file =
      fileOf(frameRecord(0, 1, 1, 0, 1, "\x01") + frameRecord(1, 2, 1, 0, 1, "\x02") +
             frameRecord(2, 2, 2, 0, 1, "\x03") + frameRecord(3, 2, 2, 0, 1, "\x03"));
  const RunResult both = decode(file, bits_dbc);
  EXPECT_EQ(both.output, "time [s],A\n0,1\n\ntime [s],A\n1,2\n");
  EXPECT_EQ(both.messages,
            "mdf: standard input: note: 2 frames of messages that no database describes are not "
            "decoded: can2 002 (2)\n");
  const TempFile database(bits_dbc);
  RunOptions options;
  options.input = file;
  EXPECT_EQ(run({"decode", "-", "--dbc", database.path() + "@can2"}, options).output,
            "time [s],A\n1,2\n");
  EXPECT_EQ(run({"decode", "-", "--dbc", database.path() + "@1"}, options).output,
            "time [s],A\n0,1\n");
  const RunResult groups =
      run({"decode", "-", "--dbc", database.path(), "--format", "jsonl"}, options);
  EXPECT_NE(groups.output.find(R"("name":"M can1")"), std::string::npos) << groups.output;
  EXPECT_NE(groups.output.find(R"("name":"M can2")"), std::string::npos) << groups.output;
}

constexpr const char* truck_dbc = R"(
BO_ 2364540158 EEC1: 8 X
 SG_ EngSpeed : 24|16@1+ (0.125,0) [0|8031.875] "rpm" X
)";

/// 0xCF00400 is the same message as 0xCF004FE of the database, from another sender.
TEST(DecodeCommand, FindsMessagesByParameterGroup) {
  const std::string data = "\xFF\xFF\xFF\x40\x1F\xFF\xFF\xFF"s;
  const std::string file = fileOf(frameRecord(0, 1, extended | 0xCF00400U, 0, 8, data) +
                                  frameRecord(1, 1, extended | 0x18F00417U, 0, 8, data));
  EXPECT_EQ(decode(file, truck_dbc, {"--j1939"}).output,
            "time [s],EngSpeed [rpm],SourceAddress\n0,1000,0\n1,1000,23\n");
  const RunResult exact = decode(file, truck_dbc);
  EXPECT_EQ(exact.output, "");
  EXPECT_EQ(exact.messages,
            "mdf: standard input: note: 2 frames of messages that no database describes are not "
            "decoded: can1 0CF00400 (1), can1 18F00417 (1)\n");
}

TEST(DecodeCommand, JoinsFilesByTheirStarts) {
  FileBuilder later;
  later.write(FileBuilder::header + 72, Bytes().u64(1700000010000000000));
  addFrames(later, "CAN_DataFrame", canMembers(), frameRecord(1, 1, 1, 0, 1, "\x02"));
  const TempFile second(later.bytes());
  const TempFile first(fileOf(frameRecord(1, 1, 1, 0, 1, "\x01")));
  const TempFile database(bits_dbc);
  const ScratchFolder folder;
  const std::string path = (folder / "signals.mf4").string();
  const RunResult result =
      run({"decode", second.path(), first.path(), "--dbc", database.path(), "-o", path, "--json"});
  EXPECT_EQ(result.output, R"({"schema":2,"output":")" + path +
                               R"(","frames":2,"groups":1,"unknown_frames":0,"unknown":[],)"
                               R"("all_unknown_listed":true,"other_frames":0})"
                               "\n");
  EXPECT_EQ(run({"export", path}).output, "time [s],A\n1,1\n11,2\n");
}

TEST(DecodeCommand, SaysWhatIsWrong) {
  const std::string file = fileOf(frameRecord(0, 1, 1, 0, 1, "\x01"));
  const RunResult faulty =
      decode(file, std::string(bits_dbc) + " SG_ B : x|8@1+ (1,0) [0|0] \"\" X\n");
  EXPECT_EQ(faulty.exit_code, 1);
  EXPECT_EQ(faulty.output, "time [s],A\n0,1\n");
  EXPECT_NE(faulty.messages.find(":4:10: expected"), std::string::npos) << faulty.messages;
  EXPECT_EQ(decode(file, "nothing").exit_code, 2);
  EXPECT_EQ(run({"decode", "-", "--dbc", "/none/at.dbc"}).messages,
            "mdf: cannot open /none/at.dbc: No such file or directory\n");
  FileBuilder empty;
  empty.write(FileBuilder::header + 72, Bytes().u64(0));
  const RunResult none = decode(empty.bytes(), bits_dbc);
  EXPECT_EQ(none.messages, "mdf: standard input: no channel group holds frames of CAN or LIN\n");
  EXPECT_EQ(none.exit_code, 1);
}

}  // namespace
}  // namespace mdf_tests
