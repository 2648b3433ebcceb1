#ifndef MDF_TOOLS_CHANGING_JOINED_DESCRIPTION_H_
#define MDF_TOOLS_CHANGING_JOINED_DESCRIPTION_H_

#include "join_input.h"
#include "joined_records.h"
#include "new_blocks.h"

namespace mdf_tools {

/// Has the blocks of a channel group that was written anew, and of its channels, say how many
/// records there are, how they are laid out, and no more of their values than holds for all files.
void describeJoined(JoinInputs& inputs, const JoinedGroup& joined, NewBlocks& out);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_JOINED_DESCRIPTION_H_
