#ifndef MDF_READER_C_API_ARROW_STREAM_H_
#define MDF_READER_C_API_ARROW_STREAM_H_

#include "../c_api.h"
#include "../measurement/measurement.h"
#include "query_json.h"

namespace mdf_reader {

/// Sets a stream of the batches of a query, to be released by whoever takes it.
/// @throws Refused when the query does not fit exactly one channel group, or its times are none.
void exportStream(const Measurement& measurement, const QueryText& text, ArrowArrayStream& out);

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_ARROW_STREAM_H_
