#include "browser.h"

#include <fcntl.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdlib>

namespace mdf_tools {

namespace {

bool hasDisplay() {
  return std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
}

}  // namespace

void openBrowser(const std::string& address) {
  if (!hasDisplay()) {
    return;
  }
  std::string program = "xdg-open";
  std::string argument = address;
  char* const words[] = {program.data(), argument.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // Where there is no such program, the user has the address.
  pid_t process = 0;
  posix_spawnp(&process, words[0], &actions, nullptr, words, environ);
  posix_spawn_file_actions_destroy(&actions);
}

}  // namespace mdf_tools
