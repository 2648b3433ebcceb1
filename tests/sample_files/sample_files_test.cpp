// What the program says of each sample file: the values that the sample is made of, and golden
// texts, one file for each command with a section for each sample, in the form of golden_text.h.
//
// When samples or what a command prints have changed, the golden texts are renewed with
//
//   MDF_RENEW_GOLDEN=1 build/dev/tests/mdf_sample_tests --gtest_filter='SampleList.*'
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

#include "golden_text.h"
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

std::string fileName(const Sample& sample) { return sample.name + ".mf4"; }

/// What a run on the files of samples came to, with the files' names without their folder.
RunResult runOn(const std::vector<const Sample*>& samples, std::vector<std::string> arguments) {
  const ScratchFolder folder;
  for (const Sample* sample : samples) {
    folder.write(fileName(*sample), sample->bytes);
    arguments.push_back((folder / fileName(*sample)).string());
  }
  RunResult result = run(arguments);
  const std::string before = folder.path().string() + '/';
  for (std::string* text : {&result.output, &result.messages}) {
    for (std::size_t at = text->find(before); at != std::string::npos;
         at = text->find(before, at)) {
      text->erase(at, before.size());
    }
  }
  return result;
}

const std::string messages_heading = "-- on standard error:\n";
const std::string exit_code_heading = "-- exit code ";

/// The section of a golden text: standard output, and what there is beside it.
std::string sectionOf(const RunResult& result) {
  std::string text = result.output;
  if (!result.messages.empty()) {
    text += messages_heading + result.messages;
  }
  if (result.exit_code != 0) {
    text += exit_code_heading + std::to_string(result.exit_code) + '\n';
  }
  return text;
}

/// The other way round.
RunResult resultOf(std::string section) {
  RunResult result;
  const std::size_t code_at = section.find(exit_code_heading);
  if (code_at != std::string::npos) {
    result.exit_code = std::stoi(section.substr(code_at + exit_code_heading.size()));
    section.resize(code_at);
  } else {
    result.exit_code = 0;
  }
  const std::size_t messages_at = section.find(messages_heading);
  if (messages_at != std::string::npos) {
    result.messages = section.substr(messages_at + messages_heading.size());
    section.resize(messages_at);
  }
  result.output = section;
  return result;
}

/// The beginning of a text from an offset on.
std::string excerpt(const std::string& text, std::size_t offset) {
  constexpr std::size_t shown = 400;
  return text.substr(offset, shown) + (text.size() - offset > shown ? "...\n" : "");
}

/// Whether a run has come to what was expected; if not, what stands from the first line on that
/// differs.
testing::AssertionResult isSame(const RunResult& result, const RunResult& expected) {
  const std::string actual_text = sectionOf(result);
  const std::string expected_text = sectionOf(expected);
  if (actual_text == expected_text) {
    return testing::AssertionSuccess();
  }
  const std::size_t common = std::min(actual_text.size(), expected_text.size());
  std::size_t line_begin = 0;
  for (std::size_t i = 0; i < common && actual_text[i] == expected_text[i]; ++i) {
    line_begin = actual_text[i] == '\n' ? i + 1 : line_begin;
  }
  return testing::AssertionFailure()
         << "The outputs differ from byte " << line_begin << " on. Expected:\n"
         << excerpt(expected_text, line_begin) << "Found:\n"
         << excerpt(actual_text, line_begin);
}

/// The golden text of a command as its sections by their samples' names.
std::map<std::string, std::string> goldenSectionsOf(const std::string& command) {
  const Sections sections = goldenSections(bytesOf(goldenPath(command)));
  return {sections.begin(), sections.end()};
}

/// What a run on a sample comes to, by its section.
RunResult goldenResult(const Sample& sample, const std::string& section) {
  return resultOf(withPlaces(section, fileName(sample), sample.bytes));
}

