#ifndef MDF_TOOLS_CHANGING_GROUP_MATCHING_H_
#define MDF_TOOLS_CHANGING_GROUP_MATCHING_H_

#include <vector>

#include "join_input.h"
#include "reader/columns/tables.h"

namespace mdf_tools {

/// Finds the channel groups of files that go on in those of the files before: those with the same
/// name, channels, layout and conversions. Each list has the groups that become one, with at most
/// one of each file; those that hold values of others are in none.
/// @param is_apart none goes on: each becomes one by itself.
/// @param note takes why groups of the same name do not.
std::vector<std::vector<GroupSource>> matchGroups(JoinInputs& inputs, bool is_apart,
                                                  const NoteSink& note);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_GROUP_MATCHING_H_
