#ifndef MDF_TESTS_TOOLS_SUPPORT_RECORDING_RUN_H_
#define MDF_TESTS_TOOLS_SUPPORT_RECORDING_RUN_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "program.h"

namespace mdf_tests {

/// Runs "mdf record" with these arguments.
RunResult record(const std::vector<std::string>& arguments, const RunOptions& options = {});

/// Records what is on standard input to out.mf4. Gives the messages without the time that it took,
/// the exit code, and of each file the name, the table, and the events from their positions on.
std::string recordedLines(const std::string& input, const std::vector<std::string>& arguments);

/// What the program says at the end of a recording.
struct Summary {
  std::uint64_t records = 0;
  std::size_t channels = 0;
  double seconds = 0;
  std::string path;
  std::uint64_t missed = 0;
  std::string rest;  ///< what follows on the next line
};

/// An empty one, and a test failure, when the errors are something else.
Summary summaryOf(const std::string& errors);

/// Expects a summary that says what is in the file, of a recording of so many seconds and samples.
void expectSummary(const std::string& errors, const std::filesystem::path& path, double seconds,
                   std::uint64_t samples);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SUPPORT_RECORDING_RUN_H_
