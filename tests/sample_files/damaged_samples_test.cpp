// Whatever is wrong with the records of a file, export and check agree that something is, and info,
// list and tree count the records that export gives out: sample files are damaged in thousands of
// ways, always the same ones, and all of them go over each.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "checking/file_check.h"
#include "fuzz/memory_file.h"
#include "printing/info.h"
#include "printing/listing.h"
#include "printing/tree_text.h"
#include "reader/bytes/input_file.h"
#include "reader/columns/tables.h"
#include "reader/summary/file_json.h"
#include "reader/summary/json.h"
#include "tools/samples/sample.h"

using namespace mdf_tests;
using mdf_reader::Code;
using mdf_reader::Finding;
using mdf_reader::InputFile;
using mdf_tools::Json;

namespace {

/// How many records the channel groups have, by their offsets: a number, or null where it is not
/// known.
using Counts = std::map<std::uint64_t, Json>;

std::string lineOf(const Finding& finding) {
  return std::string(mdf_reader::textOf(finding.code).word) + " at " +
         std::to_string(finding.offset) + ": " + finding.sentence + " [" + finding.path + "]\n";
}

/// What somebody finds in a file.
struct Findings {
  std::string lines;
  Counts counts;            ///< as far as somebody counts
  bool is_bad = false;      ///< an error or a warning is among them
  bool is_in_data = false;  ///< one that whoever reads the records must find
};

bool isInData(const Finding& finding) {
  const bool is_of_reduction = finding.path.find("/SR[") != std::string::npos;
  switch (finding.code) {
    case Code::record_id_size_wrong:
    case Code::record_id_twice:
    case Code::record_id_unknown:
    case Code::record_past_end:
    case Code::record_cut_off:
    case Code::bytes_not_read:
    case Code::value_outside_signal_data:
    case Code::invalidation_data_wrong:
    case Code::remote_master_missing:
      return true;
    case Code::cycle_count_wrong:
      return !is_of_reduction;
    default:
      return false;
  }
}

mdf_reader::FindingSink into(Findings& findings) {
  return [&](const Finding& finding) {
    findings.lines += lineOf(finding);
    findings.is_bad =
        findings.is_bad || mdf_reader::textOf(finding.code).severity != mdf_reader::Severity::note;
    findings.is_in_data = findings.is_in_data || isInData(finding);
  };
}

/// Reads every value, as whoever writes them down, and counts the samples of each group.
Findings exported(InputFile& file) {
  Findings findings;
  const mdf_reader::FindingSink report = into(findings);
  const mdf_reader::NoteSink note = [](const std::string& /*text*/) {};
  const mdf_reader::Query query;
  mdf_reader::Tables tables(file, query, report, note);
  while (mdf_reader::Table* const table = tables.next()) {
    std::uint64_t count = 0;
    while (const mdf_reader::Batch* const batch = table->next()) {
      count += batch->rows();
    }
    if (!table->group().element) {
      findings.counts[table->group().offset] = count;
    }
  }
  return findings;
}

const mdf_reader::FindingSink silent = [](const Finding& /*finding*/) {};

/// The lines of JSON that a command writes.
template <class Write>
std::vector<Json> linesOf(const Write& write) {
  std::stringstream text;
  write(text);
  std::vector<Json> lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(Json::parse(line));
  }
  return lines;
}

struct InfoCounts {
  Counts of_groups;
  std::vector<std::uint64_t> offsets;  ///< of the groups, by their numbers
};

InfoCounts countsOfInfo(InputFile& file) {
  const Json info = mdf_reader::fileAsJson(file, mdf_reader::Depth::records, silent);
  InfoCounts counts;
  for (const Json& group : info["groups"]) {
    counts.offsets.push_back(group["offset"]);
    counts.of_groups[group["offset"]] = group["records"];
  }
  return counts;
}

Counts countsOfList(InputFile& file, const std::vector<std::uint64_t>& offsets) {
  mdf_tools::ListOptions options;
  options.as_json = true;
  Counts counts;
  for (const Json& line :
       linesOf([&](std::ostream& out) { listChannels(file, options, out, silent); })) {
    counts[offsets.at(line["group"])] = line["records"];
  }
  return counts;
}

