#ifndef MDF_TOOLS_PRINTING_JSON_OUTPUT_H_
#define MDF_TOOLS_PRINTING_JSON_OUTPUT_H_

#include "reader/summary/json.h"

namespace mdf_tools {

using mdf_reader::Json;
using mdf_reader::json_schema;
using mdf_reader::jsonDocument;
using mdf_reader::jsonLine;
using mdf_reader::textOrNull;

}  // namespace mdf_tools

#endif  // MDF_TOOLS_PRINTING_JSON_OUTPUT_H_
