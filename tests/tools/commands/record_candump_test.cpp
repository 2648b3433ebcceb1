#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/support/checked.h"
#include "tools/support/program.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

namespace mdf_tests {
namespace {

RunResult recordFrames(const std::string& path, const std::string& log,
                       std::vector<std::string> arguments = {}) {
  arguments.insert(arguments.begin(), {path, "--stdin", "candump"});
  RunOptions options;
  options.input = log;
  return record(arguments, options);
}

/// The frames of a file that nothing is wrong with.
std::string framesIn(const std::string& path) {
  EXPECT_EQ(checkedBytes(bytesOf(path)), "");
  return run({"frames", path, "--format", "candump"}).output;
}

const char* const log =
    "(1345212884.318850) can0 123#0011\n"
    "(1345212884.318850) vcan1 18FEF100##1001122\n"
    "(1345212884.318849) can0 7FF#R\n"
    "(1345212885.500000) my-bus 20000008#0000040000000000\n"
    "(1345212889.000001) can0 123#\n";
const char* const in_order =
    "(1345212884.318849) can0 7FF#R\n"
    "(1345212884.318850) can0 123#0011\n"
    "(1345212884.318850) vcan1 18FEF100##1001122\n"
    "(1345212885.500000) my-bus 20000008#0000040000000000\n"
    "(1345212889.000001) can0 123#\n";

TEST(RecordCandump, MakesAFileOfTheFramesOfBusesThatComeInTheMeantime) {
  for (const std::vector<std::string>& options :
       {std::vector<std::string>{}, {"--zip"}, {"--sync"}, {"--ring", "1h"}}) {
    const ScratchFolder folder;
    const RunResult result = recordFrames(folder / "out.mf4", log, options);
    EXPECT_EQ(result.exit_code, 0) << result.messages;
    EXPECT_PRED2(contains, result.messages, "recorded 5 records of 47 channels in ");
    EXPECT_EQ(framesIn(folder / "out.mf4"), in_order);
  }
}

TEST(RecordCandump, LeavesOutLinesThatDoNotFit) {
  const ScratchFolder folder;
  const RunResult result = recordFrames(
      folder / "out.mf4", "\nhello\n(1345212884.318850) can0 123#0011\n(1345212884.3) can0 12#\n");
  EXPECT_EQ(result.exit_code, 1);
  EXPECT_PRED2(contains, result.messages,
               "mdf: standard input, line 2: column 1: expected a time in brackets, such as "
               "(1345212884.318850), found something else; such lines are left out\n");
  EXPECT_PRED2(contains, result.messages, "2 lines left out\n");
  EXPECT_EQ(framesIn(folder / "out.mf4"), "(1345212884.318850) can0 123#0011\n");
  EXPECT_EQ(recordFrames(folder / "x.mf4", log, {"--time", "t"}),
            said(2,
                 "the lines of candump have their times where candump puts them, not in --time "
                 "t"));
}

TEST(RecordCandump, GoesOnInTheNextFile) {
  const ScratchFolder folder;
  EXPECT_EQ(recordFrames(folder / "out.mf4", log, {"--rotate", "1s"}).exit_code, 0);
  EXPECT_EQ(framesIn(folder / "out_001.mf4"),
            "(1345212884.318849) can0 7FF#R\n"
            "(1345212884.318850) can0 123#0011\n"
            "(1345212884.318850) vcan1 18FEF100##1001122\n");
  EXPECT_EQ(framesIn(folder / "out_002.mf4"),
            "(1345212885.500000) my-bus 20000008#0000040000000000\n");
  EXPECT_EQ(framesIn(folder / "out_003.mf4"), "(1345212889.000001) can0 123#\n");
}

/// The program is killed when the file has had a second for what came; a bus comes after that.
TEST(RecordCandump, LosesNothingThatWasFlushed) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  RunOptions options;
  const std::string script =
      "(printf '(1345212884.5) can0 123#00\\n'; sleep 1.5; printf '(1345212887.5) can1 123#01\\n"
      "(1345212889.5) can1 123#02\\n'; sleep 60) | \"$@\"; exit $?";
  const std::vector<std::string> shell = {"timeout", "-s", "KILL", "4", "sh", "-c", script, "sh"};
  options.command.insert(options.command.begin(), shell.begin(), shell.end());
  record({path, "--stdin", "candump"}, options);
  EXPECT_EQ(bytesOf(path).substr(0, 7), "UnFinMF");
  EXPECT_EQ(run({"frames", path, "--format", "candump"}).output,
            "(1345212884.500000) can0 123#00\n(1345212887.500000) can1 123#01\n"
            "(1345212889.500000) can1 123#02\n");
}

/// What comes in the first second can be of any bus.
TEST(RecordCandump, WritesToAPipe) {
  const ScratchFolder folder;
  const RunResult piped = recordFrames("-", log);
  EXPECT_EQ(piped.exit_code, 0) << piped.messages;
  folder.write("out.mf4", piped.output);
  EXPECT_EQ(run({"frames", folder / "out.mf4", "--format", "candump"}).output, in_order);
}

}  // namespace
}  // namespace mdf_tests
