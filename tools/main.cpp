#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "commands/command.h"

namespace {

/// The first word of the command line where a command belongs, if it is none.
std::string unknownCommand(const CLI::App& app, int argc, char** argv) {
  const std::string word = argc > 1 ? argv[1] : "";
  const auto is_named_so = [&](const CLI::App* command) { return command->check_name(word); };
  const bool is_option = word.empty() || word.front() == '-';
  return is_option || !app.get_subcommands(is_named_so).empty() ? "" : word;
}

int complain(const std::string& sentence) {
  std::cerr << "mdf: " << sentence << '\n';
  return mdf_tools::exit_unusable;
}

int run(int argc, char** argv) {
  CLI::App app("Record, inspect, check, draw and export ASAM MDF 4 measurement files.", "mdf");
  app.set_version_flag("--version", "mdf " MDF_PROGRAM_VERSION);
  app.require_subcommand(1);
  app.footer("Run 'mdf COMMAND --help' for what a command does, with examples.");

  int exit_code = mdf_tools::exit_fine;
  mdf_tools::addRecordCommand(app, exit_code);
  mdf_tools::addInfoCommand(app, exit_code);
  mdf_tools::addListCommand(app, exit_code);
  mdf_tools::addTreeCommand(app, exit_code);
  mdf_tools::addDumpCommand(app, exit_code);
  mdf_tools::addCheckCommand(app, exit_code);
  mdf_tools::addGraphCommand(app, exit_code);
  mdf_tools::addExportCommand(app, exit_code);
  mdf_tools::addPlotCommand(app, exit_code);
  mdf_tools::addExtractCommand(app, exit_code);

  if (argc == 1) {
    return complain("no command; run 'mdf --help' for what there is");
  }
  const std::string unknown = unknownCommand(app, argc, argv);
  if (!unknown.empty()) {
    return complain("there is no command \"" + unknown + "\"; run 'mdf --help' for what there is");
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
