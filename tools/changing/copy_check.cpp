#include "copy_check.h"

#include <optional>
#include <set>

#include "checking/file_check.h"
#include "copy_failure.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"

namespace mdf_tools {

using namespace mdf_reader;

namespace {

/// What a file has of problems: their codes, and how many are errors.
struct Problems {
  std::set<Code> codes;
  std::uint64_t errors = 0;
  std::optional<Finding> first_new = {};  ///< of those whose code is not among others
};

Problems problemsOf(InputFile& file, const std::set<Code>& others) {
  Problems problems;
  checkFile(file, [&](const Finding& finding) {
    const Severity severity = textOf(finding.code).severity;
    if (severity != Severity::note) {
      problems.codes.insert(finding.code);
      problems.errors += severity == Severity::error ? 1 : 0;
      if (!problems.first_new && others.count(finding.code) == 0) {
        problems.first_new = finding;
      }
    }
  });
  return problems;
}

}  // namespace

std::uint64_t checkCopy(InputFile& copy, InputFile& original) {
  return checkCopy(copy, std::vector<InputFile*>{&original});
}

std::uint64_t checkCopy(InputFile& copy, const std::vector<InputFile*>& originals) {
  Problems problems = problemsOf(copy, {});
  if (problems.first_new) {
    std::set<Code> codes;
    for (InputFile* const original : originals) {
      codes.merge(problemsOf(*original, {}).codes);
    }
    problems = problemsOf(copy, codes);
  }
  if (problems.first_new) {
    throw CopyFailure("the copy would have a problem that the file has not, at " +
                      decimalAndHex(problems.first_new->offset) +
                      " of the copy: " + problems.first_new->sentence);
  }
  return problems.errors;
}

}  // namespace mdf_tools
