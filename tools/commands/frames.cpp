#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "bus/frame_filter.h"
#include "bus/frame_writer.h"
#include "bus/pcapng_writer.h"
#include "command.h"
#include "command_line/command_line.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "reader/bus/bus_frames.h"
#include "reader/bytes/input_file.h"
#include "sample_options.h"
#include "time_option.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(Lists the frames of CAN, CAN FD and LIN that loggers record raw, of all channel groups of a file, in
the order of their times. A line has the time, the bus, the identifier in hexadecimal (three digits,
eight for one of 29 bits, two for LIN), Rx or Tx, what is special about it, the length and the data:

      0.010000  can1       123  Rx           [ 2]  12 34
      0.020000  can1  18FEF100  Tx  FD BRS   [12]  00 01 02 03 04 05 06 07 08 09 0A 0B
      0.030000  can2            Rx  error bit [ 0]

What a file says of a bus is its number: "can1". Groups that do not say one give the bus their name.

--format candump  the log of can-utils, for canplayer and log2asc; times since 1970
         csv      time, bus, frame, id, extended, direction, fd, brs, esi, error, length, data
         jsonl    an object a line, with the same members; "id" is a number, "hex" its digits
         pcapng   a capture with the link type of SocketCAN, for Wireshark and tshark
Frames that a form has no place for (LIN in candump and pcapng) are counted on standard error. Where
a file does not say when it was begun, candump and pcapng count from the beginning of 1970.

--id takes identifiers, 123 or 0x123, an x at the end for 29 bits (more than 7FF are such anyway),
and ranges of them, with commas between. Frames without an identifier are left out then.

Frames are those whose channels the format's rules for bus logging name: CAN_DataFrame, CAN_RemoteFrame,
CAN_ErrorFrame, CAN_OverloadFrame, LIN_Frame and other LIN_ events. Memory grows with the number of
groups alone.

Examples:
  mdf frames drive.mf4 --id 123,18FEF100x,700-7FF | head
  mdf frames drive.mf4 --bus can1 --from 10 --to 20
  mdf frames drive.mf4 --format candump | canplayer -I -
  mdf frames drive.mf4 -o drive.pcapng && wireshark drive.pcapng
  mdf frames drive.mf4 --format jsonl | jq -r 'select(.frame == "error") | .time'

Exit code: 0 fine, 1 problems found in a file, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::shared_ptr<std::vector<std::string>> paths;
  std::shared_ptr<Query> query = std::make_shared<Query>();
  std::vector<std::string> ids;
  std::vector<std::string> buses;
  FrameFilter filter;
  std::string time = "seconds";
  std::string format;
  std::string output = "-";

  bool isToFile() const { return output != "-"; }
};

/// Takes text or bytes in pieces.
using Sink = std::function<void(const std::string& bytes)>;

/// When a measurement was begun, for times since 1970.
std::optional<StoredTime> startOf(const Header& header, const NoteSink& note) {
  const StoredTime start = startTimeOf(header);
  if (start.isUnset()) {
    note("the file does not say when it was begun; times count from the beginning of 1970");
    return std::nullopt;
  }
  return start;
}

std::unique_ptr<FrameWriter> writerOf(const Request& request, const FileContext& context,
                                      const Header& header, const NoteSink& note) {
  if (request.format == "candump") {
    return std::make_unique<CandumpWriter>(startOf(header, note));
  }
  if (request.format == "pcapng") {
    return std::make_unique<PcapngWriter>(startOf(header, note));
  }
  const ValueForm form = timeFormOf(request.time, header, note);
  if (request.format == "csv") {
    return std::make_unique<CsvFrameWriter>(form);
  }
  if (request.format == "jsonl") {
    return std::make_unique<JsonFrameWriter>(context.file.name(), form);
  }
  return std::make_unique<TextFrameWriter>(form);
}

void noteUnwritten(std::uint64_t count, const Request& request, const NoteSink& note) {
  if (count > 0) {
    note(std::to_string(count) + (count == 1 ? " frame is" : " frames are") +
         " left out: " + request.format + " has no place for " + (count == 1 ? "it" : "them"));
  }
}

