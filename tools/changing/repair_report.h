#ifndef MDF_TOOLS_CHANGING_REPAIR_REPORT_H_
#define MDF_TOOLS_CHANGING_REPAIR_REPORT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "file_rescue.h"
#include "reader/blocks/finding.h"

namespace mdf_tools {

using namespace mdf_reader;

/// A file that was repaired.
struct Repaired {
  std::string file;
  std::string output;  ///< the same where it was repaired in place
  Rescue rescue;
  std::vector<Finding> losses;    ///< the first ones
  std::uint64_t more_losses = 0;  ///< that are not among them
};

/// "repaired whole.mf4: 84,730 records in 3 groups; ...": what was kept, cut, set and lost.
std::string repairSentence(const Repaired& repaired);

/// The same as a line of JSON.
std::string repairJson(const Repaired& repaired);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_REPAIR_REPORT_H_
