#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "command.h"
#include "extracting/file_name.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "mat_output.h"
#include "matlab/mat_library.h"
#include "number_option.h"
#include "printing/output_buffer.h"
#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/joined_table.h"
#include "sample_options.h"
#include "time_option.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

constexpr const char* footer =
    R"TXT(The samples of each channel group become a table, with a row for each record and a column for each
channel, headed by its name and unit. The master channel (mostly time, in seconds since the recording
began) comes first, even where it belongs to another group (MDF 4.2). Numbers have as many digits as
it takes to read the same number back. Invalid samples are empty fields (null in jsonl), bytes are
written as hexadecimal digits, dates as 2024-05-17T13:45:12.345.

--from and --to look records up by bisection where they stand side by side: times are taken to grow
from record to record, as they do in sound files. Where those looked at do not, all are read.

With --time iso, times are dates with the zone that the file states, 2024-05-17T13:45:12.5+02:00; with
--time ns, integers: nanoseconds since 1970. Both need the time at which the measurement began.

Formats:
  csv    a line "name [unit],..." and a line for each sample, quoted as in RFC 4180. Several tables
         follow one another, with an empty line between them.
  jsonl  a line {"schema":2,"file":...,"group":N,"name":...,"columns":[{"name":...,"unit":...},...]} for each
         table and a line {"schema":2,"file":...,"group":N,"values":{"name":value,...}} for each sample.
  mat    a MATLAB file, for which the library libmatio must be installed; with a folder for OUT,
         FILE.mat there. Each table is a structure with a column for each channel, such as engine.rpm,
         and with the original names and the units, engine.info.names.rpm and engine.info.units.rpm.
         Integers keep their class unless values are missing: then they are double, with NaN. Texts and
         bytes are cell arrays. The file is of version 5, compressed, or of version 7.3 where a
         structure is larger than 2 GB. Each table is in memory while it is written.

Names:
Members of structures are called "structure.member", elements of arrays "name[0][1]", members of
such an element "name[0].member"; the second channel with a name is "name (2)". Channel groups are
numbered from 0 through the whole file. In conversion formulas, log is the logarithm to base 10 and
ln the natural one.

Tables:
With a folder for OUT, each table gets a file there:
FILE.N_NAME.csv for channel group N of FILE, which has that name, and FILE.N.csv for one without.
Characters that some file system has no place for are replaced.

A table without samples is left out, in a folder as in one output, and a note counts those;
--empty writes them all the same, as a line of names.

One table of several channel groups:
--on-time GROUP has a row for each record of that group, at its time, and the wanted channels of all
groups as columns. --on-time RATE has rows at equal distances, from the earliest sample of those
channels (or --from) to the latest (or --to). RATE is a number with Hz, mHz, kHz, MHz, GHz, or with
s, ms, us, ns for the time between rows: 10Hz and 100ms are the same. What reads as a RATE is none
of a GROUP; to name a group "10Hz", give its number or a pattern such as "10H?".

A row shows the latest sample at its time or before. With --linear, numbers lie on the line between
the samples around the row, whatever their type; texts and bytes stay those before. A field is empty
before the first sample of a channel and after the last one, where the sample to be shown is
invalid, and on a line where one of the two is. Groups are left out, with a note, that have no
master channel or one of another kind or unit than the rows (for a RATE: time in seconds), and
records whose time goes backwards or is no finite number. Names that several groups have get the
group's name in front, "engine.speed", or its number. --first, --last and --stride count records of
GROUP, or rows. Groups are read side by side: memory grows with their number, not with the samples.

Array elements that have records of their own become a table each, with the channels that they
share: FILE.N.K_NAME.csv for element K of channel group N, numbered from 0; jsonl has K as "element".

Examples:
  mdf export trip.mf4 > trip.csv
  mdf export trip.mf4 -o tables/                        a file for each channel group
  mdf export trip.mf4 -c 'speed*' -c rpm --from 10 --to 20
  mdf export trip.mf4 --group 0 --format jsonl | jq .values.time
  mdf export trip.mf4 -o trip.mat                       a MATLAB file
  mdf export trip.mf4 --on-time 10Hz -c 'speed*' -c rpm     ten rows a second
  mdf export trip.mf4 --on-time engine --linear             rows where group "engine" has its own

Exit code: 0 fine, 1 problems found in the file, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::shared_ptr<std::vector<std::string>> paths;
  std::shared_ptr<Query> query;
  std::string output;
  std::string format;
  bool with_empty = false;
  int digits = 0;
  std::string time = "seconds";
  std::optional<TimeBase> on_time;
  bool is_linear = false;

  bool isToFolder() const {
    return !output.empty() && (output.back() == '/' || std::filesystem::is_directory(output));
  }
  bool isToFile() const { return !output.empty() && output != "-" && !isToFolder(); }
  bool isMat() const { return format == "mat"; }
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

