#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "changing/finishing.h"
#include "changing/repair_report.h"
#include "checking/file_check.h"
#include "command.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/unreadable.h"
#include "reader/bytes/descriptor.h"
#include "reader/bytes/input_file.h"
#include "writer/files/file_output.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

struct Request {
  std::vector<std::string> paths;
  std::string output;
  bool is_in_place = false;
  bool replaces = false;
  bool as_json = false;
};

class Repair {
 public:
  Repair(const FileContext& context, const Request& request)
      : context_(context),
        request_(request),
        output_(request.is_in_place ? std::filesystem::path(context.path)
                                    : outputFor(context.path, request.output)) {}

  void run();

 private:
  static std::filesystem::path outputFor(const std::string& path, const std::string& output);
  std::vector<Finding> problemsOf(InputFile& file) const;
  void keepWhole();
  void finish();
  void finishIn(const std::string& path, const Finishing& finishing);
  void reportLosses(InputFile& finished);
  void writeCopy(const std::function<void(NewFile& file)>& change);

  const FileContext& context_;
  const Request& request_;
  std::filesystem::path output_;
  std::vector<Finding> losses_;
};

/// A file of the same name where the output is a folder.
std::filesystem::path Repair::outputFor(const std::string& path, const std::string& output) {
  const std::filesystem::path out(output);
  return std::filesystem::is_directory(out) ? out / std::filesystem::path(path).filename() : out;
}

/// What is wrong with a file, but for notes.
std::vector<Finding> Repair::problemsOf(InputFile& file) const {
  std::vector<Finding> problems;
  checkFile(file, [&](const Finding& finding) {
    if (textOf(finding.code).severity != Severity::note) {
      problems.push_back(finding);
    }
  });
  return problems;
}

void Repair::run() {
  if (readIdentification(context_.file).isUnfinished()) {
    finish();
  } else if (problemsOf(context_.file).empty()) {
    keepWhole();
  } else {
    context_.report({Code::request_failed, 0,
                     "the file is damaged, as 'mdf check' tells, but finished: only unfinished "
                     "files can be repaired"});
  }
}

void Repair::keepWhole() {
  if (!request_.is_in_place) {
    writeCopy([](NewFile& /*file*/) {});
  }
  context_.say("the file is whole: there is nothing to repair");
}

void Repair::finish() {
  const FindingSink keep = [&](const Finding& finding) { losses_.push_back(finding); };
  const Finishing finishing = finishingOf(context_.file, keep);
  if (context_.file.sizeNow() != context_.file.size()) {
    throw Unwritable(context_.file.name() + ": the file is still being written");
  }
  if (request_.is_in_place) {
    finishIn(context_.path, finishing);
    InputFile finished(context_.path);
    reportLosses(finished);
  } else {
    writeCopy([&](NewFile& file) {
      finishIn(file.temporaryPath(), finishing);
      InputFile finished(file.temporaryPath());
      reportLosses(finished);
    });
  }
  const Repaired repaired{context_.path, output_.string(), finishing, losses_};
  context_.out << (request_.as_json ? repairJson(repaired) : repairSentence(repaired)) << '\n';
}

/// Reports what was lost on the way, and what is still wrong with the finished file.
void Repair::reportLosses(InputFile& finished) {
  for (const Finding& problem : problemsOf(finished)) {
    const bool is_told = std::any_of(losses_.begin(), losses_.end(), [&](const Finding& loss) {
      return loss.offset == problem.offset;
    });
    if (!is_told) {
      losses_.push_back(problem);
    }
  }
  for (const Finding& loss : losses_) {
    context_.report(loss);
  }
}

void Repair::finishIn(const std::string& path, const Finishing& finishing) {
  const Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC));
  mdf_writer::FileOutput output(file.number());
  if (file.number() < 0) {
    throw Unwritable("cannot write " + output_.string() + ": " +
                     std::generic_category().message(errno));
  }
  if (!apply(finishing, output)) {
    throw Unwritable("cannot write " + output_.string() + ": " + output.cause());
  }
}

