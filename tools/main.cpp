#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "commands/command.h"
#include "commands/completion.h"

namespace {

/// What is wrong with the words that name a command; "" for nothing.
/// @param before the words before, each followed by a blank, that name what has these commands
std::string wrongCommand(const CLI::App& app, const std::string& before,
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
  const auto named =
      app.get_subcommands([&](const CLI::App* command) { return command->check_name(word); });
  if (named.empty()) {
    return "unknown command \"" + before + word + '"' + advice;
  }
  const bool is_whole = named.front()->get_require_subcommand_min() == 0;
  return is_whole
             ? ""
             : wrongCommand(*named.front(), before + word + ' ', {words.begin() + 1, words.end()});
}

struct Command {
  std::string_view name;
  void (*add)(CLI::App& app, int& exit_code);
};

constexpr std::array<Command, 18> commands = {{
    {"record", mdf_tools::addRecordCommand},
    {"info", mdf_tools::addInfoCommand},
    {"list", mdf_tools::addListCommand},
    {"tree", mdf_tools::addTreeCommand},
    {"dump", mdf_tools::addDumpCommand},
    {"check", mdf_tools::addCheckCommand},
    {"graph", mdf_tools::addGraphCommand},
    {"export", mdf_tools::addExportCommand},
    {"plot", mdf_tools::addPlotCommand},
    {"stats", mdf_tools::addStatsCommand},
    {"frames", mdf_tools::addFramesCommand},
    {"decode", mdf_tools::addDecodeCommand},
    {"diff", mdf_tools::addDiffCommand},
    {"extract", mdf_tools::addExtractCommand},
    {"import", mdf_tools::addImportCommand},
    {"copy", mdf_tools::addCopyCommand},
    {"join", mdf_tools::addJoinCommand},
    {"repair", mdf_tools::addRepairCommand},
}};

/// Adds the command that a word names, or else all: on a small file, the options of the others
/// would take longer than the work.
void addCommands(CLI::App& app, std::string_view word, int& exit_code) {
  const bool is_one = std::any_of(commands.begin(), commands.end(),
                                  [&](const Command& each) { return each.name == word; });
  for (const Command& command : commands) {
    if (!is_one || command.name == word) {
      command.add(app, exit_code);
    }
  }
}

int complain(const std::string& sentence) {
  std::cerr << "mdf: " << sentence << '\n';
  return mdf_tools::exit_unusable;
}

int run(int argc, char** argv) {
  CLI::App app("Record, inspect, check, repair, draw, export and import ASAM MDF 4 files.", "mdf");
  app.set_version_flag("--version", "mdf " MDF_PROGRAM_VERSION);
  app.require_subcommand(1);
  app.footer("Run 'mdf COMMAND --help' for what a command does, with examples.");

  int exit_code = mdf_tools::exit_fine;
  addCommands(app, argc > 1 ? argv[1] : "", exit_code);
  if (argc > 1 && std::string(argv[1]) == "--complete") {
    mdf_tools::complete(app, {argv + 2, argv + argc}, std::cout);
    return exit_code;
  }
  const std::string wrong = wrongCommand(app, "", {argv + std::min(argc, 1), argv + argc});
  if (!wrong.empty()) {
    return complain(wrong);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help, --version
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    return complain(error.what());
  }
  return exit_code;
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
