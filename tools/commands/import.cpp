#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "complete_file.h"
#include "file_command.h"
#include "importing/import_failure.h"
#include "importing/importer.h"
#include "importing/temporary_file.h"

namespace mdf_tools {

namespace {

constexpr const char* footer =
    R"(Makes a channel group of each table. Files of CSV begin with a line of names, with units in brackets,
"speed [km/h]", and have an empty line between two tables. Files of JSON lines have an object for each
row, and are those that end in .jsonl, .ndjson or .json or begin with "{". A group has the name of its
table in JSON lines, or of the file without its ending.

What 'mdf export' writes is the same when it is imported and exported again, with few exceptions:
masters that are no times become usual channels, texts that read as numbers become numbers, and JSON
lines get other numbers and names of groups where groups had no names or were not exported.

Types are found out by reading all rows first: integers of as many bits as it takes, float64 for
other numbers, text for the rest, and for numbers with leading zeros such as 007. Empty fields and
null become invalid samples. Numbers may be nan and inf. Between ';' a decimal comma is a point, too.

Times:
The column of times becomes the master channel. It is the one that --time names, in s, ms, us or ns,
or else the first one if its unit is s, or if it is named time, t or timestamp without a unit, or if
its values are dates, and if it has a time in each row, none before that of the row above. Dates are
of ISO 8601, 2024-05-17T13:45:12.5+02:00; the first one in all files is when the measurement began.
Those without a zone are taken as UTC. Integers from 1e17 on are nanoseconds since 1970. A table
without times gets a master channel that counts its rows; a first column of 0, 1, 2, ... is that.

Types for --type: uint8, uint16, uint32, uint64, int8, int16, int32, int64, float32, float64, text.

Logs of buses:
Logs of can-utils (candump -L: "(1345212884.318850) can0 123#0011", also with R or T after it and with
points between bytes) and captures, pcapng or pcap, with the link type of SocketCAN are found out by
their contents. Each kind of frame on each bus becomes a channel group with the bus's name. Times stay
as they are; the first one is when the measurement began. 'mdf frames' gives the same lines, or the
same capture. A pcap has one bus, can0: it has no names. Memory does not grow with the log.

Standard input, and what cannot be read twice, is kept in a temporary file in the meantime.

Examples:
  mdf import table.csv -o table.mf4
  mdf import engine.csv brakes.csv -o trip.mf4           two channel groups
  mdf import log.txt -o log.mf4 --separator ';' --decimal-comma --time Zeit
  mdf import table.csv -o table.mf4 --type 'temp_*=float32' --type serial=text
  mdf export a.mf4 --json -c 'speed*' | mdf import - -o speed.mf4
  mdf import table.csv -o - | mdf stats -
  mdf import candump.log -o drive.mf4 && mdf frames drive.mf4 --id 123
  mdf import drive.pcapng -o drive.mf4

Exit code: 0 imported, 1 a line cannot be imported or the file not be written, 2 wrong arguments,
unreadable file, or one that is there already. Unless it is 0 there is no new file.)";

struct Request {
  std::vector<std::string> paths;
  std::string output;
  std::string format;
  std::string separator;
  bool replaces = false;
  ImportOptions options;
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

std::string counted(std::uint64_t number, const std::string& noun) {
  const char* const ending = noun.back() == 's' ? "es" : "s";
  return std::to_string(number) + ' ' + noun + (number == 1 ? "" : ending);
}

/// "a.csv, b.csv": what the file was made of, without folders.
std::string namesOf(const std::vector<std::string>& paths) {
  std::string names;
  for (const std::string& path : paths) {
    names += names.empty() ? "" : ", ";
    names += path == "-" ? "standard input" : std::filesystem::path(path).filename().string();
  }
  return mdf_writer::isUtf8(names) ? names : "a file";
}

Imported importTo(mdf_writer::Output& output, const Request& request) {
  mdf_writer::Plan plan("imported from " + namesOf(request.paths));
  plan.history = plan.comment;
  plan.program_version = MDF_PROGRAM_VERSION;
  return importFiles(request.paths, request.options, plan, output);
}

void report(const Imported& imported, const std::string& output) {
  for (const std::string& note : imported.notes) {
    std::cerr << "mdf: " << note << '\n';
  }
  const bool is_log = imported.buses > 0;
  std::cerr << "imported "
            << (is_log ? counted(imported.frames, "frame") : counted(imported.rows, "row"))
            << " of "
            << (is_log ? counted(imported.buses, "bus") : counted(imported.tables, "table"))
            << " to " << output;
  if (imported.bad_lines > 0) {
    std::cerr << ", " << counted(imported.bad_lines, is_log ? "bad frame" : "bad line")
              << " skipped";
  }
  std::cerr << '\n';
}

/// The file is completed by writing in places that were written before, so it is made elsewhere.
int importToStandardOutput(const Request& request) {
  const std::string name = "standard output";
  if (isatty(STDOUT_FILENO) != 0) {
    return complain("cannot write " + name + ": it is a terminal", exit_unusable);
  }
  const mdf_reader::Descriptor copy = temporaryFile();
  mdf_writer::FileOutput file(copy.number());
  const Imported imported = importTo(file, request);
  lseek(copy.number(), 0, SEEK_SET);
  copyRest(copy.number(), "a temporary file", STDOUT_FILENO, name);
  report(imported, name);
  return exit_fine;
}

int import(const Request& request) {
  if (request.output == "-") {
    return importToStandardOutput(request);
  }
  if (isOneOf(request.paths, request.output)) {
    return complain("the output " + request.output + " is one of the files to read", exit_unusable);
  }
  CompleteFile file(request.output, request.replaces);
  if (!file.problem().empty()) {
    return complain(file.problem(), exit_unusable);
  }
  const Imported imported = importTo(file, request);
  if (!file.appear()) {
    return complain(file.problem(), exit_problem);
  }
  report(imported, request.output);
  return exit_fine;
}

int run(Request& request) {
  request.options.separator = request.separator.empty()    ? '\0'
                              : request.separator == "tab" ? '\t'
                                                           : request.separator[0];
  if (!request.format.empty()) {
    using Format = ImportOptions::Format;
    request.options.format = request.format == "csv"       ? Format::csv
                             : request.format == "jsonl"   ? Format::json_lines
                             : request.format == "candump" ? Format::candump
                                                           : Format::capture;
  }
  try {
    return import(request);
  } catch (const CannotImport& error) {
    return complain(error.what(), exit_unusable);
  } catch (const ImportFailure& error) {
    return complain(error.what(), exit_problem);
  }
}

/// "name=float32" as a pattern and a type.
std::optional<std::pair<std::string, ValueType>> typeRule(const std::string& text) {
  const std::size_t sign = text.rfind('=');
  if (sign == std::string::npos || sign == 0) {
    return std::nullopt;
  }
  const auto type = valueTypeOf(text.substr(sign + 1));
  return type ? std::optional(std::pair(text.substr(0, sign), *type)) : std::nullopt;
}

std::string expectTypeRule(const std::string& text) {
  return typeRule(text) ? std::string()
                        : '"' + text + "\" is not a name and a type such as speed=float32";
}

std::string expectSeparator(const std::string& text) {
  const bool is_one = text == "tab" || (text.size() == 1 && text != "\"" && text != "\n");
  return is_one ? std::string() : '"' + text + "\" is not one character or \"tab\"";
}

void addTableOptions(CommandLine& command, const std::shared_ptr<Request>& request) {
  command.addOption("--format", request->format, "The form of the files; found out unless stated")
      .choice({"csv", "jsonl", "candump", "pcapng", "pcap"});
  command
      .addOption(
          "--separator", request->separator,
          "What separates fields of CSV: a character or tab; one of , ; | and tab is found out")
      .typeName("CHAR")
      .check(expectSeparator);
  command.addFlag("--decimal-comma", request->options.has_decimal_comma,
                  "Numbers have a comma where others have a point: 1,5");
  command.addOption("--time", request->options.time, "The column of times; the first if it is one")
      .typeName("NAME");
  command
      .addOption(
          "--type",
          [request](const std::vector<std::string>& texts) {
            for (const std::string& text : texts) {
              request->options.types.push_back(*typeRule(text));
            }
          },
          "The type of columns whose name matches; may be repeated, the last one counts")
      .typeName("GLOB=TYPE")
      .oneEachTime()
      .check(expectTypeRule);
  command.addFlag("--skip-bad", request->options.skips_bad_lines,
                  "Leave out lines and packets that cannot be imported, and count them");
}

}  // namespace

void addImportCommand(CommandLine& program) {
  const auto request = std::make_shared<Request>();
  CommandLine command =
      program.addCommand("import", "Make a measurement file of tables, or of logs of CAN buses");
  command.addOption("IN", request->paths, "The tables or logs; - for standard input")
      .required()
      .typeName("FILE");
  command
      .addOption("-o,--output", request->output,
                 "The new file, which appears when it is complete; - for standard output")
      .required()
      .typeName("OUT.mf4");
  command.addFlag("--force", request->replaces, "Replace an existing file");
  addTableOptions(command, request);
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
