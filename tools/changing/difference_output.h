#ifndef MDF_TOOLS_CHANGING_DIFFERENCE_OUTPUT_H_
#define MDF_TOOLS_CHANGING_DIFFERENCE_OUTPUT_H_

#include <ostream>

#include "difference.h"

namespace mdf_tools {

/// A line for people, and one more for each record that is shown.
void printDifference(const Difference& difference, std::ostream& out);
/// What was compared, and how much of it differs: two lines.
void printSummary(const DiffSummary& summary, std::ostream& out);

Json differenceAsJson(const Difference& difference);
Json summaryAsJson(const DiffSummary& summary);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_DIFFERENCE_OUTPUT_H_