/// Writes the frames of one file; returns the exit code.
int writeFrames(const Request& request, const FileContext& context, const Sink& sink) {
  constexpr std::size_t piece = 65536;
  const NoteSink note = notesOf(context);
  BusFrames frames(context.file, request.query->from, request.query->to, context.report, note);
  if (frames.groups() == 0) {
    context.say(no_frames);
    return exit_problem;
  }
  const auto writer = writerOf(request, context, frames.header(), note);
  std::string text;
  writer->begin(text);
  std::uint64_t unwritten = 0;
  while (const BusFrame* const frame = frames.next()) {
    if (request.filter.isWanted(*frame) && !writer->add(*frame, text)) {
      ++unwritten;
    }
    if (text.size() >= piece) {
      sink(text);
      text.clear();
    }
  }
  sink(text);
  noteUnwritten(unwritten, request, note);
  return exit_fine;
}

int writeAll(const Request& request, const std::function<Sink(const FileContext&)>& sinkFor) {
  int exit_code = exit_fine;
  const int reading = onEachFile(*request.paths, [&](const FileContext& context) {
    exit_code = std::max(exit_code, writeFrames(request, context, sinkFor(context)));
  });
  return std::max(exit_code, reading);
}

int writeToFile(const Request& request) {
  const std::filesystem::path path(request.output);
  const std::string folder = path.parent_path().string();
  NewFile file(folder.empty() ? "." : folder, path.filename().string());
  const int exit_code = writeAll(request, [&](const FileContext& /*context*/) {
    return [&](const std::string& bytes) { file.write(bytes); };
  });
  if (exit_code != exit_unusable) {
    file.complete(true);
  }
  return exit_code;
}

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

/// What is wrong with the request; "" for nothing.
std::string refusalOf(const Request& request) {
  std::error_code none;
  if (request.isToFile() && isOneOf(*request.paths, request.output)) {
    return "the output " + request.output + " is one of the files to read";
  }
  if (request.isToFile() && std::filesystem::exists(request.output, none) &&
      !std::filesystem::is_regular_file(request.output, none)) {
    return "the output " + request.output + " is no file; use '> " + request.output + "'";
  }
  if (request.format == "pcapng" && !request.isToFile() && outputIsTerminal()) {
    return "pcapng is no text for a terminal; name a file with -o";
  }
  return "";
}

int run(Request& request) {
  if (request.format.empty()) {
    const bool is_pcapng = std::filesystem::path(request.output).extension() == ".pcapng";
    request.format = is_pcapng ? "pcapng" : "text";
  }
  const std::string refusal = refusalOf(request);
  if (!refusal.empty()) {
    return complain(refusal, exit_unusable);
  }
  if (!request.isToFile()) {
    return writeAll(request, [](const FileContext& context) {
      return [&](const std::string& bytes) {
        context.out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
      };
    });
  }
  try {
    return writeToFile(request);
  } catch (const Uncreatable& error) {
    return complain(error.what(), exit_unusable);
  } catch (const Unwritable& error) {
    return complain(error.what(), exit_problem);
  }
}

/// Gives the filter what was asked for.
void setFilter(Request& request) {
  for (const std::string& ids : request.ids) {
    const std::string problem = request.filter.addIds(ids);
    if (!problem.empty()) {
      throw Refusal("--id: " + problem);
    }
  }
  for (const std::string& bus : request.buses) {
    request.filter.addBus(bus);
  }
}

}  // namespace

void addFramesCommand(CommandLine& program) {
  CommandLine command =
      program.addCommand("frames", "List the frames of CAN and LIN buses in the order of time");
  const auto request = std::make_shared<Request>();
  request->paths = addFileArguments(command);
  command.addOption("--id", request->ids, "Frames with these identifiers: 123,18FEF100x,700-7FF")
      .typeName("IDS")
      .delimiter(',')
      .oneEachTime();
  command
      .addOption("--bus", request->buses,
                 "Frames of this bus, its number, or those whose name matches a pattern")
      .typeName("BUS")
      .oneEachTime();
  addRangeOptions(command, request->query);
  addTimeOption(command, request->time);
  command
      .addOption("--format", request->format,
                 "The form of the list; text unless OUT ends in .pcapng")
      .choice({"text", "candump", "csv", "jsonl", "pcapng"});
  command.addOption("-o,--output", request->output, "A file, or - for standard output")
      .typeName("OUT");
  command.footer(footer);
  command.onRun([request] {
    setFilter(*request);
    return run(*request);
  });
}

}  // namespace mdf_tools
