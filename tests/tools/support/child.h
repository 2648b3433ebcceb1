#ifndef MDF_TESTS_TOOLS_SUPPORT_CHILD_H_
#define MDF_TESTS_TOOLS_SUPPORT_CHILD_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace mdf_tests {

/// How a program is run. Without any of it, it has no input and both outputs go into pipes.
struct ChildSetup {
  int signal = 0;  ///< to be sent once signal_when holds, plus signal_after
  std::function<bool()> signal_when = [] { return true; };
  double signal_after = 0;                       ///< seconds
  std::optional<std::uint64_t> file_size_limit;  ///< bytes
  std::vector<std::string> environment;          ///< "NAME=value" on top of the caller's
  bool errors_to_terminal = false;               ///< standard error is a terminal
  bool ignore_hangup = false;                    ///< as under nohup
};

struct ChildResult {
  int exit_code = -1;  ///< -1 when a signal ended it
  int signal = 0;      ///< the signal that ended it
  std::string out;
  std::string err;
};

/// Runs a program to its end. One that takes longer than a minute is killed.
ChildResult runChild(const std::vector<std::string>& command, const ChildSetup& setup = {});

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_CHILD_H_