/// Makes a copy of the file, which gets its name after a change.
void Repair::writeCopy(const std::function<void(NewFile& file)>& change) {
  const std::string folder = output_.parent_path().empty() ? "." : output_.parent_path().string();
  NewFile copy(folder, output_.filename().string());
  forEachPiece(context_.file, 0, context_.file.size(),
               [&](std::string_view piece) { copy.write(piece); });
  change(copy);
  if (!copy.complete(request_.replaces)) {
    throw Uncreatable("cannot write " + output_.string() + ": it exists; --force replaces it");
  }
}

int repair(const Request& request) {
  try {
    return onEachFile(request.paths,
                      [&](const FileContext& context) { Repair(context, request).run(); });
  } catch (const Unwritable& error) {
    std::cerr << "mdf: " << error.what() << '\n';
    return exit_problem;
  }
}

/// What is wrong with what was asked for; "" for nothing.
std::string refusalOf(const Request& request) {
  const std::filesystem::path output(request.output);
  std::error_code none;
  if (request.is_in_place == !request.output.empty()) {
    return "either -o OUT or --in-place is needed";
  }
  if (request.is_in_place) {
    const bool has_input =
        std::find(request.paths.begin(), request.paths.end(), "-") != request.paths.end();
    return has_input ? "standard input cannot be repaired in place" : "";
  }
  if (std::filesystem::is_directory(output, none)) {
    return "";
  }
  if (request.paths.size() > 1) {
    return "of several files, the output must be a folder that exists";
  }
  if (std::filesystem::equivalent(request.paths.front(), output, none)) {
    return "the output " + request.output + " is the file to repair; --in-place changes it";
  }
  const bool is_there = std::filesystem::exists(output, none) && !request.replaces;
  return is_there ? "cannot write " + request.output + ": it exists; --force replaces it" : "";
}

int run(const Request& request) {
  const std::string refusal = refusalOf(request);
  if (!refusal.empty()) {
    std::cerr << "mdf: " << refusal << '\n';
    return exit_unusable;
  }
  return repair(request);
}

constexpr const char* footer =
    R"(Finishes files that a logger has not: power was lost, or the program killed. What the flags of such
files leave open is found out by reading their data once: how many records each channel group and
sample reduction has, how long the last data block is, which blocks the last data list has, and how
many bytes values of variable length take. A record that was not written to its end is cut off. The
data itself stays as it is, byte for byte.

One line on standard output says what was kept, cut and set. What could not be read, and what
'mdf check' finds in the finished file, is reported on standard error. Finished files are left alone,
as there is nothing to finish: 'mdf check' tells whether they are damaged.

With -o the file itself is not touched, and the output appears when it is complete. With --in-place
only the few numbers that were open are written, in such an order that the command can be run again
when it was interrupted; torn records are gone then.

Examples:
  mdf repair log.mf4 -o whole.mf4
  mdf repair *.mf4 -o repaired/              many files into a folder that exists
  mdf repair --in-place /data/*.mf4          without copies
  mdf repair log.mf4 -o whole.mf4 --json | jq .cut

Exit code: 0 whole, 1 finished with a loss that was reported, or a file could not be written, 2 wrong
arguments, or unreadable file.)";

}  // namespace

void addRepairCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("repair", "Finish files that were cut off");
  const auto request = std::make_shared<Request>();
  const auto paths = addFileArguments(*command);
  command
      ->add_option("-o,--output", request->output,
                   "The file to make, or a folder for files of the same names")
      ->type_name("OUT");
  command->add_flag("--in-place", request->is_in_place, "Change the files themselves");
  command->add_flag("--force", request->replaces, "Replace existing files");
  command->add_flag("--json", request->as_json,
                    "Print an object for each file: what was kept, cut, set and lost");
  command->footer(footer);
  command->callback([request, paths, &exit_code] {
    request->paths = *paths;
    exit_code = run(*request);
  });
}

}  // namespace mdf_tools
