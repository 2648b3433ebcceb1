#include "decoding_option.h"

#include <algorithm>
#include <iostream>

#include "command.h"
#include "command_line/command_line.h"
#include "reader/bus/bus_frame.h"
#include "reader/bus/bus_frames.h"
#include "reader/bytes/input_file.h"
#include "reader/decoding/database_file.h"
#include "sample_options.h"

namespace mdf_tools {

namespace {

void complain(const std::string& sentence) { std::cerr << "mdf: " << sentence << '\n'; }

int readDatabase(const std::string& word, std::vector<NamedDatabase>& databases) try {
  int exit_code = exit_fine;
  databases.push_back(mdf_reader::readDatabase(word, [&](const DatabaseFault& fault) {
    complain(fault.path + ':' + std::to_string(fault.line) + ':' + std::to_string(fault.column) +
             ": " + fault.sentence);
    exit_code = exit_problem;
  }));
  return exit_code;
} catch (const CannotDecode& error) {
  complain(error.what());
  return exit_unusable;
}

std::string countedFrames(std::uint64_t count) {
  return std::to_string(count) + (count == 1 ? " frame" : " frames");
}

std::string wordOf(const UnknownId& id) {
  BusFrame frame;
  frame.id = id.id;
  frame.is_extended = id.is_extended;
  return id.bus + ' ' + idText(frame) + " (" + std::to_string(id.frames) + ')';
}

/// Does the work on the signals of a file; returns the exit code.
int onSignals(const FileContext& context, const Decoding& decoding,
              const std::function<void(const FileContext&)>& work) {
  Decoded decoded;
  try {
    const Descriptor descriptor =
        signalFile({context.file, context.report, notesOf(context)}, decoding, decoded);
    noteUnknown(decoded, notesOf(context));
    if (decoded.files_with_frames == 0) {
      context.say(no_frames);
      return exit_problem;
    }
    InputFile file("/proc/self/fd/" + std::to_string(descriptor.number()), context.file.name());
    if (!file.problem().empty()) {
      throw CannotDecode(file.problem());
    }
    work({file, context.out, context.report, context.say, context.path, context.is_one_of_several,
          context.progress});
  } catch (const CannotDecode& error) {
    context.say(error.what());
    return exit_problem;
  }
  return exit_fine;
}

}  // namespace

std::shared_ptr<DecodingRequest> addDecodingOptions(CommandLine& command) {
  auto request = std::make_shared<DecodingRequest>();
  const Option databases =
      command
          .addOption("--dbc", request->databases,
                     "The signals of CAN frames by this database, in place of the file's "
                     "channels; @BUS for one bus; may be repeated")
          .typeName("FILE[@BUS]")
          .oneEachTime();
  command
      .addFlag("--j1939", request->is_j1939,
               "Of identifiers of 29 bits, the parameter group alone counts")
      .needs(databases);
  return request;
}

ReadDecoding readDatabases(const DecodingRequest& request) {
  ReadDecoding read{{{}, request.is_j1939}, exit_fine};
  for (const std::string& word : request.databases) {
    read.exit_code = std::max(read.exit_code, readDatabase(word, read.decoding.databases));
  }
  return read;
}

void noteUnknown(const Decoded& decoded, const NoteSink& note) {
  constexpr std::size_t most = 8;
  if (decoded.other_frames > 0) {
    note(countedFrames(decoded.other_frames) + " of LIN, or without data, " +
         (decoded.other_frames == 1 ? "is" : "are") + " not decoded");
  }
  if (decoded.unknown_frames == 0) {
    return;
  }
  std::string words;
  for (std::size_t i = 0; i < std::min(most, decoded.unknown.size()); ++i) {
    words += (i == 0 ? ": " : ", ") + wordOf(decoded.unknown[i]);
  }
  const std::size_t more = decoded.unknown.size() - std::min(most, decoded.unknown.size());
  if (more > 0) {
    words += " and " + std::to_string(more) + " more identifiers";
  }
  note(countedFrames(decoded.unknown_frames) + " of messages that no database describes " +
       (decoded.unknown_frames == 1 ? "is" : "are") + " not decoded" + words);
}

int onEachFile(const std::vector<std::string>& paths, const DecodingRequest& request,
               const std::function<void(const FileContext&)>& work) {
  if (request.databases.empty()) {
    return onEachFile(paths, work);
  }
  ReadDecoding read = readDatabases(request);
  if (read.exit_code == exit_unusable) {
    return read.exit_code;
  }
  const int reading = onEachFile(paths, [&](const FileContext& context) {
    read.exit_code = std::max(read.exit_code, onSignals(context, read.decoding, work));
  });
  return std::max(read.exit_code, reading);
}

}  // namespace mdf_tools
