#include <CLI/CLI.hpp>

#include "command.h"

namespace mdf_tools {

void addDumpCommand(CLI::App& app, int& exit_code) {
  app.add_subcommand("dump", "Print every block of a file")->callback([&exit_code] {
    exit_code = exit_fine;
  });
}

}  // namespace mdf_tools
