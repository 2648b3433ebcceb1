#include "extracting/extract.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include "command.h"
#include "command_line/command_line.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

std::string nothingChosen(const std::string& name_pattern) {
  return "note: no attachment" + (name_pattern.empty() ? "" : " matches \"" + name_pattern + '"');
}

int extract(const std::vector<std::string>& paths, const ExtractOptions& options) {
  try {
    bool is_complete = true;
    const int exit_code = onEachFile(paths, [&](const FileContext& context) {
      const Extracted extracted =
          extractAttachments(context.file, options, context.out, context.report);
      is_complete = extracted.is_complete && is_complete;
      if (extracted.chosen == 0) {
        context.say(nothingChosen(options.name_pattern));
      }
    });
    return std::max<int>(exit_code, is_complete ? exit_fine : exit_problem);
  } catch (const Unwritable& error) {
    std::cerr << "mdf: " << error.what() << '\n';
    return exit_problem;
  }
}

constexpr const char* footer =
    R"(Inflates compressed attachments and verifies their digests: what is damaged is reported and not
written. Files go to the chosen folder and nowhere else, whatever path a stored name gives;
attachments with the same name get numbers. 'mdf list attachments' shows what a file has.

Examples:
  mdf extract trip.mf4                        into this folder
  mdf extract trip.mf4 --to parts --name '*.dbc'

Exit code: 0 fine, 1 problems found in a file or a file could not be written, 2 wrong arguments or
unreadable file.)";

}  // namespace

void addExtractCommand(CommandLine& program) {
  CommandLine command = program.addCommand("extract", "Write attachments to files");
  const auto paths = addFileArguments(command);
  const auto options = std::make_shared<ExtractOptions>();
  command.addOption("-o,--to", options->folder, "The folder, which must exist")
      .existingFolder()
      .showDefault()
      .typeName("FOLDER");
  command
      .addOption("--name", options->name_pattern, "Only names that match; * ? [...] as in a shell")
      .typeName("GLOB");
  command.addFlag("--force", options->replaces, "Replace existing files");
  command.addFlag("--json", options->as_json, "Print a JSON object for each attachment");
  command.footer(footer);
  command.onRun([paths, options] { return extract(*paths, *options); });
}

}  // namespace mdf_tools
