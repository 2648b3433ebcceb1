#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "commands/command.h"

namespace {

int run(int argc, char** argv) {
  CLI::App app("Record, inspect and check ASAM MDF 4 measurement files.", "mdf");
  app.set_version_flag("--version", "mdf " MDF_PROGRAM_VERSION);
  app.require_subcommand(1);
  app.footer("Run 'mdf COMMAND --help' for what a command does, with examples.");

  int exit_code = mdf_tools::exit_fine;
  mdf_tools::addRecordCommand(app, exit_code);
  mdf_tools::addDumpCommand(app, exit_code);

  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& request) {  // --help, --version
    return app.exit(request);
  } catch (const CLI::ParseError& error) {
    std::cerr << "mdf: " << error.what() << '\n';
    return mdf_tools::exit_unusable;
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
