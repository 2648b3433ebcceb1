#include "printing/info.h"

#include <memory>

#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "printing/json_output.h"
#include "reader/summary/file_json.h"

namespace mdf_tools {

namespace {

int printPages(const std::vector<std::string>& paths, Depth depth) {
  bool is_first = true;
  return onEachFile(paths, [&](const FileContext& context) {
    if (!is_first) {
      context.out << '\n';
    }
    is_first = false;
    printInfo(context.file, depth, context.out, context.report);
  });
}

int printDocument(const std::vector<std::string>& paths, Depth depth) {
  Json files = Json::array();
  const int exit_code = onEachFile(paths, [&](const FileContext& context) {
    files.push_back(fileAsJson(context.file, depth, context.report));
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
in it: channel groups with their records, and blocks by type. "span" and "rate" are those of the
group's master channel: they come from the range that it states or else from the first and the last
record, and are left out where these do not tell. The duration is the longest span over time. Groups
with sample reductions are shown with their intervals, and how many of them there are.

However large the file is, little of it is read, with two exceptions: data with records of several
groups is gone through for the last of each, and in an unfinished file the records are counted, and
said to be. --headers reads no data at all.

Examples:
  mdf info trip.mf4                                a page
  mdf info --headers *.mf4                         without a look at the data
  mdf info --json *.mf4 | jq '.files[].duration'   for a script

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

}  // namespace

void addInfoCommand(CommandLine& program) {
  CommandLine command = program.addCommand("info", "Say what a file is and what is in it");
  const auto paths = addFileArguments(command);
  const auto as_json = std::make_shared<bool>(false);
  command.addFlag("--json", *as_json, "Print one JSON document for all files");
  const auto headers_only = std::make_shared<bool>(false);
  command.addFlag("--headers", *headers_only,
                  "Read headers only: what they leave open is not known");
  command.footer(footer);
  command.onRun([paths, as_json, headers_only] {
    const Depth depth = *headers_only ? Depth::headers : Depth::records;
    return *as_json ? printDocument(*paths, depth) : printPages(*paths, depth);
  });
}

}  // namespace mdf_tools
