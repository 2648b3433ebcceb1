#include "program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include "channel.h"
#include "temp_file.h"

namespace mdf_tests {

namespace {

using Clock = std::chrono::steady_clock;

/// What a program starts with as its standard streams.
struct Streams {
  int input;
  int output;
  int error;
};

std::vector<char*> pointersTo(std::vector<std::string>& strings) {
  std::vector<char*> pointers;
  for (std::string& each : strings) {
    pointers.push_back(each.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> all = additions;
  for (char** each = environ; *each != nullptr; ++each) {
    const std::string variable = *each;
    const std::string name = variable.substr(0, variable.find('=') + 1);
    const bool replaced =
        std::any_of(additions.begin(), additions.end(),
                    [&](const std::string& added) { return added.rfind(name, 0) == 0; });
    if (!replaced) {
      all.push_back(variable);
    }
  }
  return all;
}

/// Makes a new process what its program expects. Calls only what may be called after a fork.
void prepareProcess(const RunOptions& options, const Streams& streams) {
  dup2(streams.input, STDIN_FILENO);
  dup2(streams.output, STDOUT_FILENO);
  dup2(streams.error, STDERR_FILENO);
  for (const int signal : {SIGINT, SIGTERM, SIGXFSZ}) {
    std::signal(signal, SIG_DFL);
  }
  std::signal(SIGHUP, options.ignore_hangup ? SIG_IGN : SIG_DFL);
  if (options.file_size_limit) {
    const auto bytes = static_cast<rlim_t>(*options.file_size_limit);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
}

pid_t start(const std::vector<std::string>& arguments, const RunOptions& options,
            const Streams& streams) {
  std::vector<std::string> command = options.command;
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = environmentWith(options.environment);
  const std::vector<char*> command_pointers = pointersTo(command);
  std::vector<char*> environment_pointers = pointersTo(environment);
  const pid_t process = fork();
  if (process < 0) {
    throw std::runtime_error("cannot run " + command.front());
  }
  if (process == 0) {
    prepareProcess(options, streams);
    environ = environment_pointers.data();
    execvp(command_pointers.front(), command_pointers.data());
    _exit(127);
  }
  return process;
}

/// Sends a running program its signal when it is time, and kills it when it runs too long.
class Interrupter {
 public:
  Interrupter(pid_t process, const RunOptions& options, const Channel& error)
      : process_(process), options_(options), error_(error) {}

  void interruptWhenDue() {
    const Clock::time_point now = Clock::now();
    if (now - start_ >= options_.time_limit) {
      kill(process_, SIGKILL);
    }
    if (!options_.signal_after || is_sent_) {
      return;
    }
    if (ready_ > now && options_.signal_when() &&
        error_.text().find(options_.signal_at_message) != std::string::npos) {
      ready_ = now;
    }
    if (ready_ <= now && now - ready_ >= *options_.signal_after) {
      kill(process_, options_.signal);
      is_sent_ = true;
    }
  }

 private:
  pid_t process_;
  const RunOptions& options_;
  const Channel& error_;
  Clock::time_point start_ = Clock::now();
  Clock::time_point ready_ = Clock::time_point::max();
  bool is_sent_ = false;
};

/// Reads what has been written, or comes back after a short while.
void readFrom(Channel& output, Channel& error) {
  std::array<pollfd, 2> ends = {
      {{output.readingEnd(), POLLIN, 0}, {error.readingEnd(), POLLIN, 0}}};
  poll(ends.data(), ends.size(), 1);
  if (ends[0].revents != 0) {
    output.readSome();
  }
  if (ends[1].revents != 0) {
    error.readSome();
  }
}

/// Reads what the program writes up to its end. Returns its exit code.
int follow(pid_t process, const RunOptions& options, Channel& output, Channel& error) {
  Interrupter interrupter(process, options, error);
  int status = 0;
  while (waitpid(process, &status, WNOHANG) == 0) {
    interrupter.interruptWhenDue();
    readFrom(output, error);
  }
  while (output.readingEnd() >= 0 || error.readingEnd() >= 0) {
    readFrom(output, error);
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

bool operator==(const RunResult& a, const RunResult& b) {
  return std::tie(a.exit_code, a.output, a.messages) == std::tie(b.exit_code, b.output, b.messages);
}

void PrintTo(const RunResult& result, std::ostream* os) {
  *os << "exit code " << result.exit_code << "\n-- output:\n"
      << result.output << "-- messages:\n"
      << result.messages;
}

RunResult wrote(const std::string& output) { return {0, output, ""}; }

RunResult said(int exit_code, const std::string& sentence) {
  return {exit_code, "", "mdf: " + sentence + '\n'};
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::string> mdfCommand() {
  std::vector<std::string> command;
  if (const char* emulator = std::getenv("MDF_EMULATOR")) {
    std::istringstream words(emulator);
    command.assign(std::istream_iterator<std::string>(words), {});
  }
  command.emplace_back(MDF_PROGRAM);
  return command;
}

RunResult run(const std::vector<std::string>& arguments, const RunOptions& options) {
  const TempFile input_file(options.input);
  const Descriptor input(open(input_file.path().c_str(), O_RDONLY | O_CLOEXEC));
  // Files would be subject to the limit on their size.
  Channel output = options.output_is_terminal ? Channel::terminal() : Channel::pipe();
  Channel error = options.error_is_terminal ? Channel::terminal() : Channel::pipe();
  std::optional<Descriptor> file;
  if (!options.output_path.empty()) {
    file.emplace(open(options.output_path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC));
  }
  const pid_t process =
      start(arguments, options,
            {input.number(), file ? file->number() : output.programEnd(), error.programEnd()});
  output.closeProgramEnd();
  error.closeProgramEnd();
  const int exit_code = follow(process, options, output, error);
  return {exit_code, output.text(), error.text()};
}

}  // namespace mdf_tests
