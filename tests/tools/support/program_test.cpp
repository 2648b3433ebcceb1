#include "tools/support/program.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using namespace mdf_tests;

namespace {

RunOptions shell() {
  RunOptions options;
  options.command = {"/bin/sh"};
  return options;
}

TEST(Program, GetsAdditionsToTheEnvironment) {
  RunOptions options = shell();
  options.environment = {"MDF_TEST_ADDED=a b", "HOME=/replaced"};
  EXPECT_EQ(
      run({"-c", "echo \"$MDF_TEST_ADDED $HOME\"; test -n \"$PATH\" && echo kept"}, options).output,
      "a b /replaced\nkept\n");
}

TEST(Program, OutputOfAnyLengthIsReadWhole) {
  RunOptions options = shell();
  for (const bool is_terminal : {false, true}) {
    options.output_is_terminal = is_terminal;
    const RunResult result = run({"-c", "head -c 1000000 /dev/zero; echo end"}, options);
    EXPECT_TRUE(result.output == std::string(1000000, '\0') + "end\n") << result.output.size();
  }
}

TEST(Program, ThatIsNotThereIsReported) {
  RunOptions options;
  options.command = {"/no/such/program"};
  EXPECT_EQ(run({}, options).exit_code, 127);
}

TEST(Program, IsKilledWhenItRunsTooLong) {
  RunOptions options = shell();
  options.time_limit = std::chrono::seconds(1);
  EXPECT_EQ(run({"-c", "while :; do sleep 0.01; done"}, options).exit_code, 128 + SIGKILL);
}

}  // namespace
