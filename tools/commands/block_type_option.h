#ifndef MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
#define MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_

namespace CLI {
class Validator;
}

namespace mdf_tools {

/// Makes small letters large, and refuses what is no type of blocks, with a sentence.
CLI::Validator isBlockType();

}  // namespace mdf_tools

#endif  // MDF_TOOLS_COMMANDS_BLOCK_TYPE_OPTION_H_
