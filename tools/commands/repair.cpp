#include <fcntl.h>

#include <algorithm>
#include <cerrno>
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
#include "changing/file_rescue.h"
#include "changing/finishing.h"
#include "changing/repair_report.h"
#include "command.h"
#include "command_line/command_line.h"
#include "complete_file.h"
#include "extracting/new_file.h"
#include "file_command.h"
#include "importing/temporary_file.h"
#include "reader/blocks/identification.h"
#include "reader/blocks/unreadable.h"
#include "reader/bytes/descriptor.h"
#include "reader/bytes/input_file.h"
#include "writer/files/file_output.h"
#include "writer/plan/plan.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// Problems of a file, and blocks that were put back: a damaged file may have very many.
constexpr std::size_t most_listed = 1000;

struct Request {
  std::vector<std::string> paths;
  std::string output;
  bool is_in_place = false;
  bool replaces = false;
  bool as_json = false;
};

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
  void make(bool is_unfinished);
  void reportLosses();
  void tell(const Rescue& rescue);

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
    request_.is_in_place ? finish() : make(true);
  } else if (isWhole(context_.file)) {
    keepWhole();
  } else if (!request_.is_in_place) {
    make(false);
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
    copyBytes(context_.file, copy);
    copy.appear();
    expectGood(copy);
  }
  context_.say("the file is whole: there is nothing to repair");
}

/// Changes an unfinished file itself.
void Repair::finish() {
  const Descriptor file(open(context_.path.c_str(), O_RDWR | O_CLOEXEC));
  if (file.number() < 0) {
    throw Unwritable("cannot write " + context_.path + ": " +
                     std::generic_category().message(errno));
  }
  mdf_writer::FileOutput output(file.number());
  const Rescue rescue = finishInPlace(context_.file, {output, context_.path}, loss_);
  if (!rescue.finishing.stuck.empty()) {
    context_.say("records after a damaged one are left as they are: -o makes a file with them");
  }
  tell(rescue);
}

/// Makes a file of what there is in an unfinished or a damaged one.
void Repair::make(bool is_unfinished) {
  const Descriptor temporary = temporaryFile();
  mdf_writer::FileOutput bytes(temporary.number());
  const Scratch scratch{bytes, "/dev/fd/" + std::to_string(temporary.number())};
  CompleteFile copy(output_.string(), request_.replaces);
  expectGood(copy);
  CopyOptions options;
  options.time = mdf_writer::now().nanoseconds;
  options.history = "repaired";
  options.version = MDF_PROGRAM_VERSION;
  const auto work = is_unfinished ? finishFile : rescueFile;
  const Rescue rescue = work(context_.file, scratch, options, {copy, copy.place()}, loss_);
  if (context_.file.sizeNow() != context_.file.size()) {
    throw CopyFailure("the file is still being written");
  }
  copy.appear();
  expectGood(copy);
  tell(rescue);
}

/// Reports what was lost on the way, and what is still wrong with the file.
void Repair::reportLosses() {
  for (const Finding& loss : losses_) {
    context_.report(loss);
  }
  if (more_losses_ > 0) {
    context_.say(std::to_string(more_losses_) + " more problems are not listed");
  }
}

void Repair::tell(const Rescue& rescue) {
  reportLosses();
  const auto& put_back = rescue.relinking.put_back;
  for (std::size_t i = 0; i < std::min(put_back.size(), most_listed); ++i) {
    context_.say(sentenceOf(put_back[i]));
  }
  if (put_back.size() > most_listed) {
    context_.say(std::to_string(put_back.size() - most_listed) +
                 " more blocks that were put back are not listed");
  }
  const Repaired repaired{context_.path, output_.string(), rescue, losses_, more_losses_};
  context_.out << (request_.as_json ? repairJson(repaired) : repairSentence(repaired)) << '\n';
}

/// Several readers find the same.
void Repair::addLoss(const Finding& finding) {
  if (told_.count({finding.offset, finding.sentence}) > 0) {
    return;
  }
  if (losses_.size() >= most_listed) {
    ++more_losses_;
    return;
  }
  told_.insert({finding.offset, finding.sentence});
  losses_.push_back(finding);
}

int repair(const Request& request) {
  int exit_code = exit_fine;
  try {
    const int reading = onEachFile(request.paths, [&](const FileContext& context) {
      try {
        Repair(context, request).run();
      } catch (const CopyFailure& failure) {
        context.say(std::string("cannot be repaired: ") + failure.what());
        exit_code = exit_problem;
      }
    });
    return std::max(exit_code, reading);
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
length take. A record that was not written to its end is cut off. Where the file says that records
lack the offsets of their values of variable length, they get them, one value for each record. All
other data stays as it is.

Damaged files: blocks that no link leads to are found by their headers. Data groups, attachments,
events and history go to the end of their lists; a data list gets the block that lies between its
neighbours, and goes on with the list that begins where it ends; other groups, channels and data go to
the only link of their kind that leads nowhere, or that is empty. Each is named with its place. Of the
others, and of texts, nobody can tell where they belong: they are reported. Then everything that can be
reached from the header block is copied, with as many records as there are, and links that lead nowhere
are left out.

A record of unsorted data that has an unknown id, or a length that leads outside, is left out, and what
follows it up to where records fit together again: up to the end of the data, or 32 of them in a row.

One line on standard output says what was kept, cut and set. What could not be read, and what
'mdf check' finds in the new file, is reported on standard error.

With -o the file itself is not touched, and the output appears when it is complete. With --in-place
only the few numbers that an unfinished file left open are written, in such an order that the command
can be run again when it was interrupted; torn records are gone then. Blocks are put back only with -o,
since a file must not lose what it was should one of them be a remnant.

Examples:
  mdf repair log.mf4 -o whole.mf4
  mdf repair *.mf4 -o repaired/              many files into a folder that exists
  mdf repair --in-place /data/*.mf4          unfinished files, without copies
  mdf repair log.mf4 -o whole.mf4 --json | jq .cut

Exit code: 0 whole, 1 whole but for a loss that was reported, or a file that cannot be written, 2 wrong
arguments, unreadable file, or nothing that can be saved.)";

}  // namespace

void addRepairCommand(CommandLine& program) {
  CommandLine command =
      program.addCommand("repair", "Make files whole that were cut off or damaged");
  const auto request = std::make_shared<Request>();
  const auto paths = addFileArguments(command);
  command
      .addOption("-o,--output", request->output,
                 "The file to make, or a folder for files of the same names")
      .typeName("OUT");
  command.addFlag("--in-place", request->is_in_place, "Change the files themselves");
  command.addFlag("--force", request->replaces, "Replace existing files");
  command.addFlag("--json", request->as_json,
                  "Print an object for each file: what was kept, cut, set and lost");
  command.footer(footer);
  command.onRun([request, paths] {
    request->paths = *paths;
    return run(*request);
  });
}

}  // namespace mdf_tools
