#ifndef MDF_TOOLS_CHECKING_PROBLEM_H_
#define MDF_TOOLS_CHECKING_PROBLEM_H_

#include <cstdint>
#include <functional>
#include <string>

#include "codes.h"

namespace mdf_tools {

/// Something wrong with a file.
struct Problem {
  Code code;
  std::uint64_t offset;  ///< of the block that has it
  std::string path;      ///< how that block is reached from the header block; "" for none
  std::string sentence;  ///< what was expected and what was found
};

/// Takes problems as they are found: a file may have more of them than memory holds.
using ProblemSink = std::function<void(const Problem&)>;

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHECKING_PROBLEM_H_
