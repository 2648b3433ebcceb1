#include "recording_run.h"

#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "checked.h"
#include "recorded_file.h"
#include "scratch_folder.h"

namespace mdf_tests {

RunResult record(const std::vector<std::string>& arguments, const RunOptions& options) {
  std::vector<std::string> command = {"record"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, options);
}

std::string recordedLines(const std::string& input, const std::vector<std::string>& arguments) {
  const ScratchFolder folder;
  std::vector<std::string> command = {folder / "out.mf4"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  RunOptions options;
  options.input = input;
  const RunResult result = record(command, options);
  const std::regex place("( in [0-9]+\\.[0-9] s)|" + folder.path().string() + "/");
  std::string text = std::regex_replace(result.messages, place, "") + "exit code " +
                     std::to_string(result.exit_code) + '\n';
  const std::set<std::filesystem::path> files(std::filesystem::directory_iterator(folder.path()),
                                              {});
  for (const std::filesystem::path& file : files) {
    EXPECT_EQ(checkedBytes(bytesOf(file)), "");
    const std::string events = run({"list", "events", file, "--json"}).output;
    text += file.filename().string() + '\n' + run({"export", file}).output +
            std::regex_replace(events, std::regex(".*(\"position\")"), "$1");
  }
  return text;
}

Summary summaryOf(const std::string& errors) {
  static const std::regex form(
      "recorded ([0-9]+) records? of ([0-9]+) channels? in ([0-9]+\\.[0-9]) s to ([^,]*), "
      "([0-9]+) samples? missed\n((.|\n)*)");
  std::smatch part;
  if (!std::regex_match(errors, part, form)) {
    ADD_FAILURE() << "no summary: " << errors;
    return {};
  }
  return {std::stoull(part[1]), std::stoul(part[2]),
          std::stod(part[3]),   part[4],
          std::stoull(part[5]), part[6]};
}

void expectSummary(const std::string& errors, const std::filesystem::path& path, double seconds,
                   std::uint64_t samples) {
  const RecordedFile file(path);
  const Summary summary = summaryOf(errors);
  EXPECT_EQ(summary.records, file.cycleCount());
  EXPECT_EQ(summary.records + summary.missed, samples);
  EXPECT_EQ(summary.channels, file.channels().size());
  EXPECT_EQ(summary.path, path.string());
  EXPECT_GE(summary.seconds, seconds);
  EXPECT_LT(summary.seconds, seconds + 10);
  EXPECT_EQ(summary.rest.empty(), summary.missed == 0) << summary.rest;
}

}  // namespace mdf_tests
