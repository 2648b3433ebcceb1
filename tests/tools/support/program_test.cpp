#include "tools/support/program.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "tools/support/scratch_folder.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

RunOptions shell() {
  RunOptions options;
  options.command = {"/bin/sh"};
  return options;
}

TEST(Program, GivesOutputMessagesAndExitCode) {
  const RunResult result = run({"-c", "echo out; echo err >&2; exit 3"}, shell());
  EXPECT_EQ(result.exit_code, 3);
  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.messages, "err\n");
}

TEST(Program, ReadsItsInputToTheEnd) {
  RunOptions options = shell();
  options.input = std::string(1000000, 'x') + std::string("\0\n", 2);
  const RunResult result = run({"-c", "cat"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, options.input);
}

TEST(Program, GetsAdditionsToTheEnvironment) {
  RunOptions options = shell();
  options.environment = {"MDF_TEST_ADDED=a b", "HOME=/replaced"};
  EXPECT_EQ(
      run({"-c", "echo \"$MDF_TEST_ADDED $HOME\"; test -n \"$PATH\" && echo kept"}, options).output,
      "a b /replaced\nkept\n");
}

TEST(Program, OutputGoesToAFile) {
  const TempFile file("old content");
  RunOptions options = shell();
  options.output_path = file.path();
  EXPECT_EQ(run({"-c", "echo new"}, options).output, "");
  EXPECT_EQ(bytesOf(file.path()), "new\n");
}

TEST(Program, OutputGoesToATerminal) {
  RunOptions options = shell();
  options.output_is_terminal = true;
  const RunResult result = run({"-c", "test -t 1 && printf 'a\\nb\\001'"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "a\nb\001");
}

TEST(Program, ErrorGoesToATerminal) {
  RunOptions options = shell();
  options.error_is_terminal = true;
  const RunResult result = run({"-c", "test -t 2 && test ! -t 1 && printf 'a\\nb' >&2"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "a\nb");
}

TEST(Program, OutputOfAnyLengthIsReadWhole) {
  RunOptions options = shell();
  for (const bool is_terminal : {false, true}) {
    options.output_is_terminal = is_terminal;
    const RunResult result = run({"-c", "head -c 1000000 /dev/zero; echo end"}, options);
    EXPECT_TRUE(result.output == std::string(1000000, '\0') + "end\n") << result.output.size();
  }
}

TEST(Program, FilesOfLimitedSizeEndItUnlessItIgnoresTheSignal) {
  const ScratchFolder folder;
  const std::string path = folder / "out";
  RunOptions options = shell();
  options.file_size_limit = 4;
  EXPECT_EQ(run({"-c", "echo 123456 >" + path}, options).exit_code, 128 + SIGXFSZ);
  EXPECT_EQ(bytesOf(path), "1234");
  const RunResult ignoring =
      run({"-c", "trap '' XFSZ; echo 123456 >" + path + " || echo more than 4 bytes"}, options);
  EXPECT_EQ(ignoring.exit_code, 0);
  EXPECT_EQ(ignoring.output, "more than 4 bytes\n") << "what is captured is not limited";
}

TEST(Program, EndsWhenItsTerminalIsClosedUnlessThatIsIgnored) {
  RunOptions options = shell();
  EXPECT_EQ(run({"-c", "kill -HUP $$; echo alive"}, options).exit_code, 128 + SIGHUP);
  options.ignore_hangup = true;
  EXPECT_EQ(run({"-c", "kill -HUP $$; echo alive"}, options).output, "alive\n");
}

TEST(Program, ThatIsNotThereIsReported) {
  RunOptions options;
  options.command = {"/no/such/program"};
  EXPECT_EQ(run({}, options).exit_code, 127);
}

TEST(Program, IsSignalledAfterAWhile) {
  RunOptions options = shell();
  options.signal_after = std::chrono::milliseconds(300);
  options.signal = SIGTERM;
  const RunResult result =
      run({"-c", "trap 'echo caught; exit 7' TERM; while :; do sleep 0.01; done"}, options);
  EXPECT_EQ(result.exit_code, 7);
  EXPECT_EQ(result.output, "caught\n");
}

TEST(Program, IsSignalledOnceAConditionHolds) {
  const ScratchFolder folder;
  const std::filesystem::path path = folder / "ready";
  RunOptions options = shell();
  options.signal_after = std::chrono::milliseconds(0);
  options.signal_when = [&] { return std::filesystem::exists(path); };
  const RunResult result = run({"-c", "trap 'echo caught; exit 7' INT; sleep 0.3; echo begun; >" +
                                          path.string() + "; while :; do sleep 0.01; done"},
                               options);
  EXPECT_EQ(result.exit_code, 7);
  EXPECT_EQ(result.output, "begun\ncaught\n");
}

TEST(Program, IsKilledWhenItRunsTooLong) {
  RunOptions options = shell();
  options.time_limit = std::chrono::seconds(1);
  EXPECT_EQ(run({"-c", "while :; do sleep 0.01; done"}, options).exit_code, 128 + SIGKILL);
}

}  // namespace
