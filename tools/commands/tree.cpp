#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "file_command.h"
#include "number_option.h"
#include "offset_option.h"
#include "printing/tree_text.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct TreeArguments {
  std::shared_ptr<std::vector<std::string>> paths;
  std::string from = "64";
  TreeOptions options;
  bool shows_all = false;
  bool hides_texts = false;
  bool is_json = false;
};

constexpr const char* footer =
    R"(Prints a line for each link of each block, from the header block down: the link's name, and the
block's type, offset, name and main properties. Blocks of a chain, such as the channels of a group,
are on one level. A block is expanded where it is reached first; later its line says "shared", or
"cycle" where the link leads back to a block above it or before it in the same chain.

Lists and chains are shown up to 100 entries, and the rest is counted; --all shows every entry.

With --json each line is an object: schema, file, entry ("block", "shared", "cycle", "nothing" where
no block is, "left out"), depth, from, role, offset, and for blocks type, length, name and their
properties. Problems go to standard error, one line each with the block's offset.

Examples:
  mdf tree trip.mf4 | less                       look through a file
  mdf tree --no-text trip.mf4                    without names, units and comments as lines
  mdf tree --depth 2 trip.mf4                    data groups and channel groups, not what is in them
  mdf tree --from 0x138 trip.mf4                 a block and what is below it
  mdf tree --json --all trip.mf4 | jq -r .type   for other programs

Exit code: 0 fine, 1 problems found in the file, 2 wrong arguments or unreadable file.)";

int tree(TreeArguments arguments) {
  arguments.options.from = parseOffset(arguments.from).value_or(header_block_offset);
  arguments.options.with_texts = !arguments.hides_texts;
  if (arguments.shows_all) {
    arguments.options.list_limit = UINT64_MAX;
  }
  return onEachFile(*arguments.paths, [&](const FileContext& context) {
    if (arguments.is_json) {
      writeTreeAsJson(context.file, arguments.options, context.out, context.report);
      return;
    }
    if (context.is_one_of_several) {
      context.out << context.file.name() << ":\n";
    }
    writeTree(context.file, arguments.options, context.out, context.report);
  });
}

}  // namespace

void addTreeCommand(CommandLine& program) {
  CommandLine command = program.addCommand("tree", "Show a file's blocks as a tree");
  const auto arguments = std::make_shared<TreeArguments>();
  arguments->paths = addFileArguments(command);
  command.addOption("--from", arguments->from, "Begin at the block at this offset")
      .typeName("OFFSET")
      .check(expectOffset);
  command.addOption("--depth", arguments->options.most_depth, "How many levels to go down")
      .typeName("N")
      .check(expectCount);
  command.addFlag("--no-text", arguments->hides_texts, "Leave out text and metadata blocks");
  command.addFlag("--all", arguments->shows_all, "Show long lists and chains whole");
  command.addFlag("--json", arguments->is_json, "Write JSON lines, one for each link");
  command.footer(footer);
  command.onRun([arguments] { return tree(*arguments); });
}

}  // namespace mdf_tools
