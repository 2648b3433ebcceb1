#ifndef MDF_TOOLS_PRINTING_TREE_TEXT_H_
#define MDF_TOOLS_PRINTING_TREE_TEXT_H_

#include <ostream>

#include "block_tree.h"

namespace mdf_tools {

/// Writes a file's tree, a line for each link: two blanks for each level, the link's name, the
/// block and its offset. Beyond 40 levels the line begins with the level's number instead of more
/// blanks.
void writeTree(InputFile& file, const TreeOptions& options, std::ostream& os,
               const FindingSink& report);

/// The same as JSON, each link on a line of its own.
void writeTreeAsJson(InputFile& file, const TreeOptions& options, std::ostream& os,
                     const FindingSink& report);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_TREE_TEXT_H_
