#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "block_type_option.h"
#include "command.h"
#include "file_command.h"
#include "number_option.h"
#include "offset_option.h"
#include "printing/block_json.h"
#include "printing/file_dump.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct DumpArguments {
  std::shared_ptr<std::vector<std::string>> paths;
  std::vector<std::string> types;
  std::vector<std::string> offsets;
  std::uint64_t most_bytes = 256;
  bool is_annotated = false;
  bool is_json = false;
};

constexpr const char* footer =
    R"(Prints every block that can be reached from the header block, in file order: a line with its offset,
identifier, length, number of links and the named links, all as they are stored, and then its fields
as the library prints them. Where link fields say 0, look at the line. A block of an unknown type
gets the line alone.

With --hex the bytes follow the line instead: the block's header, each link and each field with the
format's name for it and its value. What follows the fields (values, data, texts) is shown up to 256
bytes, or as many as --bytes says.

With --json each block is a line: schema, file, offset, type, length, link_count, links with role and
offset, fields, the values of lists, the text of texts, and how many bytes of data there are. --bytes
limits texts and values in the same way.

Problems go to standard error, one line each with the block's offset, links counted from 0; what can
be read is printed all the same. Data and texts are printed byte for byte; on a terminal,
control characters in them are shown as '.'. Several files are printed one after another, each after
a line "FILE:".

Examples:
  mdf dump trip.mf4 | less                   look through a file
  mdf dump trip.mf4 | grep -a '^[0-9]* (0x'  list its blocks
  mdf dump --type CN,CC trip.mf4             channels and conversions alone
  mdf dump --hex --at 0x138 trip.mf4         the bytes of the block at an offset, field by field
  mdf dump --hex --type DT --bytes 64 *.mf4  how the data of several files begin
  mdf dump --json trip.mf4 | jq -r .type     for other programs
  gunzip < trip.mf4.gz | mdf dump - > dump   dump standard input

Exit code: 0 fine, 1 problems found in the file, 2 wrong arguments or unreadable file.)";

BlockSelection selectionOf(const DumpArguments& arguments) {
  BlockSelection selection;
  selection.types = arguments.types;
  for (const std::string& text : arguments.offsets) {
    selection.offsets.push_back(parseOffset(text).value_or(0));
  }
  return selection;
}

int dump(const DumpArguments& arguments) {
  const BlockSelection selection = selectionOf(arguments);
  return onEachFile(*arguments.paths, [&](const FileContext& context) {
    if (arguments.is_json) {
      writeBlocksAsJson(context.file, context.out, arguments.most_bytes, context.report, selection);
      return;
    }
    if (context.is_one_of_several) {
      context.out << context.file.name() << ":\n";
    }
    if (arguments.is_annotated) {
      annotateFile(context.file, context.out, arguments.most_bytes, context.report, selection);
    } else {
      dumpFile(context.file, context.out, context.report, selection);
    }
  });
}

}  // namespace

void addDumpCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("dump", "Print every block of a file");
  const auto arguments = std::make_shared<DumpArguments>();
  arguments->paths = addFileArguments(*command);
  command->add_option("--type", arguments->types, "Only blocks of these types, such as CN,CC")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("TYPE,...")
      ->transform(isBlockType());
  command
      ->add_option(
          "--at", arguments->offsets,
          "Only the block at this offset, decimal or 0x...; can be repeated, and the block "
          "need not be linked from anywhere")
      ->allow_extra_args(false)
      ->type_name("OFFSET")
      ->check(isOffset());
  CLI::Option* hex = command->add_flag("--hex", arguments->is_annotated,
                                       "Show the bytes, each with the field it belongs to");
  CLI::Option* json =
      command->add_flag("--json", arguments->is_json, "Write JSON lines, one for each block");
  json->excludes(hex);
  command
      ->add_option(
          "--bytes", arguments->most_bytes,
          "With --hex and --json: how many bytes of data, text or values to show of a block")
      ->type_name("N")
      ->check(isCount())
      ->default_val(256);
  command->footer(footer);
  command->callback([arguments, &exit_code] { exit_code = dump(*arguments); });
}

}  // namespace mdf_tools
