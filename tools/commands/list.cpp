#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "block_type_option.h"
#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "group_option.h"
#include "printing/listing.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

using List = void (*)(InputFile&, const ListOptions&, std::ostream&, const FindingSink&);

/// One of the lists that the command knows.
struct ListKind {
  const char* name;
  const char* title;
  List list;
  std::vector<std::string> columns;
  const char* types;  ///< what --type chooses by
  const char* footer;
};

int runList(const ListKind& kind, const std::vector<std::string>& paths, ListOptions options) {
  bool is_chosen = true;
  const int exit_code = onEachFile(paths, [&](const FileContext& context) {
    options.no_such_group = [&] {
      is_chosen = false;
      context.say("note: " + noGroupChosen(options.group));
    };
    options.names_file = context.is_one_of_several;
    kind.list(context.file, options, context.out, context.report);
  });
  return std::max<int>(exit_code, is_chosen ? exit_fine : exit_problem);
}

void addList(CommandLine& list_command, const ListKind& kind) {
  CommandLine command = list_command.addCommand(kind.name, kind.title);
  const auto paths = addFileArguments(command);
  const auto options = std::make_shared<ListOptions>();
  const bool has_groups = kind.list == listChannels;
  if (has_groups) {
    addGroupOption(command, options->group);
  }
  if (kind.list != listBlocks) {
    command
        .addOption("--name", options->name_pattern,
                   "Only names that match; * ? [...] as in a shell")
        .typeName("GLOB");
  }
  Option type =
      command.addOption("--type", options->types, kind.types).delimiter(',').typeName("TYPE,...");
  if (kind.list == listBlocks) {
    type.transform(expectBlockType);
  }
  command.addOption("--sort", options->sort_column, "Sort by this column")
      .oneOf(kind.columns)
      .typeName("COLUMN");
  command.addFlag("--json", options->as_json, "Print a JSON object on each line");
  command.footer(kind.footer);
  command.onRun([kind, paths, options] { return runList(kind, *paths, *options); });
}

constexpr const char* channels_footer =
    R"("at" is the channel's first byte in the record and, after the point, the first bit in that byte.
A member of a structure is called "structure.member" and comes after it.

Examples:
  mdf list channels trip.mf4                        all channels
  mdf list channels trip.mf4 --name '*speed*'       find one
  mdf list channels trip.mf4 --type master          the axes: time, angle and so on
  mdf list channels trip.mf4 --json | jq -r .name   for a script

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

constexpr const char* blocks_footer =
    R"(Lists the blocks that can be reached from the header block, in file order.

Examples:
  mdf list blocks trip.mf4 --type CN,CC
  mdf list blocks trip.mf4 --sort length | tail     the largest blocks

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

constexpr const char* attachments_footer =
    R"("bytes" is the size of the data before compression. An attachment that is stored elsewhere is
listed by the name of the place where it was. 'mdf extract' writes attachments to files.

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

constexpr const char* events_footer =
    R"("position" is when or where the event happened, in the unit beside it.

Examples:
  mdf list events trip.mf4 --type marker,trigger --sort position

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)";

constexpr const char* footer =
    R"(Run 'mdf list channels --help' and so on for the options of each list.

Examples:
  mdf list channels trip.mf4
  mdf list blocks trip.mf4 --type DT,DZ
  mdf list attachments *.mf4
  mdf list events trip.mf4 --json)";

}  // namespace

void addListCommand(CommandLine& program) {
  CommandLine command = program.addCommand("list", "List channels, blocks, attachments or events");
  command.requireCommand();
  command.footer(footer);
  addList(command,
          {"channels", "List the channels", listChannels, channelColumns(),
           "Only channels of these kinds, such as master or \"virtual master\"", channels_footer});
  addList(command, {"blocks", "List the blocks", listBlocks, blockColumns(),
                    "Only blocks of these types, such as CN or DT", blocks_footer});
  addList(command, {"attachments", "List the attachments", listAttachments, attachmentColumns(),
                    "Only attachments of these MIME types", attachments_footer});
  addList(command, {"events", "List the events", listEvents, eventColumns(),
                    "Only events of these kinds, such as marker or trigger", events_footer});
}

}  // namespace mdf_tools
