#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "block_type_option.h"
#include "command.h"
#include "command_line/command_line.h"
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
  bool has_bytes = false;
  bool is_library = false;
  bool is_json = false;
};

constexpr const char* footer =
    R"(Prints every block that can be reached from the header block, in file order: a line with its offset,
identifier, length and number of links, and then its links and fields as the format has them, each
with the format's name for it and its value. Reserved bytes are shown as hexadecimal digits. What
follows the fields (values, data, texts) is shown up to 256 bytes, or as many as --bytes says. A
block of an unknown type has links and data. The flags of unfinished files are id_unfin_flags and
id_custom_unfin_flags of the identification.

With --hex each value stands next to its offset in the file and its bytes.

With --json each block is a line: schema, file, offset, type, length, link_count, reserved, links with
role and offset, fields, the values of lists, the text of texts, and how many bytes of data there are.
Characters are a string with one character for each byte (a zero byte is \u0000); other bytes and
reserved ones are a string of hexadecimal digits, such as "00 ff 12". Infinite numbers are strings.

With --library each block is printed as the library prints it after reading: links may be shifted, as
the blocks' readers have it, so that the line in front names them as they are stored. Data and texts
are printed byte for byte.

Problems go to standard error, one line each with the block's offset, links counted from 0; what can
be read is printed all the same. Control characters in texts are shown as \x1b and so on; with
--library, as '.' on a terminal. Several files are printed one after another, each after a line
"FILE:".

Examples:
  mdf dump trip.mf4 | less                   look through a file
  mdf dump trip.mf4 | grep -a '^[0-9]* (0x'  list its blocks
  mdf dump trip.mf4 | grep id_unfin_flags    what an unfinished file has left open
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
    if (arguments.is_library) {
      dumpFile(context.file, context.out, context.report, selection);
    } else {
      annotateFile(context.file, context.out, {arguments.has_bytes, arguments.most_bytes},
                   context.report, selection);
    }
  });
}

}  // namespace

void addDumpCommand(CommandLine& program) {
  CommandLine command = program.addCommand("dump", "Print every block of a file");
  const auto arguments = std::make_shared<DumpArguments>();
  arguments->paths = addFileArguments(command);
  command.addOption("--type", arguments->types, "Only blocks of these types, such as CN,CC")
      .delimiter(',')
      .oneEachTime()
      .typeName("TYPE,...")
      .transform(expectBlockType);
  command
      .addOption("--at", arguments->offsets,
                 "Only the block at this offset, decimal or 0x...; can be repeated, and the block "
                 "need not be linked from anywhere")
      .oneEachTime()
      .typeName("OFFSET")
      .check(expectOffset);
  const Option hex = command.addFlag("--hex", arguments->has_bytes,
                                     "Show the bytes, each with the field it belongs to");
  const Option json =
      command.addFlag("--json", arguments->is_json, "Write JSON lines, one for each block")
          .excludes(hex);
  command
      .addFlag("--library", arguments->is_library,
               "Print what the library prints of a block that it has read")
      .excludes(hex)
      .excludes(json);
  command
      .addOption("--bytes", arguments->most_bytes,
                 "How many bytes of data, text or values to show of a block; not for --library")
      .typeName("N")
      .check(expectCount)
      .showDefault();
  command.footer(footer);
  command.onRun([arguments] { return dump(*arguments); });
}

}  // namespace mdf_tools
