#ifndef MDF_MDF_V4_10_H_
#define MDF_MDF_V4_10_H_

/// The blocks of ASAM MDF 4.10 measurement files: build, write, read back and dump them.
///
/// This is the one header to include. Compile the sources below this folder with C++17; they need
/// the standard library and nothing else.

#include "datablocks/dlblock.h"
#include "datablocks/dtblock.h"
#include "datablocks/dzblock.h"
#include "datablocks/hlblock.h"
#include "datablocks/rdblock.h"
#include "datablocks/record_elements.h"
#include "datablocks/sdblock.h"
#include "datablocks/srblock.h"
#include "description/ccblock.h"
#include "description/cgblock.h"
#include "description/cnblock.h"
#include "description/dgblock.h"
#include "description/siblock.h"
#include "fileblocks/atblock.h"
#include "fileblocks/chblock.h"
#include "fileblocks/evblock.h"
#include "fileblocks/fhblock.h"
#include "fileblocks/hdblock.h"
#include "fileblocks/idblock.h"
#include "fileblocks/mdblock.h"
#include "fileblocks/txblock.h"
#include "framework/block_id.h"
#include "framework/general_block.h"
#include "framework/header_section.h"
#include "framework/link_section.h"
#include "framework/types.h"

#endif  // MDF_MDF_V4_10_H_
