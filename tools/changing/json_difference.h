#ifndef MDF_TOOLS_CHANGING_JSON_DIFFERENCE_H_
#define MDF_TOOLS_CHANGING_JSON_DIFFERENCE_H_

#include <functional>
#include <set>
#include <string>

#include "reader/summary/json_type.h"

namespace mdf_tools {

/// Takes the path of a member that two values do not have in common, such as "values[2].name", and
/// what each has: null for none.
using MemberSink = std::function<void(const std::string& path, const mdf_reader::Json& a,
                                      const mdf_reader::Json& b)>;

/// Compares the members of two objects; of lists, the first element that differs is said.
/// @param ignored members of the objects themselves.
void compareMembers(const mdf_reader::Json& a, const mdf_reader::Json& b,
                    const std::set<std::string>& ignored, const MemberSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JSON_DIFFERENCE_H_
