#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "changing/copy_check.h"
#include "changing/copy_failure.h"
#include "changing/file_join.h"
#include "changing/join_report.h"
#include "command.h"
#include "command_line/command_line.h"
#include "complete_file.h"
#include "data_form_option.h"
#include "file_command.h"
#include "importing/import_failure.h"
#include "importing/temporary_file.h"
#include "mdf_writer/mdf_writer.h"
#include "mdf_writer/plan/texts.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"(Makes one file of several that follow one another, such as the files of a logger that begins a new
one each hour. A channel group goes on in the one with the same name, channels, layout, units and
conversions of the next file; one that has none there is a group of its own. Comments, sources and
properties are those of the first file.

Files are put in the order of their start times, --keep-order in that of the command. Times count from
the start of the first one: values of time masters, and events, grow by what lies between the starts,
exactly where the type of the master can have it. Where it cannot, as with 32-bit numbers, the master
gets a place of 64 bits in the records. Masters over an angle, a distance or an index stay as they are.

With --side-by-side each channel group stays one of its own, with times from the start of the earliest
file: for files that several loggers wrote at the same time.

Events, attachments, and histories of all files are there, each that is the same in several files
once; hierarchies are those of the first file, and those of channels that only another one has. Sample
reductions of groups whose records are written anew are left out. Data that is written anew is zipped
only with --zip; its channel groups are sorted.

Standard output says how many records came from each file, their times, and gaps or overlaps between
files. The new file is checked as by 'mdf check' before it gets its name.

Examples:
  mdf join log_1.mf4 log_2.mf4 log_3.mf4 -o log.mf4
  mdf join log_*.mf4 -o log.mf4 --zip transposed --json | jq '.files[].gap'
  mdf join engine.mf4 camera.mf4 -o both.mf4 --side-by-side

Exit code: 0 joined, 1 problems found in the files, or the new file cannot be written, 2 wrong
arguments, unreadable file, or one that is there already. Where there are problems, standard error says
whether there is a new file.)";

struct Request {
  std::vector<std::string> inputs;
  std::string output;
  bool replaces = false;
  bool as_json = false;
  DataFormChoice form;
  JoinOptions options;
};

/// What the history says: the command without folders.
std::string historyOf(const Request& request) {
  std::string text = request.options.side_by_side ? "joined side by side:" : "joined:";
  for (const std::string& input : request.inputs) {
    const std::string name = std::filesystem::path(input).filename().string();
    text +=
        (&input == &request.inputs.front() ? " " : ", ") + (input == "-" ? "standard input"
                                                            : mdf_writer::isUtf8(name) ? name
                                                                                       : "a file");
  }
  return text;
}

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

using Contexts = std::vector<const FileContext*>;

/// Joins files and checks what came of it; returns the exit code.
/// @param path where the output's bytes can be read.
int joinTo(mdf_writer::Output& output, const std::string& path, const Request& request,
           const Contexts& contexts) {
  std::vector<FileToJoin> files;
  std::vector<InputFile*> inputs;
  for (const FileContext* const context : contexts) {
    files.push_back({&context->file, context->file.name(), &context->report});
    inputs.push_back(&context->file);
  }
  const JoinSummary summary = joinFiles(files, request.options, output);
  InputFile joined(path);
  const std::uint64_t errors = checkCopy(joined, inputs);
  if (errors > 0) {
    std::cerr << "mdf: " << request.output << ": it keeps " << errors
              << (errors == 1 ? " problem" : " problems") << " of the files, see 'mdf check'\n";
  }
  const std::string output_name = request.output == "-" ? "standard output" : request.output;
  const std::string text =
      request.as_json ? joinJson(output_name, summary) : joinText(output_name, summary);
  if (request.output == "-") {
    std::cerr << text;
  } else {
    contexts.front()->out << text;
  }
  return errors > 0 ? exit_problem : exit_fine;
}

/// Does the work of joining on the inputs; returns the exit code.
int joining(const Request& request, const std::function<int(const Contexts&)>& work) {
  int exit_code = exit_fine;
  const int reading = onAll(request.inputs, [&](const Contexts& contexts) {
    try {
      exit_code = work(contexts);
    } catch (const CopyFailure& failure) {
      exit_code = complain(std::string("cannot be joined: ") + failure.what(), exit_problem);
    }
  });
  return std::max(exit_code, reading);
}

/// The file is completed by writing in places that were written before, so it is made elsewhere.
int joinToStandardOutput(const Request& request) {
  const std::string name = "standard output";
  if (outputIsTerminal()) {
    return complain("cannot write " + name + ": it is a terminal", exit_unusable);
  }
  return joining(request, [&](const Contexts& contexts) {
    const Descriptor joined = temporaryFile();
    mdf_writer::FileOutput file(joined.number());
    const int exit_code =
        joinTo(file, "/dev/fd/" + std::to_string(joined.number()), request, contexts);
    lseek(joined.number(), 0, SEEK_SET);
    copyRest(joined.number(), "a temporary file", STDOUT_FILENO, name);
    return exit_code;
  });
}

/// What is wrong with the files that were named; "" for nothing.
std::string refusalOf(const Request& request) {
  std::error_code none;
  for (auto input = request.inputs.begin(); input != request.inputs.end(); ++input) {
    if (std::filesystem::equivalent(*input, request.output, none)) {
      return "the output " + request.output + " is a file to read";
    }
    for (auto other = request.inputs.begin(); other != input; ++other) {
      if (*other == *input || std::filesystem::equivalent(*other, *input, none)) {
        return *input + " is named twice" + (*other == *input ? "" : ", also as " + *other);
      }
    }
  }
  return "";
}

int join(const Request& request) {
  const std::string refusal = refusalOf(request);
  if (!refusal.empty()) {
    return complain(refusal, exit_unusable);
  }
  if (request.output == "-") {
    return joinToStandardOutput(request);
  }
  CompleteFile file(request.output, request.replaces);
  if (!file.problem().empty()) {
    return complain(file.problem(), exit_unusable);
  }
  return joining(request, [&](const Contexts& contexts) {
    const int exit_code = joinTo(file, file.place(), request, contexts);
    if (!file.appear()) {
      throw CopyFailure(file.problem());
    }
    return exit_code;
  });
}

int run(Request& request) {
  request.options.form = request.form.chosen();
  request.options.history = {mdf_writer::now().nanoseconds, historyOf(request),
                             MDF_PROGRAM_VERSION};
  try {
    return join(request);
  } catch (const CannotImport& error) {
    return complain(error.what(), exit_unusable);
  } catch (const ImportFailure& error) {
    return complain(error.what(), exit_problem);
  }
}

}  // namespace

void addJoinCommand(CommandLine& program) {
  const auto request = std::make_shared<Request>();
  CommandLine command =
      program.addCommand("join", "Make one file of several: one after another, or side by side");
  command.addOption("IN", request->inputs, "The measurement files; - is standard input")
      .required()
      .typeName("");
  command
      .addOption("-o,--output", request->output,
                 "The new file, which appears when it is complete; - for standard output")
      .required()
      .typeName("OUT.mf4");
  command.addFlag("--force", request->replaces, "Replace an existing file");
  const Option side_by_side =
      command.addFlag("--side-by-side", request->options.side_by_side,
                      "Keep the channel groups of all files apart, in one file");
  command
      .addFlag("--keep-order", request->options.keeps_order,
               "Join in the order of the command, not in that of start times")
      .excludes(side_by_side);
  addDataFormOptions(command, request->form);
  command.addFlag("--json", request->as_json, "Print what was joined as an object");
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
