#include <CLI/CLI.hpp>

#include "command.h"

namespace mdf_tools {

void addRecordCommand(CLI::App& app, int& exit_code) {
  app.add_subcommand("record", "Record the signals of this machine")->callback([&exit_code] {
    exit_code = exit_fine;
  });
}

}  // namespace mdf_tools
