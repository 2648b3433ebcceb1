#include <fcntl.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "changing/copy_failure.h"
#include "changing/file_copy.h"
#include "changing/finishing.h"
#include "changing/repair_report.h"
#include "checking/file_check.h"
#include "command.h"
#include "complete_file.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "importing/temporary_file.h"
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

/// Reports what is wrong with a file, but for notes.
void findProblems(InputFile& file, const FindingSink& report) {
  checkFile(file, [&](const Finding& finding) {
    if (textOf(finding.code).severity != Severity::note) {
      report(finding);
    }
  });
}

bool isWhole(InputFile& file) {
  bool is_whole = true;
  findProblems(file, [&](const Finding& /*finding*/) { is_whole = false; });
  return is_whole;
}

void expectGood(const CompleteFile& file) {
  if (!file.problem().empty()) {
    throw Unwritable(file.problem());
  }
}

std::uint64_t now() {
  const auto since_1970 = std::chrono::system_clock::now().time_since_epoch();
  return static_cast<std::uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(since_1970).count());
}

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
  void addLoss(const Finding& finding);
  void keepWhole();
  void finish();
  void rescue();
  void writeAll(mdf_writer::Output& output);
  void applyTo(mdf_writer::Output& output, const Finishing& finishing);
  void reportLosses(const std::string& path);
  void tell(const Finishing& finishing);

  const FileContext& context_;
  const Request& request_;
  std::filesystem::path output_;
  std::vector<Finding> losses_;  ///< the first ones
  std::uint64_t more_losses_ = 0;
  std::set<std::pair<std::uint64_t, std::string>> told_;
  FindingSink loss_ = [this](const Finding& finding) { addLoss(finding); };
};

/// A file of the same name where the output is a folder.
std::filesystem::path Repair::outputFor(const std::string& path, const std::string& output) {
  const std::filesystem::path out(output);
  return std::filesystem::is_directory(out) ? out / std::filesystem::path(path).filename() : out;
}

void Repair::run() {
  std::error_code none;
  if (!request_.is_in_place && std::filesystem::equivalent(context_.path, output_, none)) {
    throw Unwritable("the output " + output_.string() +
                     " is the file to repair; --in-place changes it");
  }
  if (readIdentification(context_.file).isUnfinished()) {
    finish();
  } else if (isWhole(context_.file)) {
    keepWhole();
  } else if (!request_.is_in_place) {
    rescue();
  } else {
    context_.report({Code::request_failed, 0,
                     "the file is finished, but damaged, as 'mdf check' tells: -o makes a file of "
                     "what there is"});
  }
}

void Repair::keepWhole() {
  if (!request_.is_in_place) {
    CompleteFile copy(output_.string(), request_.replaces);
    expectGood(copy);
    writeAll(copy);
    copy.appear();
    expectGood(copy);
  }
  context_.say("the file is whole: there is nothing to repair");
}

void Repair::finish() {
  const Finishing finishing = finishingOf(context_.file, loss_);
  if (context_.file.sizeNow() != context_.file.size()) {
    throw Unwritable(context_.file.name() + ": the file is still being written");
  }
  if (request_.is_in_place) {
    const Descriptor file(open(context_.path.c_str(), O_RDWR | O_CLOEXEC));
    if (file.number() < 0) {
      throw Unwritable("cannot write " + context_.path + ": " +
                       std::generic_category().message(errno));
    }
    mdf_writer::FileOutput output(file.number());
    applyTo(output, finishing);
    reportLosses(context_.path);
  } else {
    CompleteFile copy(output_.string(), request_.replaces);
    expectGood(copy);
    writeAll(copy);
    applyTo(copy, finishing);
    reportLosses(copy.place());
    copy.appear();
    expectGood(copy);
  }
  tell(finishing);
}

