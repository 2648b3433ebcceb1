// What every command says of wrong words, and its help.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/support/program.h"
#include "tools/support/small_file.h"
#include "tools/support/temp_file.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;

TEST(CommandLine, WrongWordsAreRefusedWithOneSentence) {
  const struct {
    Words words;
    std::string sentence;
  } refusals[] = {
      {{}, "no command; run 'mdf --help' for the commands"},
      {{"frob", "f"}, "unknown command \"frob\"; run 'mdf --help' for the commands"},
      {{"list"}, "no command after \"list\"; run 'mdf list --help' for the commands"},
      {{"list", "f"}, "unknown command \"list f\"; run 'mdf list --help' for the commands"},
      {{"check"}, "FILE is required"},
      {{"check", "--json"}, "FILE is required"},
      {{"dump"}, "FILE is required"},
      {{"export"}, "FILE is required"},
      {{"extract"}, "FILE is required"},
      {{"import", "-o", "out.mf4"}, "IN is required"},
      {{"import", "a"}, "--output is required"},
      {{"import", "a", "-o", "b", "--type", "x=float"},
       "--type: \"x=float\" is not a name and a type such as speed=float32"},
      {{"import", "a", "-o", "b", "--separator", "xx"},
       "--separator: \"xx\" is not one character or \"tab\""},
      {{"info"}, "FILE is required"},
      {{"tree"}, "FILE is required"},
      {{"plot", "-c", "v"}, "FILE is required; run 'mdf plot --help' for examples"},
      {{"plot", "f"}, "--channel is required"},
      {{"graph", "f"}, "-o OUT or --json is required"},
      {{"check", "--frob", "f"}, "The following argument was not expected: --frob"},
      {{"dump", "--frob", "f"}, "The following argument was not expected: --frob"},
      {{"list", "blocks", "--group", "1", "f"}, "The following argument was not expected: --group"},
      {{"check", "--explain", "x"}, "there is no code \"x\"; 'mdf check --codes' lists them"},
      {{"tree", "--depth", "-1", "f"}, "--depth: \"-1\" is not a number such as 0, 1 or 20"},
      {{"graph", "-o", "a.svg", "--depth", "2.5", "f"},
       "--depth: \"2.5\" is not a number such as 0, 1 or 20"},
      {{"dump", "--hex", "--bytes", "-1", "f"},
       "--bytes: \"-1\" is not a number such as 0, 1 or 20"},
      {{"export", "--from", "noon", "f"}, "--from: \"noon\" is not a number such as 20 or 1.5"},
      {{"plot", "-c", "v", "--to", "10s", "f"}, "--to: \"10s\" is not a number such as 20 or 1.5"},
      {{"export", "--from", "2", "--to", "1.5", "f"}, "--from is after --to"},
      {{"plot", "-c", "v", "--to", "-3", "--from", "-2", "f"}, "--from is after --to"},
      {{"dump", "--at", "0x", "f"}, "--at: \"0x\" is not an offset such as 312 or 0x138"},
      {{"tree", "--from", "12h", "f"}, "--from: \"12h\" is not an offset such as 312 or 0x138"},
      {{"dump", "--type", "CN,Q1", "f"},
       "--type: there is no block type \"Q1\"; types have two letters, such as CN or CC"},
      {{"list", "blocks", "--type", "CN,foo", "f"},
       "--type: there is no block type \"FOO\"; types have two letters, such as CN or CC"},
      {{"list", "blocks", "--sort", "x", "f"}, "--sort: x not in {offset,type,length,links}"},
      {{"export", "--format", "xml", "f"}, "--format: xml not in {csv,jsonl,mat}"},
      {{"export", "--json", "--format", "csv", "f"}, "--format excludes --json"},
      {{"plot", "-c", "v", "--json", "--format", "svg", "f"}, "--format excludes --json"},
      {{"plot", "-c", "v", "--json", "-o", "a.svg", "f"}, "--output excludes --json"},
      {{"dump", "--json", "--hex", "f"}, "--hex excludes --json"},
      {{"graph", "-o", "-", "--map", "--depth", "3", "f"}, "--depth excludes --map"},
      {{"graph", "-o", "a.jpg", "f"}, "--output: \"a.jpg\" must end in .svg, .png or .dot"},
      {{"plot", "-c", "v", "--size", "12", "f"}, "--size: \"12\" is not a size such as 1600x900"},
      {{"plot", "-c", "v", "--size", "9x99999", "f"},
       "--size: \"9x99999\" is not between 20x10 and 16000x16000"},
      {{"plot", "-c", "v", "--steps", "--points", "f"}, "--steps excludes --points"},
      {{"plot", "-c", "v", "--json", "--log", "f"}, "--json excludes --log"},
      {{"plot", "f", "-c", "v", "-o", "a.jpg"},
       "cannot tell the picture's format from a.jpg; end it in .svg, .png or .html, or add "
       "--format"},
  };
  for (const auto& [words, sentence] : refusals) {
    EXPECT_EQ(run(words), said(2, sentence)) << testing::PrintToString(words);
  }
}

