/// What programs get to compile with the one header. Compiling this file is the test.

#include "mdf_v4_10.h"

#if defined(MDF_FRAMEWORK_BLOCK_READER_H_) || defined(MDF_FRAMEWORK_BLOCK_WRITER_H_) || \
    defined(MDF_FRAMEWORK_DUMP_H_) || defined(MDF_FRAMEWORK_FIELD_H_) ||                \
    defined(MDF_FRAMEWORK_FIELD_LIST_H_) || defined(MDF_FRAMEWORK_FIELD_RUNS_H_) ||     \
    defined(MDF_FRAMEWORK_WIRE_H_) || defined(MDF_DATABLOCKS_LAYOUTS_H_) ||             \
    defined(MDF_DESCRIPTION_LAYOUTS_H_) || defined(MDF_FILEBLOCKS_LAYOUTS_H_)
#error "The classes' headers include what only their sources need."
#endif