void renewGoldenText(const std::string& command) {
  Sections sections;
  for (const Sample& sample : allSamples()) {
    sections.emplace_back(sample.name, withoutPlaces(sectionOf(runOn({&sample}, {command})),
                                                     fileName(sample), sample.bytes));
  }
  std::ofstream(goldenPath(command), std::ios::binary) << goldenText(sections);
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

/// What exporting a sample comes to.
RunResult expectedExport(const Sample& sample) {
  const bool is_unfinished = sample.bytes.rfind("UnFinMF ", 0) == 0;
  RunResult result;
  result.exit_code = 0;
  result.output = csvOf(sample.tables);
  if (is_unfinished) {
    result.messages = "mdf: " + fileName(sample) +
                      ": note: the file was not finished; its records are read as far as they go\n";
  }
  for (const Complaint& complaint : sample.complaints) {
    std::ostringstream line;
    line << "mdf: " << fileName(sample) << ": " << complaint.offset << " (0x" << std::hex
         << complaint.offset << "): " << complaint.sentence << '\n';
    result.messages += line.str();
    result.exit_code = 1;
  }
  return result;
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
    for (const auto& [name, text] : goldenSectionsOf(command)) {
      sections.insert(name);
    }
    EXPECT_EQ(sections, names) << command;
  }
}

/// What one run on all files comes to, from what it comes to for each of them. What is printed for
/// a file may have a heading, and a separator between it and the one before.
RunResult joined(const std::vector<RunResult>& results, bool has_heading,
                 const std::string& separator) {
  RunResult all;
  all.exit_code = 0;
  for (std::size_t i = 0; i < results.size(); ++i) {
    const RunResult& each = results[i];
    if (!all.output.empty() && !each.output.empty()) {
      all.output += separator;
    }
    all.output += has_heading ? fileName(allSamples()[i]) + ":\n" : "";
    all.output += each.output;
    all.messages += each.messages;
    all.exit_code = std::max(all.exit_code, each.exit_code);
  }
  return all;
}

std::vector<RunResult> goldenResults(const std::string& command) {
  const std::map<std::string, std::string> sections = goldenSectionsOf(command);
  std::vector<RunResult> results;
  for (const Sample& sample : allSamples()) {
    results.push_back(goldenResult(sample, sections.at(sample.name)));
  }
  return results;
}

TEST(SampleList, InfoOfAllFilesAtOnce) {
  EXPECT_TRUE(isSame(runOn(pointersToAll(), {"info"}), joined(goldenResults("info"), false, "\n")));
}

TEST(SampleList, TreeOfAllFilesAtOnce) {
  EXPECT_TRUE(isSame(runOn(pointersToAll(), {"tree"}), joined(goldenResults("tree"), true, "")));
}

TEST(SampleList, CheckOfAllFilesAtOnce) {
  EXPECT_TRUE(isSame(runOn(pointersToAll(), {"check"}), joined(goldenResults("check"), false, "")));
}

TEST(SampleList, ExportOfAllFilesAtOnce) {
  std::vector<RunResult> results;
  for (const Sample& sample : allSamples()) {
    results.push_back(expectedExport(sample));
  }
  EXPECT_TRUE(isSame(runOn(pointersToAll(), {"export", "--empty"}), joined(results, false, "\n")));
}

/// "3 records, 6 values" of a file, as `mdf diff` counts them.
std::string countsOf(const Sample& sample) {
  std::size_t records = 0;
  std::size_t values = 0;
  for (const ValueTable& table : sample.tables) {
    records += table.rows.size();
    values += table.rows.size() * table.columns.size();
  }
  return std::to_string(records) + (records == 1 ? " record, " : " records, ") +
         std::to_string(values) + (values == 1 ? " value" : " values");
}

TEST(SampleList, EachFileIsTheSameAsItself) {
  for (const Sample& sample : allSamples()) {
    const ScratchFolder folder;
    folder.write(fileName(sample), sample.bytes);
    const std::string path = (folder / fileName(sample)).string();
    const RunResult result = run({"diff", path, path});
    EXPECT_EQ(result.exit_code, sample.complaints.empty() ? 0 : 2) << sample.name;
    const std::string end = ", " + countsOf(sample) + "\nDifferent:  nothing\n";
    EXPECT_EQ(
        result.output.substr(result.output.size() - std::min(result.output.size(), end.size())),
        end)
        << sample.name;
  }
}

}  // namespace
