#include "file_command.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "command.h"
#include "command_line/command_line.h"
#include "printing/output_buffer.h"
#include "printing/progress.h"
#include "reader/blocks/identification.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

void complain(const std::string& sentence) { std::cerr << "mdf: " << sentence << '\n'; }

bool wantsProgress() { return isatty(STDERR_FILENO) != 0; }

/// Has progress give way to data on the same terminal.
class GivingWay {
 public:
  GivingWay(OutputBuffer& output, std::optional<Progress>& progress) : output_(output) {
    if (progress && outputIsTerminal()) {
      output_.setWriter([&progress](const std::function<void()>& write, bool ends_line) {
        progress->interrupt(write, ends_line);
      });
    }
  }
  ~GivingWay() { output_.setWriter({}); }
  GivingWay(const GivingWay&) = delete;
  GivingWay& operator=(const GivingWay&) = delete;

 private:
  OutputBuffer& output_;
};

/// The work on one file; returns its exit code.
/// @param around the line of another file that work is going on on; null for none.
int onFile(const std::string& path, bool is_one_of_several, Input input, OutputBuffer& output,
           const std::function<void(const FileContext&)>& work, Progress* around = nullptr) {
  int exit_code = exit_fine;
  try {
    InputFile file(path);
    const auto refusal = refusalOf(file);
    if (refusal && (input == Input::mdf4 || !file.problem().empty())) {
      throw Unreadable(*refusal);
    }
    std::optional<Progress> progress;
    if (around == nullptr && wantsProgress()) {
      const std::string name = std::filesystem::path(path).filename().string();
      progress.emplace(file, is_one_of_several ? name : "", std::cerr, std::chrono::seconds(1));
    }
    const GivingWay giving_way(output, progress);
    Progress* const line = progress ? &*progress : around;
    const auto say = [&](const std::string& sentence) {
      const auto print = [&] { complain(file.name() + ": " + sentence); };
      line != nullptr ? line->interrupt(print) : print();
    };
    const FindingSink report = [&](const Finding& finding) {
      say(decimalAndHex(finding.offset) + ": " + finding.sentence);
      exit_code = exit_problem;
    };
    std::ostream out(&output);
    work({file, out, report, say, path, is_one_of_several, line});
  } catch (const Unreadable& error) {
    complain(error.what());
    exit_code = exit_unusable;
  } catch (const std::bad_alloc&) {
    complain(path + ": not enough memory for the sizes that the file states");
    exit_code = exit_problem;
  }
  return exit_code;
}

/// Opens the files that are not open yet, and does the work on all.
int onRest(const std::vector<std::string>& paths, std::vector<const FileContext*>& open,
           OutputBuffer& output,
           const std::function<void(const std::vector<const FileContext*>&)>& work) {
  if (open.size() == paths.size()) {
    work(open);
    return exit_fine;
  }
  int rest_code = exit_fine;
  const auto on_rest = [&](const FileContext& context) {
    open.push_back(&context);
    rest_code = onRest(paths, open, output, work);
  };
  Progress* const around = open.empty() ? nullptr : open.front()->progress;
  return std::max(onFile(paths[open.size()], true, Input::mdf4, output, on_rest, around),
                  rest_code);
}

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

/// Where colours are not wanted, NO_COLOR says so, as no-color.org asks of programs.
bool outputHasColours() {
  const std::string_view terminal = variable("TERM");
  return !terminal.empty() && terminal != "dumb" && variable("NO_COLOR").empty();
}

OutputBuffer::Bytes outputForm() {
  if (!outputIsTerminal()) {
    return OutputBuffer::Bytes::as_they_are;
  }
  return outputHasColours() ? OutputBuffer::Bytes::for_a_terminal_with_colours
                            : OutputBuffer::Bytes::for_a_terminal;
}

/// Hands everything to the file; returns the exit code.
int finish(OutputBuffer& output) {
  output.flush();
  if (output.error() == 0) {
    return exit_fine;
  }
  complain("cannot write to standard output: " + std::generic_category().message(output.error()));
  return exit_problem;
}

}  // namespace

bool isOneOf(const std::vector<std::string>& paths, const std::string& output) {
  std::error_code none;
  return std::any_of(paths.begin(), paths.end(), [&](const std::string& path) {
    return std::filesystem::equivalent(path, output, none);
  });
}

std::shared_ptr<std::vector<std::string>> addFileArguments(CommandLine& command) {
  auto paths = std::make_shared<std::vector<std::string>>();
  command.addOption("FILE", *paths, "The measurement files; - is standard input")
      .required()
      .typeName("");
  return paths;
}

int onEachFile(const std::vector<std::string>& paths,
               const std::function<void(const FileContext&)>& work, Input input) {
  OutputBuffer output(stdout, outputForm());
  int exit_code = exit_fine;
  for (const std::string& path : paths) {
    exit_code = std::max(exit_code, onFile(path, paths.size() > 1, input, output, work));
    const int output_code = finish(output);
    if (output_code != exit_fine) {
      return std::max(exit_code, output_code);
    }
  }
  return exit_code;
}

int onBoth(const std::string& first, const std::string& second,
           const std::function<void(const FileContext&, const FileContext&)>& work) {
  OutputBuffer output(stdout, outputForm());
  int second_code = exit_fine;
  const int first_code = onFile(first, true, Input::mdf4, output, [&](const FileContext& of_first) {
    const auto on_second = [&](const FileContext& of_second) { work(of_first, of_second); };
    second_code = onFile(second, true, Input::mdf4, output, on_second, of_first.progress);
  });
  return std::max({first_code, second_code, finish(output)});
}

int onAll(const std::vector<std::string>& paths,
          const std::function<void(const std::vector<const FileContext*>&)>& work) {
  OutputBuffer output(stdout, outputForm());
  std::vector<const FileContext*> open;
  const int exit_code = onRest(paths, open, output, work);
  return std::max(exit_code, finish(output));
}

int printToOutput(const std::string& text) {
  OutputBuffer output(stdout, outputForm());
  output.sputn(text.data(), static_cast<std::streamsize>(text.size()));
  return finish(output);
}

bool outputIsTerminal() { return isatty(STDOUT_FILENO) != 0; }

}  // namespace mdf_tools