TEST(CommandLine, UnknownOptionIsRefused) {
  const RunResult result = run({"--frob"});
  EXPECT_EQ(result, said(2, result.messages.substr(5, result.messages.size() - 6)));
}

TEST(CommandLine, HelpTeachesWithExamples) {
  const struct {
    Words words;
    Words parts;
  } helps[] = {
      {{}, {"\n  record ", "\n  dump "}},
      {{"check"},
       {"Usage: mdf check [OPTIONS] [FILE...]", "- is standard input", "--explain CODE",
        "Examples:\n  mdf check trip.mf4", "Exit code: 0 fine"}},
      {{"dump"},
       {"Usage: mdf dump [OPTIONS] FILE...", "- is standard input", "Control characters",
        "Examples:\n  mdf dump trip.mf4 | less", "Exit code: 0 fine, 1 problems"}},
      {{"export"}, {"mdf export trip.mf4 > trip.csv"}},
      {{"graph"},
       {"Usage: mdf graph [OPTIONS] FILE...", "Examples:\n  mdf graph -o trip.svg",
        "Exit code: 0 fine, 1 problems"}},
      {{"info"}, {"Examples:\n  mdf info trip.mf4"}},
      {{"record"},
       {"mdf record [OPTIONS] OUT.mf4", "--duration TIME=10s", "--rate RATE=100Hz",
        "--stdin csv|json", "Ctrl-C", "Examples:", "cpu_total", "UnFinMF", "Exit code: 0 "}},
      {{"tree"},
       {"Usage: mdf tree [OPTIONS] FILE...", "Examples:\n  mdf tree trip",
        "Exit code: 0 fine, 1 problems"}},
  };
  for (const auto& help : helps) {
    Words words = help.words;
    words.emplace_back("--help");
    const RunResult result = run(words);
    EXPECT_EQ(result, wrote(result.output));
    for (const std::string& part : help.parts) {
      EXPECT_PRED2(contains, result.output, part);
    }
  }
}

TEST(CommandLine, VersionIsOneLine) {
  const RunResult result = run({"--version"});
  EXPECT_EQ(result, wrote(result.output));
  EXPECT_EQ(result.output.substr(0, 4), "mdf ");
  EXPECT_EQ(result.output.find('\n'), result.output.size() - 1);
}

/// A full disk is told of whatever the command.
TEST(CommandLine, FullOutputIsAProblem) {
  const TempFile file(SmallFile().bytes());
  RunOptions options;
  options.output_path = "/dev/full";
  for (const Words& words : std::vector<Words>{{"check", "--codes"},
                                               {"check", "--explain", "link-outside-file"},
                                               {"dump", "--library", file.path()}}) {
    EXPECT_EQ(run(words, options),
              said(1, "cannot write to standard output: No space left on device"));
  }
}

}  // namespace