std::string reasonOf(int error) { return std::generic_category().message(error); }

/// "1_engine", or "1.0_engine" for an element with records of its own.
std::string labelOf(const ChannelGroup& group) {
  std::string label = std::to_string(group.index);
  if (group.element) {
    label += '.' + std::to_string(*group.element);
  }
  if (!group.shownName().empty()) {
    label += '_' + safeNamePart(group.shownName());
  }
  return label;
}

/// A file that is written.
class TableFile {
 public:
  explicit TableFile(const std::string& path)
      : path_(path), file_(std::fopen(path.c_str(), "wb")), error_(file_ == nullptr ? errno : 0) {
    if (file_ != nullptr) {
      buffer_ = std::make_unique<OutputBuffer>(file_.get(), OutputBuffer::Bytes::as_they_are);
      out_.rdbuf(buffer_.get());
    }
  }

  bool isOpen() const { return file_ != nullptr; }
  std::ostream& out() { return out_; }

  /// Closes it, and says on standard error what has gone wrong since the beginning, if anything.
  bool close() {
    if (buffer_ != nullptr) {
      buffer_->flush();
      error_ = buffer_->error();
      buffer_.reset();
    }
    if (file_ != nullptr && std::fclose(file_.release()) != 0 && error_ == 0) {
      error_ = errno;
    }
    if (error_ != 0) {
      complain("cannot write to " + path_ + ": " + reasonOf(error_), exit_problem);
    }
    return error_ == 0;
  }

 private:
  struct Closer {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };

  std::string path_;
  std::unique_ptr<std::FILE, Closer> file_;
  int error_;
  std::unique_ptr<OutputBuffer> buffer_;
  std::ostream out_{nullptr};
};

/// What the names of a file's tables begin with.
std::string stemOf(const std::string& path) {
  return path == "-" ? "stdin" : std::filesystem::path(path).stem().string();
}

/// Where the tables of all files go.
class Destination {
 public:
  explicit Destination(const Request& request) : request_(request) {
    if (request.isToFile() && !request.isMat()) {
      file_ = std::make_unique<TableFile>(request.output);
    } else if (request.isToFolder()) {
      std::error_code ignored;  // opening a file in it fails then
      std::filesystem::create_directories(request.output, ignored);
    }
  }

  bool isOpen() const { return file_ == nullptr || file_->isOpen(); }
  bool hasFailed() const { return has_failed_; }

  /// Where a table of an input file goes; the previous table has ended.
  /// @param label of the table in its file's name; "" for the only one.
  std::ostream* next(const std::string& path, const std::string& label,
                     std::ostream& standard_output) {
    if (!request_.isToFolder()) {
      std::ostream& out = file_ == nullptr ? standard_output : file_->out();
      if (!std::exchange(is_first_, false) && request_.format == "csv") {
        out << '\n';
      }
      return &out;
    }
    close();
    const std::string name =
        stemOf(path) + (label.empty() ? "" : '.' + label) + '.' + request_.format;
    file_ = std::make_unique<TableFile>((std::filesystem::path(request_.output) / name).string());
    return file_->isOpen() ? &file_->out() : nullptr;
  }

  void close() {
    if (file_ != nullptr && !file_->close()) {
      has_failed_ = true;
    }
    file_.reset();
  }

 private:
  const Request& request_;
  std::unique_ptr<TableFile> file_;
  bool is_first_ = true;
  bool has_failed_ = false;
};

/// How the values of a file are to be written.
ValueForm formFor(const Request& request, const Header& header, const NoteSink& note) {
  ValueForm form = timeFormOf(request.time, header, note);
  form.digits = request.digits;
  return form;
}

std::unique_ptr<TableWriter> writerOf(const std::string& format, const std::string& file,
                                      const ValueForm& form) {
  if (format == "csv") {
    return std::make_unique<CsvWriter>(form);
  }
  return std::make_unique<JsonLinesWriter>(file, form);
}

