#include "printing/info.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "command.h"
#include "file_command.h"

namespace mdf_tools {

namespace {

int printPages(const std::vector<std::string>& paths) {
  bool is_first = true;
  return onEachFile(paths, [&](const FileContext& context) {
    if (!is_first) {
      context.out << '\n';
    }
    is_first = false;
    printInfo(context.file, context.out, context.report);
  });
}

int printDocument(const std::vector<std::string>& paths) {
  Json files = Json::array();
  const int exit_code = onEachFile(paths, [&](const FileContext& context) {
    files.push_back(infoAsJson(context.file, context.report));
  });
  if (files.empty()) {
    return exit_code;
  }
  return std::max(
      exit_code,
      printToOutput(jsonDocument({{"schema", json_schema}, {"files", std::move(files)}}) + '\n'));
}

constexpr const char* footer =
    R"(Says what the file is, when and by what program it was started, whether it is finished, and what is
in it: channel groups with their records, and blocks by type. Reads headers only, however large the
file is; only of an unfinished file the records are counted, and said to be. Rate and duration come
from the range that the master channels state, or are "not stated".

Examples:
  mdf info trip.mf4                                a page
  mdf info --json *.mf4 | jq '.files[].duration'   for a script

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

}  // namespace

void addInfoCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("info", "Say what a file is and what is in it");
  const auto paths = addFileArguments(*command);
  const auto as_json = std::make_shared<bool>(false);
  command->add_flag("--json", *as_json, "Print one JSON document for all files");
  command->footer(footer);
  command->callback([paths, as_json, &exit_code] {
    exit_code = *as_json ? printDocument(*paths) : printPages(*paths);
  });
}

}  // namespace mdf_tools
