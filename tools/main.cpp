#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "command_line/command_line.h"
#include "commands/command.h"
#include "commands/completion.h"

using mdf_tools::CommandLine;

namespace {

/// What is wrong with the words that name a command; "" for nothing.
/// @param before the words before, each followed by a blank, that name what has these commands
std::string wrongCommand(const CommandLine& app, const std::string& before,
                         const std::vector<std::string>& words) {
  const std::string named_before = before.substr(0, before.find_last_of(' '));
  const std::string after = before.empty() ? "" : " after \"" + named_before + '"';
  const std::string advice = "; run 'mdf " + before + "--help' for the commands";
  if (words.empty()) {
    return "no command" + after + advice;
  }
  const std::string& word = words.front();
  if (!word.empty() && word.front() == '-') {
    return "";
  }
  const auto named = app.findCommand(word);
  if (!named) {
    return "unknown command \"" + before + word + '"' + advice;
  }
  return named->requiresCommand()
             ? wrongCommand(*named, before + word + ' ', {words.begin() + 1, words.end()})
             : "";
}

struct Command {
  std::string_view name;
  void (*add)(CommandLine& program);
};

constexpr std::array<Command, 19> commands = {{
    {"record", mdf_tools::addRecordCommand},   {"info", mdf_tools::addInfoCommand},
    {"list", mdf_tools::addListCommand},       {"tree", mdf_tools::addTreeCommand},
    {"dump", mdf_tools::addDumpCommand},       {"check", mdf_tools::addCheckCommand},
    {"graph", mdf_tools::addGraphCommand},     {"export", mdf_tools::addExportCommand},
    {"plot", mdf_tools::addPlotCommand},       {"view", mdf_tools::addViewCommand},
    {"stats", mdf_tools::addStatsCommand},     {"frames", mdf_tools::addFramesCommand},
    {"decode", mdf_tools::addDecodeCommand},   {"diff", mdf_tools::addDiffCommand},
    {"extract", mdf_tools::addExtractCommand}, {"import", mdf_tools::addImportCommand},
    {"copy", mdf_tools::addCopyCommand},       {"join", mdf_tools::addJoinCommand},
    {"repair", mdf_tools::addRepairCommand},
}};

/// Adds the command that a word names, or else all: on a small file, the options of the others
/// would take longer than the work.
void addCommands(CommandLine& program, std::string_view word) {
  const bool is_one = std::any_of(commands.begin(), commands.end(),
                                  [&](const Command& each) { return each.name == word; });
  for (const Command& command : commands) {
    if (!is_one || command.name == word) {
      command.add(program);
    }
  }
}

int complain(const std::string& sentence) {
  std::cerr << "mdf: " << sentence << '\n';
  return mdf_tools::exit_unusable;
}

int run(int argc, char** argv) {
  CommandLine program("mdf",
                      "Record, inspect, check, repair, draw, export and import ASAM MDF 4 files.");
  program.addVersion("mdf " MDF_PROGRAM_VERSION);
  program.requireCommand();
  program.footer("Run 'mdf COMMAND --help' for what a command does, with examples.");

  addCommands(program, argc > 1 ? argv[1] : "");
  if (argc > 1 && std::string(argv[1]) == "--complete") {
    mdf_tools::complete(program, {argv + 2, argv + argc}, std::cout);
    return mdf_tools::exit_fine;
  }
  const std::string wrong = wrongCommand(program, "", {argv + std::min(argc, 1), argv + argc});
  if (!wrong.empty()) {
    return complain(wrong);
  }
  try {
    return program.run(argc, argv);
  } catch (const mdf_tools::Refusal& refusal) {
    return complain(refusal.what());
  }
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "mdf: " << error.what() << '\n';
    return mdf_tools::exit_problem;
  }
}
