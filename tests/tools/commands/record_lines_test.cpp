#include <gtest/gtest.h>

#include "tools/support/program.h"
#include "tools/support/recording_run.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

TEST(RecordLines, HaveTimesOfTheirOwn) {
  EXPECT_EQ(recordedLines("t [ms],speed [km/h],state\n0,1.5,go\n500,,\n400,2,x\n1000,2,\"a, b\"",
                          {"--stdin", "csv", "--time", "t"}),
            "mdf: standard input, line 4: the time 400 is before that of the line before; such "
            "lines are left out\n"
            "recorded 3 records of 3 channels to out.mf4, 1 line left out\n"
            "exit code 1\n"
            "out.mf4\n"
            "time [s],speed [km/h],state\n"
            "0,1.5,go\n"
            "0.5,,\n"
            "1,2,\"a, b\"\n");
  EXPECT_EQ(recordedLines("{\"t\":2,\"a\":1}\n{\"t\":3}\n", {"--stdin", "json", "--time", "t"}),
            "recorded 2 records of 2 channels to out.mf4, 0 lines left out\n"
            "exit code 0\n"
            "out.mf4\n"
            "time [s],a\n"
            "2,1\n"
            "3,\n");
}

TEST(RecordLines, AreRefusedWhenThereIsNothingToRecord) {
  const std::string nothing =
      "mdf: there is no sample on standard input; nothing was recorded\nexit code 2\n";
  EXPECT_EQ(recordedLines("", {"--stdin", "csv"}), nothing);
  EXPECT_EQ(recordedLines("a,b\n", {"--stdin", "csv"}), nothing);
  EXPECT_EQ(recordedLines("a,a\n1,2\n", {"--stdin", "csv"}),
            "mdf: cannot record to out.mf4: group \"standard input\": two channels are named "
            "\"a\"\nexit code 2\n");
}

/// A program that gives a line and then waits.
TEST(RecordLines, AreInTheFileAsTheyCome) {
  const ScratchFolder folder;
  const std::string path = folder / "out.mf4";
  RunOptions options;
  const std::string script = "(printf 'a,b\\n1,x\\n'; sleep 2.5) | \"$@\"; exit $?";
  const std::vector<std::string> shell = {"sh", "-c", script, "sh"};
  options.command.insert(options.command.begin(), shell.begin(), shell.end());
  const RunResult result = record({path, "--stdin", "csv", "--duration", "1.2s"}, options);
  EXPECT_EQ(result.exit_code, 0) << result.messages;
  EXPECT_PRED2(contains, result.messages, "recorded 1 record of 3 channels in 1.2 s to ");
  EXPECT_PRED2(contains, run({"export", path, "-c", "a", "-c", "b"}).output, ",1,x\n");
}

}  // namespace
