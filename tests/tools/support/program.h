#ifndef MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_
#define MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_

#include <chrono>
#include <csignal>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace mdf_tests {

/// The command that runs the program mdf: its path, after the words of the environment variable
/// MDF_EMULATOR, as for a program that is built for another machine.
std::vector<std::string> mdfCommand();

/// How a program is run.
struct RunOptions {
  /// What stands before the arguments: a program, looked up as a shell does.
  std::vector<std::string> command = mdfCommand();

  /// What standard input holds.
  std::string input;

  /// "NAME=value", added to the environment of the tests or replacing what is there.
  std::vector<std::string> environment;

  /// Standard output goes to this file, which exists, instead of into the result.
  std::string output_path;

  /// Standard output or standard error is a terminal that passes all bytes on unchanged.
  bool output_is_terminal = false;
  bool error_is_terminal = false;

  /// The program cannot make a file longer than so many bytes, as on a full disk.
  std::optional<std::uint64_t> file_size_limit;

  /// The program starts with SIGHUP ignored, as under nohup.
  bool ignore_hangup = false;

  /// How long after `signal_when` first holds the program is sent `signal`, if it still runs.
  std::optional<std::chrono::milliseconds> signal_after;
  std::function<bool()> signal_when = [] { return true; };
  /// What must have come to standard error before that.
  std::string signal_at_message;
  int signal = SIGINT;

  /// A program that runs longer is killed.
  std::chrono::seconds time_limit{120};
};

/// What came of a run.
struct RunResult {
  /// As a shell gives it: 128 and the signal's number for a killed program, 127 when there is none.
  int exit_code = -1;
  std::string output;    ///< what went to standard output
  std::string messages;  ///< what went to standard error
};

bool operator==(const RunResult& a, const RunResult& b);
void PrintTo(const RunResult& result, std::ostream* os);

/// What comes of a run that is fine and writes this to standard output.
RunResult wrote(const std::string& output);
/// What comes of a run that says one sentence, on standard error.
RunResult said(int exit_code, const std::string& sentence);

/// Whether a text has a part: `EXPECT_PRED2(contains, text, part)` shows both when it has not.
bool contains(const std::string& text, const std::string& part);

/// Runs a program to its end. It starts with the default actions for the signals that end programs.
RunResult run(const std::vector<std::string>& arguments, const RunOptions& options = {});

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_PROGRAM_H_
