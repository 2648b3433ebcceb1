#ifndef MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_
#define MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_

#include <string>
#include <vector>

#include "reader/values/table.h"
#include "tools/support/data_blocks.h"
#include "tools/support/file_builder.h"

namespace mdf_tests {

/// A channel that is the first byte of a record.
inline ChannelSpec firstByte(const std::string& name) {
  ChannelSpec channel;
  channel.name = name;
  return channel;
}

/// What came of reading a file.
struct Exported {
  std::string text;
  std::vector<std::string> findings;  ///< "OFFSET: SENTENCE"
  std::vector<std::string> notes;
};

/// The tables of a file with these bytes.
Exported csvOf(const std::string& bytes, const mdf_reader::Selection& selection = {});
Exported jsonOf(const std::string& bytes, const mdf_reader::Selection& selection = {});

/// The CSV of a file that has nothing wrong with it.
std::string healthyCsvOf(const std::string& bytes, const mdf_reader::Selection& selection = {});

/// Expects a text, and one finding with words in it.
void expectFinding(const Exported& exported, const std::string& text, const std::string& words);

}  // namespace mdf_tests

#endif  // MDF_TESTS_TOOLS_SAMPLING_EXPORTED_H_
