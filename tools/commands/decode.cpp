#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "command.h"
#include "command_line/command_line.h"
#include "complete_file.h"
#include "decoding_option.h"
#include "file_command.h"
#include "importing/import_failure.h"
#include "importing/temporary_file.h"
#include "printing/json_output.h"
#include "reader/bus/bus_frames.h"
#include "reader/bytes/input_file.h"
#include "reader/summary/decoded_json.h"
#include "sample_options.h"
#include "table_export.h"

namespace mdf_tools {

namespace {

constexpr const char* footer =
    R"TXT(Makes signals of the CAN and CAN FD frames that a logger recorded, as databases of the DBC form
describe them: a measurement file with a channel group for each message and bus. Its records are the
data of the frames, in which each signal is a channel with unit, comment, limits, and texts for its
values. A group is named as the message, with the bus after it where the message is on several, and
has sender and bus as its source. Signals of a frame that is too short, and multiplexed ones that are
not there, are invalid samples. Several files become one, in the order of their starts.

--dbc FILE@BUS takes a database for one bus: its name (can1), its number, or a pattern. Where several
databases know an identifier, the first one counts. What is wrong with a database is said with line
and column; the rest of it is used.

--j1939 finds messages by the parameter group in identifiers of 29 bits, whoever sends them, as is done
anyway with messages that the database marks so; the sender becomes a channel SourceAddress.

Frames that no database describes are counted by bus and identifier on standard error, the most
frequent ones first, and all of them with --json. Messages that are sent in several frames (transport
protocols) are not put together.

Formats of --format, if OUT does not tell:
  mf4    a measurement file
  csv, jsonl, mat    tables, as 'mdf export --dbc' writes them, which has options for them

Examples:
  mdf decode drive.mf4 --dbc car.dbc -o signals.mf4
  mdf decode drive.mf4 --dbc engine.dbc@can1 --dbc body.dbc@can2 -o signals.mf4
  mdf decode truck.mf4 --dbc j1939.dbc --j1939 | head             as CSV
  mdf plot drive.mf4 --dbc car.dbc -c 'Engine*' -o engine.svg     straight to a picture
  mdf export drive.mf4 --dbc car.dbc -c EngineSpeed --on-time 10Hz

Exit code: 0 decoded, 1 problems found in a file or a database, or the new file cannot be written, 2
wrong arguments, unreadable file, or one that is there already.)TXT";

struct Request {
  TableRequest tables;
  bool replaces = false;
  bool is_json = false;

