#include "tools/support/program.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>

#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

RunOptions shell() {
  RunOptions options;
  options.program = "/bin/sh";
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
  std::ostringstream content;
  content << std::ifstream(file.path()).rdbuf();
  EXPECT_EQ(content.str(), "new\n");
}

TEST(Program, OutputGoesToATerminal) {
  RunOptions options = shell();
  options.output_is_terminal = true;
  const RunResult result = run({"-c", "test -t 1 && printf 'a\\nb\\001'"}, options);
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.output, "a\nb\001");
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

TEST(Program, IsKilledWhenItRunsTooLong) {
  RunOptions options = shell();
  options.time_limit = std::chrono::seconds(1);
  EXPECT_EQ(run({"-c", "while :; do sleep 0.01; done"}, options).exit_code, 128 + SIGKILL);
}

}  // namespace