Counts countsOfTree(InputFile& file) {
  mdf_tools::TreeOptions options;
  options.list_limit = UINT64_MAX;
  Counts counts;
  for (const Json& line :
       linesOf([&](std::ostream& out) { writeTreeAsJson(file, options, out, silent); })) {
    // Of values of variable length the tree says no number.
    if (line["entry"] == "block" && line["type"] == "CG" && line.contains("records")) {
      counts[line["offset"]] = line["records"];
    }
  }
  return counts;
}

/// Whether the counts are some of those that info says.
testing::AssertionResult areSaid(const Counts& counts, const Counts& by_info, const char* whose) {
  for (const auto& [offset, count] : counts) {
    const auto said = by_info.find(offset);
    if (said != by_info.end() && said->second != count) {
      return testing::AssertionFailure() << whose << " has " << count << " records of the group at "
                                         << offset << ", and info has " << said->second;
    }
  }
  return testing::AssertionSuccess();
}

/// Whether info, list and tree say the same counts, and what export gives out if nothing is wrong.
testing::AssertionResult countsAgree(InputFile& file, const Findings& by_export) {
  const InfoCounts by_info = countsOfInfo(file);
  auto result = areSaid(countsOfList(file, by_info.offsets), by_info.of_groups, "list");
  if (result) {
    result = areSaid(countsOfTree(file), by_info.of_groups, "tree");
  }
  if (result && by_export.lines.empty()) {
    result = areSaid(by_export.counts, by_info.of_groups, "export");
  }
  return result;
}

Findings checked(InputFile& file) {
  Findings findings;
  mdf_tools::checkFile(file, into(findings));
  return findings;
}

/// Cuts off the end, or changes bits of one to three bytes, more often than not of the end, where
/// samples have their data.
std::string damaged(std::string bytes, std::minstd_rand& random) {
  const auto below = [&](std::size_t count) { return static_cast<std::size_t>(random()) % count; };
  if (below(6) == 0) {
    bytes.resize(64 + below(bytes.size() - 64));
    return bytes;
  }
  const std::size_t begin = below(2) == 0 ? 26 : bytes.size() / 2;
  for (std::size_t left = 1 + below(3); left > 0; --left) {
    bytes[begin + below(bytes.size() - begin)] ^= static_cast<char>(1 + below(255));
  }
  return bytes;
}

enum class Compared { findings, counts_as_well };

/// Whether all agree on a file.
testing::AssertionResult agreeOn(const std::string& bytes, Compared compared) {
  static const mdf_fuzz::MemoryFile memory;
  memory.hold(bytes);
  InputFile file(memory.path());
  const Findings by_export = exported(file);
  const Findings by_check = checked(file);
  if ((by_export.lines.empty() || by_check.is_bad) &&
      (!by_check.is_in_data || !by_export.lines.empty())) {
    return compared == Compared::findings ? testing::AssertionSuccess()
                                          : countsAgree(file, by_export);
  }
  return testing::AssertionFailure() << "export found\n"
                                     << by_export.lines << "and check\n"
                                     << by_check.lines;
}

TEST(DamagedSamples, CommandsAgreeOnWhole) {
  for (const Sample& sample : allSamples()) {
    EXPECT_TRUE(agreeOn(sample.bytes, Compared::counts_as_well)) << sample.name;
  }
}

TEST(DamagedSamples, CommandsAgree) {
  constexpr unsigned times = 48;
  constexpr unsigned count_every = 3;  // it takes six times as long as the rest
  std::minstd_rand random(1);
  std::size_t failures = 0;
  for (const Sample& sample : allSamples()) {
    for (unsigned i = 0; i < times && failures < 10; ++i) {
      const Compared compared =
          i % count_every == 0 ? Compared::counts_as_well : Compared::findings;
      const auto result = agreeOn(damaged(sample.bytes, random), compared);
      failures += result ? 0U : 1U;
      EXPECT_TRUE(result) << sample.name << ", damage number " << i;
    }
  }
}

}  // namespace
