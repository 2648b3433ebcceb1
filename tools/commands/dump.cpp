#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>

#include "command.h"
#include "reading/file_dump.h"
#include "reading/input_file.h"
#include "reading/output_buffer.h"

namespace mdf_tools {

namespace {

int dump(const std::string& path) {
  InputFile file(path);
  OutputBuffer output(stdout, isatty(STDOUT_FILENO) != 0 ? OutputBuffer::Bytes::for_a_terminal
                                                         : OutputBuffer::Bytes::as_they_are);
  int exit_code = exit_fine;
  dumpFile(file, output, [&](const Finding& finding) {
    std::cerr << "mdf: " << file.name() << ": " << decimalAndHex(finding.offset) << ": "
              << finding.sentence << '\n';
    exit_code = exit_problem;
  });
  if (output.error() != 0) {
    std::cerr << "mdf: cannot write to standard output: "
              << std::generic_category().message(output.error()) << '\n';
    exit_code = exit_problem;
  }
  return exit_code;
}

constexpr const char* footer =
    R"(Every block that can be reached from the header block is printed, in file order: a line with its
offset, identifier, length, number of links and the links, all as they are stored, and then its
fields. Where link fields say 0, look at the line. A block of an unknown type gets the line alone.

Problems go to standard error, one line each with the block's offset, links counted from 0; what is
readable is printed all the same. Data and texts are printed as the bytes that they are. When
standard output is a terminal, control characters in them are shown as '.'.

Examples:
  mdf dump trip.mf4 | less                   look through a file
  mdf dump trip.mf4 | grep -a '^[0-9]* (0x'  list its blocks
  gunzip < trip.mf4.gz | mdf dump - > dump   dump what standard input brings

Exit code: 0 fine, 1 problems found in the file, 2 wrong arguments or unreadable file.)";

}  // namespace

void addDumpCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("dump", "Print every block of a file");
  const auto path = std::make_shared<std::string>();
  command->add_option("FILE", *path, "The measurement file; - is standard input")
      ->required()
      ->type_name("");
  command->footer(footer);
  command->callback([path, &exit_code] {
    try {
      exit_code = dump(*path);
    } catch (const UnreadableFile& error) {
      std::cerr << "mdf: " << error.what() << '\n';
      exit_code = exit_unusable;
    }
  });
}

}  // namespace mdf_tools
