// Whatever is wrong with the records of a file, export and check agree that something is: sample
// files are damaged in thousands of ways, always the same ones, and both go over each.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "checking/file_check.h"
#include "fuzz/memory_file.h"
#include "reader/bytes/input_file.h"
#include "reader/values/table.h"
#include "tools/samples/sample.h"

using namespace mdf_tests;
using mdf_reader::Code;
using mdf_reader::Finding;
using mdf_reader::InputFile;

namespace {

/// Asks for every value, as whoever writes them down.
class Reader : public mdf_reader::TableVisitor {
 public:
  void begin(mdf_reader::Table& /*table*/) override {}
  bool sample(mdf_reader::Table& table, const mdf_reader::Sample& sample) override {
    for (mdf_reader::Column& column : table.columns()) {
      column.value(sample);
    }
    return true;
  }
  void end() override {}
};

std::string lineOf(const Finding& finding) {
  return std::string(mdf_reader::textOf(finding.code).word) + " at " +
         std::to_string(finding.offset) + ": " + finding.sentence + " [" + finding.path + "]\n";
}

/// What somebody finds in a file.
struct Findings {
  std::string lines;
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

Findings exported(InputFile& file) {
  Findings findings;
  Reader reader;
  visitTables(file, {}, reader, into(findings), [](const std::string& /*note*/) {});
  return findings;
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

/// Whether both agree on a file.
testing::AssertionResult agreeOn(const std::string& bytes) {
  static const mdf_fuzz::MemoryFile memory;
  memory.hold(bytes);
  InputFile file(memory.path());
  const Findings by_export = exported(file);
  const Findings by_check = checked(file);
  if ((by_export.lines.empty() || by_check.is_bad) &&
      (!by_check.is_in_data || !by_export.lines.empty())) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "export found\n"
                                     << by_export.lines << "and check\n"
                                     << by_check.lines;
}

TEST(DamagedSamples, ExportAndCheckAgreeOnWhole) {
  for (const Sample& sample : allSamples()) {
    EXPECT_TRUE(agreeOn(sample.bytes)) << sample.name;
  }
}

TEST(DamagedSamples, ExportAndCheckAgree) {
  constexpr unsigned times = 40;
  std::minstd_rand random(1);
  std::size_t failures = 0;
  for (const Sample& sample : allSamples()) {
    for (unsigned i = 0; i < times && failures < 10; ++i) {
      const auto result = agreeOn(damaged(sample.bytes, random));
      failures += result ? 0U : 1U;
      EXPECT_TRUE(result) << sample.name << ", damage number " << i;
    }
  }
}

}  // namespace
