// What is exported of the sample files, imported and exported again, is the same.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "tools/samples/sample.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

namespace fs = std::filesystem;

/// Masters that are no times become usual channels; a channel that counts the rows is added.
const std::set<std::string> with_other_masters = {"channel-master-angle",
                                                  "channel-master-distance",
                                                  "channel-master-index",
                                                  "channel-virtual-master-angle",
                                                  "channel-virtual-master-distance",
                                                  "layout-groups-of-different-kinds",
                                                  "layout-no-master"};

/// Lines of JSON have the numbers of groups, among which are groups that are no tables, and those
/// of elements of arrays with records of their own. The new file has a group for each table.
const std::set<std::string> with_other_groups = {
    "array-of-channel-groups", "array-of-channel-groups-with-axis", "array-of-data-groups",
    "unsorted-variable-length-group-first"};

const std::set<std::string> without_tables = {"block-channel-group-alone", "block-data-group-alone",
                                              "block-header-alone"};

/// Without the names of groups: those of samples have none, and get one of the file's name.
std::string withoutNames(const std::string& text) {
  std::istringstream lines(text);
  std::string result;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t columns = line.find(",\"columns\":[");
    const std::size_t name = line.find(",\"name\":");
    if (columns != std::string::npos) {
      line.erase(name, columns - name);
    }
    result += line + '\n';
  }
  return result;
}

/// The names of samples that differ after a round trip, or cannot make one.
std::set<std::string> changedBy(const std::string& format, bool with_names) {
  const ScratchFolder folder;
  std::set<std::string> changed;
  std::vector<std::string> check = {"check"};
  for (const Sample& sample : allSamples()) {
    const std::string mdf = (folder / (sample.name + ".mf4")).string();
    const std::string table = (folder / ("table." + format)).string();
    folder.write(sample.name + ".mf4", sample.bytes);
    const std::vector<std::string> exporting = {"export", mdf, "--empty", "--format", format};
    const std::string before = run(exporting).output;
    folder.write("table." + format, before);
    const RunResult import = run({"import", table, "--force", "-o", mdf});
    const std::string after = import.exit_code == 0 ? run(exporting).output : import.messages;
    const bool is_same = with_names ? before == after : withoutNames(before) == withoutNames(after);
    if (!is_same) {
      changed.insert(sample.name);
    }
    if (import.exit_code == 0) {
      check.push_back(mdf);
    }
  }
  const RunResult findings = run(check);
  EXPECT_EQ(findings.exit_code, 0);
  EXPECT_EQ(findings.output, "");
  return changed;
}

std::set<std::string> united(std::set<std::string> all, const std::set<std::string>& others) {
  all.insert(others.begin(), others.end());
  return all;
}

TEST(ImportSamples, CsvIsTheSameAgain) {
  EXPECT_EQ(changedBy("csv", true), united(with_other_masters, without_tables));
}

TEST(ImportSamples, JsonLinesAreTheSameAgain) {
  EXPECT_EQ(changedBy("jsonl", false),
            united(united(with_other_masters, without_tables), with_other_groups));
}

}  // namespace
