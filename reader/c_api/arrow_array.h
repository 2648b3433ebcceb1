#ifndef MDF_READER_C_API_ARROW_ARRAY_H_
#define MDF_READER_C_API_ARROW_ARRAY_H_

#include <cstdint>
#include <memory>
#include <optional>

#include "../c_api.h"
#include "../columns/batch.h"

namespace mdf_reader {

/// Sets an array of structures, to be released by whoever takes it. Its values are those of the
/// batch, which lasts as long as one of its columns does.
/// @param start when the first column's seconds began, in nanoseconds since 1970, if that column is
/// to have timestamps.
void exportBatch(const std::shared_ptr<const Batch>& batch, std::optional<std::int64_t> start,
                 ArrowArray& out);

}  // namespace mdf_reader

#endif  // MDF_READER_C_API_ARROW_ARRAY_H_
