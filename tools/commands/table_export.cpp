#include "table_export.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iostream>
#include <map>
#include <ostream>
#include <system_error>
#include <thread>
#include <utility>

#include "command.h"
#include "extracting/file_name.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "mat_output.h"
#include "matlab/mat_library.h"
#include "printing/output_buffer.h"
#include "printing/table_writers.h"
#include "reader/bytes/input_file.h"
#include "sample_options.h"
#include "time_option.h"

namespace mdf_tools {

namespace {

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
  explicit Destination(const TableRequest& request) : request_(request) {
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
  const TableRequest& request_;
  std::unique_ptr<TableFile> file_;
  bool is_first_ = true;
  bool has_failed_ = false;
};

/// How the values of a file are to be written.
ValueForm formFor(const TableRequest& request, const Header& header, const NoteSink& note) {
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

std::size_t threadsOf(const TableRequest& request) {
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
std::string matPathOf(const TableRequest& request, const std::string& path) {
  return request.isToFolder()
             ? (std::filesystem::path(request.output) / (stemOf(path) + ".mat")).string()
             : request.output;
}

/// Where the tables of one file go if that is a MATLAB file; null for another format.
std::unique_ptr<MatOutput> matOutputOf(const TableRequest& request, const FileContext& context,
                                       const ValueForm& form, const NoteSink& note) {
  if (!request.isMat()) {
    return nullptr;
  }
  return std::make_unique<MatOutput>(matPathOf(request, context.path), form, note);
}

/// Writes the tables of one file; returns the exit code.
int writeTables(const TableRequest& request, const FileContext& context, Destination& destination) {
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
int writeJoinedTable(const TableRequest& request, const FileContext& context,
                     Destination& destination) {
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
std::optional<std::string> outputOverInput(const TableRequest& request) {
  std::vector<std::string> outputs;
  if (request.isToFile()) {
    outputs.push_back(request.output);
  } else if (request.isMat() && request.isToFolder()) {
    for (const std::string& path : *request.paths) {
      outputs.push_back(matPathOf(request, path));
    }
  }
  for (const std::string& output : outputs) {
    if (isOneOf(*request.paths, output)) {
      return output;
    }
  }
  return std::nullopt;
}

/// Two files whose tables would have the same names in a folder, if there are any.
std::optional<std::string> filesOfOneName(const TableRequest& request) {
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
std::optional<std::string> matRefusal(const TableRequest& request) {
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

int exportFiles(const TableRequest& request) {
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
  const int reading =
      onEachFile(*request.paths, *request.decoding, [&](const FileContext& context) {
        exit_code = std::max(exit_code, (request.on_time ? writeJoinedTable : writeTables)(
                                            request, context, destination));
      });
  destination.close();
  return std::max(
      {exit_code, reading, destination.hasFailed() ? int{exit_problem} : int{exit_fine}});
}

}  // namespace

int exportTables(TableRequest& request) {
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

}  // namespace mdf_tools
