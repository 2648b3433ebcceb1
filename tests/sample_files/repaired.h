#ifndef MDF_TESTS_SAMPLE_FILES_REPAIRED_H_
#define MDF_TESTS_SAMPLE_FILES_REPAIRED_H_

#include <string>
#include <vector>

#include "changing/file_rescue.h"
#include "reader/blocks/finding.h"

namespace mdf_tests {

/// What became of a file, as with `mdf repair -o`.
struct RepairedBytes {
  bool is_saved = false;
  std::string bytes;
  mdf_tools::Rescue rescue;
  std::vector<mdf_reader::Finding> losses;  ///< and what is wrong with the new file

  /// The sentences of what was put back, each at a line, and of what was lost.
  std::string putBack() const;
  std::string lost() const;
};

/// Repairs a file that is not whole.
RepairedBytes repairedBytes(const std::string& bytes);

/// What `mdf check` finds, but for notes: offsets and sentences, a line each.
std::vector<mdf_reader::Finding> problemsOf(const std::string& bytes);

}  // namespace mdf_tests

#endif  // MDF_TESTS_SAMPLE_FILES_REPAIRED_H_
