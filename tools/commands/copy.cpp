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
#include "changing/file_copy.h"
#include "command.h"
#include "command_line/command_line.h"
#include "complete_file.h"
#include "data_form_option.h"
#include "file_command.h"
#include "group_option.h"
#include "importing/import_failure.h"
#include "importing/temporary_file.h"
#include "mdf_writer/mdf_writer.h"
#include "mdf_writer/plan/texts.h"
#include "number_option.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/column_data.h"
#include "reader/columns/row_rate.h"
#include "sample_options.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"(Writes the file again, with everything that can be reached from its header block: descriptions,
comments, events, attachments, history, blocks of types that are not known. Blocks stay byte for
byte as they are but for their links, and for what the options ask for. The history gets an entry
that says what was done. Without options the data stays in the blocks that it is in, zipped or not.

A file that was not finished becomes a finished one of the records that can be read.

--sort gives each channel group of unsorted data a data group of its own, with its records side by
side; values of variable length that were records become signal data. Data of arrays whose elements
have records of their own stays as it is.

--zip puts all data into new blocks: deflated, or transposed and deflated, which is smaller as a rule
for records, or none. Blocks that would not be smaller stay as they are.

With --from, --to, --first or --last the copy has the records that 'mdf export' shows with them, in new
blocks, which are zipped only with --zip; those of unsorted data are sorted. A channel group without a
master channel has none from --from or up to --to. Values of variable length go with their records.
Events that are outside --from and --to by their time are left out, and so are sample reductions,
which would no longer be those of the records. Linear conversions of virtual channels, whose values are
made of the numbers of records, begin later then; where that cannot be, there is no copy.

--channel keeps channels whose names match, with what they need: the master channels of their groups,
their members and the structures around them, sizes and axes of arrays, lengths, signal data. Groups
without such a channel are left out. Bytes that no channel of the copy uses are cut out of the records,
and of those of sample reductions, so that the copy is small; the other bytes stay as they are. The new
blocks are zipped only with --zip. Attachments go that only channels refer to which are left out.

--reductions makes sample reductions of the records that the copy has, for viewers of long recordings:
for each interval of time means, least and greatest values. They take the place of those of the same
interval that the file has. Groups without a time in their records get none.

--group and --drop-empty leave out channel groups. Those that hold the masters or the values of others
stay with these; what remains of unsorted data is sorted. Events that are of nothing that is left go.
Links of channels, hierarchies and events to what is left out are empty in the copy.

Before the copy gets its name it is checked as by 'mdf check'. Problems of the file that are problems
of the copy, too, are counted; one that only the copy has prevents it.

Examples:
  mdf copy trip.mf4 -o small.mf4 --sort --zip transposed
  mdf copy trip.mf4 -o part.mf4 --from 10 --to 20
  mdf copy trip.mf4 -o speed.mf4 -c 'speed*' -c rpm --zip transposed
  mdf copy trip.mf4 -o plain.mf4 --zip none
  mdf copy trip.mf4 -o quick.mf4 --reductions 1s,10s
  mdf copy unfinished.mf4 -o whole.mf4

Exit code: 0 copied, 1 problems found in the file, or the copy cannot be written, 2 wrong arguments,
unreadable file, or one that is there already. Where there are problems, standard error says whether
there is a copy.)";

struct Request {
  std::string input;
  std::string output;
  bool replaces = false;
  DataFormChoice form;
  CopyOptions options;
};

std::string shown(double number) {
  std::string text;
  printNumber(number, text);
  return text;
}

/// What the history says: the command without folders.
std::string historyOf(const Request& request) {
  std::string text = "copied";
  if (request.input != "-") {
    const std::string name = std::filesystem::path(request.input).filename().string();
    text += " from " + (mdf_writer::isUtf8(name) ? name : "a file");
  }
  text += request.options.group.empty() ? "" : ", channel group " + request.options.group;
  const char* separator = ", channels ";
  for (const std::string& pattern : request.options.channels) {
    text += separator + (mdf_writer::isUtf8(pattern) ? pattern : "of a name");
    separator = " ";
  }
  text += request.options.drops_empty ? ", without empty groups" : "";
  text += request.options.sorts ? ", sorted" : "";
  for (const std::string& letters : request.options.without) {
    text += letters == "AT"   ? ", without attachments"
            : letters == "EV" ? ", without events"
                              : ", without sample reductions";
  }
  separator = ", sample reductions of ";
  for (const double seconds : request.options.reductions) {
    text += separator + shown(seconds) + " s";
    separator = " and ";
  }
  const Query& limits = request.options.limits;
  text += limits.from ? ", from " + shown(*limits.from) : "";
  text += limits.to ? ", to " + shown(*limits.to) : "";
  text += limits.first ? ", the first " + std::to_string(*limits.first) + " records" : "";
  text += limits.last ? ", the last " + std::to_string(*limits.last) + " records" : "";
  return text + (request.form.zip.empty()     ? ""
                 : request.form.zip == "none" ? ", not zipped"
                                              : ", zipped: " + request.form.zip);
}

