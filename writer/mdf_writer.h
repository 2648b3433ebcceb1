#ifndef MDF_WRITER_MDF_WRITER_H_
#define MDF_WRITER_MDF_WRITER_H_

/// Writes whole measurement files that survive what happens while they are written.
///
/// This is the one header to include. A Plan says what the file will hold; a Recording of it takes
/// records and brings them into a file that can be opened at any moment. Compile the sources of
/// this folder and of mdf/ beside it with C++17; they need the standard library and a POSIX system,
/// neither exceptions nor type information, and nothing else.

#include "files/file_output.h"
#include "files/output.h"
#include "plan/attachment.h"
#include "plan/channel_plan.h"
#include "plan/conversion.h"
#include "plan/event.h"
#include "plan/group.h"
#include "plan/hierarchy.h"
#include "plan/plan.h"
#include "stream/recording.h"

#endif  // MDF_WRITER_MDF_WRITER_H_