void write(const std::string& text, std::ostream& out) {
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

/// Writes a Table or a JoinedTable whose first batch, if any, has been read.
template <class AnyTable>
void writeTable(AnyTable& table, const Batch* batch, TableWriter& writer, std::size_t threads,
                std::ostream& out) {
  std::string head;
  writer.begin(table.head(), head);
  write(head, out);
  for (; batch != nullptr && out.good(); batch = table.next()) {
    forEachText(writer, *batch, threads, [&](const std::string& text) { write(text, out); });
  }
}

std::size_t threadsOf(const Request& request) {
  return request.query->threads > 0 ? request.query->threads
                                    : std::max(1U, std::thread::hardware_concurrency());
}

void noteLeftOut(std::size_t count, const NoteSink& note) {
  if (count > 0) {
    note(std::to_string(count) +
         (count == 1 ? " table without samples is" : " tables without samples are") +
         " left out; --empty writes such tables, too");
  }
}

/// Where the MATLAB file of an input goes.
std::string matPathOf(const Request& request, const std::string& path) {
  return request.isToFolder()
             ? (std::filesystem::path(request.output) / (stemOf(path) + ".mat")).string()
             : request.output;
}

/// Where the tables of one file go if that is a MATLAB file; null for another format.
std::unique_ptr<MatOutput> matOutputOf(const Request& request, const FileContext& context,
                                       const ValueForm& form, const NoteSink& note) {
  if (!request.isMat()) {
    return nullptr;
  }
  return std::make_unique<MatOutput>(matPathOf(request, context.path), form, note);
}

/// Writes the tables of one file; returns the exit code.
int writeTables(const Request& request, const FileContext& context, Destination& destination) {
  const NoteSink note = notesOf(context);
  Tables tables(context.file, *request.query, context.report, note);
  const ValueForm form = formFor(request, tables.header(), note);
  const auto writer = writerOf(request.format, context.file.name(), form);
  const auto mat = matOutputOf(request, context, form, note);
  std::size_t left_out = 0;
  while (Table* const table = tables.next()) {
    const Batch* const first = table->next();
    if (first == nullptr && !request.with_empty) {
      ++left_out;
    } else if (mat != nullptr) {
      mat->add(*table, first);
    } else if (std::ostream* out =
                   destination.next(context.path, labelOf(table->group()), context.out)) {
      writeTable(*table, first, *writer, threadsOf(request), *out);
    }
  }
  if (mat != nullptr) {
    mat->complete();
  }
  noteLeftOut(left_out, note);
  if (tables.count() == 0 && !(request.query->channels.empty() && request.query->group.empty())) {
    note(nothingChosen(*request.query));
    return exit_problem;
  }
  return exit_fine;
}

/// Writes the one table of one file that is on a time base; returns the exit code.
int writeJoinedTable(const Request& request, const FileContext& context, Destination& destination) {
  const NoteSink note = notesOf(context);
  Tables tables(context.file, *request.query, context.report, note);
  JoinedTable table(tables, *request.query, *request.on_time, note);
  if (!table.problem().empty()) {
    context.say(table.problem());
    return exit_problem;
  }
  if (tables.count() == 0) {
    note(nothingChosen(*request.query));
    return exit_problem;
  }
  const Batch* const first = table.next();
  const ValueForm form = formFor(request, tables.header(), note);
  if (first == nullptr && !request.with_empty) {
    noteLeftOut(1, note);
  } else if (const auto mat = matOutputOf(request, context, form, note)) {
    mat->add(table, first);
    mat->complete();
  } else if (std::ostream* out = destination.next(context.path, "", context.out)) {
    const auto writer = writerOf(request.format, context.file.name(), form);
    writeTable(table, first, *writer, threadsOf(request), *out);
  }
  return exit_fine;
}

/// The output that would overwrite one of the files that are to be read, if there is one.
std::optional<std::string> outputOverInput(const Request& request) {
  std::vector<std::string> outputs;
  if (request.isToFile()) {
    outputs.push_back(request.output);
  } else if (request.isMat() && request.isToFolder()) {
    for (const std::string& path : *request.paths) {
      outputs.push_back(matPathOf(request, path));
    }
  }
  for (const std::string& output : outputs) {
    for (const std::string& path : *request.paths) {
      std::error_code none;
      if (std::filesystem::equivalent(path, output, none)) {
        return output;
      }
    }
  }
  return std::nullopt;
}

/// Two files whose tables would have the same names in a folder, if there are any.
std::optional<std::string> filesOfOneName(const Request& request) {
  std::map<std::string, std::string> paths;  // by the beginning of their tables' names
  for (const std::string& path : *request.paths) {
    const auto [other, is_new] = paths.emplace(stemOf(path), path);
    if (!is_new) {
      return other->second + " and " + path;
    }
  }
  return std::nullopt;
}

/// What a MATLAB file is not written for, if anything.
std::optional<std::string> matRefusal(const Request& request) {
  if (request.digits > 0) {
    return "--digits is for text; numbers in a MATLAB file are exact";
  }
  std::error_code none;
  if (!request.isToFolder() &&
      (!request.isToFile() || std::filesystem::is_other(request.output, none))) {
    return "a MATLAB file needs a file or a folder to be written to; name it with -o";
  }
  if (request.isToFile() && request.paths->size() > 1) {
    return "each of several files gets a MATLAB file of its own; name a folder with -o";
  }
  return std::nullopt;
}

int exportFiles(const Request& request) {
  if (request.on_time && request.on_time->rate && request.query->last) {
    return complain(
        "--last needs a channel group for --on-time: where the rows of a rate end is "
        "known when all is read",
        exit_unusable);
  }
  const auto overwritten = outputOverInput(request);
  if (overwritten) {
    return complain("the output " + *overwritten + " is one of the files to read", exit_unusable);
  }
  const auto refusal = request.isMat() ? matRefusal(request) : std::nullopt;
  if (refusal) {
    return complain(*refusal, exit_unusable);
  }
  const auto files = request.isToFolder() ? filesOfOneName(request) : std::nullopt;
  if (files) {
    return complain("the tables of " + *files + " would have the same names in " + request.output,
                    exit_unusable);
  }
  Destination destination(request);
  if (!destination.isOpen()) {
    destination.close();
    return exit_unusable;
  }
  int exit_code = exit_fine;
  const int reading = onEachFile(*request.paths, [&](const FileContext& context) {
    exit_code = std::max(exit_code, (request.on_time ? writeJoinedTable : writeTables)(
                                        request, context, destination));
  });
  destination.close();
  return std::max(
      {exit_code, reading, destination.hasFailed() ? int{exit_problem} : int{exit_fine}});
}

int run(Request& request) {
  if (request.format.empty()) {
    const bool is_mat = std::filesystem::path(request.output).extension() == ".mat";
    request.format = is_mat && request.isToFile() ? "mat" : "csv";
  }
  try {
    return exportFiles(request);
  } catch (const Uncreatable& error) {
    return complain(error.what(), request.isToFile() ? exit_unusable : exit_problem);
  } catch (const Unwritable& error) {
    return complain(error.what(), exit_problem);
  } catch (const NoMatLibrary& error) {
    return complain(error.what(), exit_problem);
  }
}

/// Refuses rates such as "0Hz".
CLI::Validator isNoUselessRate() {
  return CLI::Validator(
      [](const std::string& text) {
        const auto rate = readRate(text);
        return rate && !rate->isUsable()
                   ? '"' + text + "\" is not a rate from 1e-9Hz to 1e9Hz, or from 1ns to 1e9s"
                   : std::string();
      },
      "");
}

/// Adds --on-time and --linear.
void addTimeBaseOptions(CLI::App& command, const std::shared_ptr<Request>& request) {
  CLI::Option* const on_time =
      command
          .add_option_function<std::string>(
              "--on-time",
              [request](const std::string& text) {
                request->on_time = TimeBase{readRate(text), text, Between::held};
              },
              "One table: rows where this channel group has them, or at a rate such as 10Hz")
          ->type_name("GROUP|RATE")
          ->check(isNoUselessRate())
          ->excludes("--raw");
  command.add_flag("--linear", request->is_linear, "Numbers on the line between two samples")
      ->needs(on_time);
}

}  // namespace

