#include <gtest/gtest.h>

#include <string>

#include "tools/support/program.h"

using namespace mdf_tests;

namespace {

void expectRefused(const std::vector<std::string>& arguments, const std::string& messages) {
  const RunResult result = run(arguments);
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, messages);
}

TEST(CommandLine, WithoutACommandIsRefused) {
  expectRefused({}, "mdf: no command; run 'mdf --help' for what there is\n");
}

TEST(CommandLine, UnknownCommandIsNamed) {
  expectRefused({"frob", "file"},
                "mdf: there is no command \"frob\"; run 'mdf --help' for what there is\n");
}

TEST(CommandLine, UnknownOptionIsRefused) {
  const RunResult result = run({"--frob"});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages.substr(0, 5), "mdf: ");
}

TEST(CommandLine, HelpNamesEveryCommand) {
  const RunResult result = run({"--help"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  for (const char* command : {"record", "dump"}) {
    EXPECT_NE(result.output.find(std::string("\n  ") + command + " "), std::string::npos);
  }
}

TEST(CommandLine, VersionIsOneLine) {
  const RunResult result = run({"--version"});
  EXPECT_EQ(result.exit_code, 0);
  EXPECT_EQ(result.messages, "");
  EXPECT_EQ(result.output.substr(0, 4), "mdf ");
  EXPECT_EQ(result.output.find('\n'), result.output.size() - 1);
}

}  // namespace
