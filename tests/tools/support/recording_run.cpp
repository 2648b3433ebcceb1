#include "recording_run.h"

#include <gtest/gtest.h>

#include <regex>

#include "recorded_file.h"

namespace mdf_tests {

RunResult record(const std::vector<std::string>& arguments, const RunOptions& options) {
  std::vector<std::string> command = {"record"};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return run(command, options);
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