/// Copies one file and checks the copy; returns the exit code.
/// @param path where the output's bytes can be read.
int copyTo(mdf_writer::Output& output, const std::string& path, const Request& request,
           const FileContext& context) {
  copyFile(context.file, request.options, output, context.report, notesOf(context));
  InputFile copy(path);
  const std::uint64_t errors = checkCopy(copy, context.file);
  if (errors > 0) {
    context.say("the copy keeps " + std::to_string(errors) +
                (errors == 1 ? " problem" : " problems") + " of the file, see 'mdf check'");
  }
  return errors > 0 ? exit_problem : exit_fine;
}

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

/// Does the work of copying on the input; returns the exit code.
int copying(const Request& request, const std::function<int(const FileContext&)>& work) {
  int exit_code = exit_fine;
  const int reading = onEachFile({request.input}, [&](const FileContext& context) {
    try {
      exit_code = work(context);
    } catch (const CopyFailure& failure) {
      context.say(std::string("cannot be copied: ") + failure.what());
      exit_code = exit_problem;
    }
  });
  return std::max(exit_code, reading);
}

/// The copy is completed by writing in places that were written before, so it is made elsewhere.
int copyToStandardOutput(const Request& request) {
  const std::string name = "standard output";
  if (outputIsTerminal()) {
    return complain("cannot write " + name + ": it is a terminal", exit_unusable);
  }
  return copying(request, [&](const FileContext& context) {
    const Descriptor copy = temporaryFile();
    mdf_writer::FileOutput file(copy.number());
    const int exit_code =
        copyTo(file, "/dev/fd/" + std::to_string(copy.number()), request, context);
    lseek(copy.number(), 0, SEEK_SET);
    copyRest(copy.number(), "a temporary file", STDOUT_FILENO, name);
    return exit_code;
  });
}

int copy(const Request& request) {
  if (request.output == "-") {
    return copyToStandardOutput(request);
  }
  std::error_code none;
  if (std::filesystem::equivalent(request.input, request.output, none)) {
    return complain("the output " + request.output + " is the file to read", exit_unusable);
  }
  CompleteFile file(request.output, request.replaces);
  if (!file.problem().empty()) {
    return complain(file.problem(), exit_unusable);
  }
  return copying(request, [&](const FileContext& context) {
    const int exit_code = copyTo(file, file.place(), request, context);
    if (!file.appear()) {
      throw CopyFailure(file.problem());
    }
    return exit_code;
  });
}

int run(Request& request) {
  request.options.form = request.form.chosen();
  request.options.time = mdf_writer::now().nanoseconds;
  request.options.history = historyOf(request);
  request.options.version = MDF_PROGRAM_VERSION;
  try {
    return copy(request);
  } catch (const CannotImport& error) {
    return complain(error.what(), exit_unusable);
  } catch (const ImportFailure& error) {
    return complain(error.what(), exit_problem);
  }
}

/// The seconds of "10s" or "100ms".
double intervalOf(const std::string& word) {
  const auto rate = readRate(word);
  if (!rate || !rate->isUsable()) {
    throw Refusal("--reductions: expected intervals such as 1s or 100ms, found \"" + word + '"');
  }
  return rate->secondsTo(1);
}

/// Adds --channel, --group, --drop-empty, --without and --reductions.
void addContents(CommandLine& command, const std::shared_ptr<Request>& request) {
  command
      .addOption("-c,--channel", request->options.channels,
                 "Only channels whose name matches a pattern with *, ? and [...]; may be repeated")
      .typeName("GLOB")
      .oneEachTime();
  addGroupOption(command, request->options.group);
  command.addFlag("--drop-empty", request->options.drops_empty,
                  "Leave out channel groups without records");
  command
      .addOption(
          "--without",
          [request](const std::vector<std::string>& words) {
            for (const std::string& word : words) {
              request->options.without.insert(word == "attachments" ? "AT"
                                              : word == "events"    ? "EV"
                                                                    : "SR");
            }
          },
          "Leave out attachments, events or sample reductions; may be repeated")
      .choice({"attachments", "events", "reductions"})
      .oneEachTime();
  command
      .addOption(
          "--reductions",
          [request](const std::vector<std::string>& words) {
            for (const std::string& word : words) {
              request->options.reductions.push_back(intervalOf(word));
            }
          },
          "Make sample reductions over such intervals, as 1s,10s")
      .typeName("TIME")
      .delimiter(',')
      .oneEachTime();
}

}  // namespace

void addCopyCommand(CommandLine& program) {
  const auto request = std::make_shared<Request>();
  CommandLine command = program.addCommand(
      "copy", "Write a measurement file again: cut, sorted, zipped, or as it is");
  command.addOption("IN", request->input, "The measurement file; - is standard input")
      .required()
      .typeName("");
  command
      .addOption("-o,--output", request->output,
                 "The new file, which appears when it is complete; - for standard output")
      .required()
      .typeName("OUT.mf4");
  command.addFlag("--force", request->replaces, "Replace an existing file");
  command.addFlag("--sort", request->options.sorts,
                  "Give each channel group a data group of its own");
  addDataFormOptions(command, request->form);
  Query& limits = request->options.limits;
  addRangeOptions(command, {request, &limits}, "Records");
  addEndOptions(command, limits);
  addContents(command, request);
  command.footer(footer);
  command.onRun([request] { return run(*request); });
}

}  // namespace mdf_tools
