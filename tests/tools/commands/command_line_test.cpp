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
  expectRefused({}, "mdf: no command; run 'mdf --help' for the commands\n");
}

TEST(CommandLine, UnknownCommandIsNamed) {
  expectRefused({"frob", "file"},
                "mdf: unknown command \"frob\"; run 'mdf --help' for the commands\n");
}

TEST(CommandLine, AListHasToBeNamed) {
  expectRefused({"list"},
                "mdf: no command after \"list\"; run 'mdf list --help' for the commands\n");
  expectRefused({"list", "trip.mf4"},
                "mdf: unknown command \"list trip.mf4\"; run 'mdf list --help' for the commands\n");
}

TEST(CommandLine, NumbersThatAreNoneAreRefused) {
  const auto refused = [](const std::vector<std::string>& words, const std::string& sentence) {
    expectRefused(words, "mdf: " + sentence + '\n');
  };
  refused({"tree", "--depth", "-1", "file"}, "--depth: \"-1\" is not a number such as 0, 1 or 20");
  refused({"graph", "-o", "a.svg", "--depth", "2.5", "file"},
          "--depth: \"2.5\" is not a number such as 0, 1 or 20");
  refused({"dump", "--hex", "--bytes", "-1", "file"},
          "--bytes: \"-1\" is not a number such as 0, 1 or 20");
  refused({"export", "--from", "noon", "file"},
          "--from: \"noon\" is not a number such as 20 or 1.5");
  refused({"plot", "-c", "speed", "--to", "10s", "file"},
          "--to: \"10s\" is not a number such as 20 or 1.5");
}

TEST(CommandLine, TimesTheWrongWayRoundAreRefused) {
  expectRefused({"export", "--from", "2", "--to", "1.5", "file"}, "mdf: --from is after --to\n");
  expectRefused({"plot", "-c", "speed", "--to", "-3", "--from", "-2", "file"},
                "mdf: --from is after --to\n");
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
