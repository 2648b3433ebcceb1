#ifndef MDF_READER_SUMMARY_FILE_JSON_H_
#define MDF_READER_SUMMARY_FILE_JSON_H_

#include "file_summary.h"
#include "json_type.h"

namespace mdf_reader {

/// What a file is and what is in it, as an object for programs.
Json fileAsJson(InputFile& file, Depth depth, const FindingSink& report);

}  // namespace mdf_reader

#endif  // MDF_READER_SUMMARY_FILE_JSON_H_
