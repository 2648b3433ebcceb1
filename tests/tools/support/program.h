#ifndef MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_
#define MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_

#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <vector>

namespace mdf_tests {

/// How a program is run.
struct RunOptions {
  std::string program = MDF_PROGRAM;

  /// What standard input holds.
  std::string input;

  /// "NAME=value", added to the environment of the tests or replacing what is there.
  std::vector<std::string> environment;

  /// Standard output goes to this file, which exists, instead of into the result.
  std::string output_path;

  /// Standard output is a terminal that passes all bytes on unchanged. Good for a few kilobytes.
  bool output_is_terminal = false;

  /// How long after the start the program is sent `signal`, if it still runs.
  std::optional<std::chrono::milliseconds> signal_after;
  int signal = SIGINT;

  /// A program that runs longer is killed.
  std::chrono::seconds time_limit{120};
};

/// What came of a run.
struct RunResult {
  int exit_code;         ///< as a shell gives it: 128 and the signal's number for a killed program
  std::string output;    ///< what went to standard output
  std::string messages;  ///< what went to standard error
};

/// Runs a program to its end.
RunResult run(const std::vector<std::string>& arguments, const RunOptions& options = {});

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_