void addExportCommand(CLI::App& app, int& exit_code) {
  CLI::App* command =
      app.add_subcommand("export", "Write the samples as CSV, JSON lines or a MATLAB file");
  const auto request = std::make_shared<Request>();
  request->paths = addFileArguments(*command);
  command
      ->add_option("-o,--output", request->output,
                   "A file, a folder with / at its end, or - for standard output")
      ->type_name("OUT");
  CLI::Option* format = command->add_option("--format", request->format,
                                            "The form of the tables; csv unless OUT ends in .mat");
  format->check(CLI::IsMember({"csv", "jsonl", "mat"}))->option_text("csv|jsonl|mat");
  command
      ->add_flag_callback(
          "--json", [request] { request->format = "jsonl"; }, "The same as --format jsonl")
      ->excludes(format);
  request->query = addSelectionOptions(*command, false);
  addTimeBaseOptions(*command, request);
  command->add_flag("--empty", request->with_empty, "Write tables without samples, too");
  addTimeOption(*command, request->time);
  command
      ->add_option("--digits", request->digits,
                   "Numbers with so many significant digits, in place of as many as it takes")
      ->type_name("N")
      ->check(isCount() & CLI::Range(1, 17));
  command
      ->add_option(
          "--threads", request->query->threads,
          "Unzip data and make text on so many cores; on all of them unless said otherwise")
      ->type_name("N")
      ->check(isCount() & CLI::Range(1, 256));
  command->footer(footer);
  command->callback([request, &exit_code] {
    if (request->on_time && request->is_linear) {
      request->on_time->between = Between::linear;
    }
    exit_code = run(*request);
  });
}

}  // namespace mdf_tools
