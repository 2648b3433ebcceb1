#ifndef MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
#define MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_

namespace CLI {
class Validator;
}

namespace mdf_tools {

/// Turns small letters into capitals, and refuses what is not a block type.
CLI::Validator isBlockType();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
