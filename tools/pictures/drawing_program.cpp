#include "drawing_program.h"

#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>

#include "reader/bytes/descriptor.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

[[noreturn]] void fail(const std::string& what, int error) {
  throw DrawingFailed("cannot " + what + ": " + std::generic_category().message(error));
}

/// A file without a name, in memory.
Descriptor memoryFile() {
  Descriptor file(memfd_create("picture", MFD_CLOEXEC));
  if (file.number() < 0) {
    fail("make room for a picture", errno);
  }
  return file;
}

void writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = write(file, text.data(), text.size());
    if (count < 0) {
      fail("make room for a picture", errno);
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  (void)lseek(file, 0, SEEK_SET);
}

std::string readAll(int file) {
  (void)lseek(file, 0, SEEK_SET);
  std::string text;
  std::array<char, 65536> piece;
  while (const ssize_t count = read(file, piece.data(), piece.size())) {
    if (count < 0) {
      fail("read the picture", errno);
    }
    text.append(piece.data(), static_cast<std::size_t>(count));
  }
  return text;
}

/// What a program gets as standard input and standard output.
class Redirection {
 public:
  Redirection(int input, int output) {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_adddup2(&actions_, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO);
  }
  ~Redirection() { posix_spawn_file_actions_destroy(&actions_); }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;

  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

/// A missing program seems to end with this code where starting it cannot fail at once.
constexpr int exit_code_without_program = 127;

[[noreturn]] void failWithout(const DrawingProgram& program) {
  throw DrawingFailed("cannot draw: the program " + program.command[0] + " is not installed; " +
                      program.remedy);
}

/// The words as the system wants them: their addresses, and a null pointer at the end.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) {
    pointers.push_back(word.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

/// This program's environment, but with texts in UTF-8, like those of the file, whatever the user's
/// language.
std::vector<std::string> environmentInUtf8() {
  std::vector<std::string> variables = {"LC_ALL=C.UTF-8"};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::string_view(*variable).substr(0, 7) != "LC_ALL=") {
      variables.emplace_back(*variable);
    }
  }
  return variables;
}

pid_t start(const DrawingProgram& program, const Redirection& redirection) {
  std::vector<std::string> words = program.command;
  std::vector<std::string> variables = environmentInUtf8();
  pid_t process = 0;
  const int error = posix_spawnp(&process, words[0].c_str(), redirection.get(), nullptr,
                                 pointersTo(words).data(), pointersTo(variables).data());
  if (error == ENOENT) {
    failWithout(program);
  }
  if (error != 0) {
    fail("start " + program.command[0], error);
  }
  return process;
}

void waitFor(pid_t process, const DrawingProgram& program) {
  const std::string& name = program.command[0];
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) {
      fail("wait for " + name, errno);
    }
  }
  if (WIFSIGNALED(status)) {
    throw DrawingFailed("cannot draw: " + name + " was ended by signal " +
                        std::to_string(WTERMSIG(status)));
  }
  if (WEXITSTATUS(status) == exit_code_without_program) {
    failWithout(program);
  }
  if (WEXITSTATUS(status) != 0) {
    throw DrawingFailed("cannot draw: " + name + " ended with exit code " +
                        std::to_string(WEXITSTATUS(status)));
  }
}

}  // namespace

std::string drawnBy(const DrawingProgram& program, const std::string& text) {
  const Descriptor input = memoryFile();
  const Descriptor output = memoryFile();
  writeAll(input.number(), text);
  const Redirection redirection(input.number(), output.number());
  waitFor(start(program, redirection), program);
  std::string picture = readAll(output.number());
  if (picture.empty()) {
    throw DrawingFailed("cannot draw: " + program.command[0] + " gave no picture");
  }
  return picture;
}

}  // namespace mdf_tools
