#ifndef MDF_READER_C_API_ARROW_STREAM_H_
#define MDF_READER_C_API_ARROW_STREAM_H_

#include <memory>
#include <mutex>

#include "../c_api.h"
#include "../measurement/measurement.h"
#include "query_json.h"

namespace mdf_reader {

/// A file, and whose turn it is to use it: its own, or that of one of its streams.
struct SharedFile {
  Measurement measurement;
  std::shared_ptr<std::mutex> turn = std::make_shared<std::mutex>();
};

/// Sets a stream of the batches of a query, to be released by whoever takes it.
/// @throws Refused when the query does not fit exactly one channel group, or its times are none.
void exportStream(const SharedFile& file, const QueryText& text, ArrowArrayStream& out);

/// The same of the frames of buses.
/// @throws Refused when there are none.
void exportFrames(const SharedFile& file, const QueryText& text, ArrowArrayStream& out);

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_ARROW_STREAM_H_
