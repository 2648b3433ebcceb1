#ifndef MDF_FUZZ_FINDING_CHECK_H_
#define MDF_FUZZ_FINDING_CHECK_H_

#include <algorithm>
#include <cstdint>

#include "expect.h"
#include "reader/blocks/finding.h"

namespace mdf_fuzz {

inline bool isPrintable(char character) { return character >= 0x20 && character < 0x7F; }

/// "this is no MDF file" and the like, of what cannot be read at all, stand for themselves.
inline bool saysWhatWasExpected(const mdf_reader::Finding& finding) {
  using mdf_reader::Code;
  const bool refuses = finding.code == Code::not_mdf || finding.code == Code::version_wrong;
  return (refuses && finding.sentence.rfind("this is ", 0) == 0) ||
         (finding.sentence.rfind("expected ", 0) == 0 &&
          finding.sentence.find(", found ") != std::string::npos);
}

/// What must hold of every finding.
inline void expectSentence(const mdf_reader::Finding& finding, std::uint64_t file_size) {
  expect(finding.offset <= file_size, "a finding inside the file");
  expect(saysWhatWasExpected(finding) &&
             std::all_of(finding.sentence.begin(), finding.sentence.end(), isPrintable),
         "a finding to say what was expected and found, on one line");
  expect(finding.sentence.rfind("expected memory", 0) != 0,
         "memory for what the file holds to suffice");
}

}  // namespace mdf_fuzz

#endif  // MDF_FUZZ_FINDING_CHECK_H_
