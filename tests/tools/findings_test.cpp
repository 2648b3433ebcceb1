// Every input that broke something once, or might have, through what it broke.

#include <gtest/gtest.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "targets.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

namespace fs = std::filesystem;

fs::path folder() { return MDF_FINDINGS; }

fs::path list() { return folder() / "outcomes.txt"; }

using Outcomes = std::map<std::string, std::string>;

/// One line for each input: where it is, and what becomes of it.
Outcomes statedOutcomes() {
  Outcomes outcomes;
  std::ifstream lines(list());
  std::string input;
  std::string outcome;
  while (lines >> input && std::getline(lines >> std::ws, outcome)) {
    outcomes[input] = outcome;
  }
  return outcomes;
}

std::string outcomeOf(const std::string& target_name, const fs::path& input) {
  const mdf_fuzz::Target target = mdf_fuzz::findTarget(target_name);
  if (target == nullptr) {
    return "there is no target " + target_name;
  }
  try {
    return target(bytesOf(input));
  } catch (const std::exception& error) {
    return std::string("expected ") + error.what();
  }
}

TEST(Findings, EveryInputComesToTheOutcomeThatIsStatedForIt) {
  Outcomes outcomes;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder())) {
    if (entry.is_regular_file() && entry.path() != list()) {
      const fs::path input = entry.path().lexically_relative(folder());
      outcomes[input.generic_string()] = outcomeOf(input.parent_path().string(), entry.path());
    }
  }
  EXPECT_FALSE(outcomes.empty());
  EXPECT_EQ(outcomes, statedOutcomes());
}

TEST(Findings, EveryFileIsDumpedByTheProgram) {
  int files = 0;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder() / "dump")) {
    SCOPED_TRACE(entry.path());
    const RunResult result = run({"dump", "--library", entry.path().string()});
    const auto lines = std::count(result.messages.begin(), result.messages.end(), '\n');
    EXPECT_EQ(std::to_string(lines) + " findings", outcomeOf("dump", entry.path()));
    const bool is_mdf = fs::file_size(entry) >= 64;
    EXPECT_EQ(result.exit_code, !is_mdf ? 2 : lines == 0 ? 0 : 1);
    ++files;
  }
  EXPECT_GT(files, 0);
}

}  // namespace
