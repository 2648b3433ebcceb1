// Copies of the sample files show what the files show, however their data is put.

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tools/samples/sample.h"
#include "tools/support/program.h"
#include "tools/support/scratch_folder.h"

using namespace mdf_tests;

namespace {

using Words = std::vector<std::string>;

const std::string without_master =
    "layout-no-master.mf4: AT: note master-missing: expected a master channel among the channels, "
    "found none [HD.hd_dg_first/DG[0].dg_cg_first/CG[0]]\n";

/// Unfinished files that end within a record.
const std::set<std::string> with_torn_records = {"unfinished-last-data-open-half-a-record",
                                                 "unfinished-last-data-open-less-than-a-record",
                                                 "unfinished-unsorted"};

/// A way to copy files, and what is said of the copies.
struct Way {
  Words options;
  std::string found;
};

/// The last one copies what the one before made.
const std::vector<Way> ways = {
    {{},
     "layout-uncounted-link.mf4: AT: warning link-count-wrong: expected the link count 1 by the "
     "length of 40, found 0 [HD.hd_dg_first/DG[0].dg_data/HL]\n" +
         without_master},
    {{"--zip", "deflate", "--block-size", "1024"}, without_master},
    {{"--sort", "--zip", "transposed"}, without_master},
    {{"--zip", "none"}, without_master},
};

/// Without the folder, and without offsets, which are "AT".
std::string onlyNames(const std::string& text, const std::string& folder) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at) + 1;
    const std::string line = text.substr(at + folder.size(), end - at - folder.size());
    const std::size_t offset = line.find(": ");
    result += line.substr(0, offset) + ": AT" + line.substr(line.find(": ", offset + 2));
    at = end;
  }
  return result;
}

/// The words with the files of all samples in a folder.
Words withFiles(Words words, const std::string& folder) {
  for (const Sample& sample : allSamples()) {
    words.push_back(folder + sample.name + ".mf4");
  }
  return words;
}

TEST(CopySamples, ShowTheSameAndHaveNoOtherProblems) {
  const ScratchFolder folder;
  for (const Sample& sample : allSamples()) {
    folder.write("in/" + sample.name + ".mf4", sample.bytes);
  }
  const std::string in = (folder / "in/").string();
  const std::string shown = run(withFiles({"export", "--empty"}, in)).output;
  std::string before;
  for (const Way& way : ways) {
    const std::string from = &way == &ways.back() ? before : in;
    const std::string to = (folder / ("out" + std::to_string(&way - ways.data()) + "/")).string();
    std::filesystem::create_directory(to);
    std::set<std::string> torn;
    std::set<std::string> different;  // or cannot be compared as a whole
    for (const Sample& sample : allSamples()) {
      Words words = {"copy", from + sample.name + ".mf4", "-o", to + sample.name + ".mf4"};
      words.insert(words.end(), way.options.begin(), way.options.end());
      if (run(words).exit_code != 0) {
        torn.insert(sample.name);
      }
      if (run({"diff", in + sample.name + ".mf4", to + sample.name + ".mf4"}).exit_code != 0) {
        different.insert(sample.name);
      }
    }
    EXPECT_EQ(different, with_torn_records);
    EXPECT_EQ(torn, from == in ? with_torn_records : std::set<std::string>());
    EXPECT_EQ(run(withFiles({"export", "--empty"}, to)).output, shown);
    EXPECT_EQ(onlyNames(run(withFiles({"check"}, to)).output, to), way.found);
    before = to;
  }
}

/// Options of a copy, what an export shows the same with, and the samples where that is otherwise.
struct Choice {
  Words copying;
  Words exporting;
  std::set<std::string> others;
  Words again = {};  ///< what the copy is exported with
};

/// Groups and records of array elements are all kept; of a group without a master the head is
/// shown; where a master in another group would have other records, there is no copy; a group with
/// a master for others stays with them.
const std::vector<Choice> choices = {
    {{"--last", "2"},
     {"--last", "2", "--empty"},
     {"array-of-channel-groups", "array-of-data-groups", "remote-master-shared"}},
    {{"--from", "0.15", "--to", "0.35"},
     {"--from", "0.15", "--to", "0.35", "--empty"},
     {"array-of-channel-groups", "array-of-channel-groups-with-axis", "array-of-data-groups",
      "layout-no-master"}},
    {{"--group", "0"},
     {"--group", "0", "--empty"},
     {"array-of-channel-groups", "remote-master-shared"}},
    {{"--drop-empty"}, {}, {"array-of-data-groups"}},
    {{"-c", "v*", "--zip", "transposed"}, {"-c", "v*", "--empty"}, {}, {"-c", "v*"}},
    {{"-c", "*.[a-l]*", "-c", "second*", "--sort"},
     {"-c", "*.[a-l]*", "-c", "second*", "--empty"},
     {},
     {"-c", "*.[a-l]*", "-c", "second*"}},
};

TEST(CopySamples, WhatIsChosen) {
  const ScratchFolder folder;
  const std::string in = (folder / "in.mf4").string();
  const std::string out = (folder / "out.mf4").string();
  for (const Choice& choice : choices) {
    SCOPED_TRACE(choice.copying.front());
    std::set<std::string> others;
    for (const Sample& sample : allSamples()) {
      folder.write("in.mf4", sample.bytes);
      std::filesystem::remove(out);
      Words copy = {"copy", in, "-o", out};
      Words shown = {"export", in};
      copy.insert(copy.end(), choice.copying.begin(), choice.copying.end());
      shown.insert(shown.end(), choice.exporting.begin(), choice.exporting.end());
      Words again = {"export", out, "--empty"};
      again.insert(again.end(), choice.again.begin(), choice.again.end());
      run(copy);
      if (run(again).output != run(shown).output) {
        others.insert(sample.name);
      }
    }
    EXPECT_EQ(others, choice.others);
  }
}

}  // namespace
