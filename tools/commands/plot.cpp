#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "command.h"
#include "file_command.h"
#include "reading/descriptor.h"
#include "reading/input_file.h"
#include "sample_options.h"
#include "sampling/chart.h"

namespace mdf_tools {

namespace {

constexpr const char* footer =
    R"TXT(Channels are drawn over the master channel of their channel group, mostly time, in a panel for each
unit. Invalid samples are gaps. However many samples there are, a picture keeps the lowest and the
highest value in each of its columns. Values that are texts are drawn as the numbers that stand for
them in the file. gnuplot does the drawing and has to be installed.

Examples:
  mdf plot trip.mf4 -c 'speed*' rpm -o trip.svg
  mdf plot trip.mf4 -c cpu_total --from 10 --to 20 -o cpu.png
  mdf plot monday.mf4 tuesday.mf4 -c speed -o both.svg      the same channel of two files
  mdf plot trip.mf4 -c speed -o - --format ascii            in the terminal

Exit code: 0 fine, 1 problems found in the file or no picture, 2 wrong arguments or unreadable file.)TXT";

struct Request {
  std::vector<std::string> paths;
  std::shared_ptr<Selection> selection;
  std::string output = "-";
  std::string format;
};

int complain(const std::string& sentence, ExitCode exit_code) {
  std::cerr << "mdf: " << sentence << '\n';
  return exit_code;
}

std::string reasonOf(int error) { return std::generic_category().message(error); }

/// A file that is gone with its descriptor, with a text to be read from its beginning.
class ScriptFile {
 public:
  explicit ScriptFile(const std::string& text) : file_(std::tmpfile()) {
    if (file_ == nullptr || std::fwrite(text.data(), 1, text.size(), file_) < text.size() ||
        std::fflush(file_) != 0 || lseek(fileno(file_), 0, SEEK_SET) != 0) {
      error_ = errno;
    }
  }
  ~ScriptFile() {
    if (file_ != nullptr) {
      (void)std::fclose(file_);
    }
  }
  ScriptFile(const ScriptFile&) = delete;
  ScriptFile& operator=(const ScriptFile&) = delete;

  int error() const { return error_; }
  int descriptor() const { return fileno(file_); }

 private:
  std::FILE* file_;
  int error_ = 0;
};

/// Lets gnuplot carry out a script. Without a shell, nothing in a file's name is a command.
int runGnuplot(const std::string& script, int output) {
  const ScriptFile input(script);
  if (input.error() != 0) {
    return complain("cannot write a temporary file: " + reasonOf(input.error()), exit_problem);
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.descriptor(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  std::string name = "gnuplot";
  std::string defaults = "-d";  // no settings of the user's own
  char* const arguments[] = {name.data(), defaults.data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawnp(&child, name.c_str(), &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0 && error != ENOENT) {
    return complain("cannot start gnuplot: " + reasonOf(error), exit_problem);
  }
  int status = 0;
  while (error == 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  // Where starting a program cannot tell at once that there is none, it seems to end with 127.
  if (error == ENOENT || (WIFEXITED(status) && WEXITSTATUS(status) == 127)) {
    return complain("mdf plot needs gnuplot, which is not installed", exit_problem);
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0
             ? exit_fine
             : complain("gnuplot could not draw the picture", exit_problem);
}

/// Draws to the output; a file that has become no picture is removed.
int draw(const std::string& script, const std::string& path) {
  if (path == "-") {
    return runGnuplot(script, STDOUT_FILENO);
  }
  const Descriptor output(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (output.number() < 0) {
    return complain("cannot write to " + path + ": " + reasonOf(errno), exit_unusable);
  }
  const int exit_code = runGnuplot(script, output.number());
  if (exit_code != exit_fine) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
  }
  return exit_code;
}

/// The form that is asked for by name or by the output's ending; "" for none.
std::string formatOf(const Request& request) {
  if (!request.format.empty()) {
    return request.format;
  }
  const std::string ending = std::filesystem::path(request.output).extension().string();
  if (ending == ".svg" || ending == ".png") {
    return ending.substr(1);
  }
  return request.output == "-" ? "ascii" : "";
}

ChartForm formOf(const Request& request, const std::string& format) {
  ChartForm form;
  if (format == "ascii") {
    form.kind = ChartForm::Kind::ascii;
    winsize size{};
    const bool is_known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 20;
    form.width = is_known ? size.ws_col - 1U : 79;
    form.height = is_known && size.ws_row > 11 ? size.ws_row - 1U : 24;
  } else {
    form.kind = format == "png" ? ChartForm::Kind::png : ChartForm::Kind::svg;
  }
  for (const std::string& path : request.paths) {
    form.title +=
        (form.title.empty() ? "" : ", ") + std::filesystem::path(path).filename().string();
  }
  return form;
}

int run(const Request& request) {
  const std::string format = formatOf(request);
  if (format.empty()) {
    return complain("cannot tell the picture's form from " + request.output +
                        "; end it in .svg or .png, or add --format",
                    exit_unusable);
  }
  if (format == "png" && request.output == "-" && outputIsTerminal()) {
    return complain("a terminal shows no PNG; name a file with -o", exit_unusable);
  }
  const ChartForm form = formOf(request, format);
  std::vector<Curve> curves;
  int exit_code = exit_fine;
  const int reading = onEachFile(request.paths, [&](const FileContext& context) {
    const std::string& name = context.file.name();
    const std::string prefix =
        context.is_one_of_several ? std::filesystem::path(name).filename().string() + ": " : "";
    CurveCollector collector(curves, form.width, prefix);
    const NoteSink note = notesOf(name);
    const std::size_t count =
        visitTables(context.file, *request.selection, collector, context.report, note);
    if (collector.leftOut() > 0) {
      note("a picture has room for " + std::to_string(CurveCollector::most_curves) + " channels; " +
           std::to_string(collector.leftOut()) + " more are left out");
    }
    if (count == 0) {
      complainOfNothing(name, *request.selection);
      exit_code = exit_unusable;
    }
  });
  exit_code = std::max(exit_code, reading);
  return curves.empty() ? std::max<int>(exit_code, exit_problem)
                        : std::max(exit_code, draw(gnuplotScript(curves, form), request.output));
}

}  // namespace

void addPlotCommand(CLI::App& app, int& exit_code) {
  CLI::App* command = app.add_subcommand("plot", "Draw channels over time");
  const auto request = std::make_shared<Request>();
  command->add_option("FILE", request->paths, "The measurement files; - is standard input")
      ->type_name("");
  request->selection = addSelectionOptions(*command, true);
  command->get_option("--channel")->required();
  command
      ->add_option("-o,--output", request->output,
                   "The picture, by its ending .svg or .png; - is standard output")
      ->type_name("OUT");
  command->add_option("--format", request->format, "The form of the picture, if not by its ending")
      ->check(CLI::IsMember({"svg", "png", "ascii"}))
      ->option_text("svg|png|ascii");
  command->footer(footer);
  command->callback([request, &exit_code] {
    std::vector<std::string>& channels = request->selection->channels;
    if (request->paths.empty() && channels.size() > 1) {
      // The file is the last word of "--channel GLOB FILE".
      request->paths.push_back(channels.back());
      channels.pop_back();
    }
    exit_code =
        request->paths.empty()
            ? complain("FILE is required; run 'mdf plot --help' for examples", exit_unusable)
            : run(*request);
  });
}

}  // namespace mdf_tools
