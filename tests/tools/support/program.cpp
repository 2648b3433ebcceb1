#include "program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

extern char** environ;

namespace mdf_tests {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const std::string& what) { throw std::runtime_error("cannot " + what); }

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {
    if (number_ < 0) {
      fail("open a file for a program's run");
    }
  }
  ~Descriptor() { close(number_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int number() const { return number_; }

 private:
  int number_;
};

/// Descriptors must not leak into other programs that run meanwhile: a terminal would stay open.
Descriptor emptyFile() {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), std::fclose);
  if (!file) {
    fail("make a temporary file");
  }
  return Descriptor(fcntl(fileno(file.get()), F_DUPFD_CLOEXEC, 0));
}

/// Reads what there is from the descriptor's position on.
std::string readAll(int descriptor) {
  std::string bytes;
  std::array<char, 64 * 1024> piece;
  for (;;) {
    const ssize_t count = ::read(descriptor, piece.data(), piece.size());
    if (count <= 0) {
      return bytes;
    }
    bytes.append(piece.data(), static_cast<std::size_t>(count));
  }
}

std::string contentOf(int descriptor) {
  lseek(descriptor, 0, SEEK_SET);
  return readAll(descriptor);
}

void fill(int descriptor, const std::string& bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t count = ::write(descriptor, bytes.data() + written, bytes.size() - written);
    if (count < 0) {
      fail("write a program's input");
    }
    written += static_cast<std::size_t>(count);
  }
  lseek(descriptor, 0, SEEK_SET);
}

/// The two ends of a terminal: what the program writes to one is read from the other.
class Terminal {
 public:
  Terminal() : near_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    far_.emplace(grantpt(near_.number()) == 0 && unlockpt(near_.number()) == 0
                     ? open(ptsname(near_.number()), O_RDWR | O_NOCTTY | O_CLOEXEC)
                     : -1);
    termios mode;
    tcgetattr(far_->number(), &mode);
    mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    tcsetattr(far_->number(), TCSANOW, &mode);
    fcntl(near_.number(), F_SETFL, O_NONBLOCK);
  }

  int programEnd() const { return far_->number(); }

  std::string readSome() const { return readAll(near_.number()); }

  /// With no program's end left, reading delivers all that is on its way, and then fails.
  std::string readRest() {
    far_.reset();
    fcntl(near_.number(), F_SETFL, 0);
    return readAll(near_.number());
  }

 private:
  Descriptor near_;
  std::optional<Descriptor> far_;
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

pid_t start(const std::vector<std::string>& arguments, const RunOptions& options, int input,
            int output, int messages) {
  std::vector<std::string> command{options.program};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = environmentWith(options.environment);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, messages, STDERR_FILENO);
  pid_t process;
  const int error = posix_spawn(&process, options.program.c_str(), &actions, nullptr,
                                pointersTo(command).data(), pointersTo(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    fail("run " + options.program);
  }
  return process;
}

/// Waits for the program's end, calls `meanwhile` again and again, and signals when it is time.
template <class Meanwhile>
int waitFor(pid_t process, const RunOptions& options, Meanwhile meanwhile) {
  const Clock::time_point begin = Clock::now();
  bool to_be_signalled = options.signal_after.has_value();
  int status;
  while (waitpid(process, &status, WNOHANG) == 0) {
    const auto elapsed = Clock::now() - begin;
    if (to_be_signalled && elapsed >= *options.signal_after) {
      kill(process, options.signal);
      to_be_signalled = false;
    }
    if (elapsed >= options.time_limit) {
      kill(process, SIGKILL);
    }
    meanwhile();
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

RunResult run(const std::vector<std::string>& arguments, const RunOptions& options) {
  const Descriptor input = emptyFile();
  const Descriptor captured = emptyFile();
  const Descriptor messages = emptyFile();
  fill(input.number(), options.input);

  std::optional<Terminal> terminal;
  std::optional<Descriptor> file;
  int output = captured.number();
  if (options.output_is_terminal) {
    output = terminal.emplace().programEnd();
  } else if (!options.output_path.empty()) {
    output =
        file.emplace(open(options.output_path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC)).number();
  }

  RunResult result;
  const pid_t process = start(arguments, options, input.number(), output, messages.number());
  result.exit_code = waitFor(process, options, [&] {
    if (terminal) {
      result.output += terminal->readSome();
    }
  });
  result.output += terminal ? terminal->readRest() : contentOf(captured.number());
  result.messages = contentOf(messages.number());
  return result;
}

}  // namespace mdf_tests