  bool isToStandardOutput() const { return tables.output == "-"; }
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

/// "a.mf4, b.mf4" without folders.
std::string namesOf(const std::vector<std::string>& paths) {
  std::string names;
  for (const std::string& path : paths) {
    const std::size_t sign = path.find('@');
    names += names.empty() ? "" : ", ";
    names += path == "-" ? "standard input"
                         : std::filesystem::path(path.substr(0, sign)).filename().string();
  }
  return mdf_writer::isUtf8(names) ? names : "files";
}

Json asJson(const Decoded& decoded, const std::string& output) {
  Json json = {{"schema", json_schema}, {"output", output}};
  json.update(decodedAsJson(decoded));
  return json;
}

void report(const Request& request, const Decoded& decoded, const FileContext& context) {
  const std::string output =
      request.isToStandardOutput() ? "standard output" : request.tables.output;
  if (request.is_json) {
    context.out << jsonLine(asJson(decoded, output)) << '\n';
    return;
  }
  noteUnknown(decoded, [](const std::string& note) { std::cerr << "mdf: note: " << note << '\n'; });
  std::cerr << "decoded " << decoded.frames << (decoded.frames == 1 ? " frame to " : " frames to ")
            << decoded.groups << (decoded.groups == 1 ? " channel group" : " channel groups")
            << " of " << output << '\n';
}

/// Decodes all files to an output; returns the exit code.
int decodeTo(mdf_writer::Output& output, const Request& request, const Decoding& decoding) {
  mdf_writer::Plan plan("signals of " + namesOf(*request.tables.paths) + ", decoded by " +
                        namesOf(request.tables.decoding->databases));
  plan.history = plan.comment;
  plan.program_version = MDF_PROGRAM_VERSION;
  int exit_code = exit_fine;
  const int reading =
      onAll(*request.tables.paths, [&](const std::vector<const FileContext*>& contexts) {
        std::vector<FrameSource> sources;
        sources.reserve(contexts.size());
        for (const FileContext* const context : contexts) {
          sources.push_back({context->file, context->report, notesOf(*context)});
        }
        const Decoded decoded = decode(sources, decoding, plan, output, {});
        if (decoded.files_with_frames == 0) {
          exit_code = complain(no_frames, exit_problem);
        } else if (decoded.frames == 0) {
          exit_code = complain("no frame is of a message of the databases", exit_problem);
        }
        report(request, decoded, *contexts.front());
      });
  return std::max(exit_code, reading);
}

/// The file is completed by writing in places that were written before, so it is made elsewhere.
int decodeToStandardOutput(const Request& request, const Decoding& decoding) {
  const std::string name = "standard output";
  if (outputIsTerminal()) {
    return complain("cannot write " + name + ": it is a terminal", exit_unusable);
  }
  const Descriptor copy = temporaryFile();
  mdf_writer::FileOutput file(copy.number());
  const int exit_code = decodeTo(file, request, decoding);
  if (exit_code != exit_unusable) {
    lseek(copy.number(), 0, SEEK_SET);
    copyRest(copy.number(), "a temporary file", STDOUT_FILENO, name);
  }
  return exit_code;
}

int decodeToFile(const Request& request, const Decoding& decoding) {
  if (isOneOf(*request.tables.paths, request.tables.output)) {
    return complain("the output " + request.tables.output + " is one of the files to read",
                    exit_unusable);
  }
  CompleteFile file(request.tables.output, request.replaces);
  if (!file.problem().empty()) {
    return complain(file.problem(), exit_unusable);
  }
  const int exit_code = decodeTo(file, request, decoding);
  if (exit_code == exit_unusable) {
    return exit_code;
  }
  return file.appear() ? exit_code : complain(file.problem(), exit_problem);
}

bool isMeasurement(const Request& request) {
  const std::string ending = std::filesystem::path(request.tables.output).extension().string();
  return request.tables.format.empty() ? ending == ".mf4" || ending == ".mdf"
                                       : request.tables.format == "mf4";
}

int run(Request& request) {
  if (!isMeasurement(request)) {
    return request.is_json
               ? complain("--json is for a measurement file; see --format jsonl", exit_unusable)
               : exportTables(request.tables);
  }
  if (request.is_json && request.isToStandardOutput()) {
    return complain("--json needs standard output for itself", exit_unusable);
  }
  const ReadDecoding read = readDatabases(*request.tables.decoding);
  if (read.exit_code == exit_unusable) {
    return read.exit_code;
  }
  try {
    return std::max(read.exit_code,
                    (request.isToStandardOutput() ? decodeToStandardOutput : decodeToFile)(
                        request, read.decoding));
  } catch (const CannotDecode& error) {
    return complain(error.what(), exit_problem);
  } catch (const CannotImport& error) {
    return complain(error.what(), exit_unusable);
  } catch (const ImportFailure& error) {
    return complain(error.what(), exit_problem);
  }
}

}  // namespace

void addDecodeCommand(CommandLine& program) {
  CommandLine command =
      program.addCommand("decode", "Make signals of the frames of CAN buses by DBC files");
  const auto request = std::make_shared<Request>();
  request->tables.output = "-";
  request->tables.paths = addFileArguments(command);
  request->tables.decoding = addDecodingOptions(command);
  command.option("--dbc").required();
  command
      .addOption("-o,--output", request->tables.output,
                 "A file, a folder for tables with / at its end, or - for standard output")
      .typeName("OUT");
  command
      .addOption("--format", request->tables.format,
                 "The form of the output; csv unless OUT ends in .mf4 or .mat")
      .choice({"mf4", "csv", "jsonl", "mat"});
  command.addFlag("--force", request->replaces, "Replace an existing measurement file");
  command.addFlag("--json", request->is_json, "Print what was decoded as an object");
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
