#ifndef MDF_TOOLS_CHECKING_SUBJECT_H_
#define MDF_TOOLS_CHECKING_SUBJECT_H_

#include <cstdint>
#include <string>

#include "reader/blocks/block_table.h"
#include "reader/blocks/finding.h"
#include "reader/bytes/input_file.h"
#include "reader/bytes/work_budget.h"
#include "reader/data/data_file.h"
#include "space.h"

namespace mdf_tools {

using namespace mdf_reader;

/// What the checks of a file share.
struct Subject {
  InputFile& file;
  const BlockTable& blocks;
  DataFile& data_file;
  const Space& space;
  const FindingSink& sink;
  WorkBudget contents;  ///< bytes of texts, zipped data and attachments that may still be read

  /// Reports a problem of a block.
  void report(Code code, std::uint32_t index, const std::string& sentence) const {
    sink({code, blocks[index].offset, sentence, pathOf(file, blocks, index)});
  }
};

/// "##TX at 200 (0xc8)".
inline std::string nameAt(std::string_view letters, std::uint64_t offset) {
  return "##" + std::string(letters) + " at " + decimalAndHex(offset);
}

/// A count. The largest one stands for larger ones too: "18446744073709551615 or more".
inline std::string countText(std::uint64_t count) {
  return std::to_string(count) + (count == UINT64_MAX ? " or more" : "");
}

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_SUBJECT_H_
