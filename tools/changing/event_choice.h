#ifndef MDF_TOOLS_CHANGING_EVENT_CHOICE_H_
#define MDF_TOOLS_CHANGING_EVENT_CHOICE_H_

#include "block_copy.h"
#include "reader/columns/query.h"

namespace mdf_tools {

/// Leaves out the events that have a time outside the limits. One that lasts stays if some of it is
/// inside.
void leaveOutEvents(BlockCopy& blocks, const Query& limits, const FindingSink& report);

/// Leaves out the events of channels and groups all of which are left out.
void leaveOutEventsOfNothing(BlockCopy& blocks);

}  // namespace mdf_tools

#endif  // MDF_TOOLS_CHANGING_EVENT_CHOICE_H_
