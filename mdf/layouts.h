#ifndef MDF_LAYOUTS_H_
#define MDF_LAYOUTS_H_

/// The layouts that the library itself writes and reads by, for programs that show the bytes of
/// blocks. Nobody needs this to work with the blocks.

#include "datablocks/layouts.h"
#include "description/layouts.h"
#include "fileblocks/layouts.h"

#endif  // MDF_LAYOUTS_H_
