// What the program says of each sample file: the values that the sample is made of, and golden
// texts in samples/golden, one file for each command with a section for each sample.
//
// When samples or what a command prints have changed, the golden texts are renewed with
//
//   MDF_RENEW_GOLDEN=1 build/dev/tests/mdf_tools_tests --gtest_filter='SampleList.*'
//
// Nothing says that the new texts are right: each line of their difference is to be read.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tools/samples/sample.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

namespace fs = std::filesystem;

const std::vector<std::string>& commandsWithGoldenTexts() {
  static const std::vector<std::string> commands = {"info", "tree", "check"};
  return commands;
}

fs::path goldenPath(const std::string& command) {
  return fs::path(MDF_GOLDEN_TEXTS) / (command + ".txt");
}

/// What a run on a sample's file came to, with the file's name without its folder.
RunResult runOn(const Sample& sample, const std::string& command) {
  const ScratchFolder folder;
  const std::string file_name = sample.name + ".mf4";
  folder.write(file_name, sample.bytes);
  RunResult result = run({command, (folder / file_name).string()});
  const std::string before = folder.path().string() + '/';
  for (std::string* text : {&result.output, &result.messages}) {
    for (std::size_t at = text->find(before); at != std::string::npos; at = text->find(before)) {
      text->erase(at, before.size());
    }
  }
  return result;
}

/// The section of a golden text: standard output, and what there is beside it.
std::string sectionOf(const RunResult& result) {
  std::string text = result.output;
  if (!result.messages.empty()) {
    text += "-- on standard error:\n" + result.messages;
  }
  if (result.exit_code != 0) {
    text += "-- exit code " + std::to_string(result.exit_code) + '\n';
  }
  return text;
}

std::string heading(const std::string& sample_name) { return "== " + sample_name + '\n'; }

void renewGoldenText(const std::string& command) {
  std::ofstream file(goldenPath(command), std::ios::binary);
  for (const Sample& sample : allSamples()) {
    file << heading(sample.name) << sectionOf(runOn(sample, command)) << '\n';
  }
}

/// The sections of a golden text, by their samples' names.
std::map<std::string, std::string> goldenSections(const std::string& command) {
  std::map<std::string, std::string> sections;
  std::ifstream file(goldenPath(command), std::ios::binary);
  std::string* section = nullptr;
  for (std::string line; std::getline(file, line);) {
    if (line.rfind("== ", 0) == 0) {
      section = &sections[line.substr(3)];
    } else if (section != nullptr) {
      *section += line + '\n';
    }
  }
  for (auto& [name, text] : sections) {
    text.resize(text.size() - std::min<std::size_t>(text.size(), 1));  // the empty line behind each
  }
  return sections;
}

std::string withUnit(const Column& column) {
  if (column.unit.empty()) {
    return column.name;
  }
  return column.name + " [" + column.unit + ']';
}

/// The tables as they are exported, with an empty line between two.
std::string csvOf(const std::vector<ValueTable>& tables) {
  std::string text;
  for (const ValueTable& table : tables) {
    text += text.empty() ? "" : "\n";
    std::string line;
    for (const Column& column : table.columns) {
      line += (line.empty() ? "" : ",") + withUnit(column);
    }
    text += line + '\n';
    for (const std::string& row : table.rows) {
      text += row + '\n';
    }
  }
  return text;
}

bool isUnfinished(const Sample& sample) { return sample.bytes.rfind("UnFinMF ", 0) == 0; }

/// Names of parameters have letters, digits and underscores.
std::string parameterName(const testing::TestParamInfo<const Sample*>& info) {
  std::string name = info.param->name;
  std::replace_if(
      name.begin(), name.end(), [](char each) { return each == '-' || each == '.'; }, '_');
  return name;
}

std::vector<const Sample*> pointersToAll() {
  std::vector<const Sample*> pointers;
  for (const Sample& sample : allSamples()) {
    pointers.push_back(&sample);
  }
  return pointers;
}

TEST(SampleList, EachNameIsThereOnce) {
  std::set<std::string> names;
  for (const Sample& sample : allSamples()) {
    EXPECT_TRUE(names.insert(sample.name).second) << sample.name;
    EXPECT_FALSE(sample.shows.empty()) << sample.name;
  }
  EXPECT_GE(names.size(), 150U);
}

TEST(SampleList, GoldenTextsAreThereForEachSampleAndNoOther) {
  std::set<std::string> names;
  for (const Sample& sample : allSamples()) {
    names.insert(sample.name);
  }
  for (const std::string& command : commandsWithGoldenTexts()) {
    if (std::getenv("MDF_RENEW_GOLDEN") != nullptr) {
      renewGoldenText(command);
    }
    std::set<std::string> sections;
    for (const auto& [name, text] : goldenSections(command)) {
      sections.insert(name);
    }
    EXPECT_EQ(sections, names) << command;
  }
}

class SampleFiles : public testing::TestWithParam<const Sample*> {
 protected:
  void compareWithGolden(const std::string& command) const {
    const Sample& sample = *GetParam();
    SCOPED_TRACE(sample.shows);
    EXPECT_EQ(sectionOf(runOn(sample, command)), goldenSections(command)[sample.name]);
  }
};

TEST_P(SampleFiles, Info) { compareWithGolden("info"); }

TEST_P(SampleFiles, Tree) { compareWithGolden("tree"); }

TEST_P(SampleFiles, Check) { compareWithGolden("check"); }

TEST_P(SampleFiles, Export) {
  const Sample& sample = *GetParam();
  SCOPED_TRACE(sample.shows);
  const RunResult result = runOn(sample, "export");
  EXPECT_EQ(result.output, csvOf(sample.tables));
  EXPECT_EQ(result.messages,
            isUnfinished(sample)
                ? "mdf: " + sample.name +
                      ".mf4: the file was not finished; its records are read as far as they go\n"
                : "");
  EXPECT_EQ(result.exit_code, 0);
}

INSTANTIATE_TEST_SUITE_P(All, SampleFiles, testing::ValuesIn(pointersToAll()), parameterName);

}  // namespace
