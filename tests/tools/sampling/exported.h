#ifndef MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_
#define MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reader/columns/tables.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"

namespace mdf_tests {

/// What came of reading a file.
struct Exported {
  std::string text;
  std::vector<std::string> findings;  ///< "OFFSET: SENTENCE"
  std::vector<std::string> notes;
};

/// What it takes to read all values of a file.
struct Read {
  std::uint64_t samples = 0;
  std::uint64_t values = 0;  ///< of the first columns
  std::size_t findings = 0;
  std::size_t peak_bytes = 0;  ///< of memory
};
Read readThrough(const std::string& path);

/// The tables of a file with these bytes.
Exported csvOf(const std::string& bytes, const mdf_reader::Query& query = {});
Exported jsonOf(const std::string& bytes, const mdf_reader::Query& query = {});

/// The CSV of a file that has nothing wrong with it.
std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Query& query = {});

/// Expects a text, and one finding with words in it.
void expectFinding(const Exported& exported, const std::string& text, const std::string& words);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_