/// Goes by what the data shows instead of what the blocks state of it, as if the file had not been
/// finished, and copies what can be reached then.
void Repair::rescue() {
  constexpr std::string_view open_flags("\x3f\0\0\0", 4);
  constexpr std::uint64_t flags_at = 60;
  const Descriptor temporary = temporaryFile();
  const std::string path = "/dev/fd/" + std::to_string(temporary.number());
  mdf_writer::FileOutput opened(temporary.number());
  writeAll(opened);
  opened.write(0, "UnFinMF ", 8);
  opened.write(flags_at, open_flags.data(), open_flags.size());
  InputFile unfinished(path);
  const Finishing finishing = finishingOf(unfinished, loss_);
  if (finishing.counts.empty()) {
    throw Unreadable(
        context_.file.name() + ": nothing can be saved: no channel group can be reached",
        {Code::request_failed, 0, "no channel group"});
  }
  applyTo(opened, finishing);
  CompleteFile copy(output_.string(), request_.replaces);
  expectGood(copy);
  InputFile finished(path);
  CopyOptions options;
  options.time = now();
  options.history = "repaired";
  options.version = MDF_PROGRAM_VERSION;
  copyFile(finished, options, copy, loss_, [](const std::string& /*note*/) {});
  reportLosses(copy.place());
  copy.appear();
  expectGood(copy);
  tell(finishing);
}

/// Reports what was lost on the way, and what is still wrong with the file.
void Repair::reportLosses(const std::string& path) {
  InputFile repaired(path);
  findProblems(repaired, loss_);
  for (const Finding& loss : losses_) {
    context_.report(loss);
  }
  if (more_losses_ > 0) {
    context_.say(std::to_string(more_losses_) + " more problems are not listed");
  }
}

void Repair::tell(const Finishing& finishing) {
  const Repaired repaired{context_.path, output_.string(), finishing, losses_};
  context_.out << (request_.as_json ? repairJson(repaired) : repairSentence(repaired)) << '\n';
}

void Repair::writeAll(mdf_writer::Output& output) {
  std::uint64_t at = 0;
  forEachPiece(context_.file, 0, context_.file.size(), [&](std::string_view piece) {
    if (output.write(at, piece.data(), piece.size()) != piece.size()) {
      throw Unwritable("cannot write " + output_.string() + ": " + output.cause());
    }
    at += piece.size();
  });
}

void Repair::applyTo(mdf_writer::Output& output, const Finishing& finishing) {
  if (!apply(finishing, output)) {
    throw Unwritable("cannot write " + output_.string() + ": " + output.cause());
  }
}

/// Several readers find the same. A damaged file may have very many problems.
void Repair::addLoss(const Finding& finding) {
  constexpr std::size_t most = 1000;
  if (losses_.size() >= most) {
    ++more_losses_;
  } else if (told_.insert({finding.offset, finding.sentence}).second) {
    losses_.push_back(finding);
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
    R"(Makes whole files of those that are not.

Unfinished files, whose logger lost its power or was killed: what their flags leave open is found out
by reading their data. That is how many records each channel group and sample reduction has, how long
the last data block is, which blocks the last data list has, and how many bytes values of variable
length take. A record that was not written to its end is cut off. The data stays as it is.

Damaged files: what can be reached from the header block is copied, with as many records as there are.
Links that lead nowhere are left out, and with them what only they would have led to.

One line on standard output says what was kept, cut and set. What could not be read, and what
'mdf check' finds in the new file, is reported on standard error.

With -o the file itself is not touched, and the output appears when it is complete. With --in-place
only the few numbers that an unfinished file left open are written, in such an order that the command
can be run again when it was interrupted; torn records are gone then.

Examples:
  mdf repair log.mf4 -o whole.mf4
  mdf repair *.mf4 -o repaired/              many files into a folder that exists
  mdf repair --in-place /data/*.mf4          unfinished files, without copies
  mdf repair log.mf4 -o whole.mf4 --json | jq .cut

Exit code: 0 whole, 1 whole but for a loss that was reported, or a file that cannot be written, 2 wrong
arguments, unreadable file, or nothing that can be saved.)";

}  // namespace

void addRepairCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("repair", "Make files whole that were cut off or damaged");
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
