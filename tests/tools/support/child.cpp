#include "child.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>

namespace mdf_tests {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto longest_run = std::chrono::seconds(60);

void require(bool success) {
  if (!success) {
    throw std::runtime_error("cannot run a program");
  }
}

/// The two ends of what a program writes to and its caller reads from.
struct Channel {
  int reading = -1;
  int writing = -1;
};

Channel makePipe() {
  std::array<int, 2> ends{};
  require(pipe2(ends.data(), O_CLOEXEC) == 0);
  return {ends[0], ends[1]};
}

Channel makeTerminal() {
  const int reading = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  require(reading >= 0 && grantpt(reading) == 0 && unlockpt(reading) == 0);
  const int writing = open(ptsname(reading), O_RDWR | O_NOCTTY | O_CLOEXEC);
  require(writing >= 0);
  return {reading, writing};
}

[[noreturn]] void becomeProgram(const std::vector<std::string>& command, const ChildSetup& setup,
                                const Channel& out, const Channel& err) {
  dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
  dup2(out.writing, STDOUT_FILENO);
  dup2(err.writing, STDERR_FILENO);
  for (const int signal : {SIGINT, SIGTERM, SIGXFSZ}) {
    std::signal(signal, SIG_DFL);
  }
  std::signal(SIGHUP, setup.ignore_hangup ? SIG_IGN : SIG_DFL);
  if (setup.file_size_limit) {
    const auto bytes = static_cast<rlim_t>(*setup.file_size_limit);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  for (const std::string& variable : setup.environment) {
    putenv(const_cast<char*>(variable.c_str()));
  }
  std::vector<char*> arguments;
  for (const std::string& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  execv(arguments.front(), arguments.data());
  _exit(127);
}

/// Takes what has been written; false when the other end is closed.
bool take(int descriptor, std::string& text) {
  std::array<char, 4096> bytes;
  const ssize_t got = read(descriptor, bytes.data(), bytes.size());
  if (got > 0) {
    text.append(bytes.data(), static_cast<std::size_t>(got));
  }
  return got > 0;
}

/// Sends the signal of a setup at its time, and kills what runs too long.
class Interrupter {
 public:
  Interrupter(pid_t process, const ChildSetup& setup) : process_(process), setup_(setup) {}

  void check() {
    if (Clock::now() - start_ > longest_run) {
      kill(process_, SIGKILL);
    }
    if (setup_.signal == 0 || sent_) {
      return;
    }
    if (!ready_ && setup_.signal_when()) {
      ready_ = Clock::now();
    }
    if (ready_ && Clock::now() - *ready_ >= std::chrono::duration<double>(setup_.signal_after)) {
      kill(process_, setup_.signal);
      sent_ = true;
    }
  }

 private:
  pid_t process_;
  const ChildSetup& setup_;
  Clock::time_point start_ = Clock::now();
  std::optional<Clock::time_point> ready_;
  bool sent_ = false;
};

}  // namespace

ChildResult runChild(const std::vector<std::string>& command, const ChildSetup& setup) {
  const Channel out = makePipe();
  const Channel err = setup.errors_to_terminal ? makeTerminal() : makePipe();
  const pid_t process = fork();
  require(process >= 0);
  if (process == 0) {
    becomeProgram(command, setup, out, err);
  }
  close(out.writing);
  close(err.writing);

  ChildResult result;
  Interrupter interrupter(process, setup);
  std::array<pollfd, 2> sources = {{{out.reading, POLLIN, 0}, {err.reading, POLLIN, 0}}};
  while (sources[0].fd >= 0 || sources[1].fd >= 0) {
    poll(sources.data(), sources.size(), 10);
    interrupter.check();
    for (pollfd& source : sources) {
      std::string& text = source.fd == out.reading ? result.out : result.err;
      if (source.fd >= 0 && source.revents != 0 && !take(source.fd, text)) {
        source.fd = -1;
      }
    }
  }
  close(out.reading);
  close(err.reading);
  int status = 0;
  require(waitpid(process, &status, 0) == process);
  result.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  return result;
}

}  // namespace mdf_tests
