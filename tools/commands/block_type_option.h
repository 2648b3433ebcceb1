#ifndef MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
#define MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_

#include <string>

namespace mdf_tools {

/// Turns small letters into capitals; returns what is wrong if they are no block type.
std::string expectBlockType(std::string& letters);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
